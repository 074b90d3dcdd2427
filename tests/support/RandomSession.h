// SPDX-License-Identifier: MIT
#pragma once

#include "support/DialogScript.h"
#include "support/FakePixInsight.h"
#include "support/PlainWindow.h"
#include "support/SmallSettings.h"
#include "support/TreePage.h"
#include "support/WindowFixture.h"
#include "views/SearchView.h"

#include <QAbstractItemModelTester>
#include <QComboBox>
#include <QInputDialog>
#include <QListWidget>
#include <QRadioButton>
#include <QScrollArea>
#include <QStackedWidget>
#include <QTabWidget>
#include <QTimer>

#include <optional>

namespace kse {

/// A user who does whatever comes to mind: a long sequence of random steps in the real window over
/// small real files, the same for the same seed. After each step every page has to show what
/// `PlainWindow` works out, and the document has to be what a plain copy became by the same step.
class RandomSession : public WindowFixture
{
public:
    /// `samples` are the bytes of two settings files; unless `whole`, small parts of them are used.
    RandomSession(quint32 seed, const QList<QByteArray>& samples, bool whole)
        : m_random(seed)
        , m_whole(whole)
    {
        for (const QByteArray& sample : samples) {
            m_samples.push_back(std::make_unique<XsdtDocument>());
            if (!m_samples.back()->parse(sample)) {
                qFatal("the sample doesn't parse");
            }
        }
    }

    /// Takes up to `count` steps, until the first whose outcome is wrong. Gives what is wrong and
    /// the steps that led to it, or nothing.
    QString run(int count)
    {
        start();
        for (int i = 0; i < count; ++i) {
            QStringList faults = i == 0 ? compareAll() : QStringList();
            if (faults.isEmpty()) {
                takeStep();
                faults = compareAll();
            }
            if (QTest::currentTestFailed() || !faults.isEmpty()) {
                return u"after these steps:\n"_s + m_log.join(u'\n') + u'\n' + faults.join(u'\n');
            }
        }
        m_plain.document = nullptr;
        m_window.reset();
        return {};
    }

    /// How often each kind of step was taken.
    const QMap<QString, int>& counts() const { return m_counts; }

private:
    // --- the random user ---

    int below(qsizetype count) { return int(m_random.bounded(quint32(count))); }
    bool oneIn(int count) { return below(count) == 0; }

    template <typename List>
    auto pick(const List& list)
    {
        return list[below(list.size())];
    }

    QString text()
    {
        static const QStringList texts{u"true"_s,       u"false"_s,      u"0"_s,        u"1"_s,
                                       u"7"_s,          u"-3"_s,         u"007"_s,      u" 12 "_s,
                                       u"1.5"_s,        u"1.50"_s,       u"1e400"_s,    u"1,5"_s,
                                       u"4294967295"_s, u"2147483648"_s, QString(),     u"text"_s,
                                       u"nan"_s,        u"<b>&%1"_s,     u"two words"_s};
        return oneIn(12) ? QString(150 + below(200), u'z') : pick(texts);
    }

    /// Part of a key or value of the file, or anything.
    QString searchText()
    {
        if (m_nodes.isEmpty() || oneIn(5)) {
            return oneIn(2) ? text() : u"no such text"_s;
        }
        const XsdtNode* node = pick(m_nodes);
        const QString whole = oneIn(3) && !node->value.isEmpty() ? node->value.left(20) : node->key;
        return oneIn(3) ? whole : whole.left(1 + below(6));
    }

    void note(const QString& step) { m_log.append(u"%1. %2"_s.arg(m_log.size() + 1).arg(step)); }

    /// Another file: most often the open one with other values.
    QByteArray newFile()
    {
        XsdtDocument document;
        if (!oneIn(3) && document.parse(m_disk.value(m_path))) {
            walkTree(document.root, [&](XsdtNode& node) {
                node.markedForDeletion = oneIn(20);
                if (node.kind == XsdtNode::Kind::Value && oneIn(4)) {
                    node.value = node.typeCode == u'b' ? (oneIn(2) ? u"true"_s : u"false"_s)
                                                       : QString::number(below(9));
                }
                return Walk::Into;
            });
            return document.serialize();
        }
        const XsdtDocument& sample = *m_samples[std::size_t(oneIn(2))];
        return m_whole ? sample.serialize() : smallSettings(sample, m_random);
    }

    void takeStep()
    {
        struct Step
        {
            const char* name;
            int weight;
            bool (RandomSession::*take)();
        };
        static const std::vector<Step> steps{
            {"edit by the model", 6, &RandomSession::editByModel},
            {"edit in the tree", 6, &RandomSession::editInTree},
            {"edit in a row", 12, &RandomSession::editInRow},
            {"revert in a row", 3, &RandomSession::revertInRow},
            {"menu of a row", 4, &RandomSession::useRowMenu},
            {"menu of the tree", 5, &RandomSession::useTreeMenu},
            {"delete key", 5, &RandomSession::pressDeleteKey},
            {"undo by the model", 2, &RandomSession::undoByModel},
            {"revert all", 1, &RandomSession::revertAll},
            {"filter the tree", 4, &RandomSession::filterTree},
            {"expand or collapse", 2, &RandomSession::expandTree},
            {"search the preferences", 4, &RandomSession::searchPreferences},
            {"choose in the preferences", 5, &RandomSession::choosePreferences},
            {"search", 5, &RandomSession::search},
            {"search for a module", 2, &RandomSession::searchModule},
            {"tick for cleanup", 5, &RandomSession::tickCleanup},
            {"queue or undo a cleanup", 4, &RandomSession::queueCleanup},
            {"tick or open a module", 5, &RandomSession::touchModule},
            {"queue or undo modules", 4, &RandomSession::queueModules},
            {"check", 3, &RandomSession::runCheck},
            {"use a finding", 3, &RandomSession::useFinding},
            {"choose a file to compare", 5, &RandomSession::chooseOther},
            {"filter the comparison", 3, &RandomSession::filterComparison},
            {"copy values", 6, &RandomSession::copyValues},
            {"menu of a difference", 2, &RandomSession::useCompareMenu},
            {"save", 5, &RandomSession::save},
            {"change the file", 3, &RandomSession::changeFile},
            {"reload", 3, &RandomSession::reload},
            {"restore", 2, &RandomSession::restore},
            {"open the other file", 2, &RandomSession::openOther},
            {"poll", 2, &RandomSession::pollNow},
            {"start or end PixInsight", 2, &RandomSession::toggleRunning},
            {"leave an editor open", 4, &RandomSession::leaveEditor},
            {"reload beneath a dialog", 3, &RandomSession::reloadBeneath},
            {"show a page", 4, &RandomSession::showPage},
            {"change the look", 1, &RandomSession::changeLook},
        };
        int sum = 0;
        for (const Step& step : steps) {
            sum += step.weight;
        }
        m_status.reset();
        m_window->activateWindow(); // which a box that closed here doesn't do
        settle();
        for (int tries = 0; tries < 100; ++tries) {
            int place = below(sum);
            auto step = steps.begin();
            while (place >= step->weight) {
                place -= (step++)->weight;
            }
            if ((this->*step->take)()) {
                ++m_counts[QString::fromLatin1(step->name)];
                return;
            }
        }
        note(u"nothing to do"_s);
    }

    // --- changes, and what they are to the plain copy ---

    bool isInside(int i) const { return PlainWindow::isInside(*m_copyNodes[i]); }

    /// What an `edited` of the model does.
    void noteEdited() { m_plain.isCheckOld = m_plain.hasChecked; }

    /// Whether the copy changed.
    bool plainEdit(int i, const QString& text)
    {
        XsdtNode& node = *m_copyNodes[i];
        if (m_plain.running || !PlainWindow::isEditable(node) || isInside(i)) {
            return false;
        }
        QString value;
        QString error;
        if (m_plain.policy.isEditLocked(&node)) {
            m_status = u"Not accepted - %1 is part of the module registry or version records and "
                       "is locked against editing."_s.arg(node.key);
        } else if (!validateValue(node.typeCode, text, value, &error)) {
            m_status = u"Not accepted - %1: %2"_s.arg(node.key, error);
        } else if (value != node.value) {
            node.value = value;
            noteEdited();
            return true;
        }
        return false;
    }

    void plainRevert(int i)
    {
        XsdtNode& node = *m_copyNodes[i];
        if (node.value != node.original) {
            node.value = node.original;
            noteEdited();
        }
    }

    void plainMark(int i)
    {
        if (!isInside(i)) {
            m_copyNodes[i]->markedForDeletion = true;
            noteEdited();
        }
    }

    void plainUndo(int i)
    {
        if (m_copyNodes[i]->markedForDeletion) {
            m_copyNodes[i]->markedForDeletion = false;
            noteEdited();
        }
    }

    /// Announces the boxes of a wish to delete a node, and makes the change.
    void expectDeletion(int i)
    {
        const XsdtNode& node = *m_copyNodes[i];
        const QString path = node.path();
        const DeleteDecision decision = m_plain.policy.decide(&node);
        const QString values = u"%1 value(s)"_s.arg(node.valueCount());
        if (node.markedForDeletion) {
            return;
        }
        if (decision.level == DeleteLevel::Never) {
            m_dialogs.announceBox(u"Cannot delete"_s, path + u"\n\n"_s + decision.reason,
                                  QMessageBox::Ok);
            return;
        }
        if (decision.level == DeleteLevel::Warn && !m_dontAsk) {
            const bool yes = !oneIn(3);
            const bool never = oneIn(6);
            m_dialogs.announce<QMessageBox>([=](QMessageBox& box) {
                if (box.text() != u"Delete %1?\n(%2)"_s.arg(path, values)) {
                    m_dialogs.fault(box.text());
                }
                box.checkBox()->setChecked(never);
                box.button(yes ? QMessageBox::Yes : QMessageBox::Cancel)->click();
            });
            m_dontAsk = yes && never;
            if (!yes) {
                return;
            }
        }
        if (m_plain.running) {
            m_dialogs.announceBox(u"Cannot delete"_s,
                                  u"PixInsight is running; nothing can be changed."_s,
                                  QMessageBox::Ok);
            return;
        }
        plainMark(i);
        m_status = u"%1 queued for deletion (%2). Save to apply."_s.arg(path, values);
    }

    void expectReveal()
    {
        m_plain.treeFilter.clear();
        m_plain.treeChangedOnly = false;
    }

    /// Of the copy, which is ahead of the document while a step is prepared.
    qsizetype pendingCount() const
    {
        return m_plain.document ? PlainWindow::pending(m_copy.root) : 0;
    }
    bool isPending() const { return pendingCount() > 0; }

    /// Announces the question whether changes may go; whether they may.
    bool expectDiscard(const QString& tail)
    {
        if (!isPending()) {
            return true;
        }
        const bool yes = !oneIn(3);
        m_dialogs.announceBox(u"Discard changes?"_s,
                              u"You have %1 unsaved change(s). %2"_s.arg(pendingCount()).arg(tail),
                              yes ? QMessageBox::Discard : QMessageBox::Cancel);
        return yes;
    }

    bool editByModel()
    {
        if (m_nodes.isEmpty()) {
            return false;
        }
        const int i = below(m_nodes.size());
        const QString typed = text();
        note(u"set %1 to \"%2\" by the model"_s.arg(m_nodes[i]->path(), typed));
        model()->setData(model()->indexForNode(m_nodes[i], SettingsModel::ValueColumn), typed);
        plainEdit(i, typed);
        return true;
    }

    /// Makes a random node that the tree shows the current one; -1 if there is none.
    int chooseInTree()
    {
        QList<int> shown;
        for (int i = 0; i < m_nodes.size(); ++i) {
            if (m_plain.isInTree(*m_nodes[i])) {
                shown.append(i);
            }
        }
        if (shown.isEmpty()) {
            return -1;
        }
        const int i = pick(shown);
        showTab("advancedPage");
        tree()->setCurrentIndex(inTree(i));
        tree()->scrollTo(inTree(i));
        tree()->setFocus();
        return i;
    }

    QModelIndex inTree(int i) const
    {
        const auto* proxy = static_cast<QSortFilterProxyModel*>(tree()->model());
        return proxy->mapFromSource(model()->indexForNode(m_nodes[i], SettingsModel::ValueColumn));
    }

    bool editInTree()
    {
        const int i = chooseInTree();
        if (i < 0) {
            return false;
        }
        QTest::keyClick(tree(), Qt::Key_F2);
        QWidget* editor = m_window->focusWidget();
        const XsdtNode& node = *m_copyNodes[i];
        const bool canEdit = PlainWindow::isEditable(node) && !m_plain.running && !isInside(i) &&
                             !m_plain.policy.isEditLocked(&node);
        if (canEdit == (editor == tree())) {
            m_dialogs.fault(u"an editor %1 open"_s.arg(canEdit ? u"doesn't"_s : u"does"_s));
        }
        if (editor == tree()) {
            note(u"F2 on %1"_s.arg(node.path()));
        } else if (auto* combo = qobject_cast<QComboBox*>(editor)) {
            const bool isTrue = combo->currentText() == u"true"_s;
            note(u"toggle %1 in the tree"_s.arg(node.path()));
            QTest::keyClick(combo, isTrue ? Qt::Key_Down : Qt::Key_Up);
            if (combo->currentIndex() >= 0) {
                plainEdit(i, isTrue ? u"false"_s : u"true"_s);
            }
        } else {
            typeInTree(*editor, i);
        }
        settle();
        tree()->setFocus();
        return true;
    }

    void typeInTree(QWidget& editor, int i)
    {
        const QString typed = oneIn(4) ? m_copyNodes[i]->value : text();
        const bool untouched = typed == m_copyNodes[i]->value;
        const bool escape = oneIn(6);
        note(u"type \"%1\" over %2 in the tree%3"_s.arg(typed, m_nodes[i]->path(),
                                                        escape ? u", then Escape"_s : QString()));
        if (!untouched) {
            typed.isEmpty() ? QTest::keyClick(&editor, Qt::Key_Backspace)
                            : QTest::keyClicks(&editor, typed);
        }
        QTest::keyClick(&editor, escape ? Qt::Key_Escape : Qt::Key_Return);
        if (!escape && !untouched) {
            plainEdit(i, typed);
        }
    }

    // --- rows ---

    /// A random row in sight on a random page, and the number of its node; one whose child of that
    /// name is enabled.
    std::pair<SettingRow*, int> chooseRow(const QString& enabledPart = {})
    {
        const QByteArray name = pick(QList<QByteArray>{
            "preferencesView", "preferencesView", "searchView", "healthView", "unusedModulesView"});
        QWidget* page = showTab(name.constData());
        QList<SettingRow*> rows = page->findChildren<SettingRow*>();
        rows.removeIf([&enabledPart](const SettingRow* row) {
            const auto* part = row->findChild<QWidget*>(enabledPart);
            return !row->isVisible() || (part && !part->isEnabled());
        });
        if (rows.isEmpty()) {
            return {nullptr, -1};
        }
        SettingRow* row = pick(rows);
        return {row, int(m_nodes.indexOf(row->node()))};
    }

    bool editInRow()
    {
        const auto [row, i] = chooseRow(u"editorHost"_s);
        if (!row) {
            return false;
        }
        const QString path = row->node()->path();
        const auto done = [&](const QString& what) {
            note(u"%1 in the row of %2"_s.arg(what, path));
            return true;
        };
        if (auto* box = row->findChild<QCheckBox*>(u"checkBox"_s)) {
            const bool tick = !box->isChecked();
            plainEdit(i, tick ? u"true"_s : u"false"_s);
            box->click();
            return done(u"click the box"_s);
        }
        if (auto* combo = row->findChild<QComboBox*>(u"comboBox"_s)) {
            return done(chooseItem(*combo, i));
        }
        if (auto* spin = row->findChild<QSpinBox*>(u"spinBox"_s)) {
            const int low = qMax(spin->minimum(), -20);
            const int number = qMin(low + below(50), spin->maximum());
            if (number != spin->value()) {
                plainEdit(i, QString::number(number));
            }
            typeOver(*spin, QString::number(number));
            return done(u"type %1"_s.arg(number));
        }
        if (auto* spin = row->findChild<QDoubleSpinBox*>(u"doubleSpinBox"_s)) {
            const int number = 1 + below(5000);
            if (number != spin->value()) {
                plainEdit(i, QString::number(number));
            }
            typeOver(*spin, QString::number(number));
            return done(u"type %1"_s.arg(number));
        }
        if (auto* line = row->findChild<QLineEdit*>(u"lineEdit"_s)) {
            const QString typed = oneIn(5) ? line->text() : text();
            expectLine(i, typed);
            if (typed != line->text()) {
                line->setFocus();
                line->selectAll();
                typed.isEmpty() ? line->clear() : QTest::keyClicks(line, typed);
            }
            QTest::keyClick(line, Qt::Key_Return);
            return done(u"type \"%1\""_s.arg(typed));
        }
        if (auto* color = row->findChild<ColorButton*>(u"colorButton"_s)) {
            const quint32 argb = m_random.generate();
            plainEdit(i, QString::number(argb));
            emit color->colorPicked(argb);
            return done(u"pick a colour"_s);
        }
        return false;
    }

    QString chooseItem(QComboBox& combo, int i)
    {
        const int item = below(combo.count());
        if (!combo.itemData(item, Qt::UserRole + 1).isValid()) {
            plainEdit(i, QString::number(combo.itemData(item).toLongLong()));
        }
        combo.setCurrentIndex(item);
        emit combo.activated(item);
        return u"choose item %1"_s.arg(item);
    }

    static void typeOver(QAbstractSpinBox& spin, const QString& typed)
    {
        spin.setFocus();
        spin.selectAll();
        QTest::keyClicks(&spin, typed);
        QTest::keyClick(&spin, Qt::Key_Return);
    }

    void expectLine(int i, const QString& typed)
    {
        if (typed == m_copyNodes[i]->value) {
            return;
        }
        const VariableInfo info = m_plain.schema.describe(*m_nodes[i]);
        bool isNumber = false;
        const double number = typed.trimmed().toDouble(&isNumber);
        if (info.kind == VariableKind::Real && info.hasRange && isNumber &&
            (number < info.min || number > info.max)) {
            m_status = u"Not accepted - %1: %2 is outside the allowed range %3 to %4"_s.arg(
                info.label, QString::number(number), QString::number(info.min),
                QString::number(info.max));
        } else {
            plainEdit(i, typed);
        }
    }

    bool revertInRow()
    {
        const auto [row, i] = chooseRow(u"revertButton"_s);
        if (!row) {
            return false;
        }
        note(u"revert in the row of %1"_s.arg(row->node()->path()));
        plainRevert(i);
        row->findChild<QToolButton*>(u"revertButton"_s)->click();
        return true;
    }

    bool useRowMenu()
    {
        const auto [row, i] = chooseRow();
        if (!row) {
            return false;
        }
        const XsdtNode& node = *m_copyNodes[i];
        const bool inside = isInside(i);
        const bool canRevert = node.value != node.original && !m_plain.running && !inside;
        QStringList offered{canRevert ? u"Revert this value"_s : u"Revert this value!"_s};
        const DeleteLevel level = m_plain.policy.decide(&node).level;
        const QString off = m_plain.running ? u"!"_s : QString();
        offered.append(node.markedForDeletion        ? u"Undo deletion"_s
                       : inside                      ? u"Inside a group marked for deletion!"_s
                       : level == DeleteLevel::Never ? u"Why can't this be deleted?"_s
                       : level == DeleteLevel::Warn  ? u"Delete this setting..."_s + off
                                                     : u"Delete this setting"_s + off);
        if (m_shownTab != "preferencesView") {
            offered.append(u"Show in All settings"_s);
        }
        const QString choice = pick(offered);
        note(u"\"%1\" in the menu of the row of %2"_s.arg(choice, node.path()));
        QStringList texts;
        m_dialogs.announceMenu(choice, &texts);
        expectChoice(choice, i);
        QContextMenuEvent event(QContextMenuEvent::Mouse, {5, 5}, row->mapToGlobal(QPoint(5, 5)));
        QApplication::sendEvent(row, &event);
        compare(u"menu of the row"_s, texts, offered);
        return true;
    }

    void expectChoice(const QString& choice, int i)
    {
        const XsdtNode& node = *m_copyNodes[i];
        if (choice == u"Revert this value"_s) {
            plainRevert(i);
        } else if (choice == u"Undo deletion"_s) {
            plainUndo(i);
        } else if (choice.startsWith(u"Why"_s)) {
            m_dialogs.announceBox(u"Cannot delete"_s,
                                  node.path() + u"\n\n"_s + m_plain.policy.decide(&node).reason,
                                  QMessageBox::Ok);
        } else if (choice.startsWith(u"Delete"_s) && !choice.endsWith(u'!')) {
            expectDeletion(i);
        } else if (choice == u"Show in All settings"_s) {
            expectReveal();
        }
    }

    bool useTreeMenu()
    {
        const int i = chooseInTree();
        if (i < 0) {
            return false;
        }
        const XsdtNode& node = *m_copyNodes[i];
        const bool isValue = node.kind == XsdtNode::Kind::Value;
        const bool canRevert = node.value != node.original && !m_plain.running;
        const DeleteLevel level = m_plain.policy.decide(&node).level;
        const QString off = m_plain.running ? u"!"_s : QString();
        const QStringList offered{canRevert ? u"Revert this value"_s : u"Revert this value!"_s,
                                  u"Copy setting path"_s,
                                  isValue ? u"Copy value"_s : u"Copy value!"_s,
                                  node.markedForDeletion ? u"Undo deletion"_s
                                  : isInside(i)          ? u"Inside an entry marked for deletion!"_s
                                  : level == DeleteLevel::Never ? u"Why can't this be deleted?"_s
                                  : level == DeleteLevel::Warn  ? u"Delete this entry..."_s + off
                                                                : u"Delete this entry"_s + off};
        const QString choice = pick(offered);
        note(u"\"%1\" in the tree's menu on %2"_s.arg(choice, node.path()));
        QStringList texts;
        m_dialogs.announceMenu(choice, &texts);
        expectChoice(choice, i);
        emit tree()->customContextMenuRequested(tree()->visualRect(inTree(i)).center());
        compare(u"menu of the tree"_s, texts, offered);
        return true;
    }

    bool pressDeleteKey()
    {
        const int i = chooseInTree();
        if (i < 0) {
            return false;
        }
        note(u"Delete on %1"_s.arg(m_nodes[i]->path()));
        expectDeletion(i);
        QTest::keyClick(tree(), Qt::Key_Delete);
        return true;
    }

    bool undoByModel()
    {
        QList<int> changed;
        for (int i = 0; i < m_nodes.size(); ++i) {
            if (m_nodes[i]->markedForDeletion || m_nodes[i]->isModified()) {
                changed.append(i);
            }
        }
        if (changed.isEmpty()) {
            return false;
        }
        const int i = pick(changed);
        note(u"undo and revert %1 by the model"_s.arg(m_nodes[i]->path()));
        plainUndo(i);
        plainRevert(i);
        model()->undoDeletion(m_nodes[i]);
        model()->revertValue(m_nodes[i]);
        return true;
    }

    bool revertAll()
    {
        if (!isPending()) {
            return false;
        }
        const bool yes = !oneIn(3);
        note(u"revert all: %1"_s.arg(yes ? u"yes"_s : u"no"_s));
        m_dialogs.announceBox(u"Revert all changes"_s,
                              u"Discard all %1 unsaved change(s)?"_s.arg(pendingCount()),
                              yes ? QMessageBox::Yes : QMessageBox::No);
        action("actRevert")->trigger();
        if (yes) {
            for (XsdtNode* node : std::as_const(m_copyNodes)) {
                node->value = node->original;
                node->markedForDeletion = false;
            }
            noteEdited();
        }
        return true;
    }

    // --- the tree ---

    bool filterTree()
    {
        showTab("advancedPage");
        const auto current = [this] {
            return tree()->currentIndex().data(SettingsModel::NodeRole).value<XsdtNode*>();
        };
        const XsdtNode* before = current();
        if (oneIn(3)) {
            note(u"changed only"_s);
            find<QWidget>("advancedPage")->findChild<QCheckBox*>(u"changedOnly"_s)->click();
            m_plain.treeChangedOnly = !m_plain.treeChangedOnly;
        } else {
            const QString typed = oneIn(3) ? QString() : searchText();
            note(u"filter the tree by \"%1\""_s.arg(typed));
            auto* filter = find<QLineEdit>("treeFilter");
            filter->setText(typed);
            m_plain.treeFilter = filter->text().trimmed();
        }
        if (before && m_plain.isInTree(*before) && current() != before) {
            m_dialogs.fault(u"%1 is no longer the current row"_s.arg(before->path()));
        }
        return true;
    }

    bool expandTree()
    {
        const QString name = oneIn(2) ? u"&Expand all"_s : u"&Collapse all"_s;
        note(name);
        const QList<QAction*> actions = m_window->findChildren<QAction*>();
        for (QAction* action : actions) {
            if (action->text() == name) {
                action->trigger();
                return true;
            }
        }
        return false;
    }

    // --- preferences ---

    bool searchPreferences()
    {
        auto* edit = showTab("preferencesView")->findChild<QLineEdit*>(u"searchEdit"_s);
        const QString typed = oneIn(3) ? QString() : searchText();
        note(u"search the preferences for \"%1\""_s.arg(typed));
        const bool changed = typed != edit->text();
        edit->setText(typed);
        if (changed) {
            m_plain.filterPreferences(edit->text());
        }
        return true;
    }

    bool choosePreferences()
    {
        QWidget* page = showTab("preferencesView");
        auto* list = page->findChild<QListWidget*>(u"pageList"_s);
        const QList<PlainWindow::PreferencesPage> pages = m_plain.preferences();
        if (m_plain.preferencesRow < 0) {
            return false;
        }
        const QWidget* shown = page->findChild<QStackedWidget*>(u"pageStack"_s)->currentWidget();
        const auto sections = shown->findChildren<CollapsibleSection*>();
        const QList<XsdtNode*> nodes = pages[m_plain.preferencesRow].sections;
        if (sections.isEmpty() || oneIn(3)) {
            const int row = below(pages.size());
            if (!pages[row].found) {
                return false;
            }
            note(u"choose page %1"_s.arg(pages[row].title));
            list->setCurrentRow(row);
            m_plain.preferencesRow = row;
            return true;
        }
        if (sections.size() != nodes.size()) {
            return false;
        }
        // In the order of the page, which isn't that in which they were made.
        QList<CollapsibleSection*> inOrder;
        appendSections(*shownLayout(*shown), inOrder);
        const int place = below(inOrder.size());
        if (!inOrder[place]->isVisible()) {
            return false;
        }
        note(u"toggle section %1"_s.arg(nodes[place]->path()));
        m_plain.toggled.insert(nodes[place], !isOpen(*inOrder[place]));
        inOrder[place]->findChild<QToolButton*>(u"toggleButton"_s)->click();
        return true;
    }

    static void appendSections(const QLayout& layout, QList<CollapsibleSection*>& sections)
    {
        for (int i = 0; i < layout.count(); ++i) {
            if (auto* section = qobject_cast<CollapsibleSection*>(layout.itemAt(i)->widget())) {
                sections.append(section);
                appendSections(*section->bodyLayout(), sections);
            }
        }
    }

    static const QLayout* shownLayout(const QWidget& scrollArea)
    {
        return static_cast<const QScrollArea&>(scrollArea).widget()->layout();
    }

    // --- search ---

    SearchQuery query() const
    {
        const auto* page = find<QWidget>("searchView");
        const auto isOn = [page](const QString& name) {
            return page->findChild<QCheckBox*>(name)->isChecked();
        };
        SearchQuery query;
        query.terms = searchTerms(page->findChild<QLineEdit*>(u"queryEdit"_s)->text());
        query.names = isOn(u"searchNames"_s);
        query.values = isOn(u"searchValues"_s);
        query.descriptions = isOn(u"searchDescriptions"_s);
        query.changedOnly = isOn(u"changedOnly"_s);
        query.includeProtected = isOn(u"includeProtected"_s);
        return query;
    }

    bool search()
    {
        auto* page = static_cast<SearchView*>(showTab("searchView"));
        auto* more = page->findChild<QPushButton*>(u"showMoreButton"_s);
        auto* clear = page->findChild<QPushButton*>(u"clearFilterButton"_s);
        if (!more->isHidden() && oneIn(2)) {
            note(u"show more"_s);
            more->click();
            m_plain.limit += 100;
            return true;
        }
        if (clear->isVisible() && oneIn(3)) {
            note(u"clear the module filter"_s);
            m_plain.restricted = false;
            m_plain.search(query());
            clear->click();
            m_plain.limit = 100;
            return true;
        }
        if (oneIn(3)) {
            const QString name =
                pick(QStringList{u"searchNames"_s, u"searchValues"_s, u"searchDescriptions"_s,
                                 u"changedOnly"_s, u"includeProtected"_s});
            note(u"toggle %1 of the search"_s.arg(name));
            page->findChild<QCheckBox*>(name)->click();
            page->setQuery(page->findChild<QLineEdit*>(u"queryEdit"_s)->text());
        } else {
            const QString typed = oneIn(4) ? QString() : searchText();
            note(u"search for \"%1\""_s.arg(typed));
            page->setQuery(typed);
        }
        m_plain.search(query());
        return true;
    }

    bool searchModule()
    {
        if (!m_plain.document) {
            return false;
        }
        const QStringList names = ModuleCatalog::registeredModules(*m_plain.document) +
                                  ModuleCatalog::modulesWithData(*m_plain.document);
        const QString name = names.isEmpty() || oneIn(6) ? u"zzz"_s : pick(names);
        const QString wanted = oneIn(4) ? name.left(3) : name;
        if (wanted.trimmed().isEmpty()) {
            return false;
        }
        note(u"search for the module \"%1\""_s.arg(wanted));
        m_dialogs.announce<QDialog>([wanted](QDialog& dialog) {
            dialog.findChild<QLineEdit*>(u"nameEdit"_s)->setText(wanted);
            dialog.accept();
        });
        bool exact = false;
        QList<XsdtNode*> nodes;
        QStringList captions;
        const QString trimmed = wanted.trimmed();
        const auto modules = ModuleCatalog::searchModules(*m_plain.document, trimmed, &exact);
        for (const ModuleInfo& info : modules) {
            nodes += ModuleCatalog::moduleLeaves(info);
            captions.append(info.name +
                            (info.registered ? u" (installed)"_s : u" (not in the module list)"_s));
        }
        if (nodes.isEmpty()) {
            m_dialogs.announceBox(u"Find module data"_s, u"Nothing recorded for"_s,
                                  QMessageBox::No);
        }
        action("actFindModule")->trigger();
        if (!nodes.isEmpty()) {
            m_plain.restricted = true;
            m_plain.restriction = QSet<XsdtNode*>(nodes.begin(), nodes.end());
            const QString count = QString::number(nodes.size());
            m_plain.restrictionText =
                exact ? u"Module search for \"%1\": registry entry, module data, module settings "
                        "and process entries - %2, %3 value(s). Type words below to narrow them."_s
                            .arg(trimmed, captions.join(u", "_s), count)
                      : u"No module is called exactly \"%1\"; showing modules whose name contains "
                        "it: %2 - %3 value(s)."_s.arg(trimmed, captions.join(u", "_s), count);
            m_plain.search(query());
        }
        return true;
    }

    // --- cleanup ---

    bool tickCleanup()
    {
        if (m_plain.running || m_plain.entries.isEmpty()) {
            return false;
        }
        auto* list = showTab("cleanupView")->findChild<QTreeWidget*>(u"tree"_s);
        const int place = below(m_plain.entries.size());
        QList<QTreeWidgetItem*> items;
        for (QTreeWidgetItemIterator it(list); *it; ++it) {
            const Qt::ItemFlags flags = (*it)->flags();
            if ((flags & Qt::ItemIsUserCheckable) && !(flags & Qt::ItemIsAutoTristate)) {
                items.append(*it);
            }
        }
        if (items.size() != m_plain.entries.size()) {
            m_dialogs.fault(u"%1 rows to tick"_s.arg(items.size()));
            return true;
        }
        PlainWindow::CleanupEntry& entry = m_plain.entries[place];
        if (oneIn(3)) { // all that its parent holds
            const bool tick = items[place]->parent()->checkState(0) != Qt::Checked;
            note(u"%1 all beneath the parent of %2"_s.arg(tick ? u"tick"_s : u"untick"_s,
                                                          entry.name));
            for (PlainWindow::CleanupEntry& other : m_plain.entries) {
                const bool sibling = entry.heading >= 0 ? other.heading == entry.heading
                                                        : other.isWarn == entry.isWarn;
                other.isTicked = sibling ? tick : other.isTicked;
            }
            items[place]->parent()->setCheckState(0, tick ? Qt::Checked : Qt::Unchecked);
        } else {
            note(u"tick or untick %1"_s.arg(entry.name));
            entry.isTicked = !entry.isTicked;
            items[place]->setCheckState(0, entry.isTicked ? Qt::Checked : Qt::Unchecked);
        }
        return true;
    }

    bool queueCleanup()
    {
        QWidget* page = showTab("cleanupView");
        const bool undo = oneIn(3);
        auto* button = page->findChild<QPushButton*>(undo ? u"undoButton"_s : u"queueButton"_s);
        if (!button->isEnabled()) {
            return false;
        }
        note(undo ? u"undo what is ticked for cleanup"_s : u"queue what is ticked for cleanup"_s);
        QStringList warned;
        for (const PlainWindow::CleanupEntry& entry : std::as_const(m_plain.entries)) {
            if (entry.isTicked && entry.isWarn) {
                warned.append(entry.name);
            }
        }
        bool yes = true;
        if (!undo && !warned.isEmpty()) {
            yes = !oneIn(3);
            m_dialogs.announceBox(
                u"Delete saved settings?"_s,
                u"This removes the saved configuration of %1 tool(s) or script(s)."_s.arg(
                    warned.size()),
                yes ? QMessageBox::Yes : QMessageBox::Cancel);
        }
        int queued = 0;
        for (PlainWindow::CleanupEntry& entry : m_plain.entries) {
            if (!yes || !entry.isTicked) {
                continue;
            }
            for (XsdtNode* node : std::as_const(entry.nodes)) {
                const int i = int(m_nodes.indexOf(node));
                undo ? plainUndo(i) : plainMark(i);
                ++queued;
            }
            entry.isTicked = false;
        }
        if (yes && !undo) {
            m_status = u"Queued for deletion: %1. Save to apply."_s.arg(queued);
        }
        button->click();
        return true;
    }

    // --- unused modules ---

    QList<QWidget*> moduleCards() const
    {
        QList<QWidget*> cards;
        const QLayout* layout = find<QWidget>("listWidget")->layout();
        for (int i = 0; i < layout->count() - 2; ++i) { // a button and a stretch come last
            cards.append(layout->itemAt(i)->widget());
        }
        return cards;
    }

    bool touchModule()
    {
        const QWidget* page = showTab("unusedModulesView");
        const QList<QWidget*> cards = moduleCards();
        if (cards.isEmpty() || cards.size() != m_plain.modules.size()) {
            return false;
        }
        if (oneIn(8)) {
            note(u"tick all modules"_s);
            for (PlainWindow::UnusedModule& module : m_plain.modules) {
                module.isTicked = true;
            }
            page->findChild<QPushButton*>(u"tickAllButton"_s)->click();
            return true;
        }
        const int place = below(cards.size());
        PlainWindow::UnusedModule& module = m_plain.modules[place];
        if (oneIn(2)) {
            note(u"open or close module %1"_s.arg(module.info.name));
            module.isOpen = !module.isOpen;
            module.isBuilt = true;
            cards[place]->findChild<QToolButton*>(u"toggleButton"_s)->click();
            return true;
        }
        auto* tick = cards[place]->findChild<QCheckBox*>(u"tick"_s);
        if (!tick->isEnabled()) {
            return false;
        }
        note(u"tick or untick module %1"_s.arg(module.info.name));
        module.isTicked = !module.isTicked;
        tick->click();
        return true;
    }

    bool queueModules()
    {
        if (oneIn(4)) {
            return showUnused();
        }
        QWidget* page = showTab("unusedModulesView");
        const bool undo = oneIn(3);
        auto* button = page->findChild<QPushButton*>(undo ? u"undoButton"_s : u"queueButton"_s);
        if (!button->isEnabled()) {
            return false;
        }
        const bool yes = undo || !oneIn(3);
        note((undo ? u"undo ticked modules: %1"_s : u"queue ticked modules: %1"_s)
                 .arg(yes ? u"yes"_s : u"no"_s));
        int queued = 0;
        int count = 0;
        QStringList refused;
        for (PlainWindow::UnusedModule& module : m_plain.modules) {
            count += module.isTicked ? 1 : 0;
            if (!yes || !module.isTicked) {
                continue;
            }
            module.isTicked = false;
            for (XsdtNode* node : std::as_const(module.info.nodes)) {
                const int i = int(m_nodes.indexOf(node));
                if (undo) {
                    plainUndo(i);
                } else if (isInside(i) || m_plain.policy.decide(node).level != DeleteLevel::Never) {
                    plainMark(i);
                    ++queued;
                } else {
                    refused.append(node->path());
                }
            }
        }
        if (!undo) {
            m_dialogs.announceBox(
                u"Delete unused module data?"_s,
                u"This removes the saved data of %1 module(s) that are not in the module list."_s
                    .arg(count),
                yes ? QMessageBox::Yes : QMessageBox::Cancel);
        }
        if (!undo && yes) {
            m_status = refused.isEmpty()
                           ? u"Queued %1 entries of %2 module(s) for deletion. Save to apply."_s
                                 .arg(queued)
                                 .arg(count)
                           : u"Queued %1 entries; %2 protected entries were left alone (%3)."_s.arg(
                                 QString::number(queued), QString::number(refused.size()),
                                 refused.join(u", "_s));
        }
        button->click();
        return true;
    }

    bool showUnused()
    {
        if (!m_plain.document) {
            return false;
        }
        note(u"list the unused modules anew"_s);
        m_plain.buildModules();
        action("actUnused")->trigger();
        return true;
    }

    // --- health check ---

    bool runCheck()
    {
        if (!m_plain.document) {
            return false;
        }
        const bool byButton = oneIn(2);
        note(byButton ? u"check again"_s : u"check"_s);
        if (byButton) {
            showTab("healthView")->findChild<QPushButton*>(u"rerunButton"_s)->click();
        } else {
            action("actHealth")->trigger();
        }
        m_plain.check();
        return true;
    }

    bool useFinding()
    {
        const QWidget* page = showTab("healthView");
        const QString name =
            pick(QStringList{u"openUnusedButton"_s, u"revealButton"_s, u"deleteButton"_s});
        const QList<QPushButton*> buttons = page->findChildren<QPushButton*>(name);
        if (buttons.isEmpty()) {
            return false;
        }
        const int place = below(buttons.size());
        if (!buttons[place]->isEnabled()) {
            return false;
        }
        note(u"%1 on a card"_s.arg(name));
        if (name == u"openUnusedButton"_s) {
            m_plain.buildModules();
        } else if (name == u"revealButton"_s) {
            expectReveal();
        } else {
            QList<XsdtNode*> groups;
            for (const Finding& finding : std::as_const(m_plain.findings)) {
                for (XsdtNode* node : finding.nodes.mid(0, 12)) {
                    if (node->kind == XsdtNode::Kind::Group) {
                        groups.append(node);
                    }
                }
            }
            expectDeletion(int(m_nodes.indexOf(groups.value(place))));
        }
        buttons[place]->click();
        return true;
    }

    // --- comparison ---

    bool chooseOther()
    {
        auto* combo = showTab("compareView")->findChild<QComboBox*>(u"fileCombo"_s);
        const int item = below(combo->count() - 1); // the last one opens a file dialog
        const QString path = combo->itemData(item).toString();
        if (!path.isEmpty() && !QFile::exists(path)) {
            return false;
        }
        note(u"compare with \"%1\""_s.arg(QFileInfo(path).fileName()));
        combo->setCurrentIndex(item);
        emit combo->activated(item);
        (void)m_plain.other.parse({});
        m_plain.otherPath.clear();
        if (!path.isEmpty() && m_plain.other.parse(contentOf(path))) {
            m_plain.otherPath = path;
        }
        // Only a path has the list made anew.
        m_compareFiles = path.isEmpty() ? m_compareFiles : compareFiles();
        m_compareFile = path.isEmpty() ? 0 : compareFile();
        return true;
    }

    bool filterComparison()
    {
        const QWidget* page = showTab("compareView");
        if (oneIn(2)) {
            const QString typed = oneIn(3) ? QString() : searchText();
            note(u"filter the comparison by \"%1\""_s.arg(typed));
            auto* edit = page->findChild<QLineEdit*>(u"filterEdit"_s);
            edit->setText(typed);
            m_plain.compareText = edit->text().trimmed();
            return true;
        }
        const int which = below(4);
        const QStringList names{u"showDifferent"_s, u"showOnlyThis"_s, u"showOnlyOther"_s,
                                u"hideNoise"_s};
        note(u"toggle %1 of the comparison"_s.arg(names[which]));
        page->findChild<QCheckBox*>(names[which])->click();
        bool& state = which < 3 ? m_plain.shownStates.at(std::size_t(which)) : m_plain.hideNoise;
        state = !state;
        return true;
    }

    /// The rows of the comparison that are entries, in order.
    QList<QTreeWidgetItem*> differenceItems() const
    {
        QList<QTreeWidgetItem*> items;
        auto* list = find<QWidget>("compareView")->findChild<QTreeWidget*>(u"tree"_s);
        for (int group = 0; group < list->topLevelItemCount(); ++group) {
            for (int row = 0; row < list->topLevelItem(group)->childCount(); ++row) {
                items.append(list->topLevelItem(group)->child(row));
            }
        }
        return items;
    }

    void expectCopies(const QList<CompareEntry>& entries)
    {
        int copied = 0;
        for (const CompareEntry& entry : entries) {
            const int i = int(m_nodes.indexOf(entry.thisNode));
            copied += m_plain.isCopyable(entry) && plainEdit(i, entry.otherNode->value) ? 1 : 0;
        }
        if (copied < entries.size()) {
            m_status = u"Copied %1 value(s); %2 could not be copied (protected type, not editable, "
                       "or refused)."_s.arg(copied)
                           .arg(entries.size() - copied);
        } else if (copied > 0) {
            m_status =
                u"Copied %1 value(s) into this file. Review and save when ready."_s.arg(copied);
        }
    }

    bool copyValues()
    {
        const QWidget* page = showTab("compareView");
        const QList<CompareEntry> shown = m_plain.shownDifferences();
        const QList<QTreeWidgetItem*> items = differenceItems();
        if (items.isEmpty() || items.size() != shown.size()) {
            return false;
        }
        if (oneIn(4)) {
            auto* button = page->findChild<QPushButton*>(u"copyAllButton"_s);
            if (!button->isEnabled()) {
                return false;
            }
            const bool yes = !oneIn(3);
            note(u"copy all values: %1"_s.arg(yes ? u"yes"_s : u"no"_s));
            const auto count = std::count_if(shown.begin(), shown.end(), [this](const auto& entry) {
                return m_plain.isCopyable(entry);
            });
            m_dialogs.announceBox(u"Copy values"_s, u"Copy %1 value(s) from "_s.arg(count),
                                  yes ? QMessageBox::Yes : QMessageBox::No);
            if (yes) {
                expectCopies(shown);
            }
            button->click();
            return true;
        }
        auto* list = page->findChild<QTreeWidget*>(u"tree"_s);
        list->clearSelection();
        QList<int> places;
        if (oneIn(4)) { // a whole group
            QTreeWidgetItem* group = items[below(items.size())]->parent();
            group->setSelected(true);
            for (int row = 0; row < group->childCount(); ++row) {
                places.append(int(items.indexOf(group->child(row))));
            }
        } else {
            for (int count = 1 + below(3); count > 0; --count) {
                const int place = below(items.size());
                if (!places.contains(place)) {
                    places.append(place);
                    items[place]->setSelected(true);
                }
            }
        }
        QList<CompareEntry> chosen;
        for (const int place : std::as_const(places)) {
            chosen.append(shown[place]);
        }
        auto* button = page->findChild<QPushButton*>(u"copySelectedButton"_s);
        const bool can = !m_plain.running &&
                         std::any_of(chosen.begin(), chosen.end(), [this](const auto& entry) {
                             return m_plain.isCopyable(entry);
                         });
        note(
            u"copy %1 selected values, the first %2"_s.arg(chosen.size()).arg(chosen.first().path));
        if (button->isEnabled() != can) {
            m_dialogs.fault(u"copySelectedButton is %1"_s.arg(button->isEnabled()));
        } else if (can) {
            expectCopies(chosen);
            button->click();
        }
        return true;
    }

    bool useCompareMenu()
    {
        showTab("compareView");
        const QList<CompareEntry> shown = m_plain.shownDifferences();
        const QList<QTreeWidgetItem*> items = differenceItems();
        if (items.isEmpty() || items.size() != shown.size()) {
            return false;
        }
        const int place = below(items.size());
        const CompareEntry& entry = shown[place];
        QTreeWidget* list = items[place]->treeWidget();
        list->scrollToItem(items[place]);
        if (oneIn(4)) {
            note(u"double click on the difference %1"_s.arg(entry.path));
            if (entry.thisNode) {
                expectReveal();
            }
            emit list->itemDoubleClicked(items[place], 0);
            return true;
        }
        const bool can = m_plain.isCopyable(entry) && !m_plain.running;
        const QStringList offered{u"Use the other file's value"_s + (can ? u""_s : u"!"_s),
                                  u"Show in All settings"_s + (entry.thisNode ? u""_s : u"!"_s),
                                  u"Copy setting path"_s};
        const QString choice = pick(offered);
        note(u"\"%1\" in the menu of the difference %2"_s.arg(choice, entry.path));
        QStringList texts;
        m_dialogs.announceMenu(choice, &texts);
        if (choice == u"Use the other file's value"_s) {
            expectCopies({entry});
        } else if (choice == u"Show in All settings"_s) {
            expectReveal();
        }
        emit list->customContextMenuRequested(list->visualItemRect(items[place]).center());
        compare(u"menu of a difference"_s, texts, offered);
        return true;
    }

    // --- files ---

    bool save()
    {
        if (!m_plain.document || !isPending() || m_plain.running || m_plain.stale) {
            return false;
        }
        const bool accept = !oneIn(4);
        const bool revert = oneIn(4);
        note(u"save%1: %2"_s.arg(revert ? u" without the first change"_s : QString(),
                                 accept ? u"yes"_s : u"no"_s));
        m_dialogs.announce<QDialog>([=](QDialog& dialog) {
            auto* list = dialog.findChild<QTreeWidget*>(u"tree"_s);
            QStringList rows;
            for (int row = 0; row < list->topLevelItemCount(); ++row) {
                rows.append(list->topLevelItem(row)->text(0) + u' ' +
                            list->topLevelItem(row)->text(1));
            }
            compare(u"review"_s, rows, reviewRows());
            if (revert) {
                list->setCurrentItem(list->topLevelItem(0));
                dialog.findChild<QPushButton*>(u"revert"_s)->click();
                revertFirst();
            }
            if (accept) {
                finishReview(dialog);
            } else {
                dialog.reject();
            }
        });
        const QByteArray before = m_loadedBytes;
        action("actSave")->trigger();
        if (accept && m_isSaving) {
            m_isSaving = false;
            noteSaved(before);
        }
        return true;
    }

    /// Rows of the review by path, deletions first.
    QList<std::pair<QString, int>> reviewed(bool deletions) const
    {
        QList<std::pair<QString, int>> rows;
        for (int i = 0; i < m_copyNodes.size(); ++i) {
            const XsdtNode& node = *m_copyNodes[i];
            const bool topMark = node.markedForDeletion && !PlainWindow::isInside(*node.parent);
            const bool edit = node.value != node.original && !PlainWindow::isInside(node);
            if (deletions ? topMark : edit) {
                rows.append({node.path(), i});
            }
        }
        std::stable_sort(rows.begin(), rows.end(), [](const auto& a, const auto& b) {
            return QString::compare(a.first, b.first, Qt::CaseInsensitive) < 0;
        });
        return rows;
    }

    QStringList reviewRows() const
    {
        QStringList rows;
        for (const bool deletions : {true, false}) {
            for (const auto& [path, i] : reviewed(deletions)) {
                rows.append((deletions ? u"Delete "_s : u"Edit "_s) +
                            QString(path).replace(u'\n', QChar(0x23CE)));
            }
        }
        return rows;
    }

    void revertFirst()
    {
        const auto deletions = reviewed(true);
        deletions.isEmpty() ? plainRevert(reviewed(false).constFirst().second)
                            : plainUndo(deletions.constFirst().second);
    }

    void finishReview(QDialog& dialog)
    {
        const auto* button = dialog.findChild<QPushButton*>(u"save"_s);
        const bool anything = !reviewRows().isEmpty();
        if (button->isEnabled() != anything) {
            m_dialogs.fault(u"Save of the review is %1"_s.arg(button->isEnabled()));
        }
        if (anything && m_disk.value(m_path) != m_loadedBytes) {
            m_dialogs.announceBox(u"Save failed"_s,
                                  u"The file changed on disk since it was loaded"_s,
                                  QMessageBox::Ok);
            m_saveFails = true;
        }
        m_isSaving = anything;
        dialog.accept();
    }

    /// The review was accepted with changes left.
    void noteSaved(const QByteArray& before)
    {
        const bool hadDeletions = !reviewed(true).isEmpty();
        if (std::exchange(m_saveFails, false)) {
            if (hadDeletions) {
                replaced();
            }
            notePoll();
            return;
        }
        m_copy.commitEdits();
        m_loadedBytes = m_copy.serialize();
        m_disk[m_path] = m_loadedBytes;
        m_status = u"Saved. Backup: "_s + noteNewBackup(before);
        if (hadDeletions) {
            replaced();
        }
    }

    /// Takes up the one file that is new in the folder, which has to hold `bytes`; its name.
    QString noteNewBackup(const QByteArray& bytes)
    {
        const QFileInfoList files = QDir(m_folder).entryInfoList(QDir::Files | QDir::Hidden);
        for (const QFileInfo& file : files) {
            const QString path = file.absoluteFilePath();
            if (!m_disk.contains(path) && path.startsWith(m_path + u".bak-"_s)) {
                m_disk.insert(path, bytes);
                return file.fileName();
            }
        }
        return u"none"_s;
    }

    /// Somebody else writes or removes the open file, or an old backup.
    bool changeFile()
    {
        const QString path = m_path;
        const int kind = below(8);
        const QStringList backups = PixInsightEnv::backupsOf(path);
        if (backups.size() > 4) {
            note(u"the oldest backup goes"_s);
            QFile::remove(backups.last());
            m_disk.remove(backups.last());
        } else if (kind == 0) {
            note(u"the file goes"_s);
            QFile::remove(path);
            m_disk.remove(path);
        } else {
            const QByteArray bytes = kind == 1   ? QByteArray("nonsense")
                                     : kind == 2 ? m_disk.value(path)
                                                 : newFile();
            note(u"the file becomes another one, of %1 bytes"_s.arg(bytes.size()));
            write(path, bytes);
            m_disk[path] = bytes;
        }
        return oneIn(3) || pollNow();
    }

    bool pollNow()
    {
        note(u"poll"_s);
        expectPoll();
        poll();
        finishPoll();
        return true;
    }

    /// Announces the box of a silent reload that fails.
    void expectPoll()
    {
        const bool stale = m_plain.document && !isOnDisk();
        m_reloads = m_wasRunning && !m_fake && stale && !isPending();
        if (m_reloads) {
            announceFailureToOpen(m_path);
        }
    }

    void finishPoll()
    {
        m_wasRunning = m_fake;
        m_plain.running = m_fake;
        m_plain.stale = m_plain.document && !isOnDisk();
        if (std::exchange(m_reloads, false)) {
            noteOpened(m_path);
            // A file that can't be read leaves things as they were.
        }
        notePolledFiles();
    }

    /// A poll that can't reload.
    void notePoll()
    {
        m_wasRunning = m_fake;
        m_plain.running = m_fake;
        m_plain.stale = m_plain.document && !isOnDisk();
        notePolledFiles();
    }

    void notePolledFiles()
    {
        if (PixInsightEnv::findSettingsFiles() != m_knownFiles) {
            noteFileBox();
        }
    }

    bool isOnDisk() const
    {
        return m_disk.contains(m_path) && m_disk.value(m_path) == m_loadedBytes;
    }

    bool parses(const QByteArray& bytes) const
    {
        XsdtDocument document;
        return document.parse(bytes);
    }

    void announceFailureToOpen(const QString& path)
    {
        if (!m_disk.contains(path)) {
            m_dialogs.announceBox(u"Cannot open file"_s, u"Cannot read "_s + path, QMessageBox::Ok);
        } else if (!parses(m_disk.value(path))) {
            m_dialogs.announceBox(u"Cannot open file"_s,
                                  path + u" is not a valid PixInsight settings file: "_s,
                                  QMessageBox::Ok);
        }
    }

    /// `openFile` has run.
    void noteOpened(const QString& path)
    {
        if (!m_disk.contains(path)) {
            replaced(); // the same tree
            return;
        }
        m_plain.stale = false;
        const QByteArray bytes = m_disk.value(path);
        if (m_copy.parse(bytes)) {
            m_path = path;
            m_loadedBytes = bytes;
            m_status = u"Loaded "_s + QDir::toNativeSeparators(path);
        } else {
            m_loadedBytes.clear();
        }
        replaced();
    }

    bool reload()
    {
        if (!m_plain.document) {
            return false;
        }
        auto* button = find<QPushButton>("bannerReload");
        const bool byBanner = button->isVisible() && oneIn(2);
        const bool discards = expectDiscard(u"Reloading discards them."_s);
        note(u"reload: %1"_s.arg(discards ? u"yes"_s : u"no"_s));
        if (discards) {
            announceFailureToOpen(m_path);
        }
        byBanner ? button->click() : action("actReload")->trigger();
        if (discards) {
            noteOpened(m_path);
        }
        return true;
    }

    bool openOther()
    {
        auto* box = find<QComboBox>("fileBox");
        const int item = below(box->count());
        const QString path = box->itemData(item).toString();
        const bool same = m_plain.document && path == m_path;
        const bool discards = same || expectDiscard(u"Opening another file discards them."_s);
        note(u"open %1: %2"_s.arg(QFileInfo(path).fileName(), discards ? u"yes"_s : u"no"_s));
        if (!same && discards) {
            announceFailureToOpen(path);
        }
        box->setCurrentIndex(item);
        emit box->activated(item);
        if (!same && discards) {
            noteOpened(path);
        } else if (!same) {
            noteFileBox();
        }
        return true;
    }

    bool restore()
    {
        const QStringList backups = PixInsightEnv::backupsOf(m_path);
        if (!m_plain.document || m_plain.running || backups.isEmpty() || !m_disk.contains(m_path)) {
            return false;
        }
        const int place = below(backups.size());
        const QString name = QFileInfo(backups[place]).fileName();
        m_dialogs.announce<QInputDialog>([place](QInputDialog& dialog) {
            auto* combo = dialog.findChild<QComboBox*>();
            combo->setCurrentIndex(place);
            dialog.accept();
        });
        const bool discards = expectDiscard(u"Restoring discards them."_s);
        const bool yes = discards && !oneIn(4);
        note(u"restore %1: %2"_s.arg(name, yes ? u"yes"_s : u"no"_s));
        if (discards) {
            m_dialogs.announceBox(u"Restore backup"_s,
                                  u"Replace the current settings file with\n%1"_s.arg(name),
                                  yes ? QMessageBox::Yes : QMessageBox::No);
        }
        action("actRestore")->trigger();
        if (yes) {
            noteNewBackup(m_disk.value(m_path));
            m_disk[m_path] = m_disk.value(backups[place]);
            noteOpened(m_path);
            m_status = u"Restored "_s + name;
        }
        return true;
    }

    bool toggleRunning()
    {
        if (!m_fake && !oneIn(4)) { // for most of the time it doesn't run
            return false;
        }
        m_fake = !m_fake;
        note(m_fake ? u"PixInsight starts"_s : u"PixInsight ends"_s);
        if (!(m_fake ? m_pixInsight.start() : m_pixInsight.stop())) {
            m_dialogs.fault(u"the process"_s);
        }
        expectPoll();
        poll();
        finishPoll();
        return true;
    }

    /// Types without Enter, in the tree or in a row, and then does something else.
    bool leaveEditor()
    {
        const bool inRow = oneIn(2);
        QString typed = text();
        int i = -1;
        if (inRow) {
            const auto [row, place] = chooseRow(u"editorHost"_s);
            auto* line = row ? row->findChild<QLineEdit*>(u"lineEdit"_s) : nullptr;
            if (!line) {
                return false;
            }
            i = place;
            line->setFocus();
            line->selectAll();
            typed.isEmpty() ? line->clear() : QTest::keyClicks(line, typed);
        } else {
            i = chooseInTree();
            if (i < 0) {
                return false;
            }
            QTest::keyClick(tree(), Qt::Key_F2);
            auto* line = qobject_cast<QLineEdit*>(m_window->focusWidget());
            if (!line) {
                tree()->setFocus();
                settle();
                return false;
            }
            typed.isEmpty() ? line->clear() : QTest::keyClicks(line, typed);
        }
        note(u"type \"%1\" over %2 %3"_s.arg(typed, m_nodes[i]->path(),
                                             inRow ? u"in its row"_s : u"in the tree"_s));
        if (inRow) {
            expectLine(i, typed);
        } else if (typed != m_copyNodes[i]->value) {
            plainEdit(i, typed);
        }
        leaveFor(below(5));
        return true;
    }

    /// Each of these first puts what is in the open editor into the document; most stop if it is
    /// refused.
    void leaveFor(int what)
    {
        const bool refused = m_status.has_value();
        switch (what) {
        case 0:
            note(u"  and look at another page"_s);
            showTab(m_shownTab == "cleanupView" ? "advancedPage" : "cleanupView");
            return;
        case 1:
            if (!refused) {
                reload();
                return;
            }
            note(u"  and reload"_s);
            action("actReload")->trigger();
            return;
        case 2:
            if (!refused) {
                openOther();
                return;
            }
            note(u"  and open another file"_s);
            find<QComboBox>("fileBox")->setCurrentIndex(0);
            emit find<QComboBox>("fileBox")->activated(0);
            noteFileBox();
            return;
        case 3:
            note(u"  and try to close the window"_s);
            if (!refused && isPending()) {
                m_dialogs.announceBox(u"Unsaved changes"_s,
                                      u"You have %1 unsaved change(s)."_s.arg(pendingCount()),
                                      QMessageBox::Cancel);
            }
            if (refused || isPending()) {
                m_window->close();
            }
            return;
        default:
            m_fake = true;
            note(u"  and PixInsight starts"_s);
            if (!m_pixInsight.start()) {
                m_dialogs.fault(u"the process"_s);
            }
            poll();
            finishPoll();
        }
    }

    /// PixInsight starts, writes the file and ends beneath a dialog or menu that holds on to a
    /// node: whatever is chosen then does nothing.
    bool reloadBeneath()
    {
        if (!m_plain.document || isPending() || m_fake || !isOnDisk()) {
            return false;
        }
        const auto choose = [this](const QString& start) {
            m_dialogs.announce<QMenu>([start](QMenu& menu) {
                const QList<QAction*> actions = menu.actions();
                for (QAction* entry : actions) {
                    if (entry->isEnabled() && entry->text().startsWith(start)) {
                        menu.setActiveAction(entry);
                    }
                }
                QTest::keyClick(&menu, Qt::Key_Return);
            });
        };
        const int what = below(4);
        std::function<void()> open;
        if (what == 0) {
            const auto [row, i] = chooseRow();
            if (!row) {
                return false;
            }
            choose(pick(QStringList{u"Delete"_s, u"Why"_s, u"Show"_s}));
            open = [row = row] {
                QContextMenuEvent event(QContextMenuEvent::Mouse, {5, 5},
                                        row->mapToGlobal(QPoint(5, 5)));
                QApplication::sendEvent(row, &event);
            };
        } else if (what == 1) {
            const int i = chooseInTree();
            if (i < 0) {
                return false;
            }
            choose(pick(QStringList{u"Delete"_s, u"Why"_s}));
            open = [this, i] {
                emit tree()->customContextMenuRequested(tree()->visualRect(inTree(i)).center());
            };
        } else if (what == 2) {
            const int i = chooseInTree();
            if (i < 0 || m_dontAsk ||
                m_plain.policy.decide(m_nodes[i]).level != DeleteLevel::Warn) {
                return false;
            }
            m_dialogs.announceBox(u"Delete saved information?"_s, QString(), QMessageBox::Yes);
            open = [this] {
                QTest::keyClick(tree(), Qt::Key_Delete);
            };
        } else {
            auto* button = showTab("compareView")->findChild<QPushButton*>(u"copyAllButton"_s);
            if (!button->isEnabled()) {
                return false;
            }
            m_dialogs.announceBox(u"Copy values"_s, QString(), QMessageBox::Yes);
            open = [button] {
                button->click();
            };
        }
        note(u"reload beneath dialog %1"_s.arg(what));
        const QByteArray bytes = newFile();
        m_dialogs.beneathNext([this, bytes] {
            if (!m_pixInsight.start()) {
                m_dialogs.fault(u"the process"_s);
            }
            poll();
            write(m_path, bytes);
            if (!m_pixInsight.stop()) {
                m_dialogs.fault(u"the process"_s);
            }
            poll();
        });
        open();
        m_disk[m_path] = bytes;
        if (bytes != m_loadedBytes) {
            noteOpened(m_path);
        }
        m_status.reset();
        return true;
    }

    bool showPage()
    {
        const QByteArray name = pick(
            QList<QByteArray>{"preferencesView", "searchView", "cleanupView", "unusedModulesView",
                              "healthView", "compareView", "advancedPage"});
        note(u"show "_s + QString::fromLatin1(name));
        showTab(name.constData());
        return true;
    }

    bool changeLook()
    {
        ThemeManager& theme = ThemeManager::instance();
        if (oneIn(2)) {
            note(u"the other theme"_s);
            theme.toggle();
        } else {
            note(u"another text size"_s);
            theme.setFontScale(0.8 + 0.1 * below(15), false);
        }
        return true;
    }

    // --- the window ---

    void start()
    {
        m_folder = PixInsightEnv::settingsFolders().constFirst();
        QDir(m_folder).removeRecursively();
        QDir().mkpath(m_folder);
        for (int i = 0; i < 2; ++i) {
            const QString path = m_folder + u"/core-00%1-pxi.settings"_s.arg(i + 1);
            m_path = m_folder + u"/core-001-pxi.settings"_s;
            m_disk[path] = m_whole ? m_samples[std::size_t(i)]->serialize() : newFile();
            write(path, m_disk[path]);
        }
        m_shownTab = "preferencesView";
        openWindow();
        const QList<QTimer*> timers = m_window->findChildren<QTimer*>();
        for (QTimer* timer : timers) {
            if (timer->interval() == 3000) {
                timer->stop(); // polls are steps here
            }
        }
        new QAbstractItemModelTester(
            model(), QAbstractItemModelTester::FailureReportingMode::QtTest, m_window.get());
        new QAbstractItemModelTester(tree()->model(),
                                     QAbstractItemModelTester::FailureReportingMode::QtTest,
                                     m_window.get());
        noteOpened(m_path);
        m_status.reset();
    }

    QWidget* showTab(const char* name)
    {
        auto* page = find<QWidget>(name);
        find<QTabWidget>("tabs")->setCurrentWidget(page);
        m_shownTab = name;
        if (m_shownTab == "healthView" && !m_plain.hasChecked) {
            m_plain.check();
        }
        return page;
    }

    /// Every view has let go of the tree and taken it, or its successor, again.
    void replaced()
    {
        m_plain.document = model()->document();
        m_nodes = nodesOf(m_plain.document);
        m_copyNodes = nodesOf(m_plain.document ? &m_copy : nullptr);
        m_plain.preferencesRow = -1;
        m_plain.filterPreferences(m_plain.preferencesText);
        m_plain.restricted = false;
        m_plain.search(query());
        m_plain.buildCleanup();
        m_plain.buildModules();
        m_plain.hasChecked = false;
        if (find<QTabWidget>("tabs")->currentWidget() == find<QWidget>("healthView")) {
            m_plain.check();
        }
        if (m_plain.document && m_plain.otherPath == m_path) {
            m_plain.otherPath.clear();
        }
        m_compareFiles = compareFiles();
        m_compareFile = compareFile();
        noteFileBox();
    }

    static QList<XsdtNode*> nodesOf(XsdtDocument* document)
    {
        QList<XsdtNode*> nodes;
        if (document) {
            walkTree(document->root, [&](XsdtNode& node) {
                nodes.append(&node);
                return Walk::Into;
            });
        }
        return nodes;
    }

    QStringList compareFiles()
    {
        QStringList files{u"Choose a file to compare with..."_s};
        m_comparePaths = QStringList{QString()};
        const auto add = [&](const QString& start, const QString& path) {
            if (!m_plain.document || path != m_path) {
                files.append(start + PixInsightEnv::describeFile(path));
                m_comparePaths.append(path);
            }
        };
        for (const QString& path : PixInsightEnv::findSettingsFiles()) {
            add({}, path);
        }
        if (m_plain.document) {
            for (const QString& path : PixInsightEnv::backupsOf(m_path)) {
                add(u"Backup: "_s, path);
            }
        }
        if (!m_plain.otherPath.isEmpty() && !m_comparePaths.contains(m_plain.otherPath)) {
            add({}, m_plain.otherPath);
        }
        return files << u"Browse..."_s;
    }

    int compareFile() const { return int(qMax(0, m_comparePaths.indexOf(m_plain.otherPath))); }

    void noteFileBox()
    {
        m_knownFiles = PixInsightEnv::findSettingsFiles();
        m_fileBox.clear();
        QStringList paths = m_knownFiles;
        if (m_plain.document && !paths.contains(m_path)) {
            paths.append(m_path);
        }
        for (const QString& path : std::as_const(paths)) {
            m_fileBox.append(PixInsightEnv::describeFile(path));
        }
        if (paths.isEmpty()) {
            m_fileBox.append(u"No settings file found - use Browse..."_s);
        }
        m_fileBox.append(QString::number(m_plain.document ? paths.indexOf(m_path) : qsizetype(-1)));
    }

    void settle()
    {
        QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
        QCoreApplication::processEvents();
        QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    }

    // --- what is shown against what should be ---

    void compare(const QString& what, const QStringList& shown, const QStringList& expected)
    {
        if (shown == expected) {
            return;
        }
        qsizetype line = 0;
        while (line < shown.size() && line < expected.size() && shown[line] == expected[line]) {
            ++line;
        }
        m_dialogs.fault(u"%1, line %2 of %3 (should be %4):\n   %5\n   should be\n   %6"_s.arg(
            what, QString::number(line + 1), QString::number(shown.size()),
            QString::number(expected.size()), shown.value(line, u"(no line)"_s),
            expected.value(line, u"(no line)"_s)));
    }

    QStringList compareAll()
    {
        const QString status = m_window->statusBar()->currentMessage();
        settle();
        if (m_status && *m_status != status) {
            m_dialogs.fault(u"status: %1\n   should be %2"_s.arg(status, *m_status));
        }
        if (m_plain.document != model()->document()) {
            m_dialogs.fault(u"another document"_s);
            return m_dialogs.takeFaults();
        }
        compare(u"document"_s, stateOf(nodesOf(m_plain.document)), stateOf(m_copyNodes));
        if (m_plain.document && m_plain.document->defaultLayout != m_copy.defaultLayout) {
            m_dialogs.fault(u"defaultLayout"_s);
        }
        compareFrame();
        compareTree();
        comparePreferences();
        compareLists();
        compareComparison();
        compareDisk();
        return m_dialogs.takeFaults();
    }

    static QStringList stateOf(const QList<XsdtNode*>& nodes)
    {
        QStringList lines;
        for (const XsdtNode* node : nodes) {
            lines.append(node->key + u'|' + node->typeCode + u'|' + node->value + u'|' +
                         node->original + u'|' + QString::number(node->markedForDeletion));
        }
        return lines;
    }

    void compareFrame()
    {
        auto* banner = find<QLabel>("bannerLabel");
        QString text;
        if (!banner->isHidden()) {
            text = banner->text() + u' ' +
                   banner->palette().color(QPalette::Window).name(QColor::HexArgb);
        }
        text += find<QPushButton>("bannerReload")->isHidden() ? QString() : u" Reload"_s;
        QStringList shown{m_window->windowTitle(), text};
        for (const char* name : {"actReload", "actSave", "actRestore", "actBackups", "actRevert"}) {
            shown.append(QString::fromLatin1(name) +
                         (action(name)->isEnabled() ? u" on"_s : u" off"_s));
        }
        compare(u"frame"_s, shown, m_plain.frame());
        const auto* box = find<QComboBox>("fileBox");
        QStringList files;
        for (int i = 0; i < box->count(); ++i) {
            files.append(box->itemText(i));
        }
        compare(u"fileBox"_s, files << QString::number(box->currentIndex()) << box->toolTip(),
                m_fileBox + QStringList{m_plain.document
                                            ? asToolTip(QDir::toNativeSeparators(m_path))
                                            : u"No settings file loaded."_s});
    }

    void compareTree()
    {
        QStringList lines;
        appendLines(*tree()->model(), {}, {}, lines);
        compare(u"tree"_s, lines, m_plain.tree());
        QList<QModelIndex> expanded;
        appendExpandedRows(*tree(), {}, expanded);
        if (laidOutRows(*tree()) != expanded) {
            m_dialogs.fault(
                u"the tree lays out %1 rows, should be %2"_s.arg(laidOutRows(*tree()).size())
                    .arg(expanded.size()));
        }
    }

    void comparePreferences()
    {
        const QWidget* page = find<QWidget>("preferencesView");
        const auto* list = page->findChild<QListWidget*>(u"pageList"_s);
        const auto* stack = page->findChild<QStackedWidget*>(u"pageStack"_s);
        QStringList shown;
        QStringList expected;
        for (int i = 0; i < list->count(); ++i) {
            const QListWidgetItem* item = list->item(i);
            shown.append((item->isHidden() ? u"-"_s : QString()) + item->text() +
                         (item->font().bold() ? u" bold"_s : QString()));
            appendLines(*shownLayout(*stack->widget(i + 1)), u" "_s, shown);
        }
        const QList<PlainWindow::PreferencesPage> pages = m_plain.preferences();
        for (const PlainWindow::PreferencesPage& wanted : pages) {
            expected.append(wanted.title);
            for (const QString& line : wanted.lines) {
                expected.append(u' ' + line);
            }
        }
        shown.append(u"%1 %2"_s.arg(list->currentRow()).arg(stack->currentIndex()));
        expected.append(u"%1 %2"_s.arg(m_plain.preferencesRow).arg(m_plain.preferencesRow + 1));
        compare(u"preferences"_s, shown, expected);
    }

    void compareLists()
    {
        const auto label = [this](const char* page, const QString& name) {
            return find<QWidget>(page)->findChild<QLabel*>(name)->text();
        };
        const bool hasBanner = !find<QWidget>("banner")->isHidden();
        QStringList shown{hasBanner ? label("searchView", u"bannerLabel"_s) : u"no banner"_s,
                          label("searchView", u"summaryLabel"_s)};
        appendLines(*find<QWidget>("resultsContainer")->layout(), {}, shown);
        compare(u"search"_s, shown, m_plain.searchPage());

        const QWidget* page = find<QWidget>("cleanupView");
        shown = QStringList{label("cleanupView", u"statusLabel"_s) +
                            state(*page, u"queueButton"_s, u"undoButton"_s)} +
                treeLines(*page->findChild<QTreeWidget*>());
        compare(u"cleanup"_s, shown, m_plain.cleanup());

        page = find<QWidget>("unusedModulesView");
        const bool canTick = page->findChild<QPushButton*>(u"tickAllButton"_s)->isEnabled();
        shown = QStringList{};
        appendLines(*find<QWidget>("listWidget")->layout(), {}, shown);
        shown.prepend(
            label("unusedModulesView", u"summary"_s) +
            state(*page, u"queueButton"_s, u"undoButton"_s).replace(u"("_s, u"(ticked "_s) +
            (canTick ? u" (all on)"_s : u" (all off)"_s));
        compare(u"unused modules"_s, shown, m_plain.unusedModules());

        const auto* tabs = find<QTabWidget>("tabs");
        shown = QStringList{tabs->tabText(tabs->indexOf(find<QWidget>("healthView"))),
                            label("healthView", u"summaryLabel"_s)};
        appendLines(*find<QWidget>("cardsContainer")->layout(), {}, shown);
        compare(u"health check"_s, shown, m_plain.health());
    }

    /// " (on)" or " (off)", as both buttons are.
    QString state(const QWidget& page, const QString& first, const QString& second)
    {
        const bool on = page.findChild<QPushButton*>(first)->isEnabled();
        if (page.findChild<QPushButton*>(second)->isEnabled() != on) {
            m_dialogs.fault(first + u" and "_s + second + u" differ"_s);
        }
        return on ? u" (on)"_s : u" (off)"_s;
    }

    void compareComparison()
    {
        const QWidget* page = find<QWidget>("compareView");
        const auto* all = page->findChild<QPushButton*>(u"copyAllButton"_s);
        QStringList shown{page->findChild<QLabel*>(u"summaryLabel"_s)->text(),
                          u'<' + all->text() + u'>' + (all->isEnabled() ? QString() : u"!"_s)};
        auto* list = page->findChild<QTreeWidget*>(u"tree"_s);
        shown += treeLines(*list);
        compare(u"comparison"_s, shown, m_plain.comparison());
        const auto* combo = page->findChild<QComboBox*>(u"fileCombo"_s);
        QStringList files;
        for (int i = 0; i < combo->count(); ++i) {
            files.append(combo->itemText(i));
        }
        compare(u"files to compare"_s, files << QString::number(combo->currentIndex()),
                m_compareFiles + QStringList{QString::number(m_compareFile)});
    }

    void compareDisk()
    {
        QMap<QString, QByteArray> found;
        const QFileInfoList files = QDir(m_folder).entryInfoList(QDir::Files | QDir::Hidden);
        for (const QFileInfo& file : files) {
            found.insert(file.absoluteFilePath(), contentOf(file.absoluteFilePath()));
        }
        compare(u"files"_s, found.keys(), m_disk.keys());
        for (auto file = found.cbegin(); file != found.cend(); ++file) {
            if (m_disk.contains(file.key()) && m_disk.value(file.key()) != file.value()) {
                m_dialogs.fault(u"%1 holds something else"_s.arg(file.key()));
            }
        }
    }

    QRandomGenerator m_random;
    bool m_whole = false;
    std::vector<std::unique_ptr<XsdtDocument>> m_samples;
    DialogScript m_dialogs;
    FakePixInsight m_pixInsight;
    PlainWindow m_plain;
    XsdtDocument m_copy; ///< What the document has to be.
    QList<XsdtNode*> m_nodes;
    QList<XsdtNode*> m_copyNodes; ///< The same in the copy.
    QString m_path;
    QByteArray m_loadedBytes;
    QMap<QString, QByteArray> m_disk; ///< What the folder has to hold.
    QStringList m_knownFiles;
    QStringList m_fileBox;
    QStringList m_compareFiles; ///< When they were listed last.
    QStringList m_comparePaths;
    int m_compareFile = 0;
    QByteArray m_shownTab;
    std::optional<QString> m_status; ///< What the step shows in the status bar, if anything.
    bool m_fake = false;             ///< A process of PixInsight's name runs.
    bool m_wasRunning = false;       ///< As the window knows since the last poll.
    bool m_reloads = false;
    bool m_dontAsk = false;
    bool m_isSaving = false;
    bool m_saveFails = false;
    QStringList m_log;
    QMap<QString, int> m_counts;
};

} // namespace kse
