// SPDX-License-Identifier: MIT
#include "session/DurableFile.h"

#include "document/Fail.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QTemporaryFile>

#include <cstdint>

#include <fcntl.h>
#include <io.h>
#include <windows.h>

using namespace Qt::StringLiterals;

namespace kse {

namespace {

constexpr DWORD pause = 50; // milliseconds
constexpr int attempts = 20;

/// With the reason of the system call that has just failed.
bool failLast(QString* error)
{
    const DWORD code = GetLastError();
    return fail(error, qt_error_string(static_cast<int>(code)));
}

HANDLE handleOf(const QFileDevice& file)
{
    return reinterpret_cast<HANDLE>(_get_osfhandle(file.handle()));
}

/// The absolute form of `path` that the system takes in any length.
QString nativePath(const QString& path)
{
    QString native = QDir::toNativeSeparators(QFileInfo(path).absoluteFilePath());
    if (native.size() < MAX_PATH || native.startsWith(R"(\\?\)"_L1)) {
        return native;
    }
    return native.startsWith(R"(\\)"_L1) ? R"(\\?\UNC)"_L1 + native.sliced(1)
                                         : R"(\\?\)"_L1 + native;
}

const wchar_t* wide(const QString& path)
{
    return reinterpret_cast<const wchar_t*>(path.utf16());
}

/// Opens what is at `path` and lets everybody go on using it meanwhile.
HANDLE openFor(DWORD access, const QString& path, DWORD flags = 0)
{
    return CreateFileW(wide(nativePath(path)), access,
                       FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE, nullptr,
                       OPEN_EXISTING, flags, nullptr);
}

} // namespace

bool openRegular(QFile& file, const QString& path, QString* error)
{
    const auto refuse = [error] {
        return fail(error, u"Not a regular file"_s);
    };
    const QFileInfo info(path);
    if (info.exists() && !info.isFile()) {
        return refuse();
    }
    // Qt lets nobody replace a file that it has open, and then PixInsight could fail to write its
    // settings just because this program looks at them.
    const HANDLE handle = openFor(GENERIC_READ, path);
    if (handle == INVALID_HANDLE_VALUE) {
        return failLast(error);
    }
    // A pipe or a device can also come under a name that no folder lists.
    if (GetFileType(handle) != FILE_TYPE_DISK) {
        CloseHandle(handle);
        return refuse();
    }
    const int descriptor =
        _open_osfhandle(reinterpret_cast<intptr_t>(handle), _O_RDONLY | _O_BINARY);
    if (descriptor < 0) {
        CloseHandle(handle);
        return refuse();
    }
    if (!file.open(descriptor, QIODevice::ReadOnly, QFileDevice::AutoCloseHandle)) {
        _close(descriptor);
        return fail(error, file.errorString());
    }
    return true;
}

QString realPath(const QString& path, QString* error)
{
    const QString resolved = QFileInfo(path).canonicalFilePath();
    if (!resolved.isEmpty()) {
        return resolved;
    }
    // Qt has made other calls since the one that failed.
    const HANDLE handle = openFor(0, path, FILE_FLAG_BACKUP_SEMANTICS); // a folder too
    if (handle == INVALID_HANDLE_VALUE) {
        (void)failLast(error);
    } else {
        CloseHandle(handle);
        (void)fail(error, qt_error_string(ERROR_BAD_PATHNAME));
    }
    return {};
}

bool keepOwner(QFileDevice&, const QString&, QString*)
{
    return true;
}

bool flushToDisk(QFileDevice& file, QString* error)
{
    return FlushFileBuffers(handleOf(file)) || failLast(error);
}

bool flushName(const QString& path, QString* error)
{
    // There is no call for folders; with the file NTFS writes its journal up to the file's name.
    const HANDLE handle = openFor(GENERIC_WRITE, path);
    if (handle == INVALID_HANDLE_VALUE) {
        return true;
    }
    const bool flushed = FlushFileBuffers(handle) || failLast(error);
    CloseHandle(handle);
    return flushed;
}

bool isMissing(const QString& path)
{
    return GetFileAttributesW(wide(nativePath(path))) == INVALID_FILE_ATTRIBUTES &&
           GetLastError() == ERROR_FILE_NOT_FOUND;
}

bool retrying(const std::function<bool()>& step)
{
    for (int attempt = 1; !step(); ++attempt) {
        if (attempt == attempts) {
            return false;
        }
        Sleep(pause);
    }
    return true;
}

bool canBeReplaced(const QString& path, QString* error)
{
    DWORD code = ERROR_SUCCESS;
    const bool isReleased = retrying([&path, &code] {
        const HANDLE handle = openFor(DELETE, path);
        if (handle == INVALID_HANDLE_VALUE) {
            code = GetLastError();
            return code != ERROR_SHARING_VIOLATION;
        }
        CloseHandle(handle);
        return true;
    });
    return isReleased || fail(error, qt_error_string(static_cast<int>(code)));
}

bool renameTemporary(QTemporaryFile& file, const QString& to)
{
    // Only this really closes the file, which can't be renamed while it is open; it works once.
    return file.rename(to) || retrying([from = nativePath(file.fileName()), to = nativePath(to)] {
               return MoveFileExW(wide(from), wide(to), 0) != 0;
           });
}

} // namespace kse
