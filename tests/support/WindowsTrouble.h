// SPDX-License-Identifier: MIT
#pragma once

#include "support/FakePixInsight.h"
#include "support/StoreFixture.h"

#include <QProcess>

#include <windows.h>

namespace kse {

/// A store whose save meets trouble of Windows, until that ends.
struct WindowsTrouble : StoreFixture
{
    ~WindowsTrouble() { end(); }

    /// Makes the trouble called `name`. It comes with an edit and with an older backup.
    bool make(const QString& name)
    {
        edit("A/x", QStringLiteral("2"));
        write(source(), "<xsdt><i k=\"B\"/></xsdt>");
        if (name == QLatin1String("running")) {
            return m_pixInsight.start();
        }
        if (name == QLatin1String("read-only")) {
            return setReadOnly(true);
        }
        const QString held = name.startsWith(QLatin1String("source")) ? source() : path;
        return hold(held, name.endsWith(QLatin1String("alone")));
    }

    /// False if it can't be ended.
    bool end()
    {
        m_holder.closeWriteChannel();
        return m_pixInsight.stop() && setReadOnly(false) &&
               (m_holder.state() == QProcess::NotRunning || m_holder.waitForFinished());
    }

    /// The older backup.
    QString source() const { return path + QStringLiteral(".bak-old"); }

    /// Saves, or restores the older backup.
    bool run(bool restore, QString* error, QString* backup = nullptr, QString* remark = nullptr)
    {
        return restore ? store.restoreBackup(source(), error, remark)
                       : store.save(error, backup, remark);
    }

private:
    /// Has another process hold `file`: to others it is readable and writable, or nothing at all.
    bool hold(const QString& file, bool alone)
    {
        const QDir around(QDir::tempPath());
        m_holder.setWorkingDirectory(around.path()); // so that the code page doesn't matter
        QStringList arguments{around.relativeFilePath(file)};
        if (alone) {
            arguments.append(QStringLiteral("alone"));
        }
        m_holder.start(QStringLiteral(KSE_IDLE_PROCESS), arguments);
        return m_holder.waitForReadyRead();
    }

    bool setReadOnly(bool readOnly) const
    {
        const auto* name = reinterpret_cast<const wchar_t*>(path.utf16());
        return SetFileAttributesW(name,
                                  readOnly ? FILE_ATTRIBUTE_READONLY : FILE_ATTRIBUTE_NORMAL) != 0;
    }

    FakePixInsight m_pixInsight;
    QProcess m_holder;
};

} // namespace kse
