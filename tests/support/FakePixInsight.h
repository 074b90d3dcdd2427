// SPDX-License-Identifier: MIT
#pragma once

#include "session/PixInsightEnv.h"

#include <QDir>
#include <QElapsedTimer>
#include <QFile>
#include <QFileInfo>
#include <QProcess>
#include <QTemporaryDir>
#include <QThread>

namespace kse {

/// A real process whose executable is named as PixInsight's, for as long as it is started. The
/// scan for it covers the whole computer: tests that use this are RUN_SERIAL.
class FakePixInsight
{
public:
    explicit FakePixInsight(const QString& name = QStringLiteral("PixInsight"))
        : m_program(QDir(m_dir.path()).filePath(name))
    {
#ifdef Q_OS_WIN
        if (!name.endsWith(QLatin1String(".exe"), Qt::CaseInsensitive)) {
            m_program += QStringLiteral(".exe"); // or it can't be started
        }
#endif
        m_copied = QFile::copy(QStringLiteral(KSE_IDLE_PROCESS), m_program);
    }
    ~FakePixInsight()
    {
        (void)stop();
    }
    FakePixInsight(const FakePixInsight&) = delete;
    FakePixInsight& operator=(const FakePixInsight&) = delete;

    /// Starts it and waits until `runningProcessIds` tells of it.
    [[nodiscard]] bool start()
    {
        return startUnseen() && waitUntilSeen(processId(), true);
    }

    /// Starts it and waits until it runs, whether or not `runningProcessIds` knows its name.
    [[nodiscard]] bool startUnseen()
    {
        m_process.start(m_program, QStringList());
        return m_copied && m_process.waitForReadyRead();
    }

    /// Ends it and waits until `runningProcessIds` no longer tells of it. True also if it isn't
    /// running.
    [[nodiscard]] bool stop()
    {
        if (m_process.state() == QProcess::NotRunning) {
            return true;
        }
        const quint64 id = processId();
        m_process.closeWriteChannel();
        return m_process.waitForFinished() && waitUntilSeen(id, false);
    }

    /// Path of the executable.
    QString program() const
    {
        return m_program;
    }

    /// The process's id; 0 while it isn't running.
    quint64 processId() const
    {
        return static_cast<quint64>(m_process.processId());
    }

private:
    static bool waitUntilSeen(quint64 id, bool wanted)
    {
        QElapsedTimer timer;
        timer.start();
        while (PixInsightEnv::runningProcessIds().contains(id) != wanted) {
            if (timer.hasExpired(5000)) {
                return false;
            }
            QThread::msleep(5);
        }
        return true;
    }

    QTemporaryDir m_dir;
    QString m_program;
    bool m_copied = false;
    QProcess m_process;
};

} // namespace kse
