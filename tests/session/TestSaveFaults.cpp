// SPDX-License-Identifier: MIT
#include "support/FakePixInsight.h"
#include "support/FaultyCalls.h"
#include "support/StoreFixture.h"
#include "support/TestMain.h"

#include <QRegularExpression>
#include <QtTest>

#include <algorithm>
#include <cstdio>

#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

using namespace kse;
using namespace Qt::StringLiterals;

namespace {

quint64 numberOf(const QString& path)
{
    struct stat status = {};
    return stat(QFile::encodeName(path).constData(), &status) == 0 ? status.st_ino : 0;
}

/// One save or restore in which a call for a file goes wrong.
struct Trial : StoreFixture
{
    /// The operation is "save", "restore" or "bring back" for a file that is gone. The place is
    /// "plain", "linked" for a file behind a symbolic link, or "named" for a file system that has
    /// neither files without a name nor hard links.
    Trial(const QString& operation, const QString& place)
        : restore(operation != u"save")
        , gone(operation == u"bring back")
        , linked(place == u"linked")
        , target(linked ? QFileInfo(path).path() + u"/real/file"_s : path)
    {
        faults.folder = QFile::encodeName(QFileInfo(path).path());
        faults.named = place == u"named";
        const QByteArray content(linked ? 10 : 20'000, 'x'); // what Qt collects first, or not
        const auto withValue = [&content](const QByteArray& value) {
            return fileBytes(R"(<i k="A"><v k="x" t="i" v=")" + value + R"("/><v k="s" t="s">)" +
                             content + "</v></i>");
        };
        oldBytes = withValue("1");
        newBytes = withValue(restore ? "7" : "2");
        olderBytes = withValue("7");
        write(older, olderBytes);
        QFile file(older);
        require(file.open(QIODevice::ReadWrite) &&
                    file.setFileTime(olderTime, QFileDevice::FileModificationTime),
                older);
        write(path, oldBytes);
        QFile::setPermissions(path, mode);
        require(!linked || (QDir().mkdir(QFileInfo(target).path()) && QFile::rename(path, target) &&
                            QFile::link(target, path)),
                target);
        require(store.load(path) && edit("A/x", u"2"_s), path);
        if (gone) {
            QFile::setPermissions(older, mode);
            require(QFile::remove(target), target);
            oldBytes.clear();
        }
    }

    /// By a process of its own where it is to be killed.
    void run()
    {
        if (faults.kind != "kill" && faults.kind != "torn") {
            attempt();
            return;
        }
        const pid_t child = fork();
        if (child == 0) {
            attempt();
            _exit(0);
        }
        int status = 0;
        require(waitpid(child, &status, 0) == child, u"waitpid"_s);
        died = WIFSIGNALED(status);
    }

    /// Without a fault, as a user would: what can't be saved for a changed file is loaded and
    /// edited again.
    bool tryAgain()
    {
        if (restore) {
            return store.restoreBackup(older);
        }
        return (!store.isChangedOnDisk() || (store.load(path) && edit("A/x", u"2"_s))) &&
               store.save();
    }

    bool olderUntouched() const
    {
        return contentOf(older) == olderBytes && QFileInfo(older).lastModified() == olderTime;
    }

    /// Files that are neither the settings file nor a backup that was there before: backups, or
    /// temporary ones.
    QStringList newFiles(bool backups) const
    {
        static const QRegularExpression form(u"\\.bak-\\d{8}-\\d{6}(-before-restore)?(-\\d+)?$"_s);
        QStringList known{path, target, older};
        if (!claimed.isEmpty() && contentOf(claimed) == "claimed") {
            known.append(claimed);
        }
        QStringList paths;
        for (const QString& place : {QFileInfo(path).path(), QFileInfo(target).path()}) {
            const QFileInfoList files =
                QDir(place).entryInfoList(QDir::Files | QDir::Hidden | QDir::System);
            for (const QFileInfo& file : files) {
                const QString found = file.filePath();
                if (!known.contains(found) && form.match(found).hasMatch() == backups &&
                    !paths.contains(found)) {
                    paths.append(found);
                }
            }
        }
        return paths;
    }

    /// What was done with backup, file and folders, in that order. What is repeated counts once.
    QString steps() const
    {
        const QString made = newFiles(true).value(0);
        QMap<quint64, QString> names{{numberOf(QFileInfo(target).path()), u" real folder"_s}};
        names[numberOf(QFileInfo(path).path())] = u" folder"_s;
        names[numberOf(target)] = u" file"_s;
        names[numberOf(made)] = u" backup"_s;
        names.remove(0);
        QStringList steps{QString()};
        for (const Faults::Call& call : faults.calls) {
            const QString name = QFile::decodeName(call.path);
            const bool gains = name == target || name == made;
            const bool counts = call.name == "read" || call.name == (gains ? "name" : "write") ||
                                call.name == (gains ? "rename" : "flush");
            const QString step = QString::fromLatin1(call.name) + names.value(call.file);
            // Qt flushes the file once more before it renames it.
            const bool again = (steps.size() == 1 && call.name == "read") || step == steps.last() ||
                               (step == u"flush file" && steps.contains(step));
            if (call.error == 0 && names.contains(call.file) && counts && !again) {
                steps.append(step);
            }
        }
        return steps.mid(1).join(u", "_s);
    }

    /// Which call, from 1, was the last of that name before the `end`-th; 0 if none was.
    int last(const QByteArray& name, qsizetype end) const
    {
        int place = 0;
        for (qsizetype i = 0; i < std::min(end - 1, faults.calls.size()); ++i) {
            place = faults.calls[i].name == name ? int(i) + 1 : place;
        }
        return place;
    }

    /// Which call, from 1, put another file in the place of the old one; behind all if none did.
    qsizetype replacement() const
    {
        const auto isIt = [this](const Faults::Call& call) {
            return call.error == 0 && (call.name == "rename" || call.name == "name") &&
                   QFile::decodeName(call.path) == target;
        };
        const auto& calls = faults.calls;
        return std::find_if(calls.begin(), calls.end(), isIt) - calls.begin() + 1;
    }

    const bool restore;
    const bool gone;
    const bool linked;
    const QString target;                                   ///< The file itself.
    const QString older = path + u".bak-20200101-000000"_s; ///< Is what is restored.
    const QDateTime olderTime{{2020, 1, 1}, {0, 0}};
    const QFileDevice::Permissions mode = QFile::ReadOwner | QFile::WriteOwner | QFile::ReadGroup |
                                          QFile::ReadUser | QFile::WriteUser;
    QByteArray oldBytes; ///< None if the file is gone.
    QByteArray newBytes;
    QByteArray olderBytes;
    Faults faults;

    bool died = false;
    bool done = false;
    bool kept = true; ///< Whether tree, pending changes and hash are as they were.
    QString error;
    QString backup; ///< What a save has named.
    QString remark;
    QString claimed; ///< What somebody else has put under the name of a backup, if so.

private:
    void attempt()
    {
        const QString before = stateOf(store);
        Faults::active = &faults;
        const bool opened = gone || (store.load(path, &error) && edit("A/x", u"2"_s));
        done = opened && (restore ? store.restoreBackup(older, &error, &remark)
                                  : store.save(&error, &backup, &remark));
        Faults::active = nullptr;
        kept = !opened || stateOf(store) == before;
    }
};

} // namespace

/// Saves and restores in which a call goes wrong: any one, or all from it on.
class TestSaveFaults : public QObject
{
    Q_OBJECT

private slots:
    /// The operation, where the file lies, what goes wrong, and "on" if it does from then on.
    /// KSE_FAULTS=all makes all that there is, which takes minutes.
    void staysWholeWhateverGoesWrong_data()
    {
        QTest::addColumn<QStringList>("cells");
        QStringList places{u"plain"_s};
        QStringList faults{u"error 5"_s, u"error 28 on"_s, u"error 4"_s, u"lost"_s,
                           u"kill"_s,    u"claim"_s,       u"start"_s,   u"cut file"_s};
        if (qEnvironmentVariable("KSE_FAULTS") == u"all") {
            places += {u"linked"_s, u"named"_s};
            faults += {u"error 5 on"_s, u"error 28"_s,   u"late 5"_s,     u"short"_s,
                       u"short on"_s,   u"torn"_s,       u"cut source"_s, u"remove source"_s,
                       u"swap file"_s,  u"remove file"_s};
        }
        for (const QString& operation : {u"save"_s, u"restore"_s, u"bring back"_s}) {
            for (const QString& place : std::as_const(places)) {
                for (const QString& fault : std::as_const(faults)) {
                    const bool isPossible = operation == u"save" ? !fault.endsWith(u"source"_s)
                                                                 : operation == u"restore" ||
                                                                       (place != u"linked" &&
                                                                        !fault.endsWith(u"file"_s));
                    const QStringList cells{operation, place, fault};
                    if (isPossible) {
                        QTest::newRow(qPrintable(cells.join(u", "_s))) << cells;
                    }
                }
            }
        }
    }
    void staysWholeWhateverGoesWrong()
    {
        QFETCH(const QStringList, cells);
        const QStringList fault = cells[2].split(u' ');
        qsizetype count = 1;
        for (int at = 0; at <= count; ++at) {
            Trial trial(cells[0], cells[1]);
            trial.faults.at = at;
            if (at > 0) {
                trial.faults.meanwhile = deed(fault, trial);
                trial.faults.kind = trial.faults.meanwhile ? "meanwhile"_ba : fault[0].toLatin1();
                trial.faults.code = fault.value(1).toInt();
                trial.faults.lasting = fault.last() == u"on";
            }
            trial.run();
            check(trial, at > 0 ? fault : QStringList(u"none"_s), at);
            if (at == 0) {
                count = trial.faults.calls.size();
                QVERIFY(trial.done && count > 40);
            }
            if (QTest::currentTestFailed()) {
                const Faults::Call call = trial.faults.calls.value(at - 1);
                qWarning("Call %d: %s %s: %s %s", at, call.name.constData(), call.path.constData(),
                         qPrintable(trial.error), qPrintable(trial.remark));
                return;
            }
        }
    }

    void cleanupTestCase()
    {
        for (auto count = m_counts.cbegin(); count != m_counts.cend(); ++count) {
            qInfo("%lld %s", count.value(), qPrintable(count.key()));
        }
    }

private:
    /// What somebody else does meanwhile; none if the fault is another.
    std::function<void()> deed(const QStringList& fault, Trial& trial)
    {
        const QString victim = fault.last() == u"source" ? trial.older : trial.target;
        const QMap<QString, std::function<void()>> deeds{
            {u"start"_s,
             [this] {
                 QVERIFY(m_pixInsight.start());
             }},
            {u"claim"_s,
             [&trial] {
                 const QString name = QFile::decodeName(trial.faults.freeName);
                 if (!name.isEmpty() && !QFile::exists(name)) {
                     StoreFixture::write(name, "claimed");
                     trial.claimed = name;
                 }
             }},
            {u"cut"_s,
             [victim] {
                 (void)QFile::resize(victim, 3);
             }},
            {u"remove"_s,
             [victim] {
                 (void)QFile::remove(victim);
             }},
            {u"swap"_s, [victim] {
                 const QByteArray name = QFile::encodeName(victim);
                 StoreFixture::write(victim + u".other"_s, "other");
                 QCOMPARE(std::rename(name + ".other", name), 0);
             }}};
        return deeds.value(fault[0]);
    }

    /// Holds what a run has left against what it may leave, and has it try again.
    void check(Trial& trial, const QStringList& fault, int at)
    {
        const bool byOthers = fault.last() == u"file"; // which may be neither old nor new then
        const bool ofSource = fault.last() == u"source";
        const QByteArray content = contentOf(trial.path);
        const bool isOld = content == trial.oldBytes;
        const bool isNew = content == trial.newBytes;
        const auto replacement = trial.replacement();
        const bool isReplaced = replacement <= trial.faults.calls.size();
        QVERIFY(isOld || isNew || byOthers || (fault[0] == u"lost" && isReplaced && !trial.done));
        QVERIFY(ofSource || trial.olderUntouched());
        const QStringList backups = trial.newFiles(true);
        for (const QString& backup : backups) { // a restore copies what it finds
            QVERIFY(contentOf(backup) == trial.oldBytes || (byOthers && trial.restore));
        }
        QVERIFY(isOld || byOthers || trial.gone || !backups.isEmpty());
        const QString name = QFileInfo(trial.gone ? trial.older : backups.value(0)).fileName();
        const QByteArray call = trial.faults.calls.value(at - 1).name;
        if (trial.done) {
            checkSuccess(trial, name, byOthers);
            // What the last look and the read-back have missed.
            const int end = trial.last(fault[0] == u"cut" ? "read" : "open", INT_MAX);
            QVERIFY(isNew || (byOthers && at >= end));
            QVERIFY(!byOthers || at > trial.last("open", replacement) ||
                    (trial.restore && contentOf(backups.value(0)) != trial.oldBytes));
            QVERIFY(!byOthers || at <= replacement || at >= end);
            // The last look for PixInsight comes just before the one at the file.
            QVERIFY(fault[0] != u"start" || at + 1 >= trial.last("open", replacement));
        } else if (!trial.died) {
            const QString said = trial.error + trial.remark;
            QVERIFY(trial.kept && !trial.error.isEmpty() && !trial.error.endsWith(u": "_s));
            QVERIFY(isOld || byOthers ||
                    !(said.contains(u"Nothing was"_s) || said.contains(u"unchanged"_s)));
            QVERIFY(backups.isEmpty() || said.contains(name));
            QVERIFY(!isReplaced || trial.gone ||
                    trial.remark.startsWith(u"The file had been replaced by then."_s));
            QVERIFY(fault[0] != u"start" || trial.error.contains(u"PixInsight is running"_s));
            QVERIFY(fault != QStringList({u"error"_s, u"4"_s}) ||
                    !QByteArrayList({"open", "read", "write", "flush"}).contains(call));
        }
        // Without hard links a name can be lost between the look for it and the rename.
        const bool isNaming = QByteArrayList{"seek", "close", "name", "rename"}.contains(call);
        QVERIFY(trial.claimed.isEmpty() || contentOf(trial.claimed) == "claimed" ||
                (isNaming && trial.faults.named));
        // A name that is taken before the backup is written is looked for again.
        QVERIFY(fault[0] != u"claim" || trial.done || trial.last("write", at) > 0);
        count(trial, byOthers ? u" where somebody else spoilt the file"_s : QString());
        QVERIFY(m_pixInsight.stop());
        if ((isOld || isNew) && !byOthers && !ofSource) {
            QVERIFY(trial.tryAgain());
            QVERIFY(contentOf(trial.path) == trial.newBytes && trial.olderUntouched());
        }
    }

    static void checkSuccess(const Trial& trial, const QString& name, bool byOthers)
    {
        QString steps = trial.gone ? QString() : u"write backup, flush backup, read backup, "_s;
        steps += u"write file, flush file, "_s;
        if (!trial.gone) {
            steps += u"flush folder, %1 backup, flush folder, "_s.arg(
                trial.faults.named ? u"rename"_s : u"name"_s);
        }
        steps += trial.gone && !trial.faults.named ? u"name"_s : u"rename"_s;
        steps += u" file, flush folder, read file"_s;
        if (trial.linked) {
            steps.replace(steps.lastIndexOf(u"folder"_s), 0, u"real "_s);
        }
        if (!trial.remark.isEmpty()) {
            QVERIFY(trial.remark.startsWith(u"Saved, but the disk did not confirm it ("_s));
            QVERIFY(trial.remark.endsWith(u"keep the backup %1."_s.arg(name)));
            steps.remove(steps.lastIndexOf(u"flush"_s), trial.linked ? 19 : 14);
        }
        if (!byOthers) {
            QCOMPARE(trial.steps(), steps);
            QCOMPARE(QFile::permissions(trial.target) & 0xfff, trial.mode & 0xfff);
        }
    }

    void count(const Trial& trial, const QString& where)
    {
        static const QRegularExpression temporary(u"\\.[A-Za-z]{6}$"_s);
        const QStringList left = trial.newFiles(false);
        QCOMPARE(left.filter(temporary), left);
        const QString what = trial.died ? u"killed"_s : trial.done ? u"done"_s : u"failed"_s;
        ++m_counts[what + where];
        m_counts[u"temporary files left, "_s + what + where] += left.size();
    }

    FakePixInsight m_pixInsight;
    QMap<QString, qint64> m_counts;
};

KSE_GUILESS_TEST_MAIN(TestSaveFaults)
#include "TestSaveFaults.moc"
