// SPDX-License-Identifier: MIT
#include "session/DurableFile.h"

#include "document/Fail.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>

#include <cstdint>

#include <fcntl.h>
#include <io.h>
#include <windows.h>

namespace kse {

using namespace Qt::StringLiterals;

namespace {

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

} // namespace

bool openRegular(QFile& file, const QString& path, QString* error)
{
    const auto refuse = [error] {
        return fail(error, QStringLiteral("Not a regular file"));
    };
    const QFileInfo info(path);
    if (info.exists() && !info.isFile()) {
        return refuse();
    }
    // Qt lets nobody replace a file that it has open, and then PixInsight could fail to write its
    // settings just because this program looks at them.
    const HANDLE handle = CreateFileW(
        reinterpret_cast<const wchar_t*>(nativePath(path).utf16()), GENERIC_READ,
        FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE, nullptr, OPEN_EXISTING, 0, nullptr);
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
    if (resolved.isEmpty() && error) {
        *error = qt_error_string(ERROR_FILE_NOT_FOUND); // Qt has made other calls since
    }
    return resolved;
}

bool keepOwner(QFileDevice&, const QString&, QString*)
{
    return true;
}

bool flushToDisk(QFileDevice& file, QString* error)
{
    return FlushFileBuffers(handleOf(file)) || failLast(error);
}

bool flushFolder(const QString&, QString*)
{
    return true; // NTFS keeps a journal of its folders, and there is no call that flushes one.
}

} // namespace kse
