// SPDX-License-Identifier: MIT
#pragma once

#include "document/Leaves.h"
#include "schema/DeletePolicy.h"
#include "schema/SettingsSchema.h"
#include "support/TextRows.h"
#include "support/WindowTwin.h"
#include "views/search/SearchIndex.h"

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

    /// What doesn't hold. Nothing was edited since the last search.
    QStringList faults(const MainWindow& window)
    {
        m_faults.clear();
        m_window = &window;
        auto* model = window.findChild<SettingsModel*>();
        m_nodes = nodesOf(model->document());
        checkPending();
        checkTree();
        checkPages();
        if (model->document()) {
            checkComparison(*model->document());
            checkSearch(*model->document());
        }
        return m_faults;
    }

private:
    template <typename Widget = QWidget>
    Widget* find(const char* page, const char* name) const
    {
        return m_window->findChild<QWidget*>(QLatin1String(page))
            ->findChild<Widget*>(QLatin1String(name));
    }
    QString textOf(const char* page, const char* name) const
    {
        return find(page, name)->property("text").toString().trimmed();
    }
    bool isOn(const char* page, const char* name) const
    {
        return find(page, name)->property("checked").toBool();
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
            const bool isRefused =
                (isEdited && (!node->isEditableType() || m_policy.isEditLocked(node))) ||
                (node->markedForDeletion && m_policy.decide(node).level == DeleteLevel::Never);
            expect("refusals", isRefused, false);
        }
        expect("title", numbers(m_window->windowTitle()), unlessZero(pending));
        if (!m_window->findChild<QWidget*>(u"bannerReload"_s)->isHidden()) {
            const auto* banner = m_window->findChild<QLabel*>(u"bannerLabel"_s);
            expect("banner", numbers(banner->text()), unlessZero(pending));
        }
    }

    void checkTree()
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
    }

    void checkPages()
    {
        const auto* list = find<QListWidget>("preferencesView", "pageList");
        const auto* stack = find<QStackedWidget>("preferencesView", "pageStack");
        for (int i = 0; i < list->count(); ++i) {
            qsizetype changed = 0;
            for (const SettingRow* row : stack->widget(i + 1)->findChildren<SettingRow*>()) {
                changed += row->node()->isModified();
            }
            expect("preferences", list->item(i)->text().section(u'●', 1).toLongLong(), changed);
        }

        const auto* tabs = m_window->findChild<QTabWidget*>(u"tabs"_s);
        const QList<int> findings = numbers(textOf("healthView", "summaryLabel"));
        expect("health", numbers(tabs->tabText(4)),
               unlessZero(findings.value(0) + findings.value(1)));
    }

    void checkComparison(const XsdtDocument& document)
    {
        XsdtDocument other;
        const QString path = find<QComboBox>("compareView", "fileCombo")->currentData().toString();
        if (path.isEmpty() || !other.parse(contentOf(path))) {
            return;
        }
        QHash<QString, QString> others;
        for (const XsdtNode* node : unmarkedValues(other.root)) {
            others.insert(node->path(), node->typeCode + node->value);
        }
        int different = 0;
        for (const XsdtNode* node : unmarkedValues(document.root)) {
            const QString text = node->typeCode + node->value;
            const bool isHidden = isOn("compareView", "hideNoise") && m_policy.isCompareNoise(node);
            different += !isHidden && others.value(node->path(), text) != text;
        }
        expect("comparison", numbers(textOf("compareView", "summaryLabel")).value(0), different);
    }

    void checkSearch(const XsdtDocument& document)
    {
        const QStringList terms = searchTerms(textOf("searchView", "queryEdit"));
        const bool changedOnly = isOn("searchView", "changedOnly");
        int found = 0;
        for (const SearchIndexEntry& entry : buildSearchIndex(document, m_schema)) {
            const XsdtNode& node = *entry.node;
            const bool fits = std::all_of(terms.begin(), terms.end(), [&](const QString& term) {
                return (isOn("searchView", "searchNames") && entry.haystack.contains(term)) ||
                       (isOn("searchView", "searchDescriptions") &&
                        entry.description.contains(term)) ||
                       (isOn("searchView", "searchValues") && node.typeCode != u'B' &&
                        node.value.contains(term, Qt::CaseInsensitive));
            });
            found += fits && (!terms.isEmpty() || changedOnly) &&
                     (node.isEditableType() || isOn("searchView", "includeProtected")) &&
                     (!changedOnly || node.isModified() || node.isInsideDeletion());
        }
        expect("search", numbers(textOf("searchView", "summaryLabel")).value(0), found);
    }

    SettingsSchema m_schema;
    DeletePolicy m_policy;
    const MainWindow* m_window = nullptr;
    QList<XsdtNode*> m_nodes;
    QStringList m_faults;
};

} // namespace kse
