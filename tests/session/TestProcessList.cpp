// SPDX-License-Identifier: MIT
#include "session/ProcessList.h"

#include "support/FakePixInsight.h"
#include "support/TestMain.h"

#include <algorithm>

#ifdef Q_OS_UNIX
#include <csignal>

#include <sys/wait.h>
#endif

class TestProcessList : public QObject
{
    Q_OBJECT

private slots:
    void listsWhatRunsByItsName()
    {
        qputenv("COLUMNS", "8"); // which `ps` heeds
        for (const QString& name : {u"Pix Insight.exe"_s, u"a) Z (b.EXE"_s}) {
            FakePixInsight process(name);
            QVERIFY(process.start());
            const quint64 id = process.processId();
            const auto isListed = [&] {
                const auto all = listProcesses();
                return std::any_of(all.begin(), all.end(), [&](const ProcessEntry& entry) {
                    return entry.id == id && entry.executableName == name.toStdString();
                });
            };
            QVERIFY(isListed());
#ifdef Q_OS_UNIX
            QVERIFY(QFile::remove(process.program())); // as an update does with one that runs
            QVERIFY(isListed());
            const auto child = static_cast<pid_t>(id);
            QCOMPARE(kill(child, SIGKILL), 0);
            siginfo_t ended = {};
            QCOMPARE(waitid(P_PID, static_cast<id_t>(child), &ended, WEXITED | WNOWAIT), 0);
            QVERIFY(!isListed()); // although nobody has asked for its status yet
#endif
            QVERIFY(process.stop());
            QVERIFY(!isListed());
        }
    }
};

KSE_GUILESS_TEST_MAIN(TestProcessList)
#include "TestProcessList.moc"
