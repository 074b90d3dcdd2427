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

/// The everyday way of editing: the preferences that can be typed into, in pages, with their
/// descriptions. Values of other types, hidden ones, what is nested more than 16 groups deep and
/// what comes after the first 5,000 settings are left to the tree of all settings.
class PreferencesView : public QWidget
{
    Q_OBJECT

public:
    /// Model and schema stay the caller's.
    PreferencesView(SettingsModel* model, const SettingsSchema* schema, QWidget* parent = nullptr);

    /// Shows the document that the model holds, or nothing for null. Pass null before its tree is
    /// replaced.
    void setDocument(const XsdtDocument* document);

    /// While PixInsight runs.
    void setReadOnly(bool readOnly);

    /// Pages of the document, whether or not the search hides them.
    int pageCount() const { return static_cast<int>(m_pages.size()); }

    /// Shows the page `index`, counted from 0; false if there is none or the search hides it.
    bool selectPage(int index);

    void setSearchText(const QString& text);

signals:
    /// A value was turned down; `text` is the reason.
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
        QList<CollapsibleSection*> sections; ///< An outer one before those inside it.
    };
    struct Group;

    void createUi();
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
    SettingRowSet* m_rows = nullptr;
    QLineEdit* m_searchEdit = nullptr;
    QListWidget* m_pageList = nullptr;
    QSplitter* m_splitter = nullptr;
    bool m_isListDragged = false;          ///< The user has given the list a width of its own.
    QStackedWidget* m_pageStack = nullptr; ///< `m_emptyLabel`, then the pages in their order.
    QLabel* m_emptyLabel = nullptr;
    QLabel* m_limitLabel = nullptr;
    std::vector<Page> m_pages;
    int m_rowsLeft = 0;     ///< That may still be made, while the pages are built.
    int m_pageRowsLeft = 0; ///< The same for the page that is built.
    bool m_isCut = false;   ///< The document has more rows than are shown.
};

} // namespace kse
