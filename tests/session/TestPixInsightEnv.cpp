// SPDX-License-Identifier: MIT
#include "session/PixInsightEnv.h"

#include "support/FakePixInsight.h"
#include "support/TestMain.h"

namespace {

/// Writes `size` bytes to the file at `path`, whose folder is made, `age` seconds before noon.
void touch(const QString& path, int age = 0, int size = 0)
{
    const QDateTime noon({2026, 3, 11}, {12, 0});
    QVERIFY(QFileInfo(path).absoluteDir().mkpath(u"."_s) &&
            writeFile(path, QByteArray(size, 'x'), noon.addSecs(-age)));
}

} // namespace

class TestPixInsightEnv : public QObject
{
    Q_OBJECT

private slots:
    void knowsTheNamesOfPixInsight()
    {
        QStringList names{u"pixinsight.EXE"_s, u"PixInsight2.exe"_s};
#ifndef Q_OS_WIN // where what has no extension doesn't start
        names += u"PIXINSIGHT"_s;
#endif
        for (const QString& name : std::as_const(names)) {
            FakePixInsight process(name);
            QVERIFY(process.start());
            QCOMPARE(PixInsightEnv::runningProcessIds().contains(process.processId()),
                     !name.contains(u'2'));
        }
    }

    /// The platform, home, APPDATA and generic configuration folder, and what comes of them.
    void listsFoldersOfEveryPlatform()
    {
        compareRows({"0 > C:/a > C:\\a\\Roaming > /c > C:/a/Roaming/Pleiades", "0 > C:/a >  >  > ",
                     "1 > /a > C:/x > /c > /a/Library/PixInsight|/a/Library/PixInsight-x64|"
                     "/a/Library/Application Support/Pleiades|/Library/Application "
                     "Support/Pleiades|/a/.config/Pleiades",
                     "2 > /a >  > /c > /a/.PixInsight|/c/Pleiades|/a/.config/Pleiades",
                     "2 > /a >  > /a/.config > /a/.PixInsight|/a/.config/Pleiades",
                     "2 > /a >  >  > /a/.PixInsight|/a/.config/Pleiades"},
                    [](const QStringList& cells) {
                        return PixInsightEnv::settingsFoldersFor(HostPlatform(cells[0].toInt()),
                                                                 cells[1], cells[2], cells[3])
                            .join(u'|');
                    });
    }

    void findsSettingsFilesInOrder()
    {
        const QString folder = PixInsightEnv::settingsFolders().first() + u'/';
        touch(folder + u"core-002-pxi.settings"_s, 9);
        touch(folder + u"core--PXI.settings"_s, 0);
        touch(folder + u"core-pxi.settings"_s);
        touch(folder + u"core-002-pxi.settings.bak-1"_s);
        QVERIFY(QDir().mkdir(folder + u"core-000-pxi.settings"_s));
        QCOMPARE(
            PixInsightEnv::findSettingsFiles(),
            QStringList({folder + u"core--PXI.settings"_s, folder + u"core-002-pxi.settings"_s}));
    }

    /// A path below the current folder, and its text without size and time.
    void describesFiles()
    {
        const QTemporaryDir dir;
        QVERIFY(QDir::setCurrent(dir.path()));
        compareRows(
            {"Pleiades/core-001-pxi.settings > core-001-pxi.settings - instance 1",
             "Pleiades/core-2147483648-pxi.settings > core-2147483648-pxi.settings - ",
             "Desktop/core-012-pxi.settings > core-012-pxi.settings [Desktop] - instance 12",
             "pleiades/core-000-pxi.settings > core-000-pxi.settings [pleiades] - ",
             "Pleiades/core-002-pxi.settings.bak-%2 > core-002-pxi.settings.bak-%2 - backup",
             "%1/../%1/x > x [%1] - "},
            [](const QStringList& cells) {
                touch(cells[0], 60, 2047);
                return PixInsightEnv::describeFile(cells[0]).remove(
                    QRegularExpression(u"(, |(?<= ))1 KiB, 2026-03-11 11:59$"_s));
            });
        QVERIFY(QDir::setCurrent(QDir::rootPath()));
    }

    void listsAndRemovesBackupsAlone()
    {
        const QTemporaryDir dir;
        const QString settings = dir.filePath(u".a[b].settings"_s);
        const QString stem = settings + u".bak-"_s;
        const QStringList others{settings, settings + u".BAK-1"_s,
                                 dir.filePath(u".ab.settings.bak-1"_s),
                                 dir.filePath(u"other/.a[b].settings.bak-1"_s), stem + u"folder"_s};
        for (const QString& path : others.first(4)) {
            touch(path);
        }
        QVERIFY(QDir().mkdir(others[4]));
        touch(stem + u"20260311-120000"_s, 9, 1);
        touch(stem + u"20260311-120001"_s, 9, 2);
        touch(stem + u"notes.txt"_s, 5, 4);
        touch(stem + u"1.bak-2"_s, 70, 8);
        QStringList all = PixInsightEnv::backupsOf(settings);
        const BackupPruneSet older = PixInsightEnv::backupsOlderThanNewest(settings, 2);
        QVERIFY(older.paths == all.mid(2) && older.totalBytes == 9);
        QCOMPARE(PixInsightEnv::backupsOlderThanNewest(settings, -1).paths, all);
        const BackupRemoval result = PixInsightEnv::removeBackups(settings, others + all, false);
        QVERIFY(result.removed == 4 && result.failed == 5 && result.freedBytes == 15);
        QVERIFY(result.failedPaths == others && !result.usedTrash);
        QCOMPARE(QDir(dir.path()).entryList(QDir::AllEntries | QDir::Hidden).size(), 2 + 5);
        QCOMPARE(all.replaceInStrings(stem, QString()).join(u' '),
                 u"notes.txt 20260311-120001 20260311-120000 1.bak-2"_s);
    }
};

KSE_GUILESS_TEST_MAIN(TestPixInsightEnv)
#include "TestPixInsightEnv.moc"
