// SPDX-License-Identifier: MIT
#include "views/health/InstallFolder.h"

#include "document/XsdtNode.h"
#include "document/XsdtValueType.h"
#include "views/health/HealthChecker.h"

#include <QDir>
#include <QRegularExpression>

#include <utility>

using namespace Qt::StringLiterals;

namespace kse {

namespace {

bool isSlash(QChar c)
{
    return c == u'/' || c == u'\\';
}

/// The installation that the path in `leaf` leads into, or nothing.
QString installFolderIn(const XsdtNode& leaf, bool windows)
{
    constexpr qsizetype longestPath = 400;
    if (leaf.typeCode != XsdtValueType::String || leaf.value.size() > longestPath ||
        !isPathForThisSystem(leaf.value, windows)) {
        return {};
    }
    const QString path = leaf.path();
    if (!path.startsWith("Global/Preferences/"_L1) &&
        !path.startsWith("Global/ColorManagement/"_L1) &&
        !path.startsWith("Global/FavoriteProcesses/"_L1)) {
        return {};
    }
    static const QRegularExpression usualName(
        uR"(^(.*[/\\]PixInsight)[/\\](?:bin|rsc|color|library|etc|doc|include|lib|src)[/\\])"_s,
        QRegularExpression::CaseInsensitiveOption);
    // The application's own resources also tell of an installation under another name.
    static const QRegularExpression anyName(uR"(^(.+)[/\\]rsc[/\\])"_s);
    QRegularExpressionMatch match = usualName.match(leaf.value);
    if (!match.hasMatch() && path.startsWith("Global/Preferences/Application/"_L1)) {
        match = anyName.match(leaf.value);
    }
    return QDir::fromNativeSeparators(match.captured(1));
}

/// Distinct and sorted, so that the order of the file's settings doesn't matter.
QStringList installFoldersIn(const QList<XsdtNode*>& leaves, bool windows)
{
    QStringList folders;
    for (const XsdtNode* leaf : leaves) {
        const QString folder = installFolderIn(*leaf, windows);
        if (!folder.isEmpty()) {
            folders.append(folder);
        }
    }
    folders.removeDuplicates();
    folders.sort();
    return folders;
}

} // namespace

bool isPathForThisSystem(const QString& path, bool windows)
{
    if (!windows) {
        return path.startsWith(u'/') || path.startsWith(u'~');
    }
    if (path.startsWith(R"(\\)"_L1) || path.startsWith("//"_L1)) {
        return true;
    }
    const auto isDriveLetter = [](QChar c) {
        return (c >= u'A' && c <= u'Z') || (c >= u'a' && c <= u'z');
    };
    return path.size() >= 3 && isDriveLetter(path[0]) && path[1] == u':' && isSlash(path[2]);
}

ProgramFolder findProgramFolder(const QList<XsdtNode*>& leaves, const HealthEnv& env)
{
    ProgramFolder folder;
    const auto exists = [&](const QString& path) {
        return !env.exists || env.exists(path);
    };
    if (!env.binFolder.isEmpty()) {
        folder.tried.append(QDir::fromNativeSeparators(env.binFolder));
        if (exists(env.binFolder)) {
            folder.path = env.binFolder;
            return folder;
        }
    }
    QStringList candidates = installFoldersIn(leaves, env.isWindows);
    for (const QString& usual : env.installFolders) {
        candidates.append(QDir::fromNativeSeparators(usual));
    }
    for (const QString& candidate : std::as_const(candidates)) {
        if (candidate.isEmpty()) {
            continue;
        }
        folder.tried.append(candidate);
        const QString probe = candidate + "/bin"_L1;
        if (exists(probe)) {
            folder.path = probe;
            break;
        }
    }
    folder.tried.removeDuplicates();
    return folder;
}

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

} // namespace kse
