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

    /// The operation, its trouble, the number of backups made, and the message.
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
             "written.",
             "save > no room for the backup > 0 > Could not create the backup %1.bak-%2. Nothing "
             "was written.",
             "save > real folder denied > 1 > Cannot open %1 for writing: Permission denied",
             "save > no room > 1 > Error writing %1: File too large",
             "save > room for a part > 1 > Error writing %1: File too large",
             "save > full disk > 1 > Error writing %1: No space left on device",
             "save > read-only disk > 0 > Could not create the backup %1.bak-%2. Nothing was "
             "written.",
             "save > real read-only disk > 1 > Cannot open %1 for writing: Existing file "
             "%3/real/file is "
             "not writable",
             "save > no replacement > 1 > Error writing %1: Device or resource busy",
             "save > closed > 0 > No file is loaded.",
             "restore > closed > 0 > No file is loaded.",
             "restore > running > 0 > PixInsight is running. Close it before restoring a backup.",
             "restore > no source > 0 > Cannot read %1.bak-old: No such file or directory",
             "restore > text > 0 > The backup is not a valid settings file: Not a PixInsight "
             "settings file (no <xsdt> element).",
             "restore > gone > 0 > Could not back up the current file first. Nothing was changed.",
             "restore > folder denied > 0 > Could not back up the current file first. Nothing was "
             "changed.",
             "restore > real folder denied > 1 > Cannot open %1 for writing: Permission denied",
             "restore > no room for the backup > 0 > Could not back up the current file first. "
             "Nothing was changed.",
             "restore > full disk > 1 > Error writing %1: No space left on device",
             "restore > read-only disk > 0 > Could not back up the current file first. Nothing was "
             "changed.",
             "restore > real read-only disk > 1 > Cannot open %1 for writing: Existing file "
             "%3/real/file is not writable",
             "restore > no replacement > 1 > Error writing %1: Device or resource busy"});
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
        QString recover = u"none"_s;
        QVERIFY(!f.run(cells[0] == u"restore"_s, &error, &backup, &recover));
        static const QRegularExpression stamp(u"\\d{8}-\\d{6}"_s);
        QCOMPARE(error.replace(stamp, u"%2"_s),
                 QString(cells[3]).replace(u"%1"_s, f.path).replace(u"%3"_s, f.dir.path()));
        QCOMPARE(backup + recover, u"nonenone"_s);
        QCOMPARE(f.state(), state);
        auto after = f.files();
        const QStringList names = after.keys();
        const QStringList made = names.filter(stamp);
        QCOMPARE(made.size(), cells[2].toInt());
        for (const QString& name : made) {
            QCOMPARE(after.take(name), StoreFixture::defaultBytes());
        }
        QCOMPARE(after, files);
    }

    /// The operation, the file that is spoilt before it is read back, how, and the message.
    void noticesWhatIsSpoiltMeanwhile_data()
    {
        addTextRows({"save > file > truncate > Read-back verification of %1 failed.",
                     "save > file > remove > Cannot read %1: No such file or directory",
                     "restore > file > truncate > Read-back verification of %1 failed.",
                     "restore > file > remove > Cannot read %1: No such file or directory",
                     "save > copy > truncate > Could not create the backup %2. Nothing was "
                     "written.",
                     "restore > copy > truncate > Could not back up the current file first. "
                     "Nothing was changed."});
    }
    void noticesWhatIsSpoiltMeanwhile()
    {
        QFETCH(const QStringList, cells);
        const bool restore = cells[0] == u"restore"_s;
        const bool ofFile = cells[1] == u"file"_s;
        for (int attempt = 0; attempt < 200; ++attempt) {
            StoreFixture f;
            f.edit("A/x", u"2"_s);
            const QString source = f.path + u".bak-source"_s;
            f.write(source, "<xsdt><i k=\"B\"/></xsdt>");
            const QString state = f.state();
            const QString copy = f.store.backupName(restore ? u"before-restore"_s : QString());
            QString error;
            QString recover;
            auto meddler =
                std::make_unique<Meddler>(ofFile ? f.path : copy, cells[2] == u"remove"_s);
            const bool done = restore ? f.store.restoreBackup(source, &error, &recover)
                                      : f.store.save(&error, nullptr, &recover);
            meddler.reset();
            if (done) {
                continue; // too late
            }
            QCOMPARE(error, QString(cells[3]).replace(u"%1"_s, f.path).replace(u"%2"_s, copy));
            QCOMPARE(f.state(), state);
            QCOMPARE(f.store.isChangedOnDisk(), ofFile);
            QCOMPARE(f.read(ofFile ? recover : f.path), StoreFixture::defaultBytes());
            QCOMPARE(recover.isEmpty(), !ofFile);
            return;
        }
        QSKIP("In 200 attempts nothing came between writing and reading back.");
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
