// SPDX-License-Identifier: MIT
#pragma once

#include "document/XsdtDocument.h"

#include <QByteArray>
#include <QString>

namespace kse {

class DeletePolicy;

/// The edit session: the open file, its tree, and the hash of the content last read or written.
/// Pending changes live on the nodes; nothing here counts or tracks them.
///
/// `load`, `restoreBackup` and a `save` with deletions destroy nodes: callers drop all pointers to
/// nodes first. Messages are complete sentences for the user.
struct SettingsStore
{
    QString path;          ///< The open file as handed to `load`.
    XsdtDocument document; ///< Valid while `loaded`.
    QByteArray loadedHash; ///< SHA-256 of the bytes last read from or written to `path`.
    const DeletePolicy* policy = nullptr; ///< Not owned. Null: nothing may be deleted.
    bool loaded = false;

    /// Opens `path` and drops pending changes without asking. If it can't be read, nothing at all
    /// changes; if it doesn't parse, nothing is loaded any more.
    [[nodiscard]] bool load(const QString& path, QString* error = nullptr);

    /// Whether the open file's content differs from what was loaded or saved. A file that can't be
    /// read counts as changed; false while nothing is loaded. Reads and hashes the whole file.
    [[nodiscard]] bool isChangedOnDisk() const;

    /// Whether PixInsight isn't running. If it is, `error` gets the sentence that a save fails
    /// with.
    [[nodiscard]] static bool isPixInsightClosed(QString* error = nullptr);

    /// Writes the pending changes: guards, backup, atomic replacement, read-back; only then the
    /// changes become the saved state. True also if there was nothing to do.
    /// On success `backupPath` gets the backup made, and `remark` a caution if there is one: the
    /// disk may lose what was written. On failure the pending changes stay as they are, and
    /// `remark` gets what else the user must know: why there is no backup, or which one was made
    /// and whether the file had been replaced by then. Neither is touched otherwise; each may be
    /// null.
    [[nodiscard]] bool save(QString* error = nullptr, QString* backupPath = nullptr,
                            QString* remark = nullptr);

    /// Replaces the file with the bytes of `backupPath`, after copying it as it is now, and loads
    /// it: pending changes are gone. If nothing is there, nothing is copied. `remark` as by `save`.
    [[nodiscard]] bool restoreBackup(const QString& backupPath, QString* error = nullptr,
                                     QString* remark = nullptr);

    /// Path for a backup of the open file under which there is nothing yet: ".bak-", the local time
    /// and, unless empty, "-" and `suffix`; numbered from 2 where that is taken.
    [[nodiscard]] QString backupName(const QString& suffix = {}) const;

    /// The whole of the regular file at `path`, links followed, into `bytes`. False with "Cannot
    /// read %1: %2" for anything else and for a read error; `bytes` is left as it was then.
    [[nodiscard]] static bool readFile(const QString& path, QByteArray& bytes,
                                       QString* error = nullptr);
};

/// Parses `bytes`, the content of the file at `path`, into `document`. False with "%1 is not a
/// valid PixInsight settings file: %2"; what `document` held before is gone either way.
[[nodiscard]] bool parseSettings(XsdtDocument& document, const QByteArray& bytes,
                                 const QString& path, QString* error = nullptr);

/// The newest backup of `settingsPath` that can be read and parsed; empty if there is none.
[[nodiscard]] QString newestReadableBackup(const QString& settingsPath);

/// Whether `parsed` holds what `edited` without its marked nodes does: keys, kinds, types, values
/// and order. On a difference `differsAt`, unless null, gets its path in `edited`.
[[nodiscard]] bool sameTree(const XsdtNode& edited, const XsdtNode& parsed,
                            QString* differsAt = nullptr);

} // namespace kse
