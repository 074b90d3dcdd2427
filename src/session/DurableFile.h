// SPDX-License-Identifier: MIT
#pragma once

#include <QString>

#include <functional>

class QFile;
class QFileDevice;

namespace kse {

// What Qt leaves to the system on a file's way from and to the disk. On failure `error`, unless
// null, gets the system's reason in words.

/// Opens the regular file at `path`, links followed, for reading. Anything else fails at once, so
/// that a pipe without a writer or a device can't stop the program.
[[nodiscard]] bool openRegular(QFile& file, const QString& path, QString* error = nullptr);

/// Absolute path, free of links, of what exists at `path`; empty if that can't be told.
[[nodiscard]] QString realPath(const QString& path, QString* error = nullptr);

/// Gives the open `file` the owner and group of the file at `path`, so that a new file in its place
/// is still its owner's when root writes it. False if root can't keep the owner, or if there is
/// none to be told; whatever else isn't allowed is left. Does nothing on Windows, where a new file
/// takes after its folder.
[[nodiscard]] bool keepOwner(QFileDevice& file, const QString& path, QString* error = nullptr);

/// Has the system write `file`, which is open and flushed, to the disk itself. False if the
/// system says that it failed.
[[nodiscard]] bool flushToDisk(QFileDevice& file, QString* error = nullptr);

/// The same for the name of the new or renamed file at `path`, so that it survives a power cut.
/// What can't be opened for it, and a file system that knows no such flush, count as done.
[[nodiscard]] bool flushName(const QString& path, QString* error = nullptr);

/// Whether it is certain that nothing bears the name `path`, not even a link that leads nowhere.
[[nodiscard]] bool isMissing(const QString& path);

/// Whether `step` works. On Windows it is tried again for a second, since whoever looks into a new
/// file, as virus scanners do, may let nobody move it meanwhile.
[[nodiscard]] bool retrying(const std::function<bool()>& step);

/// Waits until the file at `path` can be replaced: on Windows, for the same reason and as long.
void awaitRelease(const QString& path);

} // namespace kse
