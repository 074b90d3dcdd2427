// SPDX-License-Identifier: MIT
#pragma once

#include <QDir>
#include <QFile>
#include <QProcess>
#include <QTemporaryDir>

namespace kse {

/// A real process whose executable is named as PixInsight's, for as long as it is started. The
/// scan for it covers all processes that the test sees: tests that use this are RUN_SERIAL.
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

    /// Starts it and waits until it runs.
    [[nodiscard]] bool start()
    {
        m_process.start(m_program, QStringList());
        return m_copied && m_process.waitForReadyRead();
    }

    /// Ends it and waits until it is gone. True also if it isn't running.
    [[nodiscard]] bool stop()
    {
        m_process.closeWriteChannel();
        return m_process.state() == QProcess::NotRunning || m_process.waitForFinished();
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
    QTemporaryDir m_dir;
    QString m_program;
    bool m_copied = false;
    QProcess m_process;
};

} // namespace kse
