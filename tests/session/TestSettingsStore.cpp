// SPDX-License-Identifier: MIT
#include "session/SettingsStore.h"

#include "session/PixInsightEnv.h"
#include "support/FakePixInsight.h"
#include "support/StoreFixture.h"
#include "support/TestMain.h"

#ifdef Q_OS_UNIX
#include <sys/stat.h>
#include <unistd.h>
#endif

namespace {

/// A store with an edit and an older backup, whose save or restore meets real trouble.
struct TroubledStore : StoreFixture
{
    /// False if there is no such trouble here.
    bool make(const QString& name)
    {
        edit(u"A/x", u"2"_s);
        (void)writeFile(source, "<xsdt >\n<i k='B'/></xsdt>");
        bool made = false;
        const auto on = [&](const char* trouble, const std::function<bool()>& step) {
            made = made || (name == QLatin1String(trouble) && step());
        };
        on("closed", [&] { return !(store.loaded = false); });
        on("running", [&] { return writeFile(path, "<xsdt></xsdt>") && pixInsight.start(); });
        on("touched", [&] { return writeFile(path, defaultBytes()); }); // gives it a new time
        on("changed", [&] { return writeFile(path, defaultBytes().replace('1', '2')); });
        on("dangling", [&] { return QFile::remove(path) && QFile::link(u"nowhere"_s, path); });
        on("gone", [&] { return QFile::remove(path); });
        on("protected", [&] { return mark(u"Free") && mark(u"A/s"); });
        on("no policy", [&] { return mark(u"Free") && !(store.policy = nullptr); });
        on("no root", [&] { return !store.document.head.remove(0, 5).isEmpty(); });
        on("no character", [&] { return edit(u"A/s", QString(QChar(0xd800))); });
        on("no source", [&] { return QFile::remove(source); });
        on("text", [&] { return writeFile(source, "text"); });
#if defined(Q_OS_LINUX)
        on("folder denied", [&] { return deny(0555, true); });
        on("folder unlisted", [&] { return deny(0333, true); });
        on("others' file", [&] { return deny(0777, false); });
        on("others' folder", [&] { return deny(01777, false); });
#elif defined(Q_OS_WIN)
        on("read-only", [&] { return QFile::setPermissions(path, QFile::ReadOwner); });
        on("held", [&] { return holder.open(QIODevice::ReadOnly); }); // others can't rename it
#endif
        return made;
    }

#if defined(Q_OS_LINUX)
    ~TroubledStore()
    {
        (void)!(getuid() == 0 && seteuid(0) == 0);
        chmod(QFile::encodeName(dir.path()).constData(), 0755);
    }

    /// Sets the folder's mode. Root, who ignores modes, first becomes its owner or a stranger.
    bool deny(mode_t mode, bool isOwner)
    {
        constexpr uid_t nobody = 65534;
        const QByteArray folder = QFile::encodeName(dir.path());
        const bool isRoot = getuid() == 0;
        return (!isRoot || !isOwner ||
                (chown(folder.constData(), nobody, nobody) == 0 &&
                 chown(QFile::encodeName(path).constData(), nobody, nobody) == 0)) &&
               chmod(folder.constData(), mode) == 0 && (!isRoot || seteuid(nobody) == 0);
    }
#endif

    const QString source = path + u".bak-old"_s;
    FakePixInsight pixInsight;
    QFile holder{path};
};

} // namespace

class TestSettingsStore : public QObject
{
    Q_OBJECT

private slots:
    /// Columns: the trouble, part of a save's message, part of a restore's ("-": it isn't tried;
    /// empty: it works), part of the remark.
    void leavesEverythingAsItWas_data()
    {
        const char* const rows[] = {
            "closed > No file is loaded. > No file is loaded.",
            "running > is running. It keeps > is running. Close it before restoring",
            "changed > changed on disk since it was loaded > ",
            "touched >  > ",
            "gone > changed on disk since it was loaded > -",
            "protected > 'A/s' is protected and cannot be deleted. Stays. Nothing was > -",
            "no policy > 'Free' is protected and cannot be deleted. > -",
            "no root > does not parse back (Not a PixInsight settings file > -",
            "no character > differs after re-parsing at A/s. Nothing was written. > -",
            "no source > - > Cannot read %1.bak-old: ",
            "text > - > The backup is not a valid settings file: Not a PixInsight",
#if defined(Q_OS_LINUX)
            "dangling > - > back up the current file first. > Cannot read %1: No such file",
            ("folder denied > create the backup %1.bak-%2. Nothing > back up the current file "
             "first. Nothing > Reason: Permission denied"),
            "folder unlisted >  > -",
            "others' file >  > -",
#elif defined(Q_OS_WIN)
            "held > Cannot open %1 for writing:  > Cannot open %1 for writing:  > is unchanged",
            ("read-only > Cannot open %1 for writing:  > Cannot open %1 for writing:  > is "
             "unchanged"),
#endif
        };
        QTest::addColumn<QStringList>("cells");
        for (const char* row : rows) {
            QTest::newRow(row) << QString::fromUtf8(row).split(u" > "_s);
        }
#if defined(Q_OS_LINUX)
        if (getuid() == 0) { // who else can't make a stranger's folder
            const QString refused = u"for writing: Operation not permitted"_s;
            QTest::newRow("others' folder")
                << QStringList{u"others' folder"_s, refused, refused, u"The file is unchanged."_s};
        }
#endif
    }
    void leavesEverythingAsItWas()
    {
        QFETCH(const QStringList, cells);
        static const QRegularExpression stamp(u"\\d{8}-\\d{6}"_s);
        for (const bool restore : {false, true}) {
            TroubledStore f;
            const QString expected = QString(cells[restore ? 2 : 1]).replace(u"%1"_s, f.path);
            const QString doubt = QString(cells.value(3)).replace(u"%1"_s, f.path);
            if (expected == u"-") {
                continue;
            }
            QVERIFY(f.make(cells[0]));
            const QByteArray state = stateOf(f.store);
            const auto files = f.files();
            const QByteArray bytes = contentOf(f.path);
            QString error;
            QString backup = u"none"_s;
            QString remark;
            const bool done = restore ? f.store.restoreBackup(f.source, &error, &remark)
                                      : f.store.save(&error, &backup, &remark);
            const QString said = error.replace(stamp, u"%2"_s) + u" / "_s + remark;
            QVERIFY2(done == expected.isEmpty() && error.contains(expected), qPrintable(said));
            QVERIFY2(remark.contains(doubt) && remark.isEmpty() == doubt.isEmpty(),
                     qPrintable(said));
            auto after = f.files();
            const QStringList names = after.keys();
            const QStringList made = names.filter(stamp);
            QCOMPARE(made.size(), done && !files.isEmpty() ? 1 : doubt.count(u"made"_s));
            for (const QString& name : made) {
                QCOMPARE(after.take(name), bytes);
                QVERIFY(name.endsWith(u"-before-restore"_s) == restore &&
                        (done || remark.contains(u"The backup %1 had been made"_s.arg(name))));
            }
            if (!done) {
                QVERIFY(backup == u"none" && stateOf(f.store) == state);
                QCOMPARE(after, files);
            } else {
                QVERIFY(restore ? contentOf(f.path) == contentOf(f.source)
                                : contentOf(backup) == bytes);
                QVERIFY(!f.store.isChangedOnDisk());
            }
        }
    }

    /// Columns: a path, in the folder unless it is absolute; why it can't be opened.
    void refusesWhatCannotBeRead()
    {
#ifdef Q_OS_UNIX
        StoreFixture f;
        f.edit(u"A/x", u"2"_s);
        const QDir dir(f.dir.path());
        QVERIFY(writeFile(dir.filePath(u"%2"_s), "text"));
        QVERIFY(dir.mkdir(u"folder"_s) && QFile::link(u"nowhere"_s, dir.filePath(u"dangling"_s)));
        QCOMPARE(mkfifo(QFile::encodeName(dir.filePath(u"pipe"_s)).constData(), 0600), 0);
        const QByteArray before = stateOf(f.store);
        compareRows({"missing %2 > No such file or directory", "folder > Is a directory",
                     "dangling > No such file or directory", "pipe > Not a regular file",
                     "/dev/zero > Not a regular file", "/proc/self/mem > Input/output error",
                     "%2 > closed: is not a valid PixInsight settings file: Not a PixInsight "
                     "settings file (no <xsdt> element)."},
                    [&](const QStringList& cells) {
                        const QString path = dir.filePath(cells[0]);
                        QString error;
                        const bool isOpen =
                            !f.store.load(path, &error) && stateOf(f.store) == before;
                        error.remove(u"Cannot read "_s + path + u": "_s);
                        return isOpen ? error : error.replace(path, u"closed:"_s);
                    });
#endif
    }

    void keepsModeAndOwnerAndDatesTheBackup()
    {
#ifdef Q_OS_UNIX
        StoreFixture f;
        QVERIFY(writeFile(f.path + u".bak-older"_s, {}) &&
                writeFile(f.path + u".bak-ahead"_s, {}, QDateTime({2081, 2, 3}, {4, 5, 6})));
        const auto rights = [](const QFileInfo& file) {
            return std::tuple(file.ownerId(), file.groupId(), file.permissions());
        };
        const QByteArray name = QFile::encodeName(f.path);
        (void)!chown(name.constData(), 65534, 65533); // which only root can
        QCOMPARE(chmod(name.constData(), 0750), 0);
        const auto before = rights(QFileInfo(f.path));
        f.edit(u"A/x", u"2"_s);
        QString backup;
        QVERIFY(f.store.save(nullptr, &backup));
        QVERIFY(rights(QFileInfo(f.path)) == before && rights(QFileInfo(backup)) == before);
        QCOMPARE(PixInsightEnv::backupsOf(f.path).constFirst(), backup);
        QVERIFY(f.store.save() && f.files().size() == 4); // since there is nothing to save
#endif
    }

    /// Columns: what is compared with <i k='g'><v k='a' t='s'>1</v></i>; where it differs.
    void comparesTrees()
    {
        const auto edited = documentFrom("<i k='gone'/><i k='g'><v k='gone' t='s'></v>"
                                         "<v k='a' t='s'>1</v></i>");
        edited->root.findByPath(u"gone")->markedForDeletion = true;
        edited->root.findByPath(u"g/gone")->markedForDeletion = true;
        compareRows(
            {"<i k='g'><v k='a' t='s' v='1'/></i> > =", "<i k='g'/><i k='g'/> > ", "<i k='g'/> > g",
             "<i k='g'><i k='a'/></i> > g/a", "<i k='G'><v k='a' t='s'>1</v></i> > g",
             "<i k='g'><v k='A' t='s'>1</v></i> > g/a", "<i k='g'><v k='a' t='b'>1</v></i> > g/a",
             "<i k='g'><v k='a' t='s'>1 </v></i> > g/a"},
            [&edited](const QStringList& cells) {
                QString at;
                const auto parsed = documentFrom(cells[0].toUtf8());
                return sameTree(edited->root, parsed->root, &at) ? u"="_s : at;
            });
    }
};

KSE_GUILESS_TEST_MAIN(TestSettingsStore)
#include "TestSettingsStore.moc"
