// SPDX-License-Identifier: MIT
#include "session/DurableFile.h"

#include "document/Fail.h"

#include <QFile>
#include <QFileInfo>
#include <QTemporaryFile>

#include <cerrno>
#include <cstdlib>
#include <memory>

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

using namespace Qt::StringLiterals;

namespace kse {

namespace {

bool failWithCode(QString* error, int code)
{
    return fail(error, qt_error_string(code));
}

int openRetrying(const QString& path, int flags)
{
    const QByteArray name = QFile::encodeName(path);
    int descriptor = -1;
    do {
        descriptor = ::open(name.constData(), flags | O_CLOEXEC);
    } while (descriptor < 0 && errno == EINTR);
    return descriptor;
}

/// 0, or the system's error code.
int flushDescriptor(int descriptor)
{
#ifdef F_FULLFSYNC
    // Elsewhere fsync reaches the disk; here it stops at the drive's cache.
    if (::fcntl(descriptor, F_FULLFSYNC) == 0) {
        return 0;
    }
#endif
    int result = -1;
    do {
        result = ::fsync(descriptor);
    } while (result < 0 && errno == EINTR);
    return result < 0 ? errno : 0;
}

/// Whether `status` is that of a regular file.
bool isRegular(const struct stat& status, QString* error)
{
    if (S_ISDIR(status.st_mode)) {
        return failWithCode(error, EISDIR);
    }
    if (!S_ISREG(status.st_mode)) {
        return fail(error, u"Not a regular file"_s);
    }
    return true;
}

/// Whether `descriptor`, opened without blocking, is a regular file; it blocks from then on.
bool settle(int descriptor, QString* error)
{
    struct stat status = {};
    if (::fstat(descriptor, &status) != 0) {
        return failWithCode(error, errno);
    }
    return isRegular(status, error) &&
           (::fcntl(descriptor, F_SETFL, 0) == 0 || failWithCode(error, errno));
}

} // namespace

bool openRegular(QFile& file, const QString& path, QString* error)
{
    struct stat status = {};
    if (::stat(QFile::encodeName(path).constData(), &status) != 0) {
        return failWithCode(error, errno);
    }
    // Asked before as well, since to open some devices is to use them.
    if (!isRegular(status, error)) {
        return false;
    }
    // Non-blocking, in case a pipe has taken the file's place since.
    const int descriptor = openRetrying(path, O_RDONLY | O_NONBLOCK);
    if (descriptor < 0) {
        return failWithCode(error, errno);
    }
    if (!settle(descriptor, error)) {
        ::close(descriptor);
        return false;
    }
    if (!file.open(descriptor, QIODevice::ReadOnly, QFileDevice::AutoCloseHandle)) {
        ::close(descriptor);
        return fail(error, file.errorString());
    }
    return true;
}

QString realPath(const QString& path, QString* error)
{
    const std::unique_ptr<char, decltype(&std::free)> resolved(
        ::realpath(QFile::encodeName(path).constData(), nullptr), &std::free);
    if (!resolved) {
        (void)failWithCode(error, errno);
        return {};
    }
    return QFile::decodeName(resolved.get());
}

bool keepOwner(QFileDevice& file, const QString& path, QString* error)
{
    struct stat wanted = {};
    struct stat status = {};
    if (::stat(QFile::encodeName(path).constData(), &wanted) != 0 ||
        ::fstat(file.handle(), &status) != 0) {
        return failWithCode(error, errno);
    }
    const auto change = [&file](uid_t owner, gid_t group) {
        return ::fchown(file.handle(), owner, group) == 0;
    };
    constexpr auto sameOwner = static_cast<uid_t>(-1);
    constexpr auto sameGroup = static_cast<gid_t>(-1);
    if (status.st_gid != wanted.st_gid) {
        (void)change(sameOwner, wanted.st_gid);
    }
    return status.st_uid == wanted.st_uid || change(wanted.st_uid, sameGroup) || ::geteuid() != 0 ||
           failWithCode(error, errno);
}

bool flushToDisk(QFileDevice& file, QString* error)
{
    const int code = flushDescriptor(file.handle());
    return code == 0 || failWithCode(error, code);
}

bool flushName(const QString& path, QString* error)
{
    const int descriptor = openRetrying(QFileInfo(path).absolutePath(), O_RDONLY | O_DIRECTORY);
    if (descriptor < 0) {
        // A folder in which files may be made, but not listed.
        return errno == EACCES || failWithCode(error, errno);
    }
    const int code = flushDescriptor(descriptor);
    ::close(descriptor);
    return code == 0 || code == EINVAL || code == ENOTSUP || failWithCode(error, code);
}

bool isMissing(const QString& path)
{
    struct stat status = {};
    return ::lstat(QFile::encodeName(path).constData(), &status) != 0 && errno == ENOENT;
}

bool retrying(const std::function<bool()>& step)
{
    return step();
}

bool canBeReplaced(const QString& path, QString* error)
{
    struct stat file = {};
    struct stat folder = {};
    if (::lstat(QFile::encodeName(path).constData(), &file) != 0 ||
        ::stat(QFile::encodeName(QFileInfo(path).absolutePath()).constData(), &folder) != 0) {
        return true; // opening it will fail with the reason
    }
    // In a folder such as /tmp only the owner of a file, or of the folder, may rename over it.
    const uid_t user = ::geteuid();
    const bool isOthers = user != 0 && file.st_uid != user && folder.st_uid != user;
    return !(isOthers && folder.st_mode & S_ISVTX) || failWithCode(error, EPERM);
}

bool renameTemporary(QTemporaryFile& file, const QString& to)
{
    return file.rename(to);
}

} // namespace kse
