// SPDX-License-Identifier: MIT
#pragma once

#include <QString>

#include <functional>

class QFile;
class QFileDevice;
class QTemporaryFile;

namespace kse {

// System calls for reading and writing files safely that Qt doesn't offer. On failure `error`,
// unless null, gets the system's reason in words.

/// Opens the regular file at `path`, links followed, for reading. Anything else fails at once, so
/// that a pipe without a writer or a device can't stop the program.
[[nodiscard]] bool openRegular(QFile& file, const QString& path, QString* error = nullptr);

/// Absolute path, free of links, of what exists at `path`; empty if that is unknown.
[[nodiscard]] QString realPath(const QString& path, QString* error = nullptr);

/// Gives the open `file` the owner and group of the file at `path`, so that a new file in its place
/// is still its owner's when root writes it. False if root can't keep the owner, or if the owner
/// can't be read; a change that the system doesn't allow is skipped. Does nothing on Windows, where
/// a new file inherits from its folder.
[[nodiscard]] bool keepOwner(QFileDevice& file, const QString& path, QString* error = nullptr);

/// Has the system write `file`, which is open and flushed, to the disk. False if that failed.
[[nodiscard]] bool flushToDisk(QFileDevice& file, QString* error = nullptr);

/// The same for the name of the new or renamed file at `path`, so that it survives a power cut.
/// A folder that can't be opened and a file system without such a flush count as done.
[[nodiscard]] bool flushName(const QString& path, QString* error = nullptr);

/// Whether it is certain that nothing has the name `path`, not even a link that leads nowhere.
[[nodiscard]] bool isMissing(const QString& path);

/// Runs `step` until it returns true, and returns whether it did. Windows gets a second for it,
/// since a virus scanner may hold a new file open; other systems try once.
[[nodiscard]] bool retrying(const std::function<bool()>& step);

/// Whether the file at `path`, which is no link, may be replaced. On Windows it waits up to a
/// second for other programs to close it.
[[nodiscard]] bool canBeReplaced(const QString& path, QString* error = nullptr);

/// Renames `file` to `to`, and never copies it. A file of that name is left alone, except on a file
/// system without hard links. On failure the system still knows the reason.
[[nodiscard]] bool renameTemporary(QTemporaryFile& file, const QString& to);

} // namespace kse
