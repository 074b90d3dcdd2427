// SPDX-License-Identifier: MIT
#pragma once

#include <QByteArray>
#include <QString>

namespace kse {

[[nodiscard]] QByteArray sha256(const QByteArray& bytes);

/// The whole of the regular file at `path`, links followed, into `bytes`. False with "Cannot
/// read %1: %2" for anything else and for a read error; `bytes` is left as it was then.
[[nodiscard]] bool readWhole(const QString& path, QByteArray& bytes, QString* error = nullptr);

/// Replaces the existing file at `path` with `bytes` in one step, so that no one ever sees half of
/// it, and reads it back. Links stay links: what they lead to is replaced, and keeps its mode
/// and owner. `replaced` tells whether the step was taken; on failure without it the file is as it
/// was.
[[nodiscard]] bool writeVerified(const QString& path, const QByteArray& bytes, bool& replaced,
                                 QString* error = nullptr);

/// Copies the file `from`, if it has the SHA-256 `hash`, to the new name `to` beside it, through to
/// the disk. The copy has the time at which it was made and, where the system allows it, the owner
/// and mode of `from`. False unless it reads back the same; what stands under the new name then is
/// left there.
[[nodiscard]] bool copyVerified(const QString& from, const QString& to, const QByteArray& hash);

} // namespace kse
