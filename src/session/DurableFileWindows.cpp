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

} // namespace

bool openRegular(QFile& file, const QString& path, QString* error)
{
    const QFileInfo info(path);
    if (info.exists() && !info.isFile()) {
        if (error) {
            *error = QStringLiteral("Not a regular file");
        }
        return false;
    }
    file.setFileName(path);
    if (!file.open(QIODevice::ReadOnly)) {
        if (error) {
            *error = file.errorString();
        }
        return false;
    }
    return true;
}

QString realPath(const QString& path, QString* error)
{
    const QString resolved = QFileInfo(path).canonicalFilePath();
    if (resolved.isEmpty()) {
        (void)failLast(error);
    }
    return resolved;
}

bool flushToDisk(QFileDevice& file, QString* error)
{
    const auto handle = reinterpret_cast<HANDLE>(_get_osfhandle(file.handle()));
    return FlushFileBuffers(handle) || failLast(error);
}

bool flushFile(const QString& path, QString* error)
{
    // Only a handle that may write can be flushed.
    QFile file(path);
    if (!file.open(QIODevice::ReadWrite | QIODevice::ExistingOnly)) {
        if (error) {
            *error = file.errorString();
        }
        return false;
    }
    return flushToDisk(file, error);
}

bool flushFolder(const QString&, QString*)
{
    return true; // NTFS keeps a journal of its folders, and there is no call that flushes one.
}

} // namespace kse
