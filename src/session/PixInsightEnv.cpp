// SPDX-License-Identifier: MIT
#include "session/PixInsightEnv.h"

#include "session/ProcessList.h"

#include <QDateTime>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QRegularExpression>
#include <QStandardPaths>
#include <QStorageInfo>

#include <algorithm>
#include <functional>

using namespace Qt::StringLiterals;

namespace kse::PixInsightEnv {

namespace {

#if defined(Q_OS_WIN)
constexpr HostPlatform thisPlatform = HostPlatform::Windows;
#elif defined(Q_OS_MACOS)
constexpr HostPlatform thisPlatform = HostPlatform::MacOs;
#else
constexpr HostPlatform thisPlatform = HostPlatform::Linux;
#endif

bool namesPixInsight(const QString& executable)
{
    if (executable.compare("PixInsight.exe"_L1, Qt::CaseInsensitive) == 0) {
        return true; // also elsewhere: a Windows build under a compatibility layer
    }
    return thisPlatform != HostPlatform::Windows &&
           executable.compare("PixInsight"_L1, Qt::CaseInsensitive) == 0;
}

/// Whether `name` is like core-*-pxi.settings. Qt would compile a regular expression for that at
/// each poll.
bool isSettingsName(const QString& name)
{
    constexpr QLatin1String start("core-");
    constexpr QLatin1String end("-pxi.settings");
    return name.size() >= start.size() + end.size() &&
           name.startsWith(start, Qt::CaseInsensitive) && name.endsWith(end, Qt::CaseInsensitive);
}

/// What the names of all backups of `settings` start with.
QString backupPrefix(const QFileInfo& settings)
{
    return settings.fileName() + ".bak-"_L1;
}

/// Whether there is a trash for files in `folder`, or one can be made. Without one, Qt 6.4 moves
/// the file into a folder "files" in the current folder, and says that it went to the trash.
bool hasTrash(const QString& folder)
{
    if (thisPlatform != HostPlatform::Linux) {
        return true;
    }
    const QString data = QStandardPaths::writableLocation(QStandardPaths::GenericDataLocation);
    const QFileInfo trash(data + "/Trash"_L1);
    if (QDir().mkpath(data) &&
        (trash.isDir() || (!trash.exists() && QFileInfo(data).isWritable()))) {
        return true;
    }
    // Another device has a trash of its own, in its topmost folder.
    const QStorageInfo device(folder);
    return device != QStorageInfo(QDir::homePath()) && QFileInfo(device.rootPath()).isWritable();
}

} // namespace

QList<quint64> runningProcessIds()
{
    QList<quint64> ids;
    for (const ProcessEntry& process : listProcesses()) {
        if (namesPixInsight(QString::fromStdString(process.executableName)) &&
            !ids.contains(process.id)) {
            ids.append(process.id);
        }
    }
    return ids;
}

QStringList settingsFoldersFor(HostPlatform platform, const QString& home, const QString& appData,
                               const QString& genericConfig)
{
    QStringList folders;
    switch (platform) {
    case HostPlatform::Windows:
        if (!appData.isEmpty()) {
            folders = {appData + "/Pleiades"_L1};
            folders.first().replace(u'\\', u'/'); // which `QDir` does on a Windows host only
        }
        break;
    case HostPlatform::MacOs:
        folders = {home + "/Library/PixInsight"_L1, home + "/Library/PixInsight-x64"_L1,
                   home + "/Library/Application Support/Pleiades"_L1,
                   u"/Library/Application Support/Pleiades"_s, home + "/.config/Pleiades"_L1};
        break;
    case HostPlatform::Linux:
        folders = {home + "/.PixInsight"_L1};
        if (!genericConfig.isEmpty()) {
            folders.append(genericConfig + "/Pleiades"_L1);
        }
        folders.append(home + "/.config/Pleiades"_L1);
        break;
    }
    for (QString& folder : folders) {
        folder = QDir::fromNativeSeparators(folder);
    }
    folders.removeDuplicates();
    return folders;
}

QStringList settingsFolders()
{
    return settingsFoldersFor(
        thisPlatform, QDir::homePath(), qEnvironmentVariable("APPDATA"),
        QStandardPaths::writableLocation(QStandardPaths::GenericConfigLocation));
}

QString settingsFoldersText()
{
    QStringList folders = settingsFolders();
    for (QString& folder : folders) {
        folder = QDir::toNativeSeparators(folder);
    }
    return folders.join(u"; "_s);
}

QStringList findSettingsFiles()
{
    QStringList paths;
    const QStringList folders = settingsFolders();
    for (const QString& folder : folders) {
        const QDir dir(folder);
        QStringList names = dir.entryList(QDir::Files, QDir::NoSort);
        names.removeIf(std::not_fn(isSettingsName));
        names.sort();
        for (const QString& name : std::as_const(names)) {
            paths.append(dir.absoluteFilePath(name));
        }
    }
    paths.removeDuplicates();
    return paths;
}

int instanceNumber(const QString& path)
{
    static const QRegularExpression expression(u"^core-(\\d+)-pxi\\.settings$"_s);
    const QRegularExpressionMatch match = expression.match(QFileInfo(path).fileName());
    return match.captured(1).toInt(); // 0 if there is no match, or the number is too large
}

QString describeFile(const QString& path)
{
    const QFileInfo file(path);
    const QString name = file.fileName();
    QStringList facts;
    if (const int instance = instanceNumber(path); instance != 0) {
        facts.append(u"instance %1"_s.arg(instance));
    } else if (name.contains(".bak-"_L1)) {
        facts.append(u"backup"_s);
    }
    if (file.exists()) {
        facts.append(u"%1 KiB"_s.arg(file.size() / 1024));
        facts.append(file.lastModified().toString(u"yyyy-MM-dd HH:mm"_s));
    } else {
        facts.append(u"missing"_s);
    }

    const QString folder = file.absoluteDir().dirName();
    const bool usual = folder.isEmpty() || folder == "Pleiades"_L1;
    return u"%1 - %2"_s.arg(usual ? name : u"%1 [%2]"_s.arg(name, folder), facts.join(", "_L1));
}

QString spelledAsOnDisk(const QString& path)
{
    const QFileInfo file(path);
    const QString name = file.fileName();
    const QDir folder = file.dir();
    const QStringList found = folder.entryList(QDir::Files | QDir::Hidden, QDir::NoSort);
    if (!file.exists() || found.contains(name)) {
        return path;
    }
    const auto other = std::find_if(found.begin(), found.end(), [&name](const QString& candidate) {
        return candidate.compare(name, Qt::CaseInsensitive) == 0;
    });
    return other == found.end() ? path : folder.filePath(*other);
}

bool isSameFile(const QString& path, const QString& other)
{
    const QFileInfo file(path);
    const QFileInfo otherFile(other);
    return !path.isEmpty() && !other.isEmpty() &&
           (file.absoluteFilePath() == otherFile.absoluteFilePath() ||
            (file.exists() && file == otherFile)); // to Qt two that are missing are the same
}

QStringList backupsOf(const QString& settingsPath)
{
    const QFileInfo settings(settingsPath);
    const QString prefix = backupPrefix(settings);
    // No name filter: it would take a `[` or `*` in the file's own name for a pattern.
    QFileInfoList files =
        QDir(settings.absolutePath()).entryInfoList(QDir::Files | QDir::Hidden, QDir::NoSort);
    files.removeIf([&prefix](const QFileInfo& file) {
        return !file.fileName().startsWith(prefix, Qt::CaseSensitive);
    });
    std::sort(files.begin(), files.end(), [](const QFileInfo& a, const QFileInfo& b) {
        const QDateTime timeOfA = a.lastModified();
        const QDateTime timeOfB = b.lastModified();
        // The names hold a time too, which decides between files written in one moment.
        return timeOfA != timeOfB ? timeOfA > timeOfB : a.fileName() > b.fileName();
    });
    QStringList paths;
    for (const QFileInfo& file : std::as_const(files)) {
        paths.append(file.absoluteFilePath());
    }
    return paths;
}

BackupPruneSet backupsOlderThanNewest(const QString& settingsPath, int keep)
{
    BackupPruneSet older;
    older.paths = backupsOf(settingsPath).mid(std::max(keep, 0));
    for (const QString& path : std::as_const(older.paths)) {
        older.totalBytes += QFileInfo(path).size();
    }
    return older;
}

BackupRemoval removeBackups(const QString& settingsPath, const QStringList& paths, bool toTrash)
{
    const QFileInfo settings(settingsPath);
    const QString prefix = backupPrefix(settings);
    const bool tryTrash = toTrash && hasTrash(settings.absolutePath());
    BackupRemoval result;
    for (const QString& path : paths) {
        const QFileInfo file(path);
        const bool isBackup = file.fileName().startsWith(prefix, Qt::CaseSensitive) &&
                              file.absolutePath() == settings.absolutePath() && file.isFile();
        const qint64 size = file.size();
        const bool trashed =
            isBackup && tryTrash && QFile::moveToTrash(path) && !QFileInfo::exists(path);
        if (trashed || (isBackup && QFile::remove(path))) {
            ++result.removed;
            result.freedBytes += size;
            result.usedTrash = result.usedTrash || trashed;
        } else {
            ++result.failed;
            result.failedPaths.append(path);
        }
    }
    return result;
}

} // namespace kse::PixInsightEnv
