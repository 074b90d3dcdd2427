// SPDX-License-Identifier: MIT
#include "session/VerifiedFile.h"

#include "document/Fail.h"
#include "session/DurableFile.h"

#include <QCryptographicHash>
#include <QDateTime>
#include <QFile>
#include <QFileInfo>
#include <QSaveFile>
#include <QTemporaryFile>

using namespace Qt::StringLiterals;

namespace kse {

namespace {

/// Why the last call on `file` failed. Call it at once: if Qt has no message, as after a write that
/// was cut short, the system's error code is the only source.
QString reasonOf(const QFileDevice& file)
{
    const QString system = qt_error_string();
    const QString words = file.errorString();
    const QString noWords = QFile().errorString();
    return words == noWords ? system : words;
}

/// The permission bits. Qt adds what the current user may do, which for root is everything.
QFileDevice::Permissions modeOf(QFileDevice::Permissions permissions)
{
    using P = QFileDevice;
    return permissions & (P::ReadOwner | P::WriteOwner | P::ExeOwner | P::ReadGroup |
                          P::WriteGroup | P::ExeGroup | P::ReadOther | P::WriteOther | P::ExeOther);
}

bool writeAll(QFileDevice& file, const QByteArray& bytes, QString* reason)
{
    return (file.write(bytes) == bytes.size() && file.flush()) || fail(reason, reasonOf(file));
}

bool rewind(QFileDevice& file, QString* reason)
{
    return file.seek(0) || fail(reason, reasonOf(file));
}

/// Appends what is left of the open `file` to `bytes`.
bool readRest(QFileDevice& file, QByteArray& bytes, QString* reason)
{
    // A read that fails half-way may end `readAll` just as the end of the file does, without an
    // error; only reading on tells them apart. The next one forgets the error of the one before.
    QByteArray more;
    do {
        more = file.readAll();
        if (file.error() != QFileDevice::NoError) {
            return fail(reason, reasonOf(file));
        }
        bytes += more;
    } while (!more.isEmpty());
    return true;
}

/// Gives the temporary file all that it needs before it may be put in its place: the owner of the
/// file `takesAfter`, `mode` and `bytes`. `commit` itself overlooks a disk that fills up while it
/// empties its buffer.
bool fill(QSaveFile& file, const QString& takesAfter, const QByteArray& bytes,
          QFileDevice::Permissions mode, QString* reason)
{
    if (!keepOwner(file, takesAfter, reason)) { // first, since it may take bits of the mode away
        return false;
    }
    const bool set = file.setPermissions(mode);
    if (!mode || modeOf(file.permissions()) != mode) {
        return fail(reason, set ? u"Its permissions cannot be kept"_s : reasonOf(file));
    }
    return writeAll(file, bytes, reason) && flushToDisk(file, reason);
}

} // namespace

QByteArray sha256(const QByteArray& bytes)
{
    return QCryptographicHash::hash(bytes, QCryptographicHash::Sha256);
}

bool readWhole(const QString& path, QByteArray& bytes, QString* error)
{
    QFile file;
    QByteArray content;
    QString reason;
    if (!openRegular(file, path, &reason) || !readRest(file, content, &reason)) {
        return fail(error, u"Cannot read %1: %2"_s.arg(path, reason));
    }
    bytes = std::move(content);
    return true;
}

bool hasHash(const QString& path, const QByteArray& hash)
{
    QByteArray bytes;
    return readWhole(path, bytes) && sha256(bytes) == hash;
}

bool copyVerified(const QString& from, QByteArray& hash, const QDateTime& newerThan,
                  QTemporaryFile& copy, QString* error)
{
    // Not by QFile::copy: on some systems the copy then has the time of the original's last change,
    // and backups go by their time.
    QByteArray bytes;
    if (!readWhole(from, bytes, error)) {
        return false;
    }
    const QByteArray found = sha256(bytes);
    if (!hash.isEmpty() && found != hash) {
        return fail(error, u"It changed while it was copied"_s);
    }
    hash = found;
    copy.setFileTemplate(from + u".XXXXXX"_s); // a name that counts as no backup
    if (!copy.open()) {
        return fail(error, reasonOf(copy));
    }
    // A copy that nobody can read but root is better than none. Its owner can read it even if the
    // mode of `from` can't be told, and remove it where that takes the right to write.
    (void)keepOwner(copy, from);
    (void)copy.setPermissions(modeOf(QFile::permissions(from)) | QFileDevice::ReadOwner |
                              QFileDevice::WriteOwner);
    if (!writeAll(copy, bytes, error)) {
        return false;
    }
    if (newerThan >= QDateTime::currentDateTime()) {
        // By more than the two seconds that some file systems can't tell apart.
        (void)copy.setFileTime(newerThan.addSecs(3), QFileDevice::FileModificationTime);
    }
    QByteArray readBack;
    if (!flushToDisk(copy, error) || !rewind(copy, error) || !readRest(copy, readBack, error)) {
        return false;
    }
    if (readBack != bytes) {
        return fail(error, u"The copy differs"_s);
    }
    return flushName(from, error); // else each attempt to save would leave a backup behind
}

bool nameCopy(QTemporaryFile& copy, const QString& to, QString* error)
{
    if (!renameTemporary(copy, to)) {
        return fail(error, reasonOf(copy));
    }
    copy.setAutoRemove(false);
    return flushName(to, error);
}

bool prepareReplacement(QSaveFile& file, const QString& path, const QByteArray& bytes,
                        const QString& model, QString* error)
{
    const QFileInfo info(path);
    const bool isNew = isMissing(path);
    QString reason;
    // Left to follow a link itself, QSaveFile replaces the link where it can't.
    const QString found = realPath(isNew ? info.absolutePath() : path, &reason);
    if (found.isEmpty()) {
        return fail(error, u"Cannot open %1 for writing: %2"_s.arg(path, reason));
    }
    const QString target = isNew ? found + u'/' + info.fileName() : found;
    const QString takesAfter = isNew ? model : target;
    const QFileDevice::Permissions mode = modeOf(QFile::permissions(takesAfter));
    file.setFileName(target);
    if (!isNew && !canBeReplaced(target, &reason)) {
        return fail(error, u"Cannot open %1 for writing: %2"_s.arg(path, reason));
    }
    if (!file.open(QIODevice::WriteOnly)) {
        return fail(error, u"Cannot open %1 for writing: %2"_s.arg(path, reasonOf(file)));
    }
    return fill(file, takesAfter, bytes, mode, &reason) ||
           fail(error, u"Error writing %1: %2"_s.arg(path, reason));
}

bool commitVerified(QSaveFile& file, const QString& path, const QByteArray& bytes,
                    const QString& model, QString& doubt, QString* error)
{
    const bool isCommitted = retrying([&] { // a commit that fails removes what was prepared
        return (file.isOpen() || prepareReplacement(file, path, bytes, model)) && file.commit();
    });
    if (!isCommitted) {
        return fail(error, u"Error writing %1: %2"_s.arg(path, reasonOf(file)));
    }
    // Without it a power cut could bring the old file back.
    (void)flushName(file.fileName(), &doubt);
    QByteArray readBack;
    if (!readWhole(path, readBack, error)) {
        return false;
    }
    return readBack == bytes || fail(error, u"Read-back verification of %1 failed."_s.arg(path));
}

} // namespace kse
