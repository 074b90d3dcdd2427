// SPDX-License-Identifier: MIT
#pragma once

#include <QList>
#include <QString>
#include <QStringList>

namespace kse {

enum class HostPlatform { Windows = 0, MacOs = 1, Linux = 2 };

/// Backups beyond the number to keep.
struct BackupPruneSet
{
    QStringList paths;
    qint64 totalBytes = 0;
};

/// The result of removing backups.
struct BackupRemoval
{
    int removed = 0;
    int failed = 0;
    bool usedTrash = false; ///< At least one went to the trash; false if none was removed.
    qint64 freedBytes = 0;
    QStringList failedPaths;
};

/// Finds the PixInsight processes, settings files and backups of this computer. Every call asks the
/// system again. Missing or unreadable things give an empty result, never a message.
namespace PixInsightEnv {

/// Processes named as PixInsight's, whichever installation they belong to; empty also if the
/// system can't tell.
[[nodiscard]] QList<quint64> runningProcessIds();

/// The folders where PixInsight keeps its settings on `platform`: with forward slashes, each once,
/// the first to search first. `home` is the user's folder, `appData` the variable of that name,
/// `genericConfig` the generic configuration folder. An empty `appData` or `genericConfig` adds no
/// folder.
[[nodiscard]] QStringList settingsFoldersFor(HostPlatform platform, const QString& home,
                                             const QString& appData, const QString& genericConfig);

/// The same for this computer and user.
[[nodiscard]] QStringList settingsFolders();

/// `settingsFolders` as the user reads them: native separators, joined by "; ".
[[nodiscard]] QString settingsFoldersText();

/// Absolute paths of the settings files in `settingsFolders`, in the order of the folders and then
/// by name. The first is the one that the program opens by itself.
[[nodiscard]] QStringList findSettingsFiles();

/// NNN of a file named `core-NNN-pxi.settings`; 0 for any other name and beyond 32 bits.
[[nodiscard]] int instanceNumber(const QString& path);

/// The label of a file in a list: name, folder if it isn't the usual one, instance, size and time,
/// or that it is missing.
[[nodiscard]] QString describeFile(const QString& path);

/// `path` with the file's name as its folder spells it, where upper and lower case name the same
/// file: its backups go by the name.
[[nodiscard]] QString spelledAsOnDisk(const QString& path);

/// Whether both name the same file; an empty path names none.
[[nodiscard]] bool isSameFile(const QString& path, const QString& other);

/// Absolute paths of the backups beside `settingsPath`, newest modification first: regular files
/// whose name is the file's own, taken literally, followed by ".bak-" and anything.
[[nodiscard]] QStringList backupsOf(const QString& settingsPath);

/// `backupsOf` without its first `keep` entries; a negative `keep` counts as 0.
[[nodiscard]] BackupPruneSet backupsOlderThanNewest(const QString& settingsPath, int keep);

/// Removes those of `paths` that are backups of `settingsPath`, by the trash first if `toTrash`.
/// Anything else counts as failed and is left untouched. The only code that removes a backup.
BackupRemoval removeBackups(const QString& settingsPath, const QStringList& paths, bool toTrash);

} // namespace PixInsightEnv
} // namespace kse
