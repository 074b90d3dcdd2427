// SPDX-License-Identifier: MIT
#include "session/PixInsightEnv.h"

#include "support/FakePixInsight.h"
#include "support/TestMain.h"

#include <QDateTime>
#include <QStandardPaths>
#include <QTest>

using namespace kse;
using namespace Qt::StringLiterals;

namespace {

/// Writes `size` bytes to the file at `path`, whose folder is made, `age` seconds before noon.
void touch(const QString& path, int age = 0, int size = 0)
{
    QVERIFY(QFileInfo(path).absoluteDir().mkpath(u"."_s));
    QFile file(path);
    QVERIFY(file.open(QIODevice::WriteOnly));
    QCOMPARE(file.write(QByteArray(size, 'x')), size);
    QVERIFY(file.flush());
    const QDateTime noon(QDate(2026, 3, 11), QTime(12, 0));
    QVERIFY(file.setFileTime(noon.addSecs(-age), QFileDevice::FileModificationTime));
}

/// The paths in `list`, which lie beneath `dir`, without it.
QStringList beneath(const QTemporaryDir& dir, QStringList list)
{
    return list.replaceInStrings(dir.path() + u'/', QString());
}

} // namespace

class TestPixInsightEnv : public QObject
{
    Q_OBJECT

private slots:
    void knowsTheNamesOfPixInsight_data();
    void knowsTheNamesOfPixInsight();
    void listsFoldersOfEveryPlatform_data();
    void listsFoldersOfEveryPlatform();
    void findsSettingsFilesInOrder();
    void describesFiles_data();
    void describesFiles();
    void listsBackupsByTheirTime();
    void removesBackupsAlone_data();
    void removesBackupsAlone();
};

void TestPixInsightEnv::knowsTheNamesOfPixInsight_data()
{
    QTest::addColumn<QString>("name");
    QTest::addColumn<bool>("known");
    QTest::newRow("exe") << u"pixinsight.EXE"_s << true;
    QTest::newRow("plain") << u"PIXINSIGHT"_s << true;
    QTest::newRow("longer") << u"PixInsight2"_s << false;
    QTest::newRow("shell") << u"PixInsight.sh"_s << false;
}

void TestPixInsightEnv::knowsTheNamesOfPixInsight()
{
    QFETCH(const QString, name);
    QFETCH(const bool, known);
    const QList<quint64> before = PixInsightEnv::runningProcessIds();
    FakePixInsight process(name);
    if (known) {
        QVERIFY(process.start());
        QCOMPARE(PixInsightEnv::runningProcessIds().count(process.processId()), 1);
        QVERIFY(process.stop());
    } else {
        QVERIFY(process.startUnseen());
    }
    QCOMPARE(PixInsightEnv::runningProcessIds(), before);
}

void TestPixInsightEnv::listsFoldersOfEveryPlatform_data()
{
    QTest::addColumn<HostPlatform>("platform");
    QTest::addColumn<QStringList>("given"); // home, APPDATA, generic configuration
    QTest::addColumn<QString>("folders");
    QTest::newRow("windows") << HostPlatform::Windows
                             << QStringList{u""_s, u"C:\\Users\\a\\AppData\\Roaming"_s, u"/c"_s}
                             << u"C:/Users/a/AppData/Roaming/Pleiades"_s;
    QTest::newRow("windows without")
        << HostPlatform::Windows << QStringList{u"C:/a"_s, {}, {}} << QString();
    QTest::newRow("mac") << HostPlatform::MacOs << QStringList{u"/Users/a"_s, u"C:/x"_s, u"/c"_s}
                         << u"/Users/a/Library/PixInsight|/Users/a/Library/PixInsight-x64|"
                            "/Users/a/Library/Application Support/Pleiades|"
                            "/Library/Application Support/Pleiades|/Users/a/.config/Pleiades"_s;
    QTest::newRow("linux") << HostPlatform::Linux << QStringList{u"/home/a"_s, {}, u"/cfg"_s}
                           << u"/home/a/.PixInsight|/cfg/Pleiades|/home/a/.config/Pleiades"_s;
    QTest::newRow("linux, one folder twice")
        << HostPlatform::Linux << QStringList{u"/home/a"_s, {}, u"/home/a/.config"_s}
        << u"/home/a/.PixInsight|/home/a/.config/Pleiades"_s;
    QTest::newRow("linux without") << HostPlatform::Linux << QStringList{u"/home/a"_s, {}, {}}
                                   << u"/home/a/.PixInsight|/home/a/.config/Pleiades"_s;
    QTest::newRow("unknown") << HostPlatform(7) << QStringList{u"/a"_s, u"/b"_s, u"/c"_s}
                             << QString();
}

void TestPixInsightEnv::listsFoldersOfEveryPlatform()
{
    QFETCH(const HostPlatform, platform);
    QFETCH(const QStringList, given);
    QFETCH(const QString, folders);
    QCOMPARE(PixInsightEnv::settingsFoldersFor(platform, given[0], given[1], given[2]).join(u'|'),
             folders);
}

void TestPixInsightEnv::findsSettingsFilesInOrder()
{
    const QStringList folders = PixInsightEnv::settingsFolders();
    QVERIFY(PixInsightEnv::findSettingsFiles().isEmpty());
    const QString first = QDir(folders.first()).absolutePath() + u'/';
    const QString last = QDir(folders.last()).absolutePath() + u'/';
    touch(last + u"core-001-pxi.settings"_s);
    touch(first + u"core-x-pxi.settings"_s);
    touch(first + u"core-002-pxi.settings"_s);
    touch(first + u"core-002-pxi.settings.bak-1"_s);
    QVERIFY(QDir(first).mkdir(u"core-000-pxi.settings"_s));
    const QStringList expected{first + u"core-002-pxi.settings"_s, first + u"core-x-pxi.settings"_s,
                               last + u"core-001-pxi.settings"_s};
    QCOMPARE(PixInsightEnv::findSettingsFiles(), expected);
}

void TestPixInsightEnv::describesFiles_data()
{
    QTest::addColumn<QString>("path");
    QTest::addColumn<QString>("text"); // without the time
    QTest::newRow("usual") << u"Pleiades/core-001-pxi.settings"_s
                           << u"core-001-pxi.settings - instance 1, 1 KiB"_s;
    QTest::newRow("folder") << u"Desktop/core-012-pxi.settings"_s
                            << u"core-012-pxi.settings [Desktop] - instance 12, 1 KiB"_s;
    QTest::newRow("other case") << u"pleiades/core-000-pxi.settings"_s
                                << u"core-000-pxi.settings [pleiades] - 1 KiB"_s;
    QTest::newRow("31 bits") << u"Pleiades/core-2147483647-pxi.settings"_s
                             << u"core-2147483647-pxi.settings - instance 2147483647, 1 KiB"_s;
    QTest::newRow("beyond") << u"Pleiades/core-4294967297-pxi.settings"_s
                            << u"core-4294967297-pxi.settings - 1 KiB"_s;
    QTest::newRow("backup") << u"Pleiades/core-002-pxi.settings.bak-%2"_s
                            << u"core-002-pxi.settings.bak-%2 - backup, 1 KiB"_s;
    QTest::newRow("relative") << u"%1/../%1/x"_s << u"x [%1] - 1 KiB"_s;
}

void TestPixInsightEnv::describesFiles()
{
    QFETCH(const QString, path);
    QFETCH(const QString, text);
    const QTemporaryDir dir;
    QVERIFY(QDir::setCurrent(dir.path()));
    QVERIFY(QDir().mkpath(u"%1"_s));
    touch(path, 60, 2047);
    QCOMPARE(PixInsightEnv::describeFile(path), text + u", 2026-03-11 11:59"_s);
    QVERIFY(QDir::setCurrent(QDir::rootPath()));
}

void TestPixInsightEnv::listsBackupsByTheirTime()
{
    const QTemporaryDir dir;
    const QString settings = dir.filePath(u".a[b]*.settings"_s);
    touch(settings);
    touch(settings + u".bak-20260311-120000"_s, 9, 1);
    touch(settings + u".bak-20260311-120001"_s, 9, 2);
    touch(settings + u".bak-notes.txt"_s, 5, 4);
    touch(settings + u".bak-1.bak-2"_s, 70, 8);
    touch(settings + u".BAK-1"_s);
    touch(dir.filePath(u".ab.settings.bak-1"_s));
    QVERIFY(QDir(dir.path()).mkdir(u".a[b]*.settings.bak-folder"_s));

    const auto names = [&](const QStringList& paths) {
        return beneath(dir, paths).replaceInStrings(u".a[b]*.settings.bak-"_s, QString());
    };
    const QStringList all{u"notes.txt"_s, u"20260311-120001"_s, u"20260311-120000"_s, u"1.bak-2"_s};
    QCOMPARE(names(PixInsightEnv::backupsOf(settings)), all);
    QCOMPARE(names(PixInsightEnv::backupsOf(settings + u".bak-1"_s)), {u"1.bak-2"_s});

    const BackupPruneSet older = PixInsightEnv::backupsOlderThanNewest(settings, 2);
    QCOMPARE(names(older.paths), all.mid(2));
    QCOMPARE(older.totalBytes, 9);
    QCOMPARE(names(PixInsightEnv::backupsOlderThanNewest(settings, -1).paths), all);
    QVERIFY(PixInsightEnv::backupsOlderThanNewest(settings, 999).paths.isEmpty());
}

void TestPixInsightEnv::removesBackupsAlone_data()
{
    QTest::addColumn<bool>("toTrash");
    QTest::newRow("delete") << false;
    QTest::newRow("trash") << true;
}

void TestPixInsightEnv::removesBackupsAlone()
{
    QFETCH(const bool, toTrash);
    const QTemporaryDir dir(QDir::homePath() + u"/XXXXXX"_s); // beside the trash
    const QString settings = dir.filePath(u"x.settings"_s);
    const QString other = dir.filePath(u"other/x.settings.bak-1"_s);
    const QStringList refused{settings, settings + u".BAK-1"_s, other, settings + u".bak-gone"_s,
                              settings + u".bak-folder"_s};
    for (const QString& path : refused.first(3)) {
        touch(path);
    }
    QVERIFY(QDir().mkdir(refused.last()));
    touch(settings + u".bak-1"_s, 0, 3);
    touch(settings + u".bak-2"_s, 0, 4);

    const BackupRemoval result = PixInsightEnv::removeBackups(
        settings, refused + QStringList{settings + u".bak-1"_s, settings + u".bak-2"_s}, toTrash);
    QCOMPARE(result.removed, 2);
    QCOMPARE(result.freedBytes, 7);
    QCOMPARE(result.usedTrash, toTrash);
    QCOMPARE(result.failed, 5);
    QCOMPARE(result.failedPaths, refused);
    QVERIFY(PixInsightEnv::backupsOf(settings).isEmpty());
    QVERIFY(QFile::exists(settings) && QFile::exists(refused[1]) && QFile::exists(other));
    const QString trashed = QStandardPaths::writableLocation(QStandardPaths::GenericDataLocation) +
                            u"/Trash/files/x.settings.bak-1"_s;
    QCOMPARE(QFile::exists(trashed), toTrash);
    QVERIFY(!PixInsightEnv::removeBackups(settings, refused, toTrash).usedTrash);
}

KSE_GUILESS_TEST_MAIN(TestPixInsightEnv)
#include "TestPixInsightEnv.moc"
