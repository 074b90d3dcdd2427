// SPDX-License-Identifier: MIT
#include "session/PixInsightEnv.h"
#include "support/FaultyStore.h"
#include "support/TestMain.h"
#include "support/TextRows.h"

#include <QRegularExpression>

using namespace kse;

class TestSaveFaults : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase()
    {
        if (!PixInsightEnv::runningProcessIds().isEmpty()) {
            QSKIP("A process of PixInsight's name runs here, so nothing can be saved.");
        }
    }

    /// The operation, its trouble, the number of backups made, the message, and the remark.
    void leavesEverythingAsItWas_data()
    {
        addTextRows(
            {"save > running > 0 > PixInsight is running. It keeps its settings in memory and "
             "would overwrite the file. Close PixInsight first.",
             "save > changed > 0 > The file changed on disk since it was loaded (PixInsight may "
             "have written it). Reload it and redo your edits.",
             "save > gone > 0 > The file changed on disk since it was loaded (PixInsight may have "
             "written it). Reload it and redo your edits.",
             "save > protected > 0 > 'A/s' is protected and cannot be deleted. Stays. Nothing was "
             "written.",
             "save > no policy > 0 > 'Free' is protected and cannot be deleted.  Nothing was "
             "written.",
             "save > no root > 0 > Internal error: the edited document does not parse back (Not a "
             "PixInsight settings file (no <xsdt> element).). Nothing was written.",
             "save > no character > 0 > Internal error: the edited document differs after "
             "re-parsing at A/s. Nothing was written.",
             "save > folder denied > 0 > Could not create the backup %1.bak-%2. Nothing was "
             "written. > Reason: Permission denied",
             "save > no room for the backup > 0 > Could not create the backup %1.bak-%2. Nothing "
             "was written. > Reason: File too large",
             "save > real folder denied > 0 > Cannot open %1 for writing: Permission denied > The "
             "file is unchanged.",
             "save > no room > 0 > Error writing %1: File too large > The file is unchanged.",
             "save > room for a part > 0 > Error writing %1: File too large > The file is "
             "unchanged.",
             "save > full disk > 0 > Error writing %1: No space left on device > The file is "
             "unchanged.",
             "save > read-only disk > 0 > Could not create the backup %1.bak-%2. Nothing was "
             "written. > Reason: Read-only file system",
             "save > real read-only disk > 0 > Cannot open %1 for writing: Existing file "
             "%3/real/file is "
             "not writable > The file is unchanged.",
             "save > no replacement > 1 > Error writing %1: Device or resource busy > The file is "
             "unchanged. The backup %4 had been made by then.",
             "save > closed > 0 > No file is loaded.",
             "restore > closed > 0 > No file is loaded.",
             "restore > running > 0 > PixInsight is running. Close it before restoring a backup.",
             "restore > no source > 0 > Cannot read %1.bak-old: No such file or directory",
             "restore > text > 0 > The backup is not a valid settings file: Not a PixInsight "
             "settings file (no <xsdt> element).",
             "restore > folder denied > 0 > Could not back up the current file first. Nothing was "
             "changed. > Reason: Permission denied",
             "restore > real folder denied > 0 > Cannot open %1 for writing: Permission denied > "
             "The file is unchanged.",
             "restore > no room for the backup > 0 > Could not back up the current file first. "
             "Nothing was changed. > Reason: File too large",
             "restore > full disk > 0 > Error writing %1: No space left on device > The file is "
             "unchanged.",
             "restore > read-only disk > 0 > Could not back up the current file first. Nothing was "
             "changed. > Reason: Read-only file system",
             "restore > real read-only disk > 0 > Cannot open %1 for writing: Existing file "
             "%3/real/file is not writable > The file is unchanged.",
             "restore > no replacement > 1 > Error writing %1: Device or resource busy > The file "
             "is unchanged. The backup %4 had been made by then."});
    }
    void leavesEverythingAsItWas()
    {
        QFETCH(const QStringList, cells);
        FaultyStore f;
        if (!f.make(cells[1])) {
            QSKIP("Only root can make this trouble.");
        }
        const QString state = f.state();
        const auto files = f.files();
        QString error;
        QString backup = u"none"_s;
        QString remark = u"none"_s;
        QVERIFY(!f.run(cells[0] == u"restore"_s, &error, &backup, &remark));
        static const QRegularExpression stamp(u"\\d{8}-\\d{6}"_s);
        QCOMPARE(error.replace(stamp, u"%2"_s),
                 QString(cells[3]).replace(u"%1"_s, f.path).replace(u"%3"_s, f.dir.path()));
        QCOMPARE(backup, u"none"_s);
        QCOMPARE(f.state(), state);
        auto after = f.files();
        const QStringList names = after.keys();
        const QStringList made = names.filter(stamp);
        QCOMPARE(made.size(), cells[2].toInt());
        QCOMPARE(remark, cells.value(4, u"none"_s).replace(u"%4"_s, made.value(0)));
        for (const QString& name : made) {
            QCOMPARE(after.take(name), StoreFixture::defaultBytes());
        }
        QCOMPARE(after, files);
    }

    /// The operation, how the file is spoilt before it is read back, and the message.
    void noticesWhatIsSpoiltMeanwhile_data()
    {
        addTextRows({"save > truncate > Read-back verification of %1 failed.",
                     "save > remove > Cannot read %1: No such file or directory",
                     "restore > truncate > Read-back verification of %1 failed.",
                     "restore > remove > Cannot read %1: No such file or directory"});
    }
    void noticesWhatIsSpoiltMeanwhile()
    {
        QFETCH(const QStringList, cells);
        const bool restore = cells[0] == u"restore"_s;
        for (int attempt = 0; attempt < 200; ++attempt) {
            StoreFixture f;
            f.edit("A/x", u"2"_s);
            const QString source = f.path + u".bak-source"_s;
            f.write(source, "<xsdt><i k=\"B\"/></xsdt>");
            const QString state = f.state();
            QString error;
            QString remark;
            auto meddler = std::make_unique<Meddler>(f.path, cells[1] == u"remove"_s);
            const bool done = restore ? f.store.restoreBackup(source, &error, &remark)
                                      : f.store.save(&error, nullptr, &remark);
            meddler.reset();
            if (done) {
                continue; // too late
            }
            QCOMPARE(error, QString(cells[2]).replace(u"%1"_s, f.path));
            QCOMPARE(f.state(), state);
            QVERIFY(f.store.isChangedOnDisk());
            const QStringList backups = PixInsightEnv::backupsOf(f.path);
            QCOMPARE(f.read(backups[0]), StoreFixture::defaultBytes());
            QCOMPARE(remark,
                     u"The file had been replaced by then. Its former content is in the "
                     "backup %1, which can be restored."_s.arg(QFileInfo(backups[0]).fileName()));
            return;
        }
        QSKIP("In 200 attempts nothing came between writing and reading back.");
    }

    void savesInAFolderThatCannotBeListed()
    {
        FaultyStore f;
        QVERIFY(f.make(u"folder unlisted"_s));
        QString error;
        QString backup;
        QString remark;
        QVERIFY2(f.run(false, &error, &backup, &remark), qPrintable(error));
        QCOMPARE(remark, QString());
        QCOMPARE(f.read(backup), StoreFixture::defaultBytes());
    }

    /// KSE_KILLS=500 makes so many.
    void survivesBeingKilled()
    {
        StoreFixture f(
            StoreFixture::read(QStringLiteral(KSE_SOURCE_DIR "/examples/core-001-pxi.settings")));
        QList<QByteArray> whole{StoreFixture::read(f.path)};
        for (int turn = 0; turn < 2; ++turn) {
            loopNode(f.store)->value = loopValue(turn);
            whole.append(f.store.document.serialize());
        }
        const QString source = f.path + u".bak-source"_s;
        f.write(source, whole[0]);
        const QRegularExpression leftOver(u"\\.settings\\.[A-Za-z]{6}$"_s);
        bool given = false;
        const int wanted = qEnvironmentVariableIntValue("KSE_KILLS", &given);
        const int kills = given ? wanted : 100;
        qsizetype left = 0;
        for (int round = 0; round < kills; ++round) {
            QVERIFY(killInTheMiddle(f.path, source));
            auto files = f.files();
            QCOMPARE(files.take(QFileInfo(source).fileName()), whole[0]);
            QVERIFY(whole.contains(files.take(QFileInfo(f.path).fileName())));
            for (auto file = files.cbegin(); file != files.cend(); ++file) {
                const bool temporary = leftOver.match(file.key()).hasMatch();
                QVERIFY(temporary || whole.contains(file.value()));
                left += temporary;
                QVERIFY(QFile::remove(f.dir.filePath(file.key())));
            }
        }
        qInfo("%d kills, the file was whole after each; %lld temporary files were left.", kills,
              qlonglong(left));
    }
};

int main(int argc, char** argv)
{
    if (argc > 3 && qstrcmp(argv[1], "--in-a-loop") == 0) {
        return saveAndRestoreInALoop(QFile::decodeName(argv[2]), QFile::decodeName(argv[3]));
    }
    const TestHome home;
    const QCoreApplication app(argc, argv);
    TestSaveFaults test;
    return QTest::qExec(&test, argc, argv);
}
#include "TestSaveFaults.moc"
