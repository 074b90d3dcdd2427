// SPDX-License-Identifier: MIT
#pragma once

#include "schema/DeletePolicy.h"
#include "schema/SettingsSchema.h"
#include "support/WindowFixture.h"
#include "views/rows/ValueEditor.h"
#include "views/search/SearchIndex.h"

namespace kse {

/// A window whose numbers are checked against a walk over the document: in these, a lived window
/// and a new one could be wrong alike.
class WindowLaws : public WindowFixture
{
protected:
    QStringList m_faults; ///< What is wrong, if anything.

    WindowLaws()
    {
        const QByteArray overlay = builtInTable("overlay.json");
        QVERIFY(m_policy.load(overlay) && m_schema.load(builtInTable("globals.json"), overlay));
    }

    void checkNumbers()
    {
        int count = 0;
        const auto* page = find<QWidget>("advancedPage");
        const QString filter = page->findChild<QLineEdit*>()->text().trimmed();
        const bool changedOnly = page->findChild<QCheckBox*>()->isChecked();
        QSet<const XsdtNode*> rows;
        for (const XsdtNode* node : nodesOf(model()->document())) {
            const bool isEdited = node->value != node->original;
            count += !node->parent->isInsideDeletion() && (node->markedForDeletion || isEdited);
            const bool isRefused =
                (isEdited && (!node->isEditableType() || m_policy.isEditLocked(node))) ||
                (node->markedForDeletion && m_policy.decide(node).level == DeleteLevel::Never);
            expect("refusals", isRefused, false);
            const bool fits =
                node->path().contains(filter, Qt::CaseInsensitive) ||
                (node->isEditableType() && node->value.contains(filter, Qt::CaseInsensitive));
            const bool isShown = fits && (!changedOnly || isEdited || node->markedForDeletion);
            for (const XsdtNode* up = node; isShown && up->parent; up = up->parent) {
                rows.insert(up);
            }
        }
        expect("title", numbers(m_window->windowTitle()).value(0), count);
        if (!find<QWidget>("bannerReload")->isHidden()) {
            expect("banner", numbers(find<QLabel>("bannerLabel")->text()).value(0), count);
        }
        const QAbstractItemModel* tree = this->tree()->model();
        const auto shown = tree->match(tree->index(0, 0), Qt::DisplayRole, u""_s, -1,
                                       Qt::MatchContains | Qt::MatchRecursive);
        expect("the tree", shown.size(), rows.size());
        expect("search", summaryOf("searchView").value(0), results());
        const QList<int> differences = summaryOf("compareView");
        if (!differences.isEmpty()) { // else the chosen file couldn't be read
            expect("comparison", std::accumulate(differences.begin(), differences.end(), 0),
                   differencesFrom(find<QComboBox>("fileCombo")->currentData().toString()));
        }
        const QList<int> findings = summaryOf("healthView");
        expect("health", numbers(find<QTabWidget>("tabs")->tabText(4)).value(0),
               findings.value(0) + findings.value(1));
        checkPreferences();
        const auto* banner = find<QLabel>("bannerLabel");
        if (!banner->isHidden() && banner->text().contains("view only"_L1)) {
            for (const ValueEditor* editor : m_window->findChildren<ValueEditor*>()) {
                expect("view only", editor->isEnabled(), false);
            }
        }
    }

private:
    template <typename Value>
    void expect(const char* what, const Value& shown, const Value& right)
    {
        if (shown != right) {
            QDebug(&m_faults.emplaceBack()).noquote()
                << "law of" << what << ": shows" << shown << "but it is" << right;
        }
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

    QList<int> summaryOf(const char* page) const
    {
        return numbers(find<QWidget>(page)->findChild<QLabel*>(u"summaryLabel"_s)->text());
    }

    /// How many values the search has to find: those that hold each word.
    int results() const
    {
        const auto* page = find<QWidget>("searchView");
        const auto isTicked = [page](const char* box) {
            const auto place = Qt::FindDirectChildrenOnly;
            return page->findChild<QCheckBox*>(QLatin1String(box), place)->isChecked();
        };
        const QStringList words = searchTerms(page->findChild<QLineEdit*>()->text());
        const bool changedOnly = isTicked("changedOnly");
        int results = 0;
        for (const XsdtNode* node : nodesOf(model()->document())) {
            const bool hasText = isTicked("searchValues") && node->typeCode != u'B';
            const VariableInfo info = m_schema.describe(*node);
            const QString text =
                (isTicked("searchNames") ? node->path() + u' ' + info.label : u""_s) + u'\n' +
                (isTicked("searchDescriptions") ? info.description : u""_s) + u'\n' +
                (hasText ? node->value : u""_s);
            const bool isWanted = node->kind == XsdtNode::Kind::Value &&
                                  (isTicked("includeProtected") || node->isEditableType()) &&
                                  (!changedOnly || node->isModified() || node->isInsideDeletion());
            results += isWanted && std::all_of(words.begin(), words.end(), [&](const auto& word) {
                           return text.contains(word, Qt::CaseInsensitive);
                       });
        }
        return words.isEmpty() && !changedOnly ? 0 : results;
    }

    /// The values that stay at a save, with their paths.
    static QList<std::pair<QString, QString>> valuesOf(XsdtDocument* document)
    {
        QList<std::pair<QString, QString>> values;
        for (const XsdtNode* node : nodesOf(document)) {
            if (node->kind == XsdtNode::Kind::Value && !node->isInsideDeletion()) {
                values.append({node->path(), node->typeCode + node->value});
            }
        }
        return values;
    }

    /// In how many values the file at `path` differs, those that only one of the two has included.
    int differencesFrom(const QString& path) const
    {
        XsdtDocument other;
        const bool compares = !path.isEmpty() && other.parse(contentOf(path));
        QHash<QString, QString> theirs;
        for (const auto& [name, value] : valuesOf(&other)) {
            theirs[name] = value;
        }
        int differences = 0;
        QSet<QString> ours;
        for (const auto& [name, value] : valuesOf(compares ? model()->document() : nullptr)) {
            differences += theirs.value(name) != value;
            ours.insert(name);
        }
        for (const auto& [name, value] : valuesOf(&other)) {
            differences += !ours.contains(name);
        }
        return differences;
    }

    void checkPreferences()
    {
        QHash<QString, int> shown;
        const auto* list = find<QListWidget>("pageList");
        for (int i = 0; i < list->count(); ++i) {
            const QStringList text = list->item(i)->text().split(u"   ● "_s);
            shown[text[0]] = text.value(1).toInt();
        }
        for (const PageSpec& page : model()->document()
                                        ? m_schema.decoratedPages(*model()->document())
                                        : QList<PageSpec>()) {
            int changed = 0;
            for (const XsdtNode* group : page.nodes) {
                walkTree(*group, [&](const XsdtNode& node) {
                    changed += node.isModified() && !m_schema.isHidden(node);
                    return m_schema.isHidden(node) ? Walk::Over : Walk::Into;
                });
            }
            expect("preferences", shown.value(page.title), changed);
        }
    }

    DeletePolicy m_policy;
    SettingsSchema m_schema;
};

} // namespace kse
