// SPDX-License-Identifier: MIT
#include "schema/SettingsSchema.h"
#include "session/DurableFile.h"
#include "session/PixInsightEnv.h"
#include "support/TestMain.h"
#include "support/TextRows.h"
#include "support/WindowsTrouble.h"
#include "views/health/HealthChecker.h"

#include <QRegularExpression>

using namespace kse;
using namespace Qt::StringLiterals;

namespace {

/// `text` with what the system says for "%denied", "%missing" and "%shared".
QString withReasons(QString text)
{
    return text.replace(u"%denied"_s, qt_error_string(ERROR_ACCESS_DENIED))
        .replace(u"%missing"_s, qt_error_string(ERROR_FILE_NOT_FOUND))
        .replace(u"%shared"_s, qt_error_string(ERROR_SHARING_VIOLATION));
}

} // namespace

/// What only Windows can do to a file, and where only Windows keeps things.
class TestOnWindows : public QObject
{
    Q_OBJECT

private slots:
    /// The operation, its trouble, the number of backups made, and the message.
    void losesNothingInTrouble_data()
    {
        addTextRows(
            {"save > held > 1 > Error writing %1: %denied",
             "save > held alone > 0 > The file changed on disk since it was loaded (PixInsight may "
             "have written it). Reload it and redo your edits.",
             "save > read-only > 0 > Cannot open %1 for writing: Existing file %1 is not writable",
             "save > running > 0 > PixInsight is running. It keeps its settings in memory and "
             "would overwrite the file. Close PixInsight first.",
             "restore > held > 1 > Error writing %1: %denied",
             "restore > held alone > 0 > Could not back up the current file first. Nothing was "
             "changed.",
             "restore > source alone > 0 > Cannot read %1.bak-old: %shared",
             "restore > read-only > 0 > Cannot open %1 for writing: Existing file %1 is not "
             "writable",
             "restore > running > 0 > PixInsight is running. Close it before restoring a backup."});
    }
    void losesNothingInTrouble()
    {
        QFETCH(const QStringList, cells);
        const bool restore = cells[0] == u"restore"_s;
        WindowsTrouble f;
        const auto filesButSource = [&f] {
            auto files = f.files();
            files.remove(QFileInfo(f.source()).fileName());
            return files;
        };
        QVERIFY(f.make(cells[1]));
        const QString state = f.state();
        QString error;
        QString backup = u"none"_s;
        QVERIFY(!f.run(restore, &error, &backup));
        QCOMPARE(error, withReasons(cells[3]).replace(u"%1"_s, f.path));
        QCOMPARE(backup, u"none"_s);
        QCOMPARE(f.state(), state);
        QVERIFY(f.end());
        const QList<QByteArray> same(1 + cells[2].toInt(), StoreFixture::defaultBytes());
        QCOMPARE(filesButSource().values(), same); // the file and its backups
        QVERIFY2(f.run(restore, &error), qPrintable(error));
        QVERIFY(f.read(f.path) != StoreFixture::defaultBytes() && !f.store.isChangedOnDisk());
        QCOMPARE(filesButSource().size(), same.size() + 1);
    }

    void savesInAnyFolder_data()
    {
        addTextRows({"Jürgen Gößler", "Пользователь 用户 \U0001f600", "a > 8"});
    }
    void savesInAnyFolder()
    {
        QFETCH(const QStringList, cells);
        StoreFixture f;
        // The second cell: so many folders, which have longer names, one in the other.
        const QString folder = cells.size() == 1
                                   ? cells[0]
                                   : (QString(50, cells[0][0]) + u'/').repeated(cells[1].toInt());
        const QString path = QDir::cleanPath(f.dir.filePath(folder)) + u"/core-001-pxi.settings"_s;
        QCOMPARE(path.size() > 260, cells.size() > 1);
        QVERIFY(QDir().mkpath(QFileInfo(path).absolutePath()));
        const QByteArray bytes =
            fileBytes("<v k=\"x\" t=\"i\" v=\"1\"/><v k=\"s\" t=\"s\">\r\n\n\r.</v>") + "\r\n";
        f.write(path, bytes);
        QString error;
        QVERIFY2(f.store.load(path, &error), qPrintable(error));
        f.edit("x", u"2"_s);
        QString backup;
        QVERIFY2(f.store.save(&error, &backup), qPrintable(error));
        QCOMPARE(f.read(path), QByteArray(bytes).replace("v=\"1\"", "v=\"2\""));
        QCOMPARE(f.read(backup), bytes);
        QVERIFY2(f.store.restoreBackup(backup, &error), qPrintable(error));
        QCOMPARE(f.read(path), bytes);
        const QStringList backups = PixInsightEnv::backupsOf(path);
        QVERIFY(backups.size() == 2 && backups[0].endsWith(u"-before-restore"_s));
        QCOMPARE(backups[1], backup);
        QCOMPARE(PixInsightEnv::removeBackups(path, backups, true).removed, 2);
        QCOMPARE(QDir(QFileInfo(path).absolutePath()).entryList(QDir::Files),
                 QStringList{QFileInfo(path).fileName()});
    }

    void opensRegularFilesOnly_data()
    {
        addTextRows({"missing > %missing", "folder > Not a regular file",
                     "NUL > Not a regular file", "//./pipe/kse-test > Not a regular file"});
    }
    void opensRegularFilesOnly()
    {
        QFETCH(const QStringList, cells);
        const QTemporaryDir dir;
        QVERIFY(QDir(dir.path()).mkdir(u"folder"_s));
        const HANDLE pipe = CreateNamedPipeW(L"\\\\.\\pipe\\kse-test", PIPE_ACCESS_DUPLEX, 0, 1, 64,
                                             64, 0, nullptr);
        QVERIFY(pipe != INVALID_HANDLE_VALUE);
        const QString path = QDir(dir.path()).filePath(cells[0]);
        QByteArray bytes = "as it was";
        QString error;
        QVERIFY(!SettingsStore::readFile(path, bytes, &error));
        CloseHandle(pipe);
        QCOMPARE(error, u"Cannot read "_s + path + u": "_s + withReasons(cells[1]));
        QCOMPARE(bytes, "as it was");
    }

    void letsOthersReplaceWhatItReads()
    {
        const StoreFixture f;
        QFile file;
        QVERIFY(openRegular(file, f.path));
        QVERIFY(QFile::rename(f.path, f.path + u".old"_s));
        f.write(f.path, "new");
        QCOMPARE(file.readAll(), StoreFixture::defaultBytes());
    }

    void goesWhereTheVariablesLead()
    {
        for (const auto& [name, value] :
             {std::pair(L"APPDATA", L"C:\\Users\\J\u00fcrgen\\AppData\\Roaming"),
              std::pair(L"ProgramFiles", L"D:\\\u041f\u0440\u043e\u0433\u0440\u0430\u043c\u043c"),
              std::pair(L"ProgramW6432", L""), std::pair(L"ProgramFiles(x86)", L"E:\\x86")}) {
            QCOMPARE(_wputenv_s(name, value), 0);
        }
        QCOMPARE(PixInsightEnv::settingsFolders(),
                 QStringList{u"C:/Users/J\u00fcrgen/AppData/Roaming/Pleiades"_s});
        QCOMPARE(PixInsightEnv::settingsFoldersText(),
                 u"C:\\Users\\J\u00fcrgen\\AppData\\Roaming\\Pleiades"_s);
        QCOMPARE(HealthEnv::system().installFolders,
                 (QStringList{u"D:/\u041f\u0440\u043e\u0433\u0440\u0430\u043c\u043c/PixInsight"_s,
                              u"E:/x86/PixInsight"_s, u"C:/Program Files/PixInsight"_s}));
        QVERIFY(HealthEnv::system().isWindows);
        const auto document = documentFrom(R"(<i k="Global"><i k="Preferences">)"
                                           R"(<v k="ADirectory" t="s">C:/a/b</v></i></i>)");
        const auto findings = HealthChecker::run(*document, {}, HealthEnv::system());
        QCOMPARE(findings.size(), 1);
        QVERIFY(findings[0].detail.startsWith("C:\\a\\b is not on this computer."_L1));
    }
};

KSE_GUILESS_TEST_MAIN(TestOnWindows)
#include "TestOnWindows.moc"
