// SPDX-License-Identifier: MIT
#include "support/FakePixInsight.h"
#include "support/FaultyCalls.h"
#include "support/StoreFixture.h"
#include "support/TestMain.h"

#include <QDirIterator>
#include <QtTest>

#include <algorithm>
#include <climits>

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
    /// The operation, where the file lies, what goes wrong, and with which call.
    Trial(const QStringList& cells, int at)
        : restore(cells[0] != u"save")
        , gone(cells[0] == u"bring back")
        , linked(cells[1] == u"linked")
        , fault(cells[2].split(u' '))
    {
        faults.folder = QFile::encodeName(dir.path());
        faults.named = cells[1] == u"named";
        faults.kind = fault[0].toLatin1();
        faults.code = fault.value(1).toInt();
        faults.lasting = fault.last() == u"on";
        faults.at = at;
        const QByteArray content(linked ? 10 : 20'000, 'x'); // what Qt collects first, or not
        const auto withValue = [&content](const char* value) {
            return fileBytes(QByteArray(R"(<i k="A"><v k="x" t="i" v=")") + value +
                             R"("/><v k="s" t="s">)" + content + "</v></i>");
        };
        oldBytes = withValue("1");
        newBytes = withValue(restore ? "7" : "2");
        write(older, withValue("7"));
        write(path, oldBytes);
        QFile::setPermissions(path, mode);
        require(!linked || (QDir(dir.path()).mkdir(u"real"_s) && QFile::rename(path, target) &&
                            QFile::link(target, path)),
                target);
        require(store.load(path) && edit("A/x", u"2"_s), path);
        if (gone) {
            require(QFile::setPermissions(older, mode) && QFile::remove(target), target);
            oldBytes.clear();
        }
    }

    /// By a process of its own where it is to be killed.
    void run()
    {
        const bool dies = faults.at < INT_MAX && (fault[0] == u"kill" || fault[0] == u"torn");
        const pid_t child = dies ? fork() : -1;
        if (child > 0) {
            int status = 0;
            require(waitpid(child, &status, 0) == child, u"waitpid"_s);
            died = WIFSIGNALED(status);
            return;
        }
        const QString before = stateOf(store);
        Faults::active = &faults;
        const bool opened = gone || (store.load(path, &error) && edit("A/x", u"2"_s));
        done = opened && (restore ? store.restoreBackup(older, &error, &remark)
                                  : store.save(&error, nullptr, &remark));
        Faults::active = nullptr;
        kept = !opened || stateOf(store) == before;
        if (child == 0) {
            _exit(0);
        }
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

    /// The files of that form, but for those that others have made.
    QStringList found(const QString& form) const
    {
        QStringList paths;
        QDirIterator file(dir.path(), {form}, QDir::Files | QDir::Hidden,
                          QDirIterator::Subdirectories);
        while (file.hasNext()) {
            const QString next = file.next();
            paths += QStringList(next != older && contentOf(next) != "claimed", next);
        }
        return paths;
    }

    /// What was done with backup, file and folders, in that order. What is repeated counts once.
    QString steps() const
    {
        const QString made = found(u"*.bak-*"_s).value(0);
        QMap<quint64, QString> names{{numberOf(QFileInfo(target).path()), u" real folder"_s},
                                     {numberOf(dir.path()), u" folder"_s},
                                     {numberOf(target), u" file"_s},
                                     {numberOf(made), u" backup"_s}};
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

    /// Which call, from 1, was the last of that name before the `end`-th, or the last that gave a
    /// file this path; 0 if none was.
    int last(const QByteArray& name, qsizetype end = INT_MAX, const QString& result = {}) const
    {
        int place = 0;
        for (qsizetype i = 0; i < std::min(end - 1, faults.calls.size()); ++i) {
            const Faults::Call& call = faults.calls[i];
            const bool isAny =
                result.isEmpty() || (call.error == 0 && QFile::decodeName(call.path) == result);
            place = call.name == name && isAny ? int(i) + 1 : place;
        }
        return place;
    }

    const bool restore;
    const bool gone;
    const bool linked;
    const QStringList fault;
    const QString target = linked ? dir.filePath(u"real/file"_s) : path; ///< The file itself.
    const QString older = path + u".bak-20200101-000000"_s;              ///< Is what is restored.
    const QFileDevice::Permissions mode = QFile::ReadOwner | QFile::WriteOwner | QFile::ReadGroup |
                                          QFile::ReadUser | QFile::WriteUser;
    QByteArray oldBytes; ///< None if the file is gone.
    QByteArray newBytes;
    Faults faults;

    bool died = false;
    bool done = false;
    bool kept = true; ///< Whether tree, pending changes and hash are as they were.
    QString error;
    QString remark;
    QString claimed; ///< What somebody else has put under the name of a backup, if so.
};

} // namespace

/// Saves and restores in which a call goes wrong: any one, or all from it on.
class TestSaveFaults : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase() { QVERIFY(m_sleeper.start()); }

    /// The operation: "bring back" restores a file that is gone. The place: "linked" is behind a
    /// symbolic link, "named" on a file system that has neither files without a name nor hard
    /// links. What goes wrong, and "on" if it does from then on. KSE_FAULTS=all makes all that
    /// there is, which takes minutes.
    void staysWholeWhateverGoesWrong_data()
    {
        QTest::addColumn<QStringList>("cells");
        QStringList places{u"plain"_s};
        QStringList faults{u"error 5"_s, u"error 28 on"_s, u"error 4"_s, u"lost"_s,
                           u"kill"_s,    u"claim"_s,       u"start"_s,   u"cut file"_s};
        if (qEnvironmentVariable("KSE_FAULTS") == u"all") {
            places += {u"linked"_s, u"named"_s};
            faults += {u"error 5 on"_s, u"error 28"_s,      u"late 5"_s,
                       u"short"_s,      u"short on"_s,      u"torn"_s,
                       u"cut source"_s, u"remove source"_s, u"remove file"_s};
        }
        for (const QString& operation : {u"save"_s, u"restore"_s, u"bring back"_s}) {
            for (const QString& place : std::as_const(places)) {
                for (const QString& fault : std::as_const(faults)) {
                    const QStringList cells{operation, place, fault};
                    if (!(operation == u"save" && fault.endsWith(u"source"_s)) &&
                        !(operation == u"bring back" &&
                          (place == u"linked" || fault.endsWith(u"file"_s)))) {
                        QTest::newRow(qPrintable(cells.join(u", "_s))) << cells;
                    }
                }
            }
        }
    }
    void staysWholeWhateverGoesWrong()
    {
        QFETCH(const QStringList, cells);
        Trial whole(cells, INT_MAX); // in which nothing goes wrong
        whole.run();
        check(whole, INT_MAX);
        QVERIFY(whole.done && whole.faults.calls.size() > 40);
        for (int at = 1; at <= whole.faults.calls.size(); ++at) {
            Trial trial(cells, at);
            trial.faults.meanwhile = [&] {
                meddle(trial);
            };
            trial.run();
            check(trial, at);
            if (QTest::currentTestFailed()) {
                qWarning("Call %d: %s %s", at, qPrintable(trial.error), qPrintable(trial.remark));
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
    /// Does what somebody else does meanwhile, if that is what goes wrong.
    void meddle(Trial& trial) const
    {
        const QString victim = trial.fault.last() == u"source" ? trial.older : trial.target;
        const QString name = QFile::decodeName(trial.faults.freeName);
        if (trial.fault[0] == u"start") { // a process of another name gets PixInsight's
            (void)QFile::rename(m_sleeper.program(), m_awake);
        } else if (trial.fault[0] == u"claim" && !name.isEmpty() && !QFile::exists(name)) {
            StoreFixture::write(name, "claimed");
            trial.claimed = name;
        } else if (trial.fault[0] == u"cut") {
            (void)QFile::resize(victim, 3);
        } else if (trial.fault[0] == u"remove") {
            (void)QFile::remove(victim);
        }
    }

    /// Holds what a run has left against what it may leave, and has it try again.
    void check(Trial& trial, int at)
    {
        const QStringList& fault = trial.fault;
        const bool byOthers = fault.last() == u"file"; // which may be neither old nor new then
        const bool ofSource = fault.last() == u"source";
        const QByteArray content = contentOf(trial.path);
        const bool isOld = content == trial.oldBytes;
        const bool isNew = content == trial.newBytes;
        const int renamed = std::max(trial.last("rename", INT_MAX, trial.target),
                                     trial.last("name", INT_MAX, trial.target));
        const bool isReplaced = renamed > 0;
        const int replacement = isReplaced ? renamed : INT_MAX;
        QVERIFY(isOld || isNew || byOthers || (fault[0] == u"lost" && isReplaced && !trial.done));
        QVERIFY(ofSource || contentOf(trial.older).contains("v=\"7\""));
        const QStringList backups = trial.found(u"*.bak-*"_s);
        for (const QString& backup : backups) { // a restore copies what it finds
            QVERIFY(contentOf(backup) == trial.oldBytes || (byOthers && trial.restore));
        }
        QVERIFY(isOld || byOthers || trial.gone || !backups.isEmpty());
        const QString name = QFileInfo(trial.gone ? trial.older : backups.value(0)).fileName();
        const QByteArray call = trial.faults.calls.value(at - 1).name;
        const int lastLook = trial.last("open", replacement);
        if (trial.done) {
            checkSuccess(trial, name);
            // What the last look and the read-back have missed.
            const int end = trial.last(fault[0] == u"cut" ? "read" : "open");
            QVERIFY(isNew || (byOthers && at >= end));
            QVERIFY(!byOthers || (at > lastLook && (at <= replacement || at >= end)) ||
                    (trial.restore && contentOf(backups.value(0)) != trial.oldBytes));
            // The last look for PixInsight comes just before the one at the file.
            QVERIFY(fault[0] != u"start" || at >= lastLook - 1);
        } else if (!trial.died) {
            const QString said = trial.error + trial.remark;
            QVERIFY(trial.kept && !trial.error.isEmpty() && !trial.error.endsWith(u": "_s));
            QVERIFY(isOld || byOthers ||
                    !(said.contains(u"Nothing was"_s) || said.contains(u"unchanged"_s)));
            QVERIFY(backups.isEmpty() || trial.remark.contains(name));
            QVERIFY(!isReplaced || trial.gone ||
                    trial.remark.startsWith(u"The file had been replaced by then."_s));
            QVERIFY(fault[0] != u"start" || trial.error.contains(u"PixInsight is running"_s));
            // It is asked about before the file is looked at.
            const QByteArray opened = trial.faults.calls.value(trial.last("open") - 1).path;
            QVERIFY(fault[0] != u"start" || backups.isEmpty() ||
                    QFile::decodeName(opened) != trial.path);
            QVERIFY(fault != QStringList({u"error"_s, u"4"_s}) ||
                    !QByteArrayList({"open", "read", "write", "flush"}).contains(call));
        }
        // Without hard links a name can be lost between the look for it and the rename.
        const bool isNaming = QByteArrayList{"seek", "close", "name", "rename"}.contains(call);
        QVERIFY(trial.claimed.isEmpty() || contentOf(trial.claimed) == "claimed" ||
                (isNaming && trial.faults.named));
        // A name that is taken before the backup is written is looked for again.
        QVERIFY(fault[0] != u"claim" || trial.done || trial.last("write", at) > 0);
        const QString what = (trial.died   ? u"killed"_s
                              : trial.done ? u"done"_s
                                           : u"failed"_s) +
                             (byOthers         ? u" where somebody else spoilt the file"_s
                              : isOld || isNew ? QString()
                                               : u" with a file that lost what was written"_s);
        ++m_counts[what];
        m_counts[u"temporary files left, "_s + what] += trial.found(u"*.??????"_s).size();
        (void)QFile::rename(m_awake, m_sleeper.program());
        if ((isOld || isNew) && !byOthers && !ofSource) {
            QVERIFY(trial.tryAgain() && contentOf(trial.path) == trial.newBytes);
        }
    }

    static void checkSuccess(const Trial& trial, const QString& name)
    {
        const QString folder = trial.linked ? u"real folder"_s : u"folder"_s;
        QString steps =
            trial.gone ? QString() : u"write backup, flush backup, read backup, flush folder, "_s;
        steps += u"write file, flush file, "_s;
        if (!trial.gone) {
            steps +=
                u"%1 backup, flush folder, "_s.arg(trial.faults.named ? u"rename"_s : u"name"_s);
        }
        steps += trial.gone && !trial.faults.named ? u"name file, "_s : u"rename file, "_s;
        if (trial.remark.isEmpty()) {
            steps += u"flush "_s + folder + u", "_s;
        } else {
            QVERIFY(trial.remark.startsWith(u"Saved, but the disk did not confirm it ("_s));
            QVERIFY(trial.remark.endsWith(u"keep the backup %1."_s.arg(name)));
        }
        if (trial.fault.last() != u"file") {
            QCOMPARE(trial.steps(), steps + u"read file"_s);
            QCOMPARE(QFile::permissions(trial.target) & 0xfff, trial.mode & 0xfff);
        }
    }

    FakePixInsight m_sleeper{u"Sleeper"_s};
    const QString m_awake = QFileInfo(m_sleeper.program()).path() + u"/PixInsight"_s;
    QMap<QString, qint64> m_counts;
};

KSE_GUILESS_TEST_MAIN(TestSaveFaults)
#include "TestSaveFaults.moc"
