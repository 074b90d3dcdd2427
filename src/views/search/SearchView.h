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

/// The Search page: finds settings anywhere in the file and shows the best as rows to edit. Can
/// also show a given set of settings and search only there.
class SearchView : public QWidget
{
    Q_OBJECT

public:
    /// `model` and `schema` aren't owned.
    SearchView(SettingsModel* model, const SettingsSchema* schema, QWidget* parent = nullptr);

    /// Searches `document`, or nothing for null. The caller keeps it, and passes null before its
    /// tree is replaced. The query and the check boxes stay; a restriction ends.
    void setDocument(const XsdtDocument* document);

    /// While set, which is while PixInsight runs, nothing on the page changes the document.
    void setReadOnly(bool readOnly);

    /// Searches for `text` at once.
    void setQuery(const QString& text);

    /// Searches for `text` at once in the names, values and descriptions of the whole file.
    void searchEverywhere(const QString& text);

    /// Restricts the search to `nodes`, of any type, and lists them below a banner with
    /// `bannerText`. Clears the query.
    void showRestricted(const QList<XsdtNode*>& nodes, const QString& bannerText);

    /// Searches the whole file again. The query stays.
    void clearRestriction();

    void focusQuery();

signals:
    void message(const QString& text); ///< For the status bar.
    void deleteRequested(kse::XsdtNode* node);
    void restoreRequested(kse::XsdtNode* node);
    void revealRequested(kse::XsdtNode* node);

protected:
    void showEvent(QShowEvent* event) override;

private slots:
    void onQueryChanged();
    void onShowMore();

private:
    void createBanner();
    void createQuery();
    QCheckBox* createCheckBox(const QString& name, const QString& text, bool checked);
    void createLayout();
    void connectWidgets();

    void dropRestriction();
    void buildIndex();
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
