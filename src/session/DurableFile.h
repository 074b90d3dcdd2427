// SPDX-License-Identifier: MIT
#pragma once

#include <QString>

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

/// Has the system write `file`, which is open and flushed, to the disk itself. False if the
/// system says that it failed.
[[nodiscard]] bool flushToDisk(QFileDevice& file, QString* error = nullptr);

/// The same for the closed file at `path`.
[[nodiscard]] bool flushFile(const QString& path, QString* error = nullptr);

/// The same for the entries of the folder at `path`, so that a new or renamed file survives a
/// power cut. A file system that knows no such flush counts as done.
[[nodiscard]] bool flushFolder(const QString& path, QString* error = nullptr);

} // namespace kse
