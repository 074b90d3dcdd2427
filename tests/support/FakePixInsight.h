// SPDX-License-Identifier: MIT
#pragma once

#include <QFile>
#include <QProcess>
#include <QTemporaryDir>

namespace kse {

/// A real process whose executable is named as PixInsight's, for as long as it is started. The
/// scan for it covers all processes that the test sees: declare tests that use this PROCESSES.
class FakePixInsight
{
public:
    explicit FakePixInsight(const QString& name = QStringLiteral("PixInsight.exe"))
        : m_program(m_dir.filePath(name))
    {
        QFile::copy(QStringLiteral(KSE_IDLE_PROCESS), m_program);
    }
    ~FakePixInsight() { (void)stop(); }

    /// Starts it and waits until it runs.
    [[nodiscard]] bool start()
    {
        m_process.start(m_program, QStringList());
        return m_process.waitForReadyRead();
    }

    /// Ends it and waits until it is gone. True also if it isn't running.
    [[nodiscard]] bool stop()
    {
        m_process.closeWriteChannel();
        return m_process.state() == QProcess::NotRunning || m_process.waitForFinished();
    }

    QString program() const { return m_program; }

    /// The process's id; 0 while it isn't running.
    quint64 processId() const { return static_cast<quint64>(m_process.processId()); }

private:
    QTemporaryDir m_dir;
    QString m_program;
    QProcess m_process;
};

} // namespace kse
