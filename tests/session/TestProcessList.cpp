// SPDX-License-Identifier: MIT
#include "session/ProcessList.h"

#include "support/TestMain.h"

#include <QFile>
#include <QProcess>
#include <QTemporaryDir>
#include <QTest>

#include <algorithm>
#include <csignal>

#ifdef Q_OS_UNIX
#include <sys/wait.h>
#include <unistd.h>
#endif

using namespace kse;
using namespace Qt::StringLiterals;

namespace {

bool isListed(qint64 id, const QString& name)
{
    const auto processes = listProcesses();
    return std::any_of(processes.begin(), processes.end(), [&](const ProcessEntry& process) {
        return process.id == static_cast<quint64>(id) &&
               process.executableName == name.toStdString();
    });
}

} // namespace

class TestProcessList : public QObject
{
    Q_OBJECT

private slots:
    void listsWhatRunsByItsName()
    {
        qputenv("COLUMNS", "8"); // which `ps` heeds
        for (const QString& name : {u"Pix Insight.exe"_s, u"a) Z (b.EXE"_s}) {
            const QTemporaryDir dir;
            const QString program = dir.filePath(name);
            QVERIFY(QFile::copy(QStringLiteral(KSE_IDLE_PROCESS), program));
            QProcess process;
            process.start(program, QStringList());
            QVERIFY(process.waitForReadyRead());
            const qint64 id = process.processId();
            QVERIFY(isListed(id, name));
#ifdef Q_OS_UNIX
            QVERIFY(QFile::remove(program)); // as an update does with a program that runs
            QVERIFY(isListed(id, name));
#endif
            process.closeWriteChannel();
            QVERIFY(process.waitForFinished());
            QVERIFY(!isListed(id, name));
        }
    }

    void leavesOutWhatEndedUnreaped()
    {
#ifdef Q_OS_UNIX
        const pid_t id = fork(); // a child of this program's own name
        if (id == 0) {
            pause();
        }
        const QString name = u"TestProcessList"_s;
        QVERIFY(isListed(id, name));
        QCOMPARE(kill(id, SIGKILL), 0);
        siginfo_t ended = {};
        QCOMPARE(waitid(P_PID, static_cast<id_t>(id), &ended, WEXITED | WNOWAIT), 0);
        QVERIFY(!isListed(id, name));
        QCOMPARE(waitpid(id, nullptr, 0), id);
#else
        QSKIP("No process outlives its end here.");
#endif
    }
};

KSE_GUILESS_TEST_MAIN(TestProcessList)
#include "TestProcessList.moc"
