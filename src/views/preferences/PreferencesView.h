// SPDX-License-Identifier: MIT
#pragma once

#include <QList>
#include <QWidget>

#include <vector>

class QLabel;
class QLineEdit;
class QListWidget;
class QListWidgetItem;
class QSplitter;
class QStackedWidget;

namespace kse {

class CollapsibleSection;
class SettingRow;
class SettingRowSet;
class SettingsModel;
class SettingsSchema;
class WidgetColumn;
struct PageSpec;
struct XsdtDocument;
struct XsdtNode;

/// The preferences, in pages, with their descriptions. Leaves to the tree of all settings what it
/// doesn't show: types that can't be edited, hidden values, groups nested more than 16 deep, and
/// all that comes after the first 5,000 settings.
class PreferencesView : public QWidget
{
    Q_OBJECT

public:
    /// `model` and `schema` aren't owned.
    PreferencesView(SettingsModel* model, const SettingsSchema* schema, QWidget* parent = nullptr);

    /// Shows `document`, which the model holds, or nothing for null. Pass null before its tree is
    /// replaced.
    void setDocument(const XsdtDocument* document);

    /// While PixInsight runs.
    void setReadOnly(bool readOnly);

    /// Number of pages, including those that the search hides.
    int pageCount() const { return static_cast<int>(m_pages.size()); }

    /// Shows the page `index`, from 0. False if there is none or the search hides it.
    bool selectPage(int index);

    void setSearchText(const QString& text);

signals:
    /// A value was refused. `text` is the reason.
    void message(const QString& text);
    void deleteRequested(kse::XsdtNode* node);
    void restoreRequested(kse::XsdtNode* node);

protected:
    void changeEvent(QEvent* event) override;

private:
    struct Page
    {
        QString title;
        QListWidgetItem* item = nullptr;
        WidgetColumn* column = nullptr;
        QList<SettingRow*> rows;
        QList<CollapsibleSection*> sections; ///< Outer ones before those inside them.
    };
    struct Group;

    void createNavigation();
    void createPages();
    void createLayout();
    void connectWidgets(const SettingsModel* model);
    void fitPageList();
    void discardPages();
    Group visiblePart(XsdtNode* node, int depth);
    void buildPage(const PageSpec& spec);
    QList<QWidget*> buildGroup(const Group& group, QWidget* parent, Page& page);
    QWidget* buildSection(const Group& group, bool expanded, QWidget* parent, Page& page);
    void updatePageCounts();
    void applyFilter();
    void showPage(int index);

    const SettingsSchema* m_schema = nullptr;
    SettingRowSet* m_rowSet = nullptr;
    QLineEdit* m_searchEdit = nullptr;
    QListWidget* m_pageList = nullptr;
    QSplitter* m_splitter = nullptr;
    bool m_isListDragged = false;          ///< The user has set the width of the list.
    QStackedWidget* m_pageStack = nullptr; ///< `m_emptyLabel`, then the pages in order.
    QLabel* m_emptyLabel = nullptr;
    QLabel* m_limitLabel = nullptr;
    std::vector<Page> m_pages;
    int m_rowsLeft = 0;     ///< That may still be added, while pages are built.
    int m_pageRowsLeft = 0; ///< The same for the current page.
    bool m_isCut = false;   ///< The document has more rows than are shown.
};

} // namespace kse
