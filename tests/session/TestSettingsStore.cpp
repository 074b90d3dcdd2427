// SPDX-License-Identifier: MIT
#include "session/SettingsStore.h"

#include "session/PixInsightEnv.h"
#include "support/FakePixInsight.h"
#include "support/StoreFixture.h"
#include "support/TestMain.h"

#include <QRegularExpression>
#include <QTest>

#ifdef Q_OS_UNIX
#include <sys/stat.h>
#endif

using namespace kse;
using namespace Qt::StringLiterals;

class TestSettingsStore : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase();
    void staysOpenWhenAnotherCannotBeRead_data();
    void staysOpenWhenAnotherCannotBeRead();
    void closesWhenAnotherDoesNotParse();
    void seesChangesOfContentAlone();
    void changesOneElementOnly();
    void keepsLinksAndMode_data();
    void keepsLinksAndMode();
    void writesAnyLayoutCompactly();
    void doesNothingWithoutChanges();
    void numbersBackupsOfOneSecond();
    void restoresTheBytesOfABackup();
    void refusesToRestore_data();
    void refusesToRestore();
    void comparesTrees_data();
    void comparesTrees();
    void comparesDeepTrees();
};

void TestSettingsStore::initTestCase()
{
    if (!PixInsightEnv::runningProcessIds().isEmpty()) {
        QSKIP("A process of PixInsight's name runs on this computer, so nothing can be saved.");
    }
}

void TestSettingsStore::staysOpenWhenAnotherCannotBeRead_data()
{
    QTest::addColumn<QString>("name"); // in the folder, unless absolute
    QTest::addColumn<QString>("reason");
    QTest::newRow("missing") << u"a %2 b"_s << u"No such file or directory"_s;
    QTest::newRow("folder") << u"folder"_s << u"Is a directory"_s;
#ifdef Q_OS_LINUX
    QTest::newRow("dangling link") << u"dangling"_s << u"No such file or directory"_s;
    QTest::newRow("loop") << u"loop"_s << u"Too many levels of symbolic links"_s;
    QTest::newRow("pipe") << u"pipe"_s << u"Not a regular file"_s;
    QTest::newRow("device") << u"/dev/zero"_s << u"Not a regular file"_s;
    QTest::newRow("read error") << u"/proc/self/mem"_s << u"Input/output error"_s;
#endif
}

void TestSettingsStore::staysOpenWhenAnotherCannotBeRead()
{
    QFETCH(const QString, name);
    QFETCH(const QString, reason);
    StoreFixture f;
    f.edit("A/x", u"2"_s);
    QVERIFY(QDir(f.dir.path()).mkdir(u"folder"_s));
    QVERIFY(QFile::link(u"nowhere"_s, f.dir.filePath(u"dangling"_s)));
    QVERIFY(QFile::link(u"loop"_s, f.dir.filePath(u"loop"_s)));
#ifdef Q_OS_UNIX
    QCOMPARE(mkfifo(QFile::encodeName(f.dir.filePath(u"pipe"_s)).constData(), 0600), 0);
#endif
    const QString before = f.state();
    const QString path = QDir(f.dir.path()).filePath(name);
    QString error;
    QVERIFY(!f.store.load(path, &error));
    QCOMPARE(error, u"Cannot read "_s + path + u": "_s + reason);
    QCOMPARE(f.state(), before);
    QVERIFY(!f.store.load(path)); // silent
}

void TestSettingsStore::closesWhenAnotherDoesNotParse()
{
    StoreFixture f;
    const QString other = f.dir.filePath(u"%2"_s);
    StoreFixture::write(other, "text");
    QString error;
    QVERIFY(!f.store.load(other, &error));
    QCOMPARE(error, other + u" is not a valid PixInsight settings file: "
                            "Not a PixInsight settings file (no <xsdt> element)."_s);
    QVERIFY(!f.store.loaded);
    QCOMPARE(f.store.path, f.path);
    QVERIFY(!f.store.isChangedOnDisk());
    QVERIFY(!f.store.save(&error));
    QCOMPARE(error, u"No file is loaded."_s);
    QVERIFY(f.store.load(f.path));
}

void TestSettingsStore::seesChangesOfContentAlone()
{
    StoreFixture f;
    QVERIFY(!f.store.isChangedOnDisk());
    QVERIFY(QFile::remove(f.path));
    QVERIFY(f.store.isChangedOnDisk());
    StoreFixture::write(f.path, StoreFixture::defaultBytes()); // with a new time
    QVERIFY(!f.store.isChangedOnDisk());
    StoreFixture::write(f.path, StoreFixture::defaultBytes().replace('1', '2'));
    QVERIFY(f.store.isChangedOnDisk());
}

void TestSettingsStore::changesOneElementOnly()
{
    const QByteArray before =
        StoreFixture::read(QStringLiteral(KSE_SOURCE_DIR "/examples/core-001-pxi.settings"));
    StoreFixture f(before);
    QVERIFY(f.store.document.defaultLayout);
    f.edit("CentralWidgetClients/ProcessExplorer/Height", u"<&> \u00e9 981"_s);
    QString error;
    QString backup;
    QString untouched = u"as it was"_s;
    QVERIFY2(f.store.save(&error, &backup, &untouched), qPrintable(error));

    const QByteArray old = "<i k=\"ProcessExplorer\"><v k=\"Height\" t=\"i\" v=\"980\"/>";
    QByteArray expected = before;
    expected.replace(before.indexOf(old), old.size(),
                     "<i k=\"ProcessExplorer\"><v k=\"Height\" t=\"i\" "
                     "v=\"&lt;&amp;&gt; \xc3\xa9 981\"/>");
    QCOMPARE(StoreFixture::read(f.path), expected);
    QCOMPARE(StoreFixture::read(backup), before);
    QCOMPARE(PixInsightEnv::backupsOf(f.path), {backup});
    QCOMPARE(f.files().size(), 2);
    QCOMPARE(untouched, u"as it was"_s);
    QCOMPARE(f.store.document.pendingCount(), 0);
    QVERIFY(!f.store.isChangedOnDisk());
}

void TestSettingsStore::keepsLinksAndMode_data()
{
    QTest::addColumn<int>("mode");
    QTest::addColumn<QStringList>("links"); // each to the one before it, the first to the file
    QTest::newRow("0600") << 0600 << QStringList();
    QTest::newRow("0664") << 0664 << QStringList();
    QTest::newRow("link") << 0640 << QStringList{u"link"_s};
    QTest::newRow("chain") << 0755 << QStringList{u"sub/one"_s, u"sub/two"_s, u"three"_s};
}

void TestSettingsStore::keepsLinksAndMode()
{
#ifndef Q_OS_UNIX
    QSKIP("Modes and symbolic links are those of other systems.");
#else
    QFETCH(const int, mode);
    QFETCH(const QStringList, links);
    StoreFixture f;
    QVERIFY(QDir(f.dir.path()).mkdir(u"sub"_s));
    QCOMPARE(chmod(QFile::encodeName(f.path).constData(), static_cast<mode_t>(mode)), 0);
    QString opened = f.path;
    for (const QString& link : links) {
        const QString path = f.dir.filePath(link);
        const QString target = QFileInfo(path).absoluteDir().relativeFilePath(opened);
        QVERIFY(QFile::link(target, path));
        opened = path;
    }
    QVERIFY(f.store.load(opened));
    f.edit("A/x", u"2"_s);
    QString error;
    QString backup;
    QVERIFY2(f.store.save(&error, &backup), qPrintable(error));
    for (const QString& link : links) {
        QVERIFY(QFileInfo(f.dir.filePath(link)).isSymLink());
    }
    QVERIFY(!QFileInfo(f.path).isSymLink());
    QVERIFY(StoreFixture::read(f.path).contains("v=\"2\""));
    struct stat status = {};
    QCOMPARE(stat(QFile::encodeName(f.path).constData(), &status), 0);
    QCOMPARE(static_cast<int>(status.st_mode & 07777), mode);
    QVERIFY(backup.startsWith(opened + u".bak-"_s));
    QCOMPARE(StoreFixture::read(backup), StoreFixture::defaultBytes());
#endif
}

void TestSettingsStore::writesAnyLayoutCompactly()
{
    StoreFixture f("pre <xsdt>\n <i k='Free'>\n  <v v='1' t='i' k='a'/> </i>\n <v k='b' t='s'>2"
                   "</v>\n</xsdt>\n\n");
    f.mark("Free/a");
    f.edit("b", u"3"_s);
    QString error;
    QVERIFY2(f.store.save(&error), qPrintable(error));
    QCOMPARE(StoreFixture::read(f.path),
             "pre <xsdt><i k=\"Free\"></i><v k=\"b\" t=\"s\">3</v></xsdt>\n\n"_ba);
    QCOMPARE(treeText(f.store.document.root), u"Free\nb:s=3\n"_s);
    QVERIFY(!f.store.document.defaultLayout);
}

void TestSettingsStore::doesNothingWithoutChanges()
{
    StoreFixture f;
    f.edit("A/x", u"2"_s);
    f.edit("A/x", u"1"_s);
    const QString before = f.state();
    StoreFixture::write(f.path, "changed meanwhile");
    QString backup = u"none"_s;
    QVERIFY(f.store.save(nullptr, &backup));
    QCOMPARE(backup, u"none"_s);
    QCOMPARE(f.files().size(), 1);
    QCOMPARE(f.state(), before);
}

void TestSettingsStore::numbersBackupsOfOneSecond()
{
    StoreFixture f;
    QString first;
    QString second;
    do { // until no second ends in between
        first = f.store.backupName(u"why"_s);
        StoreFixture::write(first, {});
        second = f.store.backupName(u"why"_s);
    } while (!second.startsWith(first));
    QCOMPARE(second, first + u"-2"_s);
    static const QRegularExpression form(u"^\\.bak-20\\d{6}-\\d{6}-why$"_s);
    QVERIFY(form.match(first.mid(f.path.size())).hasMatch());
}

void TestSettingsStore::restoresTheBytesOfABackup()
{
    StoreFixture f;
    const QString backup = f.path + u".bak-%1"_s;
    const QByteArray bytes = "<xsdt >\n<v k='b' t='s'>\r\n</v></xsdt>\n";
    StoreFixture::write(backup, bytes);
    f.edit("A/x", u"2"_s);
    StoreFixture::write(f.path, "changed meanwhile");
    QString error;
    QVERIFY2(f.store.restoreBackup(backup, &error), qPrintable(error));
    QCOMPARE(StoreFixture::read(f.path), bytes);
    QCOMPARE(treeText(f.store.document.root), u"b:s=\r\n\n"_s);
    QCOMPARE(f.store.document.pendingCount(), 0);
    QVERIFY(f.store.loaded && !f.store.isChangedOnDisk());
    QCOMPARE(f.files().size(), 3);
    const QStringList copies = QDir(f.dir.path()).entryList({u"*-before-restore"_s});
    QCOMPARE(copies.size(), 1);
    QCOMPARE(StoreFixture::read(f.dir.filePath(copies.first())), "changed meanwhile");
}

void TestSettingsStore::refusesToRestore_data()
{
    QTest::addColumn<QString>("fault");
    QTest::addColumn<QString>("message");
    QTest::newRow("closed") << u"closed"_s << u"No file is loaded."_s;
    QTest::newRow("running") << u"running"_s
                             << u"PixInsight is running. Close it before restoring a backup."_s;
    QTest::newRow("missing") << u"missing"_s << u"Cannot read %1: No such file or directory"_s;
    QTest::newRow("text") << u"text"_s
                          << u"The backup is not a valid settings file: "
                             "Not a PixInsight settings file (no <xsdt> element)."_s;
    QTest::newRow("file gone") << u"gone"_s
                               << u"Could not back up the current file first. "
                                  "Nothing was changed."_s;
}

void TestSettingsStore::refusesToRestore()
{
    QFETCH(const QString, fault);
    QFETCH(const QString, message);
    StoreFixture f;
    const QString backup = f.path + u".bak-1"_s;
    f.edit("A/x", u"2"_s);
    FakePixInsight process;
    if (fault != u"missing"_s) {
        StoreFixture::write(backup, fault == u"text"_s ? "text" : StoreFixture::defaultBytes());
    }
    QVERIFY(fault != u"running"_s || process.start());
    QVERIFY(fault != u"gone"_s || QFile::remove(f.path));
    f.store.loaded = fault != u"closed"_s;
    const QString before = f.state();
    const auto files = f.files();
    QString error;
    QString recover;
    QVERIFY(!f.store.restoreBackup(backup, &error, &recover));
    QCOMPARE(error, message.contains(u"%1"_s) ? message.arg(backup) : message);
    QVERIFY(recover.isEmpty());
    QCOMPARE(f.state(), before);
    QCOMPARE(f.files(), files);
}

void TestSettingsStore::comparesTrees_data()
{
    QTest::addColumn<QByteArray>("parsed"); // compared with <i k="g"><v k="a" t="s">1</v></i>
    QTest::addColumn<QString>("differsAt"); // "=" for equal trees
    QTest::newRow("equal") << "<i k=\"g\"><v k=\"a\" t=\"s\" v=\"1\"/></i>"_ba << u"="_s;
    QTest::newRow("more at the root") << "<i k=\"g\"/><i k=\"g\"/>"_ba << u""_s;
    QTest::newRow("fewer") << "<i k=\"g\"/>"_ba << u"g"_s;
    QTest::newRow("kind") << "<i k=\"g\"><i k=\"a\"/></i>"_ba << u"g/a"_s;
    QTest::newRow("key of a group") << "<i k=\"G\"><v k=\"a\" t=\"s\">1</v></i>"_ba << u"g"_s;
    QTest::newRow("key") << "<i k=\"g\"><v k=\"A\" t=\"s\">1</v></i>"_ba << u"g/a"_s;
    QTest::newRow("type") << "<i k=\"g\"><v k=\"a\" t=\"b\">1</v></i>"_ba << u"g/a"_s;
    QTest::newRow("value") << "<i k=\"g\"><v k=\"a\" t=\"s\">1 </v></i>"_ba << u"g/a"_s;
}

void TestSettingsStore::comparesTrees()
{
    QFETCH(const QByteArray, parsed);
    QFETCH(const QString, differsAt);
    const auto edited = documentFrom("<i k=\"gone\"><i k=\"x\"/></i><i k=\"g\"><v k=\"gone\" "
                                     "t=\"s\"></v><v k=\"a\" t=\"s\">1</v></i>");
    edited->root.findByPath(u"gone")->markedForDeletion = true;
    edited->root.findByPath(u"g/gone")->markedForDeletion = true;
    QString at = u"="_s;
    QCOMPARE(sameTree(edited->root, documentFrom(parsed)->root, &at), differsAt == u"="_s);
    QCOMPARE(at, differsAt);
}

void TestSettingsStore::comparesDeepTrees()
{
    const QByteArray deep =
        QByteArray("<i k=\"d\">").repeated(300'000) + QByteArray("</i>").repeated(300'000);
    QVERIFY(sameTree(documentFrom(deep)->root, documentFrom(deep)->root));
}

KSE_GUILESS_TEST_MAIN(TestSettingsStore)
#include "TestSettingsStore.moc"
