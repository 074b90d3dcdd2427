// SPDX-License-Identifier: MIT
#include "session/ProcessList.h"

#include "support/TestMain.h"

#include <QFile>
#include <QProcess>
#include <QTemporaryDir>
#include <QTest>

#include <algorithm>

#ifdef Q_OS_UNIX
#include <sys/wait.h>
#endif

using namespace kse;
using namespace Qt::StringLiterals;

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
            const auto id = static_cast<quint64>(process.processId());
            const auto isListed = [&] {
                const auto all = listProcesses();
                return std::any_of(all.begin(), all.end(), [&](const ProcessEntry& entry) {
                    return entry.id == id && entry.executableName == name.toStdString();
                });
            };
            QVERIFY(isListed());
#ifdef Q_OS_UNIX
            QVERIFY(QFile::remove(program)); // as an update does with a program that runs
            QVERIFY(isListed());
            process.kill();
            siginfo_t ended = {};
            QCOMPARE(waitid(P_PID, static_cast<id_t>(id), &ended, WEXITED | WNOWAIT), 0);
            QVERIFY(!isListed()); // although nobody has asked for its status yet
#endif
            process.kill();
            QVERIFY(process.waitForFinished());
            QVERIFY(!isListed());
        }
    }
};

KSE_GUILESS_TEST_MAIN(TestProcessList)
#include "TestProcessList.moc"
