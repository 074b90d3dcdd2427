// SPDX-License-Identifier: MIT
#include "session/SettingsStore.h"

#include "session/DurableFile.h"
#include "session/PixInsightEnv.h"
#include "support/TestMain.h"
#include "support/TextRows.h"
#include "support/TroubledStore.h"

#include <QDateTime>
#include <QRegularExpression>

#if defined(Q_OS_UNIX)
#include <sys/stat.h>
#include <unistd.h>
#elif defined(Q_OS_WIN)
#include <windows.h>
#endif

using namespace kse;
using namespace Qt::StringLiterals;

namespace {

QByteArray defaultBytesWith(const char* value)
{
    return StoreFixture::defaultBytes().replace("v=\"1\"", "v=\"" + QByteArray(value) + '"');
}

bool setTime(const QString& path, int year)
{
    QFile file(path);
    return file.open(QIODevice::ReadWrite) &&
           file.setFileTime(QDateTime({year, 2, 3}, {4, 5, 6}), QFileDevice::FileModificationTime);
}

} // namespace

class TestSettingsStore : public QObject
{
    Q_OBJECT

private slots:
    /// The trouble, what the messages of a save and of a restore hold ("-": it isn't tried), what
    /// the remark holds, and how many backups are made.
    void leavesEverythingAsItWas_data()
    {
        addTextRows({
            "closed > No file is loaded. > No file is loaded.",
                "running > is running. It keeps > is running. Close it before restoring",
                "changed > changed on disk since it was loaded > -",
                "gone > changed on disk since it was loaded > -",
                "protected > 'A/s' is protected and cannot be deleted. Stays. Nothing was > -",
                "no policy > 'Free' is protected and cannot be deleted. > -",
                "no root > does not parse back (Not a PixInsight settings file > -",
                "no character > differs after re-parsing at A/s. Nothing was written. > -",
                "no source > - > Cannot read %1.bak-old: ",
                "text > - > The backup is not a valid settings file: Not a PixInsight",
#if defined(Q_OS_LINUX)
                "folder denied > create the backup %1.bak-%2. Nothing > back up the current file "
                "first. Nothing > Reason: Permission denied",
                "no room for the backup > create the backup %1.bak-%2. > back up the current > "
                "Reason: "
                "File too large",
                "mounted read-only > create the backup %1.bak-%2. > back up the current > Reason: "
                "Read-only file system",
                "real folder denied > open %1 for writing: Permission denied > open %1 for "
                "writing: "
                "Permission denied > The file is unchanged.",
                "mounted read-only behind a link > open %1 for writing: Existing file > open %1 "
                "for "
                "writing: Existing file > The file is unchanged.",
                "no room > writing %1: File too large > - > The file is unchanged.",
                "room for a part > writing %1: File too large > - > The file is unchanged.",
                "mounted full > writing %1: No space left > writing %1: No space left > The file "
                "is "
                "unchanged.",
                "mounted alone > writing %1: Device or resource busy > writing %1: Device or "
                "resource "
                "busy > The file is unchanged. The backup %4 had been made > 1",
#elif defined(Q_OS_WIN)
                "held > Error writing %1:  > Error writing %1:  > The backup %4 had been made > 1",
                "held alone > changed on disk since it was loaded > back up the current file "
                "first.",
                "source held alone > - > Cannot read %1.bak-old: ",
                "read-only > Cannot open %1 for writing:  > Cannot open %1 for writing: ",
#endif
        });
    }
    void leavesEverythingAsItWas()
    {
        QFETCH(const QStringList, cells);
        static const QRegularExpression stamp(u"\\d{8}-\\d{6}"_s);
        for (const bool restore : {false, true}) {
            QString expected = cells.value(restore ? 2 : 1);
            if (expected == u"-") {
                continue;
            }
            TroubledStore f;
            if (!f.make(cells[0])) {
#ifdef Q_OS_UNIX
                QVERIFY(cells[0].startsWith(u"mounted"_s) && geteuid() != 0);
#endif
                QSKIP("Only root can mount.");
            }
            const QString state = stateOf(f.store);
            const auto files = f.files();
            QString error;
            QString backup = u"none"_s;
            QString remark;
            QVERIFY(!f.run(restore, &error, &backup, &remark));
            QVERIFY2(error.replace(stamp, u"%2"_s).contains(expected.replace(u"%1"_s, f.path)),
                     qPrintable(error));
            QCOMPARE(backup, u"none"_s);
            QCOMPARE(stateOf(f.store), state);
            auto after = f.files();
            const QStringList made = after.keys().filter(stamp);
            QCOMPARE(made.size(), cells.value(4).toInt());
            QVERIFY2(remark.contains(cells.value(3).replace(u"%4"_s, made.value(0))) &&
                         remark.isEmpty() == cells.value(3).isEmpty(),
                     qPrintable(remark));
            for (const QString& name : made) {
                QCOMPARE(after.take(name), StoreFixture::defaultBytes());
            }
            QCOMPARE(after, files);
        }
    }

    /// What lies at a path, in the folder unless it is absolute, and the reason.
    void staysOpenWhenAnotherCannotBeRead_data()
    {
        addTextRows({
#ifdef Q_OS_UNIX
            "missing %2 > No such file or directory", "folder > Is a directory",
            "dangling > No such file or directory", "loop > Too many levels of symbolic links",
            "pipe > Not a regular file", "/dev/zero > Not a regular file",
            "/proc/self/mem > Input/output error"
#else
            "missing %2 > ", "folder > Not a regular file", "NUL > Not a regular file"
#endif
        });
    }
    void staysOpenWhenAnotherCannotBeRead()
    {
        QFETCH(const QStringList, cells);
        StoreFixture f;
        f.edit("A/x", u"2"_s);
        QVERIFY(QDir(f.dir.path()).mkdir(u"folder"_s));
#ifdef Q_OS_UNIX
        QVERIFY(QFile::link(u"nowhere"_s, f.dir.filePath(u"dangling"_s)));
        QVERIFY(QFile::link(u"loop"_s, f.dir.filePath(u"loop"_s)));
        QCOMPARE(mkfifo(QFile::encodeName(f.dir.filePath(u"pipe"_s)).constData(), 0600), 0);
#endif
        const QString before = stateOf(f.store);
        const QString path = QDir(f.dir.path()).filePath(cells[0]);
        QString error;
        QVERIFY(!f.store.load(path, &error));
        QVERIFY2(error.startsWith(u"Cannot read "_s + path + u": "_s + cells[1]),
                 qPrintable(error));
        QCOMPARE(stateOf(f.store), before);
    }

    void closesWhenAnotherDoesNotParse()
    {
        StoreFixture f;
        const QString other = f.dir.filePath(u"%2"_s);
        f.write(other, "text");
        QString error;
        QVERIFY(!f.store.load(other, &error));
        QVERIFY(error.startsWith(other + u" is not a valid PixInsight settings file: Not a"_s));
        QVERIFY(!f.store.loaded && !f.store.isChangedOnDisk());
        QCOMPARE(f.store.path, f.path);
    }

    void seesChangesOfContentAlone()
    {
        StoreFixture f;
        QVERIFY(QFile::remove(f.path) && f.store.isChangedOnDisk());
        f.write(f.path, StoreFixture::defaultBytes()); // with a new time
        QVERIFY(!f.store.isChangedOnDisk());
        f.write(f.path, StoreFixture::defaultBytes().replace('1', '2'));
        QVERIFY(f.store.isChangedOnDisk());
    }

    /// In folders of any name, the last with a path of more than 260 characters.
    void changesOneElementOnly_data()
    {
        addTextRows({"Jürgen Gößler %1", "Пользователь 用户 \U0001f600", "%longer"});
    }
    void changesOneElementOnly()
    {
        QFETCH(QStringList, cells);
        const QString folder =
            cells[0].replace(u"%longer"_s, (QString(50, u'a') + u'/').repeated(6));
        StoreFixture f(contentOf(QStringLiteral(KSE_SOURCE_DIR "/examples/core-001-pxi.settings")));
        const QByteArray before = contentOf(f.path);
        const QString path = QDir::cleanPath(f.dir.filePath(folder)) + u"/core-001-pxi.settings"_s;
        QVERIFY(QDir().mkpath(QFileInfo(path).path()) && QFile::rename(f.path, path));
        QVERIFY(f.store.load(path));
        f.edit("CentralWidgetClients/ProcessExplorer/Height", u"<&> \u00e9 981"_s);
        QString error;
        QString backup;
        QString untouched = u"as it was"_s;
        QVERIFY2(f.store.save(&error, &backup, &untouched), qPrintable(error));
        QByteArray expected = before;
        const QByteArray start = "<i k=\"ProcessExplorer\"><v k=\"Height\" t=\"i\" v=\"";
        expected.replace(start + "980\"", start + "&lt;&amp;&gt; \xc3\xa9 981\"");
        QVERIFY(expected != before && contentOf(path) == expected && contentOf(backup) == before);
        QCOMPARE(untouched, u"as it was"_s);
        QVERIFY(f.store.document.pendingCount() == 0 && !f.store.isChangedOnDisk());
        const QFileInfo file(path);
        QCOMPARE(file.dir().entryList(QDir::Files | QDir::Hidden),
                 (QStringList{file.fileName(), QFileInfo(backup).fileName()}));
    }

    /// The file's mode, its owner unless that is this user, and links, each to the one before it.
    void keepsLinksModeAndOwner_data()
    {
#ifdef Q_OS_UNIX
        addTextRows({"600 > ", "664 > ", "640 >  > link", "755 >  > sub/one > sub/two > three",
                     "640 > 65534"});
    }
    void keepsLinksModeAndOwner()
    {
        QFETCH(const QStringList, cells);
        StoreFixture f;
        const QByteArray name = QFile::encodeName(f.path);
        const mode_t mode = S_IFREG | static_cast<mode_t>(cells[0].toUInt(nullptr, 8));
        if (!cells[1].isEmpty() && chown(name.constData(), cells[1].toUInt(), 65533) != 0) {
            QSKIP("Only root saves for others.");
        }
        QCOMPARE(chmod(name.constData(), mode), 0);
        QString opened = f.path;
        for (const QString& link : cells.mid(2)) {
            const QFileInfo made(f.dir.filePath(link));
            QVERIFY(made.dir().mkpath(u"."_s));
            QVERIFY(QFile::link(made.absoluteDir().relativeFilePath(opened), made.filePath()));
            opened = made.filePath();
        }
        QVERIFY(f.store.load(opened));
        struct stat before = {};
        QCOMPARE(stat(name.constData(), &before), 0);
        f.edit("A/x", u"2"_s);
        QString backup;
        QVERIFY(f.store.save(nullptr, &backup) && backup.startsWith(opened + u".bak-"_s));
        for (const QString& link : cells.mid(2)) {
            QVERIFY(QFileInfo(f.dir.filePath(link)).isSymLink());
        }
        for (const QString& path : {f.path, backup}) {
            struct stat status = {};
            QCOMPARE(lstat(QFile::encodeName(path).constData(), &status), 0);
            QVERIFY(status.st_uid == before.st_uid && status.st_gid == before.st_gid);
            QCOMPARE(status.st_mode, path == backup ? mode | S_IRUSR | S_IWUSR : mode);
        }
        QCOMPARE(contentOf(f.path), defaultBytesWith("2"));
        QCOMPARE(contentOf(backup), StoreFixture::defaultBytes());
#endif
    }

    void savesInAFolderThatCannotBeListed()
    {
#ifdef Q_OS_LINUX
        TroubledStore f;
        QVERIFY(f.make(u"folder unlisted"_s));
        QString error;
        QString backup;
        QString remark;
        QVERIFY2(f.run(false, &error, &backup, &remark), qPrintable(error));
        QVERIFY(remark.isEmpty() && contentOf(backup) == StoreFixture::defaultBytes());
#endif
    }

    void letsOthersReplaceWhatItReads()
    {
        const StoreFixture f;
        QFile file;
        QVERIFY(openRegular(file, f.path));
        QVERIFY(QFile::rename(f.path, f.path + u".old"_s) && f.write(f.path, "new"));
        QCOMPARE(file.readAll(), StoreFixture::defaultBytes());
    }

    void datesABackupByItsMaking()
    {
        StoreFixture f;
        const QString older = f.path + u".bak-older"_s;
        const QString oldest = f.path + u".bak-oldest"_s;
        f.write(older, {});
        f.write(oldest, {});
        // The older one is of a time when the clock was ahead.
        QVERIFY(setTime(f.path, 2001) && setTime(older, 2090) && setTime(oldest, 2000));
        f.edit("A/x", u"2"_s);
        const QDateTime before = QDateTime::currentDateTime().addSecs(-2);
        QString backup;
        QVERIFY(f.store.save(nullptr, &backup));
        QCOMPARE(PixInsightEnv::backupsOf(f.path).constFirst(), backup);
        QVERIFY(QFile::remove(older) && QFile::remove(backup));
        f.edit("A/x", u"3"_s);
        QVERIFY(f.store.save(nullptr, &backup));
        const QDateTime time = QFileInfo(backup).lastModified();
        QVERIFY(time > before && time <= QDateTime::currentDateTime());
    }

    void writesAnyLayoutCompactlyAndOnlyChanges()
    {
        StoreFixture f("pre <xsdt>\n <i k='Free'>\n  <v v='1' t='i' k='a'/> </i>\n <v k='b' "
                       "t='s'>2</v>\n</xsdt>\n\n");
        f.mark("Free/a");
        f.edit("b", u"3"_s);
        QVERIFY(f.store.save());
        QCOMPARE(contentOf(f.path),
                 "pre <xsdt><i k=\"Free\"></i><v k=\"b\" t=\"s\">3</v></xsdt>\n\n"_ba);
        f.edit("b", u"4"_s);
        f.edit("b", u"3"_s);
        f.write(f.path, "changed meanwhile");
        QString backup = u"none"_s;
        QVERIFY(f.store.save(nullptr, &backup));
        QCOMPARE(backup, u"none"_s);
        QCOMPARE(f.files().size(), 2);
    }

    void numbersBackupsOfOneSecond()
    {
        StoreFixture f;
        QString first;
        QString second;
        do { // until no second ends in between
            first = f.store.backupName(u"why"_s);
            f.write(first, {});
            second = f.store.backupName(u"why"_s);
        } while (!second.startsWith(first));
        QCOMPARE(second, first + u"-2"_s);
        static const QRegularExpression form(u"^\\.bak-20\\d{6}-\\d{6}-why$"_s);
        QVERIFY(form.match(first.mid(f.path.size())).hasMatch());
    }

    void restoresTheBytesOfABackup()
    {
        StoreFixture f;
        const QString backup = f.path + u".bak-%1"_s;
        f.write(backup, "<xsdt >\n<v k='b' t='s'>\r\n</v></xsdt>\n");
        f.edit("A/x", u"2"_s);
        f.write(f.path, "changed meanwhile");
        QString error;
        QVERIFY2(f.store.restoreBackup(backup, &error), qPrintable(error));
        QCOMPARE(contentOf(f.path), contentOf(backup));
        QCOMPARE(treeText(f.store.document.root), u"b:s=\r\n\n"_s);
        QVERIFY(f.store.loaded && !f.store.isChangedOnDisk());
        QCOMPARE(f.files().size(), 3);
        const QStringList copies = QDir(f.dir.path()).entryList({u"*-before-restore"_s});
        QCOMPARE(contentOf(f.dir.filePath(copies.value(0))), "changed meanwhile");
    }

    void bringsBackWhatIsGone()
    {
        StoreFixture f;
        f.edit("A/x", u"2"_s);
        QString backup;
        QVERIFY(f.store.save(nullptr, &backup));
        QVERIFY(QFile::setPermissions(backup, QFile::ReadOwner));
        const QFileDevice::Permissions mode = QFile::permissions(backup);
        QVERIFY(QFile::remove(f.path));
        QString error;
        QString remark;
        QVERIFY2(f.store.restoreBackup(backup, &error, &remark), qPrintable(error));
        QCOMPARE(contentOf(f.path), StoreFixture::defaultBytes());
        QCOMPARE(QFile::permissions(f.path), mode);
        QVERIFY(!f.store.isChangedOnDisk() && remark.isEmpty() && f.files().size() == 2);
#ifdef Q_OS_UNIX
        QVERIFY(QFile::remove(f.path) && QFile::link(u"nowhere"_s, f.path));
        QVERIFY(!f.store.restoreBackup(backup, &error, &remark)); // the disk may just be missing
        QVERIFY(error.startsWith(u"Could not back up the current file first."_s));
        QVERIFY(remark.endsWith(u"Cannot read %1: No such file or directory"_s.arg(f.path)));
#endif
    }

    /// What is compared with <i k='g'><v k='a' t='s'>1</v></i>, and where it differs, if at all.
    void comparesTrees_data()
    {
        addTextRows(
            {"<i k='g'><v k='a' t='s' v='1'/></i> > =", "<i k='g'/><i k='g'/> > ", "<i k='g'/> > g",
             "<i k='g'><i k='a'/></i> > g/a", "<i k='G'><v k='a' t='s'>1</v></i> > g",
             "<i k='g'><v k='A' t='s'>1</v></i> > g/a", "<i k='g'><v k='a' t='b'>1</v></i> > g/a",
             "<i k='g'><v k='a' t='s'>1 </v></i> > g/a"});
    }
    void comparesTrees()
    {
        QFETCH(const QStringList, cells);
        const auto edited = documentFrom("<i k='gone'><i k='x'/></i><i k='g'><v k='gone' t='s'>"
                                         "</v><v k='a' t='s'>1</v></i>");
        edited->root.findByPath(u"gone")->markedForDeletion = true;
        edited->root.findByPath(u"g/gone")->markedForDeletion = true;
        QString at = u"="_s;
        const bool same = sameTree(edited->root, documentFrom(cells[0].toUtf8())->root, &at);
        QCOMPARE(at, cells[1]);
        QCOMPARE(same, at == u"="_s);
        const QByteArray deep = deepFile(300'000);
        QVERIFY(!same || sameTree(documentFrom(deep)->root, documentFrom(deep)->root));
    }
};

KSE_GUILESS_TEST_MAIN(TestSettingsStore)
#include "TestSettingsStore.moc"
