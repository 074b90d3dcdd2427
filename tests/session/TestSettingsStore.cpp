// SPDX-License-Identifier: MIT
#include "session/SettingsStore.h"

#include "session/PixInsightEnv.h"
#include "support/StoreFixture.h"
#include "support/TestMain.h"
#include "support/TextRows.h"

#include <QDateTime>
#include <QRegularExpression>

#ifdef Q_OS_UNIX
#include <sys/stat.h>
#include <unistd.h>
#endif

using namespace kse;
using namespace Qt::StringLiterals;

class TestSettingsStore : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase()
    {
        if (!PixInsightEnv::runningProcessIds().isEmpty()) {
            QSKIP("A process of PixInsight's name runs here, so nothing can be saved.");
        }
    }

    /// What lies at a path, in the folder unless it is absolute, and the reason.
    void staysOpenWhenAnotherCannotBeRead_data()
    {
        addTextRows({"missing %2 > No such file or directory", "folder > Is a directory",
                     "dangling > No such file or directory",
                     "loop > Too many levels of symbolic links", "pipe > Not a regular file",
                     "/dev/zero > Not a regular file", "/proc/self/mem > Input/output error"});
    }
    void staysOpenWhenAnotherCannotBeRead()
    {
#ifdef Q_OS_UNIX
        QFETCH(const QStringList, cells);
        StoreFixture f;
        f.edit("A/x", u"2"_s);
        QVERIFY(QDir(f.dir.path()).mkdir(u"folder"_s));
        QVERIFY(QFile::link(u"nowhere"_s, f.dir.filePath(u"dangling"_s)));
        QVERIFY(QFile::link(u"loop"_s, f.dir.filePath(u"loop"_s)));
        QCOMPARE(mkfifo(QFile::encodeName(f.dir.filePath(u"pipe"_s)).constData(), 0600), 0);
        const QString before = f.state();
        const QString path = QDir(f.dir.path()).filePath(cells[0]);
        QString error;
        QVERIFY(!f.store.load(path, &error));
        QCOMPARE(error, u"Cannot read "_s + path + u": "_s + cells[1]);
        QCOMPARE(f.state(), before);
#else
        QSKIP("Links, pipes and devices like these are those of POSIX.");
#endif
    }

    void closesWhenAnotherDoesNotParse()
    {
        StoreFixture f;
        const QString other = f.dir.filePath(u"%2"_s);
        f.write(other, "text");
        QString error;
        QVERIFY(!f.store.load(other, &error));
        QCOMPARE(error, other + u" is not a valid PixInsight settings file: "
                                "Not a PixInsight settings file (no <xsdt> element)."_s);
        QVERIFY(!f.store.loaded && !f.store.isChangedOnDisk());
        QCOMPARE(f.store.path, f.path);
    }

    void seesChangesOfContentAlone()
    {
        StoreFixture f;
        QVERIFY(QFile::remove(f.path));
        QVERIFY(f.store.isChangedOnDisk());
        f.write(f.path, StoreFixture::defaultBytes()); // with a new time
        QVERIFY(!f.store.isChangedOnDisk());
        f.write(f.path, StoreFixture::defaultBytes().replace('1', '2'));
        QVERIFY(f.store.isChangedOnDisk());
    }

    void changesOneElementOnly()
    {
        const QByteArray before =
            StoreFixture::read(QStringLiteral(KSE_SOURCE_DIR "/examples/core-001-pxi.settings"));
        StoreFixture f(before);
        f.edit("CentralWidgetClients/ProcessExplorer/Height", u"<&> \u00e9 981"_s);
        QString error;
        QString backup;
        QString untouched = u"as it was"_s;
        QVERIFY2(f.store.save(&error, &backup, &untouched), qPrintable(error));
        QByteArray expected = before;
        const QByteArray start = "<i k=\"ProcessExplorer\"><v k=\"Height\" t=\"i\" v=\"";
        expected.replace(start + "980\"", start + "&lt;&amp;&gt; \xc3\xa9 981\"");
        QVERIFY(expected != before);
        const QString name = QFileInfo(f.path).fileName();
        const QMap<QString, QByteArray> files{{name, expected},
                                              {QFileInfo(backup).fileName(), before}};
        QCOMPARE(f.files(), files);
        QCOMPARE(untouched, u"as it was"_s);
        QVERIFY(f.store.document.pendingCount() == 0 && !f.store.isChangedOnDisk());
    }

    /// The file's mode, and links, each to the one before it, the first to the file.
    void keepsLinksAndMode_data()
    {
        addTextRows({"600", "664", "640 > link", "755 > sub/one > sub/two > three"});
    }
    void keepsLinksAndMode()
    {
#ifdef Q_OS_UNIX
        QFETCH(const QStringList, cells);
        StoreFixture f;
        const auto mode = static_cast<mode_t>(cells[0].toUInt(nullptr, 8));
        QCOMPARE(chmod(QFile::encodeName(f.path).constData(), mode), 0);
        const QString opened = f.linkTo(f.path, cells.mid(1));
        QVERIFY(f.store.load(opened));
        f.edit("A/x", u"2"_s);
        QString backup;
        QVERIFY(f.store.save(nullptr, &backup));
        for (const QString& link : cells.mid(1)) {
            QVERIFY(QFileInfo(f.dir.filePath(link)).isSymLink());
        }
        struct stat status = {};
        QCOMPARE(lstat(QFile::encodeName(f.path).constData(), &status), 0);
        QCOMPARE(status.st_mode, S_IFREG | mode);
        QCOMPARE(f.read(f.path), StoreFixture::defaultBytes().replace("v=\"1\"", "v=\"2\""));
        QVERIFY(backup.startsWith(opened + u".bak-"_s));
        QCOMPARE(f.read(backup), StoreFixture::defaultBytes());
#else
        QSKIP("Modes, and links that anyone may make, are those of POSIX.");
#endif
    }

    void keepsTheOwnerWhenRootSaves()
    {
#ifdef Q_OS_UNIX
        if (geteuid() != 0) {
            QSKIP("Only root saves for others.");
        }
        StoreFixture f;
        constexpr uid_t owner = 65534;
        constexpr gid_t group = 65533;
        QCOMPARE(chown(QFile::encodeName(f.path).constData(), owner, group), 0);
        QCOMPARE(chmod(QFile::encodeName(f.path).constData(), 0640), 0);
        f.edit("A/x", u"2"_s);
        QString backup;
        QVERIFY(f.store.save(nullptr, &backup));
        for (const QString& path : {f.path, backup}) {
            struct stat status = {};
            QCOMPARE(stat(QFile::encodeName(path).constData(), &status), 0);
            QCOMPARE(status.st_uid, owner);
            QCOMPARE(status.st_gid, group);
            QCOMPARE(status.st_mode, mode_t(S_IFREG | 0640));
        }
#else
        QSKIP("Root and owners by number are those of POSIX.");
#endif
    }

    void datesABackupByItsMaking()
    {
        StoreFixture f;
        const QString older = f.path + u".bak-older"_s;
        f.write(older, {});
        // The older one is of a time when the clock was ahead.
        for (const auto& [path, year] : {std::pair(f.path, 2001), std::pair(older, 2090)}) {
            QFile file(path);
            QVERIFY(file.open(QIODevice::ReadWrite) &&
                    file.setFileTime(QDateTime({year, 2, 3}, {4, 5, 6}),
                                     QFileDevice::FileModificationTime));
        }
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
        QCOMPARE(f.read(f.path),
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
        QCOMPARE(f.read(f.path), f.read(backup));
        QCOMPARE(treeText(f.store.document.root), u"b:s=\r\n\n"_s);
        QVERIFY(f.store.loaded && !f.store.isChangedOnDisk());
        QCOMPARE(f.files().size(), 3);
        const QStringList copies = QDir(f.dir.path()).entryList({u"*-before-restore"_s});
        QCOMPARE(f.read(f.dir.filePath(copies.value(0))), "changed meanwhile");
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
        QCOMPARE(f.read(f.path), StoreFixture::defaultBytes());
        QCOMPARE(QFile::permissions(f.path), mode);
        QVERIFY(!f.store.isChangedOnDisk() && remark.isEmpty());
        QCOMPARE(f.files().size(), 2);
#ifdef Q_OS_UNIX
        QVERIFY(QFile::remove(f.path) && QFile::link(u"nowhere"_s, f.path));
        QVERIFY(!f.store.restoreBackup(backup, &error, &remark)); // the disk may just be missing
        QCOMPARE(error, u"Could not back up the current file first. Nothing was changed."_s);
        QCOMPARE(remark, u"Cannot read %1: No such file or directory"_s.arg(f.path));
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
        const QByteArray deep =
            QByteArray("<i k='d'>").repeated(300'000) + QByteArray("</i>").repeated(300'000);
        QVERIFY(!same || sameTree(documentFrom(deep)->root, documentFrom(deep)->root));
    }
};

KSE_GUILESS_TEST_MAIN(TestSettingsStore)
#include "TestSettingsStore.moc"
