// SPDX-License-Identifier: MIT
#include "session/VerifiedFile.h"

#include "document/Fail.h"
#include "session/DurableFile.h"

#include <QCryptographicHash>
#include <QFile>
#include <QFileInfo>
#include <QSaveFile>
#include <QTemporaryFile>

namespace kse {

using namespace Qt::StringLiterals;

namespace {

/// Why the last call on `file` failed. To be asked at once: where Qt has no words for it, as after
/// a write that was cut short, only the system's error code tells.
QString reasonOf(const QFileDevice& file)
{
    const QString system = qt_error_string();
    const QString words = file.errorString();
    const QString noWords = QFile().errorString();
    return words == noWords ? system : words;
}

/// What `chmod` knows. Qt adds what the current user may do, which for root is everything.
QFileDevice::Permissions modeOf(QFileDevice::Permissions permissions)
{
    using P = QFileDevice;
    return permissions & (P::ReadOwner | P::WriteOwner | P::ExeOwner | P::ReadGroup |
                          P::WriteGroup | P::ExeGroup | P::ReadOther | P::WriteOther | P::ExeOther);
}

/// Writes `bytes` to the open `file`, through to the disk.
bool writeThrough(QFileDevice& file, const QByteArray& bytes, QString* reason = nullptr)
{
    if (file.write(bytes) != bytes.size() || !file.flush()) {
        return fail(reason, reasonOf(file));
    }
    return flushToDisk(file, reason);
}

/// Gives the temporary file all that it needs before it may take the place of the one at `target`:
/// `commit` itself overlooks a disk that fills up while it empties its buffer.
bool prepare(QSaveFile& file, const QString& target, const QByteArray& bytes,
             QFileDevice::Permissions mode, QString* reason)
{
    if (!keepOwner(file, target, reason)) { // first, since it may take bits of the mode away
        return false;
    }
    const bool set = file.setPermissions(mode);
    if (!mode || modeOf(file.permissions()) != mode) {
        return fail(reason, set ? u"Its permissions cannot be kept"_s : reasonOf(file));
    }
    return writeThrough(file, bytes, reason);
}

} // namespace

QByteArray sha256(const QByteArray& bytes)
{
    return QCryptographicHash::hash(bytes, QCryptographicHash::Sha256);
}

bool readWhole(const QString& path, QByteArray& bytes, QString* error)
{
    QFile file;
    QString reason;
    if (!openRegular(file, path, &reason)) {
        return fail(error, u"Cannot read %1: %2"_s.arg(path, reason));
    }
    // A read that fails half-way may end `readAll` just as the end of the file does, without a
    // word; only reading on tells them apart. The next one forgets the error of the one before.
    QByteArray content;
    QByteArray more;
    do {
        more = file.readAll();
        if (file.error() != QFileDevice::NoError) {
            return fail(error, u"Cannot read %1: %2"_s.arg(path, reasonOf(file)));
        }
        content += more;
    } while (!more.isEmpty());
    bytes = std::move(content);
    return true;
}

bool writeVerified(const QString& path, const QByteArray& bytes, bool& replaced, QString* error)
{
    replaced = false;
    QString reason;
    // Left to follow a link itself, QSaveFile replaces the link where it can't.
    const QString target = realPath(path, &reason);
    if (target.isEmpty()) {
        return fail(error, u"Cannot open %1 for writing: %2"_s.arg(path, reason));
    }
    const QFileDevice::Permissions mode = modeOf(QFile::permissions(target));
    QSaveFile file(target);
    if (!file.open(QIODevice::WriteOnly)) {
        return fail(error, u"Cannot open %1 for writing: %2"_s.arg(path, reasonOf(file)));
    }
    if (!prepare(file, target, bytes, mode, &reason)) {
        file.cancelWriting();
        return fail(error, u"Error writing %1: %2"_s.arg(path, reason));
    }
    if (!file.commit()) {
        return fail(error, u"Error writing %1: %2"_s.arg(path, reasonOf(file)));
    }
    replaced = true;
    // Without it a power cut could bring the old file back.
    if (!flushFolder(QFileInfo(target).absolutePath(), &reason)) {
        return fail(error, u"Error writing %1: %2"_s.arg(path, reason));
    }
    QByteArray readBack;
    if (!readWhole(path, readBack, error)) {
        return false;
    }
    if (readBack != bytes) {
        return fail(error, u"Read-back verification of %1 failed."_s.arg(path));
    }
    return true;
}

bool copyVerified(const QString& from, const QString& to, const QByteArray& hash)
{
    // Not by QFile::copy: on some systems the copy then has the time of the original's last change,
    // and backups go by their time.
    QByteArray bytes;
    QTemporaryFile copy(from + u".XXXXXX"_s); // a name that counts as no backup
    if (!readWhole(from, bytes) || sha256(bytes) != hash || !copy.open()) {
        return false;
    }
    // A copy that nobody can read but root is better than none. Its owner can read it even if the
    // mode of `from` can't be told, and remove it where that takes the right to write.
    (void)keepOwner(copy, from);
    (void)copy.setPermissions(modeOf(QFile::permissions(from)) | QFileDevice::ReadOwner |
                              QFileDevice::WriteOwner);
    if (!writeThrough(copy, bytes) || !copy.rename(to)) {
        return false;
    }
    copy.setAutoRemove(false);
    QByteArray readBack;
    return flushFolder(QFileInfo(to).absolutePath()) && readWhole(to, readBack) &&
           readBack == bytes;
}

} // namespace kse
