// SPDX-License-Identifier: MIT
#pragma once

#include "app/MainWindow.h"
#include "document/Leaves.h"
#include "schema/DeletePolicy.h"
#include "schema/ModuleCatalog.h"
#include "schema/SettingsSchema.h"
#include "support/PlainWays.h"
#include "support/TextRows.h"
#include "support/WindowTwin.h"

#include <QLayout>
#include <QRegularExpression>
#include <QSortFilterProxyModel>

namespace kse {

/// What has to hold in any window, whatever led there: each number and list that it shows is what
/// a walk over the document gives. In this all windows could be wrong alike.
class WindowLaws
{
public:
    WindowLaws()
    {
        const QByteArray overlay = builtInTable("overlay.json");
        if (!m_schema.load(builtInTable("globals.json"), overlay) || !m_policy.load(overlay)) {
            qFatal("the tables don't load");
        }
    }

    /// What doesn't hold. `searchIsNew`: nothing was edited since the last search.
    QStringList faults(const MainWindow& window, bool searchIsNew)
    {
        m_faults.clear();
        m_window = &window;
        const auto* model = window.findChild<SettingsModel*>();
        m_nodes = nodesOf(model->document());
        checkPending();
        checkTree();
        checkPreferences();
        checkHealth();
        if (model->document()) {
            checkCleanup();
            checkUnused(*model->document());
            checkComparison(*model->document());
            searchIsNew ? checkSearch(*model->document()) : checkRows(*model);
        }
        return m_faults;
    }

private:
    template <typename Widget>
    Widget* find(const QString& page, const QString& name) const
    {
        const auto* top = m_window->findChild<QWidget*>(page);
        return top->findChild<Widget*>(name);
    }
    QList<int> numbersIn(const QString& page, const QString& label) const
    {
        return numbers(find<QLabel>(page, label)->text());
    }
    bool isOn(const QString& page, const QString& box) const
    {
        return find<QAbstractButton>(page, box)->isChecked();
    }

    static QList<int> numbers(const QString& text)
    {
        static const QRegularExpression digits(u"\\d+"_s);
        QList<int> found;
        for (const QRegularExpressionMatch& match : digits.globalMatch(text)) {
            found.append(match.captured().toInt());
        }
        return found;
    }

    template <typename Value>
    void expect(const char* what, const Value& shown, const Value& right)
    {
        if (shown != right) {
            QString text;
            QDebug(&text).noquote()
                << "law of" << what << ": shows" << shown << "but it is" << right;
            m_faults.append(text);
        }
    }

    void checkPending()
    {
        int pending = 0;
        for (const XsdtNode* node : std::as_const(m_nodes)) {
            const bool above = node->parent->isInsideDeletion();
            pending += !above && (node->markedForDeletion || node->value != node->original);
            if (node->value != node->original) {
                expect("edits", !node->isEditableType() || m_policy.isEditLocked(node), false);
            }
            if (node->markedForDeletion) {
                expect("marks", m_policy.decide(node).level == DeleteLevel::Never, false);
            }
        }
        expect("title", numbers(m_window->windowTitle()),
               pending > 0 ? QList<int>{pending} : QList<int>());
        const auto* banner = m_window->findChild<QLabel*>(u"bannerLabel"_s);
        const auto* reload = m_window->findChild<QWidget*>(u"bannerReload"_s);
        if (!reload->isHidden()) {
            expect("banner", numbers(banner->text()),
                   pending > 0 ? QList<int>{pending} : QList<int>());
        }
        expect("revert", m_window->findChild<QAction*>(u"actRevert"_s)->isEnabled(), pending > 0);
    }

    void checkTree()
    {
        const QString filter =
            find<QLineEdit>(u"advancedPage"_s, u"treeFilter"_s)->text().trimmed();
        const bool changedOnly = isOn(u"advancedPage"_s, u"changedOnly"_s);
        QSet<const XsdtNode*> shown;
        for (const XsdtNode* node : std::as_const(m_nodes)) {
            const bool changed = node->value != node->original || node->markedForDeletion;
            const bool holds =
                node->path().contains(filter, Qt::CaseInsensitive) ||
                (node->isEditableType() && node->value.contains(filter, Qt::CaseInsensitive));
            for (const XsdtNode* up = node; holds && (changed || !changedOnly) && up->parent;
                 up = up->parent) {
                shown.insert(up);
            }
        }
        QList<const XsdtNode*> right;
        std::copy_if(m_nodes.begin(), m_nodes.end(), std::back_inserter(right),
                     [&shown](const XsdtNode* node) { return shown.contains(node); });
        QList<const XsdtNode*> rows;
        const auto* tree = find<QTreeView>(u"advancedPage"_s, u"tree"_s);
        const std::function<void(const QModelIndex&)> visit = [&](const QModelIndex& parent) {
            for (int row = 0; row < tree->model()->rowCount(parent); ++row) {
                const QModelIndex index = tree->model()->index(row, 0, parent);
                rows.append(index.data(SettingsModel::NodeRole).value<XsdtNode*>());
                visit(index);
            }
        };
        visit({});
        expect("the tree's rows", rows == right, true);
    }

    void checkPreferences()
    {
        const auto* list = find<QListWidget>(u"preferencesView"_s, u"pageList"_s);
        const auto* stack = find<QStackedWidget>(u"preferencesView"_s, u"pageStack"_s);
        for (int i = 0; i < list->count(); ++i) {
            const auto rows = stack->widget(i + 1)->findChildren<SettingRow*>();
            const auto changed = std::count_if(rows.begin(), rows.end(), [](const SettingRow* row) {
                return row->node()->isModified();
            });
            const QString count = list->item(i)->text().section(u"\u25CF"_s, 1);
            expect("preferences", count.toInt(), int(changed));
        }
    }

    /// Each row of a page that isn't asked anew looks like one made just now.
    void checkRows(const SettingsModel& model)
    {
        for (const QString& page : {u"searchView"_s, u"healthView"_s}) {
            for (SettingRow* row :
                 m_window->findChild<QWidget*>(page)->findChildren<SettingRow*>()) {
                if (!row->isHidden()) {
                    SettingRow twin(row->node(), m_schema.describe(*row->node()),
                                    const_cast<SettingsModel*>(&model));
                    twin.setShowPath(true);
                    twin.setReadOnly(model.isReadOnly());
                    expect("rows", WindowText::ofPart(*row), WindowText::ofPart(twin));
                }
            }
        }
    }

    void checkHealth()
    {
        const auto* tabs = m_window->findChild<QTabWidget*>(u"tabs"_s);
        const auto* page = m_window->findChild<QWidget*>(u"healthView"_s);
        const QList<int> counts = numbersIn(u"healthView"_s, u"summaryLabel"_s);
        const int sum = counts.size() == 3 ? counts[0] + counts[1] : 0;
        expect("health", numbers(tabs->tabText(tabs->indexOf(page))),
               sum > 0 ? QList<int>{sum} : QList<int>());
        QMap<QString, int> cards;
        const auto* column = page->findChild<QWidget*>(u"cardsContainer"_s);
        for (const QWidget* card : column->findChildren<QWidget*>(u"card"_s)) {
            const auto* stripe = card->findChild<QWidget*>(u"stripe"_s);
            ++cards[card->isHidden() ? QString() : stripe->palette().window().color().name()];
        }
        cards.remove(QString());
        QList<int> shown = cards.values();
        QList<int> right = counts;
        right.removeAll(0);
        std::sort(shown.begin(), shown.end());
        std::sort(right.begin(), right.end());
        expect("findings", shown, right);
    }

    void checkCleanup()
    {
        const auto* tree = find<QTreeWidget>(u"cleanupView"_s, u"tree"_s);
        int ticked = 0;
        int queued = 0;
        QHash<QString, QList<XsdtNode*>> byPath;
        for (XsdtNode* node : std::as_const(m_nodes)) {
            byPath[node->path()].append(node);
        }
        for (QTreeWidgetItemIterator it(const_cast<QTreeWidget*>(tree)); *it; ++it) {
            const Qt::ItemFlags flags = (*it)->flags();
            if (!(flags & Qt::ItemIsUserCheckable) || (flags & Qt::ItemIsAutoTristate)) {
                continue;
            }
            ticked += (*it)->checkState(0) == Qt::Checked;
            const bool isQueued = !(*it)->text(3).isEmpty();
            queued += isQueued;
            const auto nodes =
                (*it)->childCount() > 0 ? QList<XsdtNode*>() : byPath[(*it)->text(0)];
            const auto fits = [&](const XsdtNode* node) {
                return (*it)->text(1).toInt() == valuesOf(*node).size() &&
                       isQueued == node->isInsideDeletion();
            };
            expect("an entry to clean",
                   nodes.isEmpty() || std::any_of(nodes.begin(), nodes.end(), fits), true);
        }
        const QTreeWidgetItem* last = tree->topLevelItem(tree->topLevelItemCount() - 1);
        for (int i = 1; last && i < last->childCount(); ++i) {
            const int order =
                last->child(i - 1)->text(0).compare(last->child(i)->text(0), Qt::CaseInsensitive);
            expect("order to clean", order <= 0, true);
        }
        const QList<int> counts = numbersIn(u"cleanupView"_s, u"statusLabel"_s);
        if (!counts.isEmpty()) {
            expect("cleanup", counts.first(), ticked > 0 ? ticked : queued);
        }
    }

    void checkUnused(const XsdtDocument& document)
    {
        const QList<ModuleInfo> modules = ModuleCatalog::unusedModules(document);
        const QList<QCheckBox*> ticks = find<QWidget>(u"unusedModulesView"_s, u"listWidget"_s)
                                            ->findChildren<QCheckBox*>(u"tick"_s);
        const auto ticked = std::count_if(ticks.begin(), ticks.end(),
                                          [](const QCheckBox* tick) { return tick->isChecked(); });
        int queued = 0;
        for (const ModuleInfo& module : modules) {
            queued += std::any_of(module.nodes.begin(), module.nodes.end(),
                                  [](const XsdtNode* node) { return node->isInsideDeletion(); });
        }
        QList<int> counts = numbersIn(u"unusedModulesView"_s, u"summary"_s);
        if (ticked > 0 && counts.size() >= 4) {
            counts = {counts[0], counts[1], counts.last()}; // without the size
        }
        expect("unused modules", counts,
               modules.isEmpty() ? QList<int>()
               : ticked > 0      ? QList<int>{int(modules.size()), int(ticked), queued}
                                 : QList<int>{int(modules.size()), queued});
    }

    void checkComparison(const XsdtDocument& document)
    {
        const QString page = u"compareView"_s;
        const QString path = find<QComboBox>(page, u"fileCombo"_s)->currentData().toString();
        XsdtDocument other;
        if (path.isEmpty() || !QFile::exists(path) || !other.parse(*FileState::of(path).bytes)) {
            return;
        }
        QList<int> counts{0, 0, 0, 0};
        int copyable = 0;
        for (const CompareEntry& entry : plainCompare(document, other)) {
            const XsdtNode* node = entry.thisNode ? entry.thisNode : entry.otherNode;
            if (isOn(page, u"hideNoise"_s) && m_policy.isCompareNoise(node)) {
                ++counts[3];
                continue;
            }
            ++counts[int(entry.state)];
            copyable += entry.state == CompareState::Different && node->isEditableType() &&
                        !node->isInsideDeletion() && !m_policy.isCompareNoCopy(node);
        }
        if (counts[3] == 0) {
            counts.removeLast();
        }
        expect("comparison", numbersIn(page, u"summaryLabel"_s), counts);
        if (isOn(page, u"showDifferent"_s) &&
            find<QLineEdit>(page, u"filterEdit"_s)->text().trimmed().isEmpty()) {
            expect("copies", numbers(find<QPushButton>(page, u"copyAllButton"_s)->text()),
                   copyable > 0 ? QList<int>{copyable} : QList<int>());
        }
    }

    void checkSearch(const XsdtDocument& document)
    {
        const QString page = u"searchView"_s;
        if (!find<QWidget>(page, u"banner"_s)->isHidden()) {
            return; // among the values of a module
        }
        SearchQuery query;
        query.terms = searchTerms(find<QLineEdit>(page, u"queryEdit"_s)->text());
        query.names = isOn(page, u"searchNames"_s);
        query.values = isOn(page, u"searchValues"_s);
        query.descriptions = isOn(page, u"searchDescriptions"_s);
        const bool changedOnly = isOn(page, u"changedOnly"_s);
        QList<const XsdtNode*> right;
        const QList<SearchIndexEntry> index = buildSearchIndex(document, m_schema);
        for (const qsizetype place : plainSearch(index, query)) {
            const XsdtNode* node = index[place].node;
            if ((!query.terms.isEmpty() || changedOnly) &&
                (node->isEditableType() || isOn(page, u"includeProtected"_s)) &&
                (!changedOnly || node->isModified() || node->isInsideDeletion())) {
                right.append(node);
            }
        }
        QList<const XsdtNode*> rows;
        for (const QWidget* part : partsOf(*find<QWidget>(page, u"resultsContainer"_s))) {
            if (const auto* row = qobject_cast<const SettingRow*>(part); row && !row->isHidden()) {
                rows.append(row->node());
            }
        }
        expect("search", numbersIn(page, u"summaryLabel"_s).value(0), int(right.size()));
        expect("results", rows == right.mid(0, rows.size()), true);
    }

    SettingsSchema m_schema;
    DeletePolicy m_policy;
    const MainWindow* m_window = nullptr;
    QList<XsdtNode*> m_nodes;
    QStringList m_faults;
};

} // namespace kse
