// SPDX-License-Identifier: MIT
#pragma once

#include <QByteArray>
#include <QString>

class QDateTime;
class QSaveFile;
class QTemporaryFile;

namespace kse {

[[nodiscard]] QByteArray sha256(const QByteArray& bytes);

/// The whole of the regular file at `path`, links followed, into `bytes`. False with "Cannot
/// read %1: %2" for anything else and for a read error; `bytes` is left as it was then.
[[nodiscard]] bool readWhole(const QString& path, QByteArray& bytes, QString* error = nullptr);

/// Whether the file at `path` can be read and its content has the SHA-256 `hash`.
[[nodiscard]] bool hasHash(const QString& path, const QByteArray& hash);

/// Copies the file `from`, if it has the SHA-256 `hash`, to `copy`, a temporary file that is made
/// beside it: through to the disk, and read back. Fails too if the folder can't be flushed. An
/// empty `hash` allows any content, and gets its SHA-256. The copy has the owner and mode of `from`
/// where the system allows it, and a time later than `newerThan`, even if the clock was set back.
[[nodiscard]] bool copyVerified(const QString& from, QByteArray& hash, const QDateTime& newerThan,
                                QTemporaryFile& copy, QString* error = nullptr);

/// Renames the copy that `copyVerified` made to `to`, through to the disk. A file of that name is
/// left alone, except on a file system without hard links: check just before.
[[nodiscard]] bool nameCopy(QTemporaryFile& copy, const QString& to, QString* error = nullptr);

/// Writes `bytes`, through to the disk, to `file`, which `commitVerified` can put in the place of
/// the one at `path`. Links stay links: what they lead to is replaced, and keeps its mode and
/// owner. If there is no file yet, the new one takes those of the file `model`.
[[nodiscard]] bool prepareReplacement(QSaveFile& file, const QString& path, const QByteArray& bytes,
                                      const QString& model, QString* error = nullptr);

/// Replaces the file at `path` with what was prepared, in one step, so that no one ever sees half
/// of it, and reads it back. True with a `doubt`, the system's reason, if it stands but may not
/// survive a power cut.
[[nodiscard]] bool commitVerified(QSaveFile& file, const QString& path, const QByteArray& bytes,
                                  const QString& model, QString& doubt, QString* error = nullptr);

} // namespace kse
