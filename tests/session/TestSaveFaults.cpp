// SPDX-License-Identifier: MIT
#include "support/FakePixInsight.h"
#include "support/FaultTrial.h"
#include "support/TestMain.h"
#include "support/TextRows.h"

using namespace kse;
using namespace Qt::StringLiterals;
using Outcome = FaultTrial::Outcome;

namespace {

const QString claims = u"set -C; printf claimed >\"$KSE_FREE_NAME\" && "
                       "echo claim 0 0 \"$KSE_FREE_NAME\" >>\"$KSE_FAULT_LOG\"; true"_s;
const QString starts = u"exec 3<&0; \"$PIXINSIGHT\" <&3 >\"$KSE_FAULT_LOG.ready\" & "
                       "until [ -s \"$KSE_FAULT_LOG.ready\" ]; do :; done"_s;

/// The fault that the cells of a row name, for the library.
QString faultOf(const QString& name, const FaultTrial& trial)
{
    const QString victim =
        u'\'' + (name.endsWith(u"source"_s) ? trial.older : trial.target()) + u'\'';
    const QMap<QString, QString> commands{
        {u"claim"_s, claims},
        {u"start"_s, starts},
        {u"cut"_s, u"truncate -cs 3 "_s + victim},
        {u"remove"_s, u"rm -f "_s + victim},
        {u"deny"_s, u"chmod -f 0 %1; true"_s.arg(victim)},
        {u"swap"_s, u"printf other >%1.other; mv -f %1.other %1"_s.arg(victim)}};
    const QString command = commands.value(name.section(u' ', 0, 0));
    return command.isEmpty() ? name : u"run "_s + command;
}

} // namespace

/// Saves and restores in which a call goes wrong: any one, or all from it on.
class TestSaveFaults : public QObject
{
    Q_OBJECT

private slots:
    /// The operation, where the file lies, what goes wrong, and whether from then on.
    /// KSE_FAULTS=all makes all that there is, which takes minutes.
    void staysWholeWhateverGoesWrong_data()
    {
        QTest::addColumn<QStringList>("cells");
        QStringList places{u"plain"_s};
        QStringList faults{u"error 5"_s, u"error 28 on"_s, u"kill"_s, u"cut file"_s, u"claim"_s};
        if (qEnvironmentVariable("KSE_FAULTS") == u"all") {
            places += {u"linked"_s, u"named"_s};
            faults +=
                {u"short"_s,      u"error 4"_s, u"error 28"_s,    u"error 5 on"_s,   u"late 5"_s,
                 u"short on"_s,   u"torn"_s,    u"swap file"_s,   u"remove file"_s,  u"deny file"_s,
                 u"cut source"_s, u"start"_s,   u"deny source"_s, u"remove source"_s};
        }
        for (const QString& operation : {u"save"_s, u"restore"_s}) {
            for (const QString& place : std::as_const(places)) {
                for (const QString& fault : std::as_const(faults)) {
                    if (operation == u"restore" || !fault.endsWith(u"source"_s)) {
                        const QStringList cells{operation, place, fault};
                        QTest::newRow(qPrintable(cells.join(u' '))) << cells;
                    }
                }
            }
        }
    }
    void staysWholeWhateverGoesWrong()
    {
        QFETCH(const QStringList, cells);
        const FakePixInsight pixInsight;
        qputenv("PIXINSIGHT", QFile::encodeName(pixInsight.program()));
        FaultTrial trial(cells[0] == u"restore", cells[1]);
        QString fault = cells[2];
        const bool lasting = fault.endsWith(u" on"_s);
        fault.chop(lasting ? 3 : 0);
        for (int at = 1;; ++at) {
            trial.run(faultOf(fault, trial), at, lasting);
            fault.endsWith(u"file"_s) ? checkSpoilt(trial, fault, at) : check(trial, fault, at);
            if (QTest::currentTestFailed()) {
                qWarning("Call %d: %s %s %s", at, trial.calls.value(at - 1).name.constData(),
                         qPrintable(trial.calls.value(at - 1).path), qPrintable(trial.error));
                return;
            }
            if (trial.outcome != Outcome::Died && trial.calls.size() < at) {
                QVERIFY(trial.outcome == Outcome::Done && at > 80);
                return;
            }
        }
    }

    void cleanupTestCase()
    {
        for (auto count = m_counts.cbegin(); count != m_counts.cend(); ++count) {
            qInfo("%d %s", count.value(), qPrintable(count.key()));
        }
    }

private:
    /// Holds what a run has left against what it may leave, and has it try again.
    void check(FaultTrial& trial, const QString& fault, int at)
    {
        const bool ofSource = fault.endsWith(u"source"_s);
        const QByteArray content = contentOf(trial.path);
        const bool isOld = content == trial.oldBytes;
        QVERIFY(isOld || content == trial.newBytes);
        QVERIFY(ofSource || trial.olderUntouched());
        const QStringList backups = trial.newBackups();
        for (const QString& backup : backups) {
            QVERIFY(contentOf(backup) == trial.oldBytes);
        }
        QVERIFY(isOld || !backups.isEmpty());
        const QString name = QFileInfo(backups.value(0)).fileName();
        if (trial.outcome == Outcome::Done) {
            QVERIFY(!isOld);
            QString steps =
                u"write backup, flush backup, read backup, write file, flush file, flush "
                "folder, %1 backup, flush folder, rename file, flush %2, read file"_s.arg(
                    trial.named ? u"rename"_s : u"name"_s,
                    trial.linked ? u"real folder"_s : u"folder"_s);
            if (!trial.remark.isEmpty()) {
                QVERIFY(trial.remark.startsWith(u"Saved, but the disk did not confirm it ("_s));
                QVERIFY(trial.remark.endsWith(u"keep the backup %1."_s.arg(name)));
                steps.remove(steps.lastIndexOf(u"flush"_s), trial.linked ? 19 : 14);
            }
            QCOMPARE(trial.steps(), steps);
            // The last look for PixInsight comes just before the one at the file.
            QVERIFY(fault != u"start" || at + 1 >= trial.last("open", trial.replacement()));
        } else if (trial.outcome != Outcome::Died) {
            const QString said = trial.error + trial.remark;
            checkFailure(trial);
            QVERIFY(isOld || !(said.contains(u"Nothing was"_s) || said.contains(u"unchanged"_s)));
            QVERIFY(backups.isEmpty() || said.contains(name));
        }
        // Without hard links a name can be lost between the look for it and the rename.
        const QByteArray call = trial.calls.value(at - 1).name;
        const bool isNaming = QByteArrayList{"seek", "close", "name", "rename"}.contains(call);
        QVERIFY(trial.claimed.isEmpty() || contentOf(trial.claimed) == "claimed" ||
                (isNaming && trial.named));
        // A name that is taken before the backup is written is looked for again.
        QVERIFY(fault != u"claim" || trial.outcome == Outcome::Done || trial.last("write", at) > 0);
        count(trial, {});
        if (!ofSource) {
            QVERIFY(trial.tryAgain());
            QVERIFY(contentOf(trial.path) == trial.newBytes && trial.olderUntouched());
        }
    }

    /// The same where somebody else spoils the file before a call, so that it may be neither.
    void checkSpoilt(const FaultTrial& trial, const QString& fault, int at)
    {
        const int replacement = trial.replacement();
        const bool isReadLater = at < trial.last(fault == u"cut file" ? "read" : "open");
        const bool isHidden = fault == u"remove file" || fault == u"deny file";
        QVERIFY(trial.olderUntouched());
        if (trial.outcome == Outcome::Done) { // which the last look and the read-back have missed
            const QString copy = trial.newBackups().value(0); // of what a restore has found
            QVERIFY(at > trial.last("open", replacement) ||
                    (trial.restore && contentOf(copy) != trial.oldBytes));
            QVERIFY(contentOf(trial.path) == trial.newBytes || !isReadLater);
        } else {
            checkFailure(trial);
        }
        if (at > replacement && isReadLater && (fault != u"deny file" || geteuid() != 0)) {
            QCOMPARE(trial.outcome, Outcome::Failed);
            QVERIFY(trial.error.startsWith(isHidden ? u"Cannot read "_s : u"Read-back "_s));
            QVERIFY(trial.remark.startsWith(u"The file had been replaced by then."_s));
            QVERIFY(trial.remark.contains(QFileInfo(trial.newBackups().value(0)).fileName()));
        }
        QVERIFY(trial.backup.isEmpty() || contentOf(trial.backup) == trial.oldBytes);
        count(trial, u" where somebody else spoilt the file"_s);
    }

    static void checkFailure(const FaultTrial& trial)
    {
        QVERIFY(trial.kept);
        QVERIFY(!trial.error.isEmpty() && !trial.error.endsWith(u": "_s));
    }

    void count(const FaultTrial& trial, const QString& where)
    {
        static const QRegularExpression temporary(u"\\.[A-Za-z]{6}$"_s);
        QStringList left = trial.newFiles();
        for (const QString& backup : trial.newBackups()) {
            left.removeAll(backup);
        }
        QCOMPARE(left.filter(temporary), left);
        const bool died = trial.outcome == Outcome::Died;
        const QString what = died                             ? u"killed"_s
                             : trial.outcome == Outcome::Done ? u"done"_s
                                                              : u"failed with a message"_s;
        ++m_counts[what + where];
        m_counts[u"temporary files left, "_s + what + where] += int(left.size());
    }

    QMap<QString, int> m_counts;
};

int main(int argc, char** argv)
{
    if (argc > 2 && qstrcmp(argv[1], "--once") == 0) {
        const QCoreApplication app(argc, argv);
        return saveOnce(QFile::decodeName(argv[2]), argc > 3 ? QFile::decodeName(argv[3]) : u""_s);
    }
    const TestHome home;
    const QCoreApplication app(argc, argv);
    TestSaveFaults test;
    return QTest::qExec(&test, argc, argv);
}
#include "TestSaveFaults.moc"
