// SPDX-License-Identifier: MIT
#pragma once

#include <QList>
#include <QTimer>
#include <QWidget>

#include <vector>

class QLabel;
class QLayout;
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

/// The preferences, in pages, with their descriptions. The widgets of a page and of a section are
/// created when they are first shown. Leaves to the tree of all settings what it doesn't show:
/// types that can't be edited, hidden values, groups nested more than 16 deep, all but the first
/// 1,000 settings of a page, and all but the first 500 pages.
class PreferencesView : public QWidget
{
    Q_OBJECT

public:
    /// `model` and `schema` aren't owned.
    PreferencesView(SettingsModel* model, const SettingsSchema* schema, QWidget* parent = nullptr);

    /// Shows `document`, which the model holds, or nothing for null. Pass null before its tree is
    /// replaced.
    void setDocument(const XsdtDocument* document);

    /// While set, which is while PixInsight runs, nothing on the page changes the document.
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
    void resizeEvent(QResizeEvent* event) override;
    void changeEvent(QEvent* event) override;

private:
    /// The visible part of a group, and the widgets that show it so far.
    struct Group
    {
        XsdtNode* node = nullptr; ///< Null for the several groups of a page together.
        QList<XsdtNode*> values;
        std::vector<Group> groups;             ///< None is empty.
        QList<SettingRow*> rows;               ///< Of the first of `values`.
        CollapsibleSection* section = nullptr; ///< Null at the top of a page as well.

        qsizetype count() const { return values.size() + qsizetype(groups.size()); }
    };

    struct Page
    {
        QString title;
        QListWidgetItem* item = nullptr;
        WidgetColumn* column = nullptr;
        Group content;
        bool isFiltered = true; ///< Its widgets show what the search finds.
    };

    void createNavigation();
    void createPages();
    void createLayout();
    void connectWidgets(const SettingsModel* model);
    void fitPageList();
    void discardPages();
    Group visiblePart(XsdtNode* node, int depth);
    void addPage(const PageSpec& spec);
    QWidget* createPart(Group& group, qsizetype i, QWidget* parent);
    QWidget* createSection(Group& group, bool expanded, QWidget* parent);
    static qsizetype updateChangeCounts(const Group& group);
    void updatePageCounts();
    QString searchText() const;
    qsizetype countMatches(const Group& group, const QString& text) const;
    QString hitsText() const;
    bool matches(const XsdtNode& value, const QString& text) const;
    bool matches(const Group& group, const QString& text) const;
    void onSearchChanged();
    void applyFilter();
    void filterSection(const Group& group, const QString& text) const;
    void filterParts(const Group& group, QLayout& layout, const QString& text) const;
    void showPage(int index);

    const SettingsSchema* m_schema = nullptr;
    SettingRowSet* m_rowSet = nullptr;
    QLineEdit* m_searchEdit = nullptr;
    QTimer m_debounce;
    QListWidget* m_pageList = nullptr;
    QSplitter* m_splitter = nullptr;
    bool m_isListDragged = false;          ///< The user has set the width of the list.
    QStackedWidget* m_pageStack = nullptr; ///< `m_emptyLabel`, then the pages in order.
    QLabel* m_emptyLabel = nullptr;
    QLabel* m_limitLabel = nullptr;
    std::vector<Page> m_pages;
    int m_pageRowsLeft = 0; ///< That may still be added to the page that is being added.
    int m_rowCount = 0;     ///< Settings in all pages.
    bool m_isCut = false;   ///< The document has more rows than are shown.
};

} // namespace kse
