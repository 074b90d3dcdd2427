// SPDX-License-Identifier: MIT
#pragma once

#include "document/Leaves.h"
#include "schema/DeletePolicy.h"
#include "schema/ModuleCatalog.h"
#include "schema/SettingsSchema.h"
#include "support/PlainWays.h"
#include "support/TextRows.h"
#include "support/WindowTwin.h"

namespace kse {

/// What has to hold in any window, whatever led there: each number that it shows is what a walk
/// over the document gives. In this all windows could be wrong alike.
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

    /// What doesn't hold. `isAsked`: nothing was edited since the last search.
    QStringList faults(const MainWindow& window, bool isAsked)
    {
        m_faults.clear();
        m_window = &window;
        auto* model = window.findChild<SettingsModel*>();
        m_nodes = nodesOf(model->document());
        checkPending();
        checkPages();
        if (model->document()) {
            checkComparison(*model->document());
            isAsked ? checkSearch(*model->document()) : checkRows(*model);
        }
        return m_faults;
    }

private:
    template <typename Widget>
    Widget* find(const char* page, const char* name) const
    {
        return m_window->findChild<QWidget*>(QLatin1String(page))
            ->findChild<Widget*>(QLatin1String(name));
    }
    QString textOf(const char* page, const char* edit) const
    {
        return find<QLineEdit>(page, edit)->text().trimmed();
    }
    bool isOn(const char* page, const char* box) const
    {
        return find<QAbstractButton>(page, box)->isChecked();
    }
    QList<int> numbersIn(const char* page, const char* label) const
    {
        return numbers(find<QLabel>(page, label)->text());
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
    static QList<int> unlessZero(qsizetype number)
    {
        return number > 0 ? QList<int>{int(number)} : QList<int>();
    }

    template <typename Value>
    void expect(const char* what, const Value& shown, const Value& right)
    {
        if (shown != right) {
            QDebug(&m_faults.emplaceBack()).noquote()
                << "law of" << what << ": shows" << shown << "but it is" << right;
        }
    }

    void checkPending()
    {
        int pending = 0;
        for (const XsdtNode* node : std::as_const(m_nodes)) {
            const bool isEdited = node->value != node->original;
            pending += !node->parent->isInsideDeletion() && (node->markedForDeletion || isEdited);
            const bool isWrong =
                (isEdited && (!node->isEditableType() || m_policy.isEditLocked(node))) ||
                (node->markedForDeletion && m_policy.decide(node).level == DeleteLevel::Never);
            expect("what can't be changed", isWrong ? node->path() : QString(), QString());
        }
        expect("title", numbers(m_window->windowTitle()), unlessZero(pending));
        if (!m_window->findChild<QWidget*>(u"bannerReload"_s)->isHidden()) {
            const auto* banner = m_window->findChild<QLabel*>(u"bannerLabel"_s);
            expect("banner", numbers(banner->text()), unlessZero(pending));
        }
        expect("revert", m_window->findChild<QAction*>(u"actRevert"_s)->isEnabled(), pending > 0);
    }

    void checkPages()
    {
        const QString filter = textOf("advancedPage", "treeFilter");
        const bool changedOnly = isOn("advancedPage", "changedOnly");
        QSet<const XsdtNode*> shown;
        for (const XsdtNode* node : std::as_const(m_nodes)) {
            const bool holds =
                node->path().contains(filter, Qt::CaseInsensitive) ||
                (node->isEditableType() && node->value.contains(filter, Qt::CaseInsensitive));
            const bool isShown =
                holds && (!changedOnly || node->isModified() || node->markedForDeletion);
            for (const XsdtNode* up = node; isShown && up->parent; up = up->parent) {
                shown.insert(up);
            }
        }
        const auto* tree = find<QTreeView>("advancedPage", "tree");
        const auto rows = tree->model()->match(tree->model()->index(0, 0), Qt::DisplayRole, u""_s,
                                               -1, Qt::MatchContains | Qt::MatchRecursive);
        expect("the tree", rows.size(), shown.size());

        const auto* list = find<QListWidget>("preferencesView", "pageList");
        for (int i = 0; i < list->count(); ++i) {
            qsizetype changed = 0;
            const auto* stack = find<QStackedWidget>("preferencesView", "pageStack");
            for (const SettingRow* row : stack->widget(i + 1)->findChildren<SettingRow*>()) {
                changed += row->node()->isModified();
            }
            expect("preferences", list->item(i)->text().section(u'●', 1).toLongLong(), changed);
        }

        const auto* tabs = m_window->findChild<QTabWidget*>(u"tabs"_s);
        const QList<int> findings = numbersIn("healthView", "summaryLabel");
        expect("health", numbers(tabs->tabText(4)),
               unlessZero(findings.size() == 3 ? findings[0] + findings[1] : 0));

        int ticked = 0;
        int queued = 0;
        for (QTreeWidgetItemIterator it(find<QTreeWidget>("cleanupView", "tree")); *it; ++it) {
            const Qt::ItemFlags flags = (*it)->flags();
            if (flags & Qt::ItemIsUserCheckable && !(flags & Qt::ItemIsAutoTristate)) {
                ticked += (*it)->checkState(0) == Qt::Checked;
                queued += !(*it)->text(3).isEmpty();
            }
        }
        const QList<int> counts = numbersIn("cleanupView", "statusLabel");
        expect("cleanup", counts.mid(0, 1),
               counts.isEmpty() ? counts : QList<int>{ticked > 0 ? ticked : queued});
    }

    void checkComparison(const XsdtDocument& document)
    {
        XsdtDocument other;
        const QString path = find<QComboBox>("compareView", "fileCombo")->currentData().toString();
        if (path.isEmpty() || !other.parse(FileState::of(path).bytes.value_or(QByteArray()))) {
            return;
        }
        QList<int> counts{0, 0, 0, 0};
        int copyable = 0;
        for (const CompareEntry& entry : plainCompare(document, other)) {
            const XsdtNode* node = entry.thisNode ? entry.thisNode : entry.otherNode;
            const bool isNoise = isOn("compareView", "hideNoise") && m_policy.isCompareNoise(node);
            ++counts[isNoise ? 3 : int(entry.state)];
            copyable += !isNoise && entry.state == CompareState::Different &&
                        node->isEditableType() && !node->isInsideDeletion() &&
                        !m_policy.isCompareNoCopy(node);
        }
        expect("comparison", numbersIn("compareView", "summaryLabel"),
               counts.mid(0, counts[3] > 0 ? 4 : 3));
        if (isOn("compareView", "showDifferent") && textOf("compareView", "filterEdit").isEmpty()) {
            expect("copies", numbers(find<QPushButton>("compareView", "copyAllButton")->text()),
                   unlessZero(copyable));
        }

        const QList<ModuleInfo> modules = ModuleCatalog::unusedModules(document);
        const auto queued =
            std::count_if(modules.begin(), modules.end(), [](const ModuleInfo& module) {
                return std::any_of(module.nodes.begin(), module.nodes.end(),
                                   [](const XsdtNode* node) { return node->isInsideDeletion(); });
            });
        const QList<int> shown = numbersIn("unusedModulesView", "summary");
        expect("unused modules", shown.mid(0, 1) + shown.mid(qMax(1, shown.size() - 1)),
               modules.isEmpty() ? QList<int>() : QList<int>{int(modules.size()), int(queued)});
    }

    void checkSearch(const XsdtDocument& document)
    {
        SearchQuery query;
        query.terms = searchTerms(textOf("searchView", "queryEdit"));
        query.names = isOn("searchView", "searchNames");
        query.values = isOn("searchView", "searchValues");
        query.descriptions = isOn("searchView", "searchDescriptions");
        const bool changedOnly = isOn("searchView", "changedOnly");
        int found = 0;
        const QList<SearchIndexEntry> index = buildSearchIndex(document, m_schema);
        for (const qsizetype place : plainSearch(index, query)) {
            const XsdtNode* node = index[place].node;
            found += (!query.terms.isEmpty() || changedOnly) &&
                     (node->isEditableType() || isOn("searchView", "includeProtected")) &&
                     (!changedOnly || node->isModified() || node->isInsideDeletion());
        }
        expect("search", numbersIn("searchView", "summaryLabel").value(0), found);
    }

    /// Each row of a page that isn't asked again looks like one made just now.
    void checkRows(SettingsModel& model)
    {
        for (const char* page : {"resultsContainer", "cardsContainer"}) {
            for (SettingRow* row :
                 m_window->findChild<QWidget*>(QLatin1String(page))->findChildren<SettingRow*>()) {
                if (!row->isHidden()) {
                    SettingRow twin(row->node(), m_schema.describe(*row->node()), &model);
                    twin.setShowPath(true);
                    twin.setReadOnly(model.isReadOnly());
                    expect("rows", WindowText::ofPart(*row), WindowText::ofPart(twin));
                }
            }
        }
    }

    SettingsSchema m_schema;
    DeletePolicy m_policy;
    const MainWindow* m_window = nullptr;
    QList<XsdtNode*> m_nodes;
    QStringList m_faults;
};

} // namespace kse
