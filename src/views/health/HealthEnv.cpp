// SPDX-License-Identifier: MIT
#include "views/health/HealthEnv.h"

#include <QDir>
#include <QFileInfo>
#include <QThread>

using namespace Qt::StringLiterals;

namespace kse {

namespace {

QStringList usualInstallFolders()
{
#if defined(Q_OS_WIN)
    QStringList folders;
    for (const char* variable : {"ProgramFiles", "ProgramW6432", "ProgramFiles(x86)"}) {
        const QString programs = qEnvironmentVariable(variable);
        if (!programs.isEmpty()) {
            folders.append(QDir::fromNativeSeparators(programs) + "/PixInsight"_L1);
        }
    }
    folders.append(u"C:/Program Files/PixInsight"_s);
    folders.removeDuplicates();
    return folders;
#elif defined(Q_OS_MACOS)
    return {u"/Applications/PixInsight"_s};
#else
    return {u"/opt/PixInsight"_s};
#endif
}

} // namespace

HealthEnv HealthEnv::system()
{
    HealthEnv env;
    env.processors = QThread::idealThreadCount();
    env.installFolders = usualInstallFolders();
    env.exists = [](const QString& path) {
        const bool isInHome = path.startsWith("~/"_L1); // not a local path on Windows
        return QFileInfo::exists(isInHome ? QDir::homePath() + path.sliced(1) : path);
    };
#ifndef Q_OS_WIN
    env.isWindows = false;
#endif
    return env;
}

bool HealthEnv::isLocalPath(const QString& path) const
{
    if (!isWindows) {
        return path.startsWith(u'/') || path.startsWith(u'~');
    }
    if (path.startsWith(R"(\\)"_L1) || path.startsWith("//"_L1)) {
        return true;
    }
    const auto isDriveLetter = [](QChar c) {
        return (c >= u'A' && c <= u'Z') || (c >= u'a' && c <= u'z');
    };
    return path.size() >= 3 && isDriveLetter(path[0]) && path[1] == u':' &&
           (path[2] == u'/' || path[2] == u'\\');
}

bool HealthEnv::isMissing(const QString& path) const
{
    return isLocalPath(path) && exists && !exists(path);
}

} // namespace kse
