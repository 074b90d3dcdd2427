// SPDX-License-Identifier: MIT
#include "document/TreeWalk.h"
#include "support/FakePixInsight.h"
#include "support/RandomUser.h"
#include "support/TestMain.h"
#include "support/WindowLaws.h"
#include "support/WindowTwin.h"
#include "views/health/HealthView.h"
#include "views/search/SearchView.h"

#include <cstdio>

namespace {

/// The bytes of a random part of `document`, with values changed here and there and some nodes that
/// no settings file has. A group keeps about `most` of its children, those in it fewer. Now and
/// then the file isn't in the compact layout.
QByteArray smallSettings(XsdtDocument& document, QRandomGenerator& random, int most)
{
    static const QList<QByteArray> strange{
        "<i k=\"a/b\"><v k=\"&amp;x&lt;b&gt;%1\" t=\"s\">1</v><i k=\"a\"/></i>",
        "<i k=\"ModuleData\"><i k=\"Ostrand\"><v k=\"1\" t=\"i\" v=\"x\"/></i></i>",
        "<i k=\"Geometry\"><v k=\"n&#10;l\" t=\"B\" v=\"AAAA\"/></i>",
        "<v k=\"true\" t=\"q\" v=\"\"/><v k=\"true\" t=\"b\" v=\"true\"/>"};
    walkTree(document.root, [&](XsdtNode& node) {
        const int siblings = int(node.parent->children.size());
        const int kept = node.depth == 1 ? most : qMax(2, most / 3 / (node.depth - 1));
        node.markedForDeletion = random.bounded(siblings) >= kept || random.bounded(30) == 0;
        if (node.kind == XsdtNode::Kind::Value && random.bounded(8) == 0) {
            node.value = node.typeCode == u'b' ? u"false"_s : node.value + u'9';
        }
        return Walk::Into;
    });
    QByteArray bytes = document.serialize();
    for (int i = random.bounded(5); i > 0; --i) {
        const qsizetype end = bytes.indexOf("</i>", random.bounded(int(bytes.size())));
        if (end >= 0) {
            bytes.insert(end, strange[random.bounded(int(strange.size()))]);
        }
    }
    return random.bounded(4) == 0 ? bytes.replace("<i k=", "\n<i k=") : bytes;
}

/// A user who does whatever comes to mind in the real window over small real files, while these
/// change and PixInsight comes and goes: the same for the same seed. After each step the window
/// has to look exactly like one made just now on the same file, changes and choices.
class RandomSession : public WindowLaws
{
public:
    explicit RandomSession(quint32 seed)
        : m_user(seed)
    {
        m_user.onOpened = [this] {
            ++m_dialogs;
            if (m_changes == 0 && !m_runs && m_user.oneIn(10)) {
                toggleRunning();
                changeFile();
                if (m_user.oneIn(2)) {
                    toggleRunning();
                }
            }
        };
        m_user.onAnswer = [this] {
            m_kept = linesOf(model()->document(), &XsdtNode::value);
        };
        copySamples();
        const QStringList files = folder().keys();
        for (const QString& file : files) {
            m_samples.append(contentOf(file));
            m_file = file;
            write(file, newFile());
        }
        m_loaded = contentOf(m_file);
        openWindow();
        find<QTimer>("pollTimer")->stop(); // polls are steps here
        const auto mode = QAbstractItemModelTester::FailureReportingMode::QtTest;
        new QAbstractItemModelTester(model(), mode, m_window.get());
        new QAbstractItemModelTester(tree()->model(), mode, m_window.get());
        connect(model(), &SettingsModel::modelReset, &m_user, [this] { noteLoaded(); });
        m_disk = folder();
    }

    /// Takes `count` steps, or those until the first whose outcome is wrong. Gives what is wrong
    /// and the steps that led to it, or nothing.
    QString run(int count)
    {
        check();
        for (int i = 1; i <= count && m_faults.isEmpty() && !QTest::currentTestFailed(); ++i) {
            m_user.log << u"%1."_s.arg(i);
            takeStep();
            check();
        }
        const bool isRight = m_faults.isEmpty() && !QTest::currentTestFailed();
        return isRight ? QString() : (m_user.log + m_faults).join(u'\n');
    }

private:
    // --- steps ---

    void takeStep()
    {
        m_versions = m_disk;
        do {
            takePart();
            checkChanges();
        } while (m_user.oneIn(6)); // under an editor that is still open
        rest();
    }

    void takePart()
    {
        m_before = bytesOf(model());
        m_pendingBefore = pending();
        m_generation = model()->generation();
        m_changes = m_dialogs = 0;
        m_window->activateWindow(); // which a box that closed here doesn't do
        settle();
        auto* tabs = find<QTabWidget>("tabs");
        const int kind = m_user.below(100);
        QAction* const end = action(kind < 5 ? "actSave" : "actRevert"); // of what is pending
        if (kind < 8 && end->isEnabled()) {
            m_user.trigger(*end);
        } else if (kind < 10) {
            changeFile();
        } else if (kind < 13) {
            toggleRunning();
        } else if (kind < 18) {
            QList<QAction*> actions = m_window->findChildren<QAction*>();
            actions.removeIf([](const QAction* action) {
                return !action->isEnabled() || action->text().isEmpty() || action->menu();
            });
            m_user.trigger(*m_user.pick(actions));
        } else if (kind < 28) {
            m_user.use(*tabs->tabBar());
        } else {
            m_user.act(kind < 31 ? *m_window : *tabs->currentWidget());
        }
        m_window->show(); // if it was closed
    }

    /// Somebody else writes or removes the open file.
    void changeFile()
    {
        const int kind = model()->document() ? m_user.below(12) : 2;
        m_user.log << u"the file changes: %1"_s.arg(kind);
        if (kind == 1) {
            QFile::remove(path());
            m_disk.remove(path());
        } else {
            m_disk[path()] = m_versions[path()] = kind == 0 ? QByteArray("nonsense") : newFile();
            write(path(), m_disk[path()]);
        }
        ++m_changes;
        if (m_user.oneIn(3)) {
            m_user.act(*m_window); // before the window knows
        }
        poll();
        for (const char* name : {"fileCombo", "fileBox"}) { // read it again
            auto* box = find<QComboBox>(name);
            if (box->currentData() == path() || (box->currentIndex() < 0 && !model()->document())) {
                emit box->activated(box->findData(path()));
            }
        }
    }

    void toggleRunning()
    {
        if (!m_runs && m_dialogs == 0 && !m_user.oneIn(4)) {
            return; // most of the time it doesn't run
        }
        m_runs = !m_runs;
        m_user.log << (m_runs ? u"PixInsight starts"_s : u"PixInsight ends"_s);
        QVERIFY(m_runs ? m_pixInsight.start() : m_pixInsight.stop());
        ++m_changes;
        poll();
    }

    /// A part of a sample, or the open file with other values.
    QByteArray newFile()
    {
        XsdtDocument document;
        const bool isNew = m_user.oneIn(3) || !document.parse(m_disk.value(path()));
        (void)(isNew && document.parse(m_user.pick(m_samples)));
        return smallSettings(document, m_user.random, isNew ? 12 : 1000);
    }

    /// What is typed comes into the document, and what waits for its time happens. The pages that
    /// keep what they found before an edit find it again.
    void rest()
    {
        m_window->activateWindow();
        if (QWidget* editor = m_window->focusWidget()) {
            editor->clearFocus();
        }
        settle();
        auto* edit = find<QLineEdit>("searchEdit");
        if (const QString text = edit->text(); !text.isEmpty()) {
            edit->setText(text + u'x');
            edit->setText(text);
        }
        askAgain(*m_window);
    }

    void askAgain(MainWindow& window)
    {
        auto* search = window.findChild<SearchView*>();
        search->clearRestriction();
        auto* names = search->findChild<QCheckBox*>(u"searchNames"_s);
        names->click(); // a new question begins with the first hundred
        names->click();
        search->setQuery(search->findChild<QLineEdit*>(u"queryEdit"_s)->text());
        if (!find<QWidget>("healthView")->findChild<QLabel*>(u"summaryLabel"_s)->text().isEmpty()) {
            window.findChild<HealthView*>()->run();
        }
        settle();
    }

    // --- what has to hold ---

    /// The file that is open, or was.
    QString path()
    {
        const auto* box = m_window ? find<QComboBox>("fileBox") : nullptr;
        const QString current = box ? box->currentData().toString() : QString();
        m_file = current.isEmpty() ? m_file : current;
        return m_file;
    }

    QMap<QString, QByteArray> folder() const
    {
        QMap<QString, QByteArray> found;
        for (const QFileInfo& file : QDir(m_folder).entryInfoList(QDir::Files | QDir::Hidden)) {
            found.insert(file.absoluteFilePath(), contentOf(file.absoluteFilePath()));
        }
        return found;
    }

    /// The tree, but for what is marked: as it stays at a save, or as it was read.
    static QStringList linesOf(XsdtDocument* document, QString XsdtNode::*text)
    {
        QStringList lines;
        for (const XsdtNode* node : nodesOf(document)) {
            if (text == &XsdtNode::original || !node->isInsideDeletion()) {
                lines.append(node->path() + u'|' + node->typeCode + u'|' + node->*text);
            }
        }
        return lines;
    }

    /// What a save would write.
    static QByteArray bytesOf(const SettingsModel* model)
    {
        return model->document() ? model->document()->serialize() : QByteArray();
    }

    /// If a file is what the document was read from, keeps how it is.
    void noteLoaded()
    {
        for (const QByteArray& bytes : folder()) {
            XsdtDocument read;
            if (model()->document() && read.parse(bytes) &&
                linesOf(&read, &XsdtNode::original) ==
                    linesOf(model()->document(), &XsdtNode::original)) {
                m_loaded = bytes;
            }
        }
    }

    void check()
    {
        checkFolder();
        noteLoaded();
        checkNumbers();
        compareWithTwin();
    }

    /// A new file is a backup of what was there; another file changes by a save or a restore.
    void checkFolder()
    {
        const QMap<QString, QByteArray> found = folder();
        for (auto file = found.begin(); file != found.end(); ++file) {
            const QString saved = file.key().section(u".bak-"_s, 0, 0);
            const QByteArray& bytes = file.value();
            XsdtDocument document;
            bool isRight = m_disk.value(file.key()) == bytes;
            if (!m_disk.contains(file.key())) {
                isRight = m_versions.value(saved) == bytes || m_disk.value(saved) == bytes;
            } else if (file.key() == path()) {
                isRight = isRight || m_disk.key(bytes).contains(u".bak-"_s) ||
                          (document.parse(bytes) && linesOf(&document, &XsdtNode::value) == m_kept);
            }
            if (!isRight) {
                m_faults << u"wrong content: "_s + file.key();
            }
        }
        m_disk = found;
    }

    void checkChanges()
    {
        const bool sameTree = model()->generation() == m_generation;
        if (sameTree && m_changes == 0 && m_runs && pending() > m_pendingBefore) {
            m_faults << u"changed while PixInsight runs"_s;
        }
        if (!sameTree && m_changes > 0 && m_dialogs > 0 && pending() > 0 &&
            bytesOf(model()) != m_before) { // else it couldn't be read again
            m_faults << u"changed by an answer to what was asked of another tree"_s;
        }
    }

    void compareWithTwin()
    {
        const std::unique_ptr<MainWindow> twin = WindowTwin::make(
            path(), model()->document() ? m_loaded : QByteArray("nonsense"), model()->document());
        // A filter opens what it finds, which a new file closes.
        const bool isFiltered = !find<QLineEdit>("treeFilter")->text().trimmed().isEmpty() ||
                                find<QWidget>("advancedPage")->findChild<QCheckBox*>()->isChecked();
        WindowTwin::carryChoices(*m_window, *twin,
                                 model()->generation() != m_generation && !isFiltered);
        askAgain(*twin);
        compare(WindowText::of(*m_window), WindowText::of(*twin));
        if (bytesOf(model()) != bytesOf(twin->findChild<SettingsModel*>())) {
            m_faults << u"a save would write something else"_s;
        }
    }

    /// Faults for the first few lines that differ.
    void compare(QStringList lived, QStringList fresh)
    {
        QStringList open{u" \\(\\d+\\)"_s}; // of the last check, which the laws look at
        if (!model()->document() || m_loaded != contentOf(path())) {
            open << u"\\d+ KiB, [-0-9]+ [:0-9]+"_s; // as it was when the list of files was made
        }
        open << u"\\d+(\\.\\d)? K?i?B\\b"_s; // which Cleanup counts once for a file
        const QRegularExpression pattern(open.join(u'|'));
        lived.replaceInStrings(pattern, QString());
        fresh.replaceInStrings(pattern, QString());
        for (qsizetype i = 0; i < qMax(lived.size(), fresh.size()) && m_faults.size() < 3; ++i) {
            if (lived.value(i) != fresh.value(i)) {
                m_faults << u"line %1:\n   %2\n   in a new window:\n   %3"_s.arg(i).arg(
                    lived.value(i), fresh.value(i));
            }
        }
    }

    RandomUser m_user;
    QList<QByteArray> m_samples;
    FakePixInsight m_pixInsight;
    QByteArray m_loaded;                  ///< The open file as the document was read from it.
    QMap<QString, QByteArray> m_disk;     ///< The folder after the last step.
    QMap<QString, QByteArray> m_versions; ///< What else was in its files during this one.
    QByteArray m_before;                  ///< What a save wrote before the last part of the step.
    qsizetype m_pendingBefore = 0;
    QStringList m_kept;       ///< Of the document, when the last dialog was answered.
    quint64 m_generation = 0; ///< Of the tree then.
    int m_changes = 0;        ///< Outside the window meanwhile.
    int m_dialogs = 0;        ///< That came meanwhile.
    bool m_runs = false;
};

} // namespace

/// The window under long random sequences of steps. KSE_SESSION_SEEDS ("FIRST-LAST") and
/// KSE_SESSION_STEPS ask for others, or more, than those of every run.
class TestRandomSessions : public WindowFixture
{
    Q_OBJECT

private slots:
    void initTestCase() { prepareProgram(); }

    void looksLikeANewWindow()
    {
        const QStringList range = qEnvironmentVariable("KSE_SESSION_SEEDS", u"1-6"_s).split(u'-');
        const int steps = qEnvironmentVariable("KSE_SESSION_STEPS", u"100"_s).toInt();
        for (quint32 seed = range.first().toUInt(); seed <= range.last().toUInt(); ++seed) {
            const QString fault = RandomSession(seed).run(steps);
            std::fprintf(stderr, "%s", qPrintable(fault)); // too long for a message of Qt Test
            QVERIFY2(fault.isEmpty(), qPrintable(u"seed %1"_s.arg(seed)));
        }
    }
};

KSE_TEST_MAIN(TestRandomSessions)
#include "TestRandomSessions.moc"
