// SPDX-License-Identifier: MIT
#pragma once

#include <QString>

class QFileDevice;

namespace kse {

/// Has the system write `file`, which is open and flushed, to the disk itself. False if the
/// system says that it failed; `error`, unless null, then gets the system's reason.
[[nodiscard]] bool flushToDisk(QFileDevice& file, QString* error = nullptr);

/// The same for the entries of the folder at `path`, so that a new or renamed file survives a
/// power cut. A file system that knows no such flush counts as done.
[[nodiscard]] bool flushFolder(const QString& path, QString* error = nullptr);

} // namespace kse
