// SPDX-License-Identifier: MIT
#pragma once

#include "session/dialogs/BackupsDialog.h"
#include "session/dialogs/ReviewDialog.h"
#include "support/FakePixInsight.h"
#include "support/RandomUser.h"
#include "support/SmallSettings.h"
#include "support/WindowFixture.h"
#include "support/WindowLaws.h"
#include "support/WindowTwin.h"
#include "views/health/HealthView.h"
#include "views/search/SearchView.h"

#include <QAbstractItemModelTester>

namespace kse {

/// A user who does whatever comes to mind in the real window over small real files, while these
/// change and PixInsight comes and goes: the same for the same seed. After each step the window
/// has to look exactly like one made just now on the same file, changes and choices.
class RandomSession : public WindowFixture
{
public:
    /// `samples` are the bytes of two settings files; unless `whole`, small parts of them are used.
    RandomSession(quint32 seed, const QList<QByteArray>& samples, bool whole)
        : m_user(seed)
        , m_whole(whole)
    {
        for (const QByteArray& sample : samples) {
            m_samples.push_back(std::make_unique<XsdtDocument>());
            if (!m_samples.back()->parse(sample)) {
                qFatal("the sample doesn't parse");
            }
        }
        m_user.onOpened = [this](QWidget&) {
            onOpened();
        };
        m_user.onAnswer = [this](QWidget& dialog) {
            onAnswer(dialog);
        };
    }

    ~RandomSession() override
    {
        if (m_window) {
            model()->disconnect(this);
            m_window.reset(); // before what its model would tell
        }
    }

    /// Takes `count` steps, or those until the first whose outcome is wrong. Gives what is wrong
    /// and the steps that led to it, or nothing.
    QString run(int count)
    {
        start();
        for (int i = 0; i <= count; ++i) {
            if (i > 0) {
                m_user.log << u"%1."_s.arg(i);
                takeStep();
            }
            check();
            if (QTest::currentTestFailed() || !m_faults.isEmpty()) {
                return u"after these steps:\n"_s + (m_user.log + m_faults).join(u'\n');
            }
        }
        return {};
    }

private:
    void start()
    {
        m_folder = PixInsightEnv::settingsFolders().constFirst();
        QDir(m_folder).removeRecursively();
        QDir().mkpath(m_folder);
        for (int i = 0; i < 2; ++i) {
            m_file = m_folder + u"/core-00%1-pxi.settings"_s.arg(2 - i);
            write(m_file, m_whole ? m_samples[std::size_t(i)]->serialize() : newFile());
        }
        m_loaded = FileState::of(m_file);
        openWindow();
        for (QTimer* timer : m_window->findChildren<QTimer*>()) {
            if (timer->interval() == 3000) {
                timer->stop(); // polls are steps here
            }
        }
        const auto mode = QAbstractItemModelTester::FailureReportingMode::QtTest;
        new QAbstractItemModelTester(model(), mode, m_window.get());
        new QAbstractItemModelTester(tree()->model(), mode, m_window.get());
        connect(model(), &SettingsModel::modelReset, this, [this] { noteLoaded(); });
        m_disk = folder();
    }

    // --- steps ---

    void takeStep()
    {
        m_before = stateOfNodes();
        m_generation = model()->generation();
        m_versions = m_disk;
        m_changes = m_dialogs = m_parts = 0;
        m_prunes = false;
        m_user.words.clear();
        for (const XsdtNode* node : nodesOf(model()->document())) {
            for (const QString& word : {node->key, node->value}) {
                if (std::all_of(word.begin(), word.end(),
                                [](QChar c) { return c >= u' ' && c <= u'~'; })) {
                    m_user.words << word;
                }
            }
        }
        do {
            takePart();
        } while (m_user.oneIn(6)); // under an editor that is still open
        rest();
    }

    void takePart()
    {
        ++m_parts;
        m_partGeneration = model()->generation();
        m_window->activateWindow(); // which a box that closed here doesn't do
        QCoreApplication::processEvents();
        auto* tabs = find<QTabWidget>("tabs");
        const int kind = m_user.below(100);
        if (kind < 6 && action("actSave")->isEnabled()) {
            m_user.trigger(*action("actSave"));
        } else if (kind < 9) {
            changeFile();
        } else if (kind < 13) {
            toggleRunning();
        } else if (kind < 18) {
            m_user.command(*m_window);
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
        const QByteArray bytes = kind == 0 ? QByteArray("nonsense") : newFile();
        m_user.log << u"the file becomes another, of %1 bytes"_s.arg(kind == 1 ? 0 : bytes.size());
        if (kind == 1) {
            QFile::remove(path());
            m_disk.remove(path());
        } else {
            write(path(), bytes);
            m_disk[path()] = m_versions[path()] = bytes;
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

    QByteArray newFile()
    {
        XsdtDocument document;
        if (m_user.oneIn(3) || m_disk.isEmpty() || !document.parse(m_disk.value(path()))) {
            const XsdtDocument& sample = *m_samples[std::size_t(m_user.oneIn(2))];
            return m_whole ? sample.serialize() : smallSettings(sample, m_user.random);
        }
        for (XsdtNode* node : nodesOf(&document)) {
            node->markedForDeletion = m_user.oneIn(20);
            if (node->kind == XsdtNode::Kind::Value && m_user.oneIn(4)) {
                node->value = node->typeCode == u'b' ? (m_user.oneIn(2) ? u"true"_s : u"false"_s)
                                                     : QString::number(m_user.below(9));
            }
        }
        return document.serialize();
    }

    /// What is typed comes into the document, and what waits for its time happens. The pages that
    /// keep what they found before an edit find it again, or don't.
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
        m_asksAgain = m_user.oneIn(2);
        if (m_asksAgain) {
            askAgain(*m_window);
        }
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

    // --- dialogs ---

    void onOpened()
    {
        ++m_dialogs;
        if (m_changes > 0 || m_runs || !m_user.oneIn(10)) {
            return;
        }
        m_user.log << u"  meanwhile:"_s;
        toggleRunning();
        changeFile();
        if (m_user.oneIn(2)) {
            toggleRunning();
        }
    }

    void onAnswer(QWidget& dialog)
    {
        m_kept = linesOf(model()->document(), &XsdtNode::value);
        std::unique_ptr<QDialog> twin;
        if (qobject_cast<ReviewDialog*>(&dialog)) {
            twin = std::make_unique<ReviewDialog>(model(), model()->document());
        } else if (qobject_cast<BackupsDialog*>(&dialog)) {
            twin = std::make_unique<BackupsDialog>(path());
            m_prunes = true;
        }
        if (twin) {
            WindowTwin::carryChoices(dialog, *twin);
            compare(WindowText::of(dialog), WindowText::of(*twin));
        }
    }

    // --- what has to hold ---

    /// The file that is open, or was.
    QString path()
    {
        const QString current = find<QComboBox>("fileBox")->currentData().toString();
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

    bool isReadFrom(const std::optional<QByteArray>& bytes) const
    {
        XsdtDocument document;
        return bytes && document.parse(*bytes) &&
               linesOf(&document, &XsdtNode::original) ==
                   linesOf(model()->document(), &XsdtNode::original);
    }

    QList<std::pair<QString, bool>> stateOfNodes() const
    {
        QList<std::pair<QString, bool>> state;
        for (const XsdtNode* node : nodesOf(model()->document())) {
            state.append({node->value, node->markedForDeletion});
        }
        return state;
    }

    /// If a file is what the document was read from, keeps how it is.
    void noteLoaded()
    {
        if (std::exchange(m_builtGeneration, model()->generation()) != model()->generation()) {
            m_hasSizesOfEdits = model()->document() && pending() > 0;
        }
        const QStringList files = folder().keys() << path();
        for (const QString& file : files) {
            if (const FileState now = FileState::of(file);
                model()->document() && isReadFrom(now.bytes)) {
                m_loaded = now;
            }
        }
    }

    void check()
    {
        checkFolder();
        if (model()->document()) {
            checkChanges();
        }
        noteLoaded();
        m_faults += m_laws.faults(*m_window, m_asksAgain);
        compareWithTwin();
    }

    void checkFolder()
    {
        const QMap<QString, QByteArray> found = folder();
        for (auto file = found.begin(); file != found.end(); ++file) {
            const QString saved = file.key().section(u".bak-"_s, 0, 0);
            if (!m_disk.contains(file.key())) {
                if (m_versions.value(saved, "?") != file.value() &&
                    m_disk.value(saved, "?") != file.value()) {
                    m_faults << u"no backup: "_s + file.key();
                }
            } else if (m_disk.value(file.key()) != file.value()) {
                XsdtDocument document;
                const bool isSaved =
                    document.parse(file.value()) && linesOf(&document, &XsdtNode::value) == m_kept;
                const bool isRestored = m_disk.key(file.value()).contains(u".bak-"_s);
                if (file.key() != path() || !(isSaved || isRestored)) {
                    m_faults << u"wrong content: "_s + file.key();
                }
            }
        }
        for (const QString& file : m_disk.keys()) {
            if (!found.contains(file) && !(m_prunes && file.contains(u".bak-"_s))) {
                m_faults << u"gone: "_s + file;
            }
        }
        m_disk = found;
    }

    void checkChanges()
    {
        const QList<XsdtNode*> nodes = nodesOf(model()->document());
        const bool sameTree = model()->generation() == m_generation;
        for (qsizetype i = 0; sameTree && m_changes == 0 && m_runs && i < m_before.size(); ++i) {
            const auto& [value, marked] = m_before.value(i);
            if ((nodes[i]->value != value && nodes[i]->isModified()) ||
                (nodes[i]->markedForDeletion && !marked)) {
                m_faults << u"changed while PixInsight runs: "_s + nodes[i]->path();
            }
        }
        if (!sameTree && m_parts == 1 && m_changes > 0 && m_dialogs > 0 && pending() > 0 &&
            stateOfNodes() != m_before) { // else it couldn't be read again
            m_faults << u"changed by an answer to what was asked of another tree"_s;
        }
        if (pending() == 0 && m_loaded.bytes && model()->document()->defaultLayout &&
            model()->document()->serialize() != *m_loaded.bytes && !isReadFrom(contentOf(path()))) {
            m_faults << u"nothing is pending, yet the file would become another"_s;
        }
    }

    void compareWithTwin()
    {
        const FileState nonsense{QByteArray("nonsense"), QDateTime::currentDateTime()};
        const std::unique_ptr<MainWindow> twin = WindowTwin::make(
            path(), model()->document() ? m_loaded : nonsense, model()->document());
        // A filter opens what it finds, which a new file closes.
        const bool isFiltered = !find<QLineEdit>("treeFilter")->text().trimmed().isEmpty() ||
                                find<QWidget>("advancedPage")->findChild<QCheckBox*>()->isChecked();
        WindowTwin::carryChoices(*m_window, *twin,
                                 model()->generation() != m_partGeneration && !isFiltered);
        QSet<QString> omitted{u"adBanner"_s};
        if (m_asksAgain) {
            askAgain(*twin);
        } else {
            omitted << u"searchView"_s << u"healthView"_s;
        }
        compare(WindowText::of(*m_window, omitted), WindowText::of(*twin, omitted));
    }

    /// Faults for the first few lines that differ.
    void compare(QStringList lived, QStringList fresh)
    {
        QStringList open{u" \\(\\d+\\)"_s}; // of the last check, which the laws look at
        if (!model()->document() || m_loaded.bytes != FileState::of(path()).bytes) {
            open << u"\\d+ KiB, [-0-9]+ [:0-9]+"_s; // as it was when the list of files was made
        }
        if (m_hasSizesOfEdits) { // those of a new window are without
            open << u"\\d+(\\.\\d)? K?i?B\\b"_s;
        }
        const QRegularExpression pattern(open.join(u'|'));
        lived.replaceInStrings(pattern, QString());
        fresh.replaceInStrings(pattern, QString());
        qsizetype line = 0;
        while (line < lived.size() && line < fresh.size() && lived[line] == fresh[line]) {
            ++line;
        }
        for (qsizetype i = line; i < line + 3 && (i < lived.size() || i < fresh.size()); ++i) {
            m_faults << u"line %1:\n   %2\n   in a new window:\n   %3"_s.arg(i).arg(
                lived.value(i, u"(no line)"_s), fresh.value(i, u"(no line)"_s));
        }
    }

    RandomUser m_user;
    bool m_whole = false;
    std::vector<std::unique_ptr<XsdtDocument>> m_samples;
    FakePixInsight m_pixInsight;
    WindowLaws m_laws;
    FileState m_loaded;                   ///< The open file as the document was read from it.
    QMap<QString, QByteArray> m_disk;     ///< The folder after the last step.
    QMap<QString, QByteArray> m_versions; ///< What else was in its files during this one.
    QList<std::pair<QString, bool>> m_before;
    QStringList m_kept;             ///< Of the document, when the last dialog was answered.
    quint64 m_generation = 0;       ///< Of the tree before this step.
    quint64 m_partGeneration = 0;   ///< The same before the last part of it.
    quint64 m_builtGeneration = 0;  ///< Of the tree that the pages were made for.
    bool m_hasSizesOfEdits = false; ///< Changes were pending by then: a reload that failed.
    int m_parts = 0;                ///< Of this step.
    int m_changes = 0;              ///< Outside the window in this step.
    int m_dialogs = 0;              ///< That came in this step.
    bool m_runs = false;
    bool m_asksAgain = true; ///< Search and check were made after the last step.
    bool m_prunes = false;   ///< Backups were in a dialog that removes them.
    QStringList m_faults;
};

} // namespace kse
