// SPDX-License-Identifier: MIT
#include "session/PixInsightEnv.h"
#include "support/FakePixInsight.h"
#include "support/StoreFixture.h"
#include "support/TestMain.h"

#include <QProcess>
#include <QRandomGenerator>
#include <QRegularExpression>
#include <QTest>

#include <atomic>
#include <functional>
#include <thread>

#include <csignal>

#include <sys/mount.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <unistd.h>

using namespace kse;
using namespace Qt::StringLiterals;

namespace {

constexpr uid_t nobody = 65534;

/// An open file with an edit, and whatever real trouble a test makes for its save.
struct Trouble : StoreFixture
{
    FakePixInsight process;
    rlim_t sizeLimit = RLIM_INFINITY;
    QString mounted;
    QString denied;
    QString skip; ///< Why this trouble can't be made here.

    Trouble()
    {
        edit("A/x", u"2"_s);
        write(path + u".bak-old"_s, "older backup");
    }

    ~Trouble()
    {
        (void)seteuid(0);
        if (!mounted.isEmpty()) {
            umount(QFile::encodeName(mounted).constData());
        }
        if (!denied.isEmpty()) {
            chmod(QFile::encodeName(denied).constData(), 0755);
        }
    }

    /// Makes `folder` readable only, also to root, who becomes somebody else for it.
    void denyWriting(const QString& folder)
    {
        if (getuid() == 0) {
            (void)chown(QFile::encodeName(dir.path()).constData(), nobody, nobody);
            (void)chown(QFile::encodeName(folder).constData(), nobody, nobody);
            (void)chown(QFile::encodeName(path).constData(), nobody, nobody);
            (void)seteuid(nobody);
        }
        chmod(QFile::encodeName(folder).constData(), 0555);
        denied = folder;
    }

    /// Moves the file to a folder of its own, with a link to it in its place.
    QString moveBehindLink()
    {
        const QString folder = dir.filePath(u"real"_s);
        const QString real = folder + u"/file"_s;
        if (!QDir().mkdir(folder) || !QFile::rename(path, real) || !QFile::link(real, path)) {
            qFatal("No link");
        }
        return folder;
    }

    void mountOver(const QString& source, const QString& target, const char* type,
                   unsigned long flags, const char* options)
    {
        if (mount(QFile::encodeName(source).constData(), QFile::encodeName(target).constData(),
                  type, flags, options) == 0) {
            mounted = target;
        } else {
            skip = u"Only root can mount a file system."_s;
        }
    }

    bool save(QString* error, QString* backup, QString* recover)
    {
        rlimit before = {};
        getrlimit(RLIMIT_FSIZE, &before);
        const rlimit limit = {sizeLimit, before.rlim_max};
        setrlimit(RLIMIT_FSIZE, &limit);
        const bool saved = store.save(error, backup, recover);
        setrlimit(RLIMIT_FSIZE, &before);
        return saved;
    }
};

using MakeTrouble = std::function<void(Trouble&)>;

/// Waits for another file to appear under the name of the one at `path`, then does `meddle`.
void meddleAfterReplacement(const QByteArray& path, const std::atomic_bool& stop,
                            const std::function<void()>& meddle)
{
    struct stat old = {};
    struct stat now = {};
    stat(path.constData(), &old);
    while (!stop && stat(path.constData(), &now) == 0 && now.st_ino == old.st_ino) {
    }
    if (!stop) {
        meddle();
    }
}

/// What a save of the loop below writes, in turns: a file of usual size, with one value more or
/// less long.
const QString loopPath = u"CentralWidgetClients/ProcessConsole/Height"_s;
const QString loopValues[] = {u"1"_s, QString(40'000, u'2')};

/// Saves until it is killed.
int saveInALoop(const QString& path)
{
    SettingsStore store;
    for (int turn = 0; store.load(path); ++turn) {
        store.document.root.findByPath(loopPath)->value = loopValues[turn % 2];
        QString error;
        if (!store.save(&error)) {
            qCritical("%s", qPrintable(error));
            break;
        }
        if (turn == 0) {
            std::puts("saving");
            std::fflush(stdout);
        }
    }
    return 1;
}

} // namespace

class TestSaveFaults : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase();
    void leavesEverythingAsItWas_data();
    void leavesEverythingAsItWas();
    void namesTheWayBack_data();
    void namesTheWayBack();
    void survivesBeingKilled();
};

void TestSaveFaults::initTestCase()
{
    std::signal(SIGXFSZ, SIG_IGN); // so that a size limit is an error, like a full disk
    if (!PixInsightEnv::runningProcessIds().isEmpty()) {
        QSKIP("A process of PixInsight's name runs on this computer, so nothing can be saved.");
    }
}

void TestSaveFaults::leavesEverythingAsItWas_data()
{
    QTest::addColumn<MakeTrouble>("make");
    QTest::addColumn<bool>("backedUp");
    QTest::addColumn<QString>("message"); // %1 is the file
    const auto row = [](const char* name, bool backedUp, const QString& message,
                        const MakeTrouble& make) {
        QTest::newRow(name) << make << backedUp << message;
    };
    row("running", false,
        u"PixInsight is running. It keeps its settings in memory and would overwrite the file. "
        "Close PixInsight first."_s,
        [](Trouble& t) { QVERIFY(t.process.start()); });
    const QString changed = u"The file changed on disk since it was loaded (PixInsight may have "
                            "written it). Reload it and redo your edits."_s;
    row("changed", false, changed, [](Trouble& t) { t.write(t.path, "<xsdt></xsdt>"); });
    row("gone", false, changed, [](Trouble& t) { QVERIFY(QFile::remove(t.path)); });
    row("protected", false,
        u"'A/s' is protected and cannot be deleted. Stays. Nothing was written."_s, [](Trouble& t) {
            t.mark("Free");
            t.mark("A/s");
        });
    row("no policy", false, u"'Free' is protected and cannot be deleted.  Nothing was written."_s,
        [](Trouble& t) {
            t.mark("Free");
            t.store.policy = nullptr;
        });
    row("no root", false,
        u"Internal error: the edited document does not parse back (Not a PixInsight settings "
        "file (no <xsdt> element).). Nothing was written."_s,
        [](Trouble& t) { t.store.document.head.clear(); });
    row("no text", false,
        u"Internal error: the edited document differs after re-parsing at A/s. "
        "Nothing was written."_s,
        [](Trouble& t) { t.edit("A/s", QString(QChar(0xd800))); });
    const QString noBackup = u"Could not create the backup %1.bak-STAMP. Nothing was written."_s;
    row("folder without write permission", false, noBackup,
        [](Trouble& t) { t.denyWriting(t.dir.path()); });
    row("no room for the backup", false, noBackup,
        [](Trouble& t) { t.sizeLimit = static_cast<rlim_t>(QFileInfo(t.path).size() - 1); });
    row("real folder without write permission", true,
        u"Cannot open %1 for writing: Permission denied"_s,
        [](Trouble& t) { t.denyWriting(t.moveBehindLink()); });
    row("no room in the buffer's flush", true, u"Error writing %1: File too large"_s,
        [](Trouble& t) {
            t.sizeLimit = static_cast<rlim_t>(QFileInfo(t.path).size());
            t.edit("A/s", u"longer text"_s);
        });
    row("room for a part", true, u"Error writing %1: File too large"_s, [](Trouble& t) {
        t.sizeLimit = 20'000;
        t.edit("A/s", QString(100'000, u'x'));
    });
    row("full disk", true, u"Error writing %1: No space left on device"_s, [](Trouble& t) {
        // Two pages: of the file, and of the longer one that would replace it, one is missing.
        const QByteArray bytes = t.read(t.path);
        const QString folder = t.moveBehindLink();
        t.mountOver(u"tmpfs"_s, folder, "tmpfs", 0, "size=8k");
        t.write(folder + u"/file"_s, bytes);
        t.edit("A/s", QString(8'000, u'x'));
    });
    row("no replacement", true, u"Error writing %1: Device or resource busy"_s, [](Trouble& t) {
        const QString file = t.moveBehindLink() + u"/file"_s;
        t.mountOver(file, file, nullptr, MS_BIND, nullptr);
    });
}

void TestSaveFaults::leavesEverythingAsItWas()
{
    QFETCH(const MakeTrouble, make);
    QFETCH(const bool, backedUp);
    QFETCH(const QString, message);
    Trouble t;
    make(t);
    if (!t.skip.isEmpty()) {
        QSKIP(qPrintable(t.skip));
    }
    const QString state = t.state();
    auto files = t.files();
    QString error;
    QString backup = u"none"_s;
    QString recover = u"none"_s;
    QVERIFY(!t.save(&error, &backup, &recover));

    static const QRegularExpression stamp(u"\\.bak-\\d{8}-\\d{6}"_s);
    QCOMPARE(error.replace(stamp, u".bak-STAMP"_s), QString(message).replace(u"%1"_s, t.path));
    QCOMPARE(backup, u"none"_s);
    QCOMPARE(recover, u"none"_s);
    QCOMPARE(t.state(), state);
    const auto after = t.files();
    const QStringList made = after.keys().filter(stamp);
    QCOMPARE(made.size(), backedUp ? 1 : 0);
    if (backedUp) {
        files.insert(made.first(), StoreFixture::defaultBytes());
    }
    QCOMPARE(after, files);
}

void TestSaveFaults::namesTheWayBack_data()
{
    QTest::addColumn<bool>("restore");
    QTest::addColumn<bool>("remove");
    QTest::addColumn<QString>("message");
    const QString differs = u"Read-back verification of %1 failed."_s;
    const QString gone = u"Cannot read %1: No such file or directory"_s;
    QTest::newRow("save, overwritten") << false << false << differs;
    QTest::newRow("save, removed") << false << true << gone;
    QTest::newRow("restore, overwritten") << true << false << differs;
    QTest::newRow("restore, removed") << true << true << gone;
}

// The file is spoilt by a thread of ours in the short time between its replacement and the moment
// when it is read back.
void TestSaveFaults::namesTheWayBack()
{
    QFETCH(const bool, restore);
    QFETCH(const bool, remove);
    QFETCH(const QString, message);
    for (int attempt = 0; attempt < 200; ++attempt) {
        Trouble t;
        const QString source = t.path + u".bak-source"_s;
        t.write(source, "<xsdt><i k=\"B\"/></xsdt>");
        const QString state = t.state();
        const QByteArray path = QFile::encodeName(t.path);
        std::atomic_bool stop = false;
        std::thread meddler(meddleAfterReplacement, path, std::cref(stop), [&] {
            if (remove ? unlink(path.constData()) != 0 : truncate(path.constData(), 3) != 0) {
                qFatal("Nothing to spoil");
            }
        });
        QString error;
        QString backup = u"none"_s;
        QString recover;
        const bool done = restore ? t.store.restoreBackup(source, &error, &recover)
                                  : t.store.save(&error, &backup, &recover);
        stop = true;
        meddler.join();
        if (done) {
            continue; // too late
        }
        QCOMPARE(error, message.arg(t.path));
        QCOMPARE(backup, u"none"_s);
        QCOMPARE(t.state(), state);
        QVERIFY(t.store.isChangedOnDisk());
        QCOMPARE(recover.endsWith(u"-before-restore"_s), restore);
        QCOMPARE(t.read(recover), StoreFixture::defaultBytes());
        return;
    }
    QSKIP("In 200 attempts nothing came between the replacement and the read-back.");
}

void TestSaveFaults::survivesBeingKilled()
{
    const QString sample = QStringLiteral(KSE_SOURCE_DIR "/examples/core-001-pxi.settings");
    StoreFixture f(StoreFixture::read(sample));
    QList<QByteArray> whole{StoreFixture::read(f.path)};
    for (const QString& value : loopValues) {
        f.store.document.root.findByPath(loopPath)->value = value;
        whole.append(f.store.document.serialize());
    }
    const QStringList others{f.dir.filePath(u"core-002-pxi.settings"_s), f.path + u".bak-old"_s};
    for (const QString& path : others) {
        StoreFixture::write(path, "other");
    }
    const QRegularExpression leftOver(u"^qt_temp\\.|\\.settings\\.[A-Za-z]{6}$"_s);
    for (int round = 0; round < 100; ++round) {
        QProcess saver;
        saver.start(QCoreApplication::applicationFilePath(), {u"--save-in-a-loop"_s, f.path});
        QVERIFY(saver.waitForReadyRead());
        QTest::qSleep(QRandomGenerator::global()->bounded(40));
        saver.kill();
        QVERIFY(saver.waitForFinished());
        QVERIFY2(saver.exitStatus() == QProcess::CrashExit, saver.readAllStandardError());

        const auto files = f.files();
        QVERIFY(whole.contains(files.value(u"core-001-pxi.settings"_s)));
        for (auto file = files.begin(); file != files.end(); ++file) {
            const QString path = f.dir.filePath(file.key());
            if (others.contains(path)) {
                QCOMPARE(file.value(), "other");
            } else if (path != f.path) {
                QVERIFY2(whole.contains(file.value()) || leftOver.match(file.key()).hasMatch(),
                         qPrintable(path));
                QVERIFY(QFile::remove(path));
            }
        }
        QVERIFY(files.contains(u"core-002-pxi.settings"_s));
    }
}

int main(int argc, char** argv)
{
    if (argc > 2 && qstrcmp(argv[1], "--save-in-a-loop") == 0) {
        return saveInALoop(QFile::decodeName(argv[2]));
    }
    const TestHome home;
    const QCoreApplication app(argc, argv);
    TestSaveFaults test;
    return QTest::qExec(&test, argc, argv);
}

#include "TestSaveFaults.moc"
