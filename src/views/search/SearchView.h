// SPDX-License-Identifier: MIT
#pragma once

#include "views/search/SearchIndex.h"

#include <QList>
#include <QSet>
#include <QTimer>
#include <QWidget>

class QCheckBox;
class QLabel;
class QLineEdit;

namespace kse {

class SettingRowSet;
class SettingsModel;
class WidgetColumn;

/// The Search tab: finds settings anywhere in the file and shows the best as rows to edit. Also
/// shows a given set of settings, in which the user then searches on.
class SearchView : public QWidget
{
    Q_OBJECT

public:
    /// Model and schema stay the caller's.
    SearchView(SettingsModel* model, const SettingsSchema* schema, QWidget* parent = nullptr);

    /// Searches `document`, or nothing for null. It stays the caller's; pass null before its tree
    /// is replaced. What is typed and ticked stays; a restriction doesn't.
    void setDocument(const XsdtDocument* document);

    /// While PixInsight runs.
    void setReadOnly(bool readOnly);

    /// Searches for `text` at once.
    void setQuery(const QString& text);

    /// The same in the whole file: in names, values and descriptions, changed or not.
    void searchEverywhere(const QString& text);

    /// Lists `nodes`, whatever their type, beneath a banner that says so; what is typed from here
    /// on is searched for among them.
    void showRestricted(const QList<XsdtNode*>& nodes, const QString& bannerText);

    /// Back to the whole file; what is typed stays.
    void clearRestriction();

    void focusQuery();

signals:
    void message(const QString& text); ///< For the status bar.
    void deleteRequested(kse::XsdtNode* node);
    void restoreRequested(kse::XsdtNode* node);
    void revealRequested(kse::XsdtNode* node);

private:
    void createBanner();
    void createQuery();
    QCheckBox* createBox(const QString& text, const QString& name, bool checked);
    void layOut();
    void connectWidgets();

    void dropRestriction();
    void onQueryChanged();
    void onShowMore();
    void populate();
    SearchQuery query() const;
    void clearRows();
    void addRows();

    const SettingsSchema* m_schema = nullptr;
    const XsdtDocument* m_document = nullptr;
    bool m_indexBuilt = false;
    QSet<XsdtNode*> m_restriction;
    bool m_restricted = false;
    QList<SearchIndexEntry> m_index;
    QList<qsizetype> m_results; ///< Places in the index, best first.
    qsizetype m_limit = 0;      ///< How many rows to show.
    SettingRowSet* m_rowSet = nullptr;
    QTimer m_debounce;

    QWidget* m_banner = nullptr;
    QLabel* m_bannerLabel = nullptr;
    QLineEdit* m_queryEdit = nullptr;
    QCheckBox* m_searchNames = nullptr;
    QCheckBox* m_searchValues = nullptr;
    QCheckBox* m_searchDescriptions = nullptr;
    QCheckBox* m_changedOnly = nullptr;
    QCheckBox* m_includeProtected = nullptr;
    QLabel* m_summaryLabel = nullptr;
    WidgetColumn* m_resultsArea = nullptr;
};

} // namespace kse
