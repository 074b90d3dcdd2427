// SPDX-License-Identifier: MIT
#include "session/DurableFile.h"

#include <QFile>
#include <QFileInfo>

#include <io.h>
#include <windows.h>

namespace kse {

namespace {

/// With the reason of the system call that has just failed.
bool failLast(QString* error)
{
    const DWORD code = GetLastError();
    if (error) {
        *error = qt_error_string(static_cast<int>(code));
    }
    return false;
}

HANDLE handleOf(const QFileDevice& file)
{
    return reinterpret_cast<HANDLE>(_get_osfhandle(file.handle()));
}

} // namespace

bool openRegular(QFile& file, const QString& path, QString* error)
{
    const auto refuse = [error] {
        if (error) {
            *error = QStringLiteral("Not a regular file");
        }
        return false;
    };
    const QFileInfo info(path);
    if (info.exists() && !info.isFile()) {
        return refuse();
    }
    file.setFileName(path);
    if (!file.open(QIODevice::ReadOnly)) {
        if (error) {
            *error = file.errorString();
        }
        return false;
    }
    // A pipe or a device can also come under a name that no folder lists.
    if (GetFileType(handleOf(file)) != FILE_TYPE_DISK) {
        file.close();
        return refuse();
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
