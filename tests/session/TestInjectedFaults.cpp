// SPDX-License-Identifier: MIT
#include "session/PixInsightEnv.h"
#include "support/FakePixInsight.h"
#include "support/FaultTrial.h"
#include "support/TestMain.h"
#include "support/TextRows.h"

using namespace kse;
using namespace Qt::StringLiterals;
using Outcome = FaultTrial::Outcome;

class TestInjectedFaults : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase()
    {
        const auto canSave = [] {
            return PixInsightEnv::runningProcessIds().isEmpty();
        };
        if (!QTest::qWaitFor(canSave, 5000)) {
            QSKIP("A process of PixInsight's name runs here, so nothing can be saved.");
        }
    }

    /// The operation, where the file lies, and what goes wrong: with one call after the other, or
    /// with all from it on. KSE_FAULTS=all makes all that there is, which takes minutes.
    void staysWholeWhateverGoesWrong_data()
    {
        QTest::addColumn<QStringList>("cells");
        QStringList places{u"plain"_s};
        QStringList faults{u"error 5 once"_s, u"error 28 on"_s, u"after once"_s, u"cut file"_s,
                           u"claim name"_s};
        if (qEnvironmentVariable("KSE_FAULTS") == u"all"_s) {
            places += {u"linked"_s, u"named"_s};
            faults += {u"before once"_s,   u"short once"_s,  u"error 4 once"_s, u"error 28 once"_s,
                       u"error 5 on"_s,    u"late 5 once"_s, u"short on"_s,     u"torn once"_s,
                       u"swap file"_s,     u"remove file"_s, u"deny file"_s,    u"cut source"_s,
                       u"remove source"_s, u"deny source"_s, u"start program"_s};
        }
        for (const QString& place : places) {
            for (const QString& operation : {u"save"_s, u"restore"_s}) {
                for (const QString& fault : faults) {
                    if (fault.endsWith(u"source"_s) && operation == u"save"_s) {
                        continue;
                    }
                    const QStringList cells{operation, place, fault.section(u' ', 0, -2),
                                            fault.section(u' ', -1)};
                    QTest::newRow(qPrintable(cells.join(u' '))) << cells;
                }
            }
        }
    }
    void staysWholeWhateverGoesWrong()
    {
        QFETCH(const QStringList, cells);
        const FakePixInsight pixInsight;
        FaultTrial trial(cells[0] == u"restore"_s, cells[1] == u"linked"_s, cells[1] == u"named"_s);
        const bool ofFile = cells[3] == u"file"_s;
        const QMap<QString, QString> victims{{u"source"_s, trial.older},
                                             {u"file"_s, trial.target},
                                             {u"program"_s, pixInsight.program()}};
        for (int at = 1;; ++at) {
            trial.run(cells[2], at, cells[3] == u"on"_s, victims.value(cells[3]));
            const bool died = trial.outcome == Outcome::Died;
            if (ofFile) {
                checkSpoilt(trial, cells, at);
            } else {
                check(trial, cells, at);
            }
            if (QTest::currentTestFailed()) {
                qWarning("Call %d: %s %s %s", at, trial.calls.value(at - 1).name.constData(),
                         qPrintable(trial.calls.value(at - 1).path), qPrintable(trial.error));
                return;
            }
            if (!died && trial.calls.size() < at) {
                QVERIFY(trial.outcome == Outcome::Done && at > 80);
                return;
            }
        }
    }

    void cleanupTestCase()
    {
        qInfo("%d runs: %d done, %d failed with a message, %d killed; the file was whole in %d. "
              "%d temporary files were left, %d of them by killed ones. "
              "%d more runs in which somebody else spoilt the file: %d done, %d failed with a "
              "message.",
              m_counts.done + m_counts.failed + m_counts.killed, m_counts.done, m_counts.failed,
              m_counts.killed, m_counts.whole, m_counts.left, m_counts.leftByKilled,
              m_spoilt.done + m_spoilt.failed, m_spoilt.done, m_spoilt.failed);
    }

private:
    struct Counts
    {
        int done = 0;
        int failed = 0;
        int killed = 0;
        int whole = 0;
        int left = 0;
        int leftByKilled = 0;
    };

    /// Holds what a run has left against what it may leave, and has it try again.
    void check(FaultTrial& trial, const QStringList& cells, int at)
    {
        const bool ofSource = cells[3] == u"source"_s;
        const QByteArray content = trial.content();
        const bool isOld = content == trial.oldBytes;
        QVERIFY(isOld || content == trial.newBytes);
        QVERIFY(ofSource || trial.olderUntouched());
        const QStringList backups = trial.newBackups();
        for (const QString& backup : backups) {
            QVERIFY(FaultTrial::contentOf(backup) == trial.oldBytes);
        }
        QVERIFY(isOld || backups.size() >= 1);
        const QString name = QFileInfo(backups.value(0)).fileName();
        if (trial.outcome == Outcome::Done) {
            QVERIFY(!isOld);
            QString steps = u"write backup, flush backup, read backup, write file, flush file, %1 "
                            "backup, flush folder, rename file, flush %2, read file"_s.arg(
                                cells[1] == u"named"_s ? u"rename"_s : u"name"_s,
                                cells[1] == u"linked"_s ? u"real folder"_s : u"folder"_s);
            if (trial.remark.startsWith(u"Saved, but the disk did not confirm it ("_s)) {
                QVERIFY(trial.remark.endsWith(u"keep the backup %1."_s.arg(name)));
                steps.remove(steps.lastIndexOf(u"flush"_s), 14 + (cells[1] == u"linked"_s ? 5 : 0));
            }
            QCOMPARE(trial.steps(), steps);
            // The last look for PixInsight comes just before the one at the file.
            QVERIFY(cells[3] != u"program"_s || at + 1 >= trial.last("open", true));
        } else if (trial.outcome != Outcome::Died) {
            QVERIFY(trial.kept);
            QVERIFY(!trial.error.isEmpty() && !trial.error.endsWith(u": "));
            QVERIFY(isOld || !(trial.error + trial.remark).contains(u"Nothing was"));
            QVERIFY(isOld || !trial.remark.contains(u"unchanged"));
            QVERIFY(backups.isEmpty() || (trial.error + trial.remark).contains(name));
        }
        // Without hard links a name can be lost between the look for it and the rename.
        const QByteArray call = trial.calls.value(at - 1).name;
        const bool isNaming = QByteArrayList{"seek", "close", "name", "rename"}.contains(call);
        QVERIFY(trial.claimed.isEmpty() || FaultTrial::contentOf(trial.claimed) == "claimed" ||
                (isNaming && cells[1] == u"named"_s));
        count(trial, m_counts);
        if (!ofSource) {
            QVERIFY2(trial.tryAgain(), qPrintable(trial.error));
            QVERIFY(trial.content() == trial.newBytes && trial.olderUntouched());
        }
    }

    /// The same where somebody else spoils the file before a call, so that it may be neither.
    void checkSpoilt(const FaultTrial& trial, const QStringList& cells, int at)
    {
        QVERIFY(trial.olderUntouched());
        if (trial.outcome == Outcome::Done) { // which the last look and the read-back have missed
            const QString copy = trial.newBackups().value(0); // of what a restore has found
            QVERIFY(at > trial.last("open", true) ||
                    (cells[0] == u"restore"_s && FaultTrial::contentOf(copy) != trial.oldBytes));
            const char* const lastUse = cells[2] == u"cut"_s ? "read" : "open";
            QVERIFY(trial.content() == trial.newBytes || at >= trial.last(lastUse));
        } else {
            QVERIFY(trial.kept);
            QVERIFY(!trial.error.isEmpty() && !trial.error.endsWith(u": "));
        }
        QVERIFY(trial.backup.isEmpty() || FaultTrial::contentOf(trial.backup) == trial.oldBytes);
        count(trial, m_spoilt);
    }

    static void count(const FaultTrial& trial, Counts& counts)
    {
        const bool died = trial.outcome == Outcome::Died;
        const QStringList left = trial.leftOvers();
        static const QRegularExpression temporary(u"\\.[A-Za-z]{6}$"_s);
        QCOMPARE(left.filter(temporary), left);
        ++(died ? counts.killed : trial.outcome == Outcome::Done ? counts.done : counts.failed);
        const QByteArray content = trial.content();
        counts.whole += content == trial.oldBytes || content == trial.newBytes;
        counts.left += int(left.size());
        counts.leftByKilled += died ? int(left.size()) : 0;
    }

    Counts m_counts;
    Counts m_spoilt; ///< Where somebody else spoils the file.
};

KSE_GUILESS_TEST_MAIN(TestInjectedFaults)
#include "TestInjectedFaults.moc"
