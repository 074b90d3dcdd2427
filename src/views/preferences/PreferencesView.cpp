// SPDX-License-Identifier: MIT
#include "views/preferences/PreferencesView.h"

#include "document/XsdtDocument.h"
#include "schema/PrettyName.h"
#include "schema/SettingsSchema.h"
#include "views/model/SettingsModel.h"
#include "views/rows/SettingRow.h"
#include "views/rows/SettingRowSet.h"
#include "widgets/Announcement.h"
#include "widgets/CollapsibleSection.h"
#include "widgets/Named.h"
#include "widgets/PlainText.h"
#include "widgets/TabOrder.h"
#include "widgets/WidgetColumn.h"

#include <QApplication>
#include <QEvent>
#include <QLabel>
#include <QLineEdit>
#include <QListWidget>
#include <QScrollBar>
#include <QSplitter>
#include <QStackedWidget>
#include <QStyledItemDelegate>
#include <QVBoxLayout>

#include <algorithm>
#include <utility>

using namespace Qt::StringLiterals;

namespace kse {

namespace {

constexpr int maximumNesting = 16; // of sections in one another
// Many times the numbers of real preferences; Qt lays out no more in time.
constexpr int maximumPageRows = 1000;
constexpr size_t maximumPages = 500;
constexpr int manyRows = 500; // in all pages

/// Adds room around a title as a part of its row: spacing between rows can't be clicked.
class PageDelegate : public QStyledItemDelegate
{
public:
    using QStyledItemDelegate::QStyledItemDelegate;

    QSize sizeHint(const QStyleOptionViewItem& option, const QModelIndex& index) const override
    {
        return QStyledItemDelegate::sizeHint(option, index) + QSize(0, 4);
    }
};

/// Keeps the current page selected: a click below the rows, or with Ctrl, doesn't deselect it.
class PageList : public QListWidget
{
protected:
    QItemSelectionModel::SelectionFlags selectionCommand(const QModelIndex& index,
                                                         const QEvent* event) const override
    {
        return event && !index.isValid() ? QItemSelectionModel::NoUpdate
                                         : QItemSelectionModel::ClearAndSelect;
    }
};

} // namespace

PreferencesView::PreferencesView(SettingsModel* model, const SettingsSchema* schema,
                                 QWidget* parent)
    : QWidget(parent)
    , m_schema(schema)
    , m_rowSet(new SettingRowSet(model, schema, this, SettingRowSet::Reveal::NotOffered))
{
    createNavigation();
    createPages();
    createLayout();
    connectWidgets(model);
}

void PreferencesView::connectWidgets(const SettingsModel* model)
{
    connect(m_splitter, &QSplitter::splitterMoved, this, [this] { m_isListDragged = true; });
    connect(m_searchEdit, &QLineEdit::textChanged, this, &PreferencesView::onSearchChanged);
    connect(m_searchEdit, &QLineEdit::editingFinished, this, [this] {
        if (m_debounce.isActive()) {
            applyFilter(); // before the focus is in a row
        }
    });
    m_debounce.setSingleShot(true);
    m_debounce.setInterval(200);
    connect(&m_debounce, &QTimer::timeout, this, &PreferencesView::applyFilter);
    announceHits(m_searchEdit, [this] { return hitsText(); });
    connect(m_pageList, &QListWidget::currentRowChanged, this, &PreferencesView::showPage);
    connect(m_rowSet, &SettingRowSet::message, this, &PreferencesView::message);
    connect(m_rowSet, &SettingRowSet::deleteRequested, this, &PreferencesView::deleteRequested);
    connect(m_rowSet, &SettingRowSet::restoreRequested, this, &PreferencesView::restoreRequested);
    // Not `dataChanged`: after a bulk command it comes once for each group.
    connect(model, &SettingsModel::edited, this, &PreferencesView::updatePageCounts);
    // A save ends all changes without `edited`.
    connect(model, &SettingsModel::layoutChanged, this, &PreferencesView::updatePageCounts);
}

void PreferencesView::createNavigation()
{
    m_searchEdit = named(u"searchEdit"_s, new QLineEdit);
    m_searchEdit->setAccessibleName(tr("Search preferences"));
    m_searchEdit->setPlaceholderText(tr("Search names, descriptions and text values"));
    m_searchEdit->setClearButtonEnabled(true);

    m_pageList = named(u"pageList"_s, new PageList);
    m_pageList->setAccessibleName(tr("Pages"));
    m_pageList->setMinimumWidth(170);
    m_pageList->setMaximumWidth(300);
    m_pageList->setWordWrap(true);
    m_pageList->setItemDelegate(new PageDelegate(m_pageList));
    m_pageList->setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
}

void PreferencesView::createPages()
{
    m_limitLabel =
        named(u"limitLabel"_s, new QLabel(tr("This file holds more settings than these pages can "
                                             "show. All of them are in the tree of "
                                             "all settings.")));
    m_limitLabel->setWordWrap(true);
    m_limitLabel->hide();
    m_emptyLabel = named(u"emptyLabel"_s, new QLabel(tr("No matching settings.")));
    m_emptyLabel->setAlignment(Qt::AlignCenter);
    m_pageStack = named(u"pageStack"_s, new QStackedWidget);
    m_pageStack->addWidget(m_emptyLabel);
}

void PreferencesView::createLayout()
{
    m_splitter = new QSplitter(Qt::Horizontal);
    m_splitter->setChildrenCollapsible(false);
    m_splitter->addWidget(m_pageList);
    m_splitter->addWidget(m_pageStack);
    m_splitter->setStretchFactor(1, 1);
    fitPageList();
    auto* layout = new QVBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->addWidget(m_searchEdit);
    layout->addWidget(m_limitLabel);
    layout->addWidget(m_splitter, 1);
}

void PreferencesView::fitPageList()
{
    // In a narrow window the settings need the room more.
    const int wanted = std::min(fontMetrics().averageCharWidth() * 30, width() / 4);
    const int listWidth = qBound(170, wanted, 300);
    m_splitter->setSizes({listWidth, m_splitter->width() - m_splitter->handleWidth() - listWidth});
}

void PreferencesView::resizeEvent(QResizeEvent* event)
{
    QWidget::resizeEvent(event);
    if (!m_isListDragged) {
        fitPageList();
    }
}

void PreferencesView::changeEvent(QEvent* event)
{
    QWidget::changeEvent(event);
    if (event->type() == QEvent::FontChange && !m_isListDragged) {
        fitPageList();
    }
}

void PreferencesView::setDocument(const XsdtDocument* document)
{
    discardPages();
    if (!document) {
        return;
    }
    for (const PageSpec& spec : m_schema->decoratedPages(*document)) {
        addPage(spec);
    }
    m_limitLabel->setVisible(m_isCut);
    QList<QWidget*> pages;
    for (int i = 1; i < m_pageStack->count(); ++i) {
        pages.append(m_pageStack->widget(i));
    }
    continueTabOrder(m_pageList, pages);
    updatePageCounts();
    if (searchText().isEmpty()) {
        m_pageList->setCurrentRow(0);
    } else {
        applyFilter(); // selects the first page that matches
    }
}

void PreferencesView::discardPages()
{
    for (const Page& page : m_pages) {
        page.column->clear(); // creates no more rows
    }
    m_debounce.stop();
    m_rowSet->clear();
    m_rowCount = 0;
    m_isCut = false;
    m_limitLabel->hide();
    m_pageList->clear();
    showPage(-1);
    for (const Page& page : m_pages) {
        m_pageStack->removeWidget(page.column);
        page.column->hide();
        page.column->setEnabled(false); // not even a screen reader may open a section any more
        page.column->deleteLater();
    }
    m_pages.clear();
}

// NOLINTNEXTLINE(misc-no-recursion): maximumNesting limits the depth, here and below.
PreferencesView::Group PreferencesView::visiblePart(XsdtNode* node, int depth)
{
    Group part;
    part.node = node;
    for (const auto& child : node->children) {
        if (!child->isEditableType() || m_schema->isHidden(*child)) {
            continue;
        }
        if (m_pageRowsLeft == 0) {
            m_isCut = true;
            break;
        }
        --m_pageRowsLeft;
        part.values.append(child.get());
    }
    for (const auto& child : node->children) {
        if (child->kind != XsdtNode::Kind::Group || depth == maximumNesting ||
            m_schema->isHidden(*child)) {
            continue;
        }
        if (Group below = visiblePart(child.get(), depth + 1); below.count() > 0) {
            part.groups.push_back(std::move(below));
        }
    }
    return part;
}

void PreferencesView::addPage(const PageSpec& spec)
{
    m_pageRowsLeft = maximumPageRows;
    Page page;
    if (spec.nodes.size() == 1) {
        page.content = visiblePart(spec.nodes.constFirst(), 0);
    } else {
        for (XsdtNode* node : spec.nodes) {
            if (Group group = visiblePart(node, 1); group.count() > 0) {
                page.content.groups.push_back(std::move(group));
            }
        }
    }
    if (page.content.count() == 0) {
        return;
    }
    if (m_pages.size() == maximumPages) {
        m_isCut = true;
        return;
    }
    m_rowCount += maximumPageRows - m_pageRowsLeft;
    page.title = shownName(abbreviated(spec.title, titleLimit), spec.nodes.constFirst()->key);
    page.column = new WidgetColumn(0, m_pageStack);
    page.column->setAccessibleName(page.title);
    m_pageStack->addWidget(page.column);
    page.item = new QListWidgetItem(page.title, m_pageList);
    m_pages.push_back(std::move(page));
}

/// The widget for the value or the group `i` of `group`, as the search shows it.
QWidget* PreferencesView::createPart(Group& group, qsizetype i, QWidget* parent)
{
    const qsizetype values = group.values.size();
    if (i >= values) {
        return createSection(group.groups[size_t(i - values)], !group.node, parent);
    }
    XsdtNode* value = group.values.at(i);
    SettingRow* row = m_rowSet->add(value, parent);
    if (!matches(*value, searchText())) {
        row->hide();
    }
    group.rows.append(row);
    return row;
}

QWidget* PreferencesView::createSection(Group& group, bool expanded, QWidget* parent)
{
    XsdtNode* node = group.node;
    auto* section =
        new CollapsibleSection(shownName(prettyName(node->key), node->key), expanded, parent);
    group.section = section;
    section->setContextMenuHandler(
        [this, node](const QPoint& globalPos) { m_rowSet->showMenu(node, globalPos); });
    section->setLazyBuilder([this, section, &group] {
        QWidget* body = section->bodyLayout()->parentWidget();
        section->bodyLayout()->append(group.count(), [this, &group, body](qsizetype i) {
            return createPart(group, i, body);
        });
    });
    updateChangeCounts(group);
    if (const QString text = searchText(); !text.isEmpty()) {
        filterSection(group, text);
    }
    return section;
}

void PreferencesView::setReadOnly(bool readOnly)
{
    m_rowSet->setReadOnly(readOnly);
}

bool PreferencesView::selectPage(int index)
{
    const QListWidgetItem* item = m_pageList->item(index);
    if (!item || item->isHidden()) {
        return false;
    }
    m_pageList->setCurrentRow(index);
    return true;
}

void PreferencesView::setSearchText(const QString& text)
{
    m_searchEdit->setText(text);
    applyFilter();
}

// NOLINTNEXTLINE(misc-no-recursion)
qsizetype PreferencesView::updateChangeCounts(const Group& group)
{
    auto changed = std::count_if(group.values.begin(), group.values.end(),
                                 [](const XsdtNode* value) { return value->isModified(); });
    for (const Group& below : group.groups) {
        changed += updateChangeCounts(below);
    }
    if (group.section) {
        group.section->setChangeCount(changed);
    }
    return changed;
}

void PreferencesView::updatePageCounts()
{
    for (const Page& page : m_pages) {
        const qsizetype changed = updateChangeCounts(page.content);
        QFont font; // sets only the weight; the rest is the list's font
        font.setWeight(changed > 0 ? QFont::Bold : QFont::Normal);
        page.item->setFont(font);
        page.item->setText(changed > 0 ? tr("%1   ● %2").arg(page.title, QString::number(changed))
                                       : page.title);
    }
}

QString PreferencesView::searchText() const
{
    return m_searchEdit->text().trimmed();
}

bool PreferencesView::matches(const XsdtNode& value, const QString& text) const
{
    return text.isEmpty() || SettingRow::matches(value, m_schema->describe(value), text);
}

// NOLINTNEXTLINE(misc-no-recursion)
qsizetype PreferencesView::countMatches(const Group& group, const QString& text) const
{
    auto count = std::count_if(group.values.begin(), group.values.end(),
                               [&](const XsdtNode* value) { return matches(*value, text); });
    for (const Group& below : group.groups) {
        count += countMatches(below, text);
    }
    return count;
}

QString PreferencesView::hitsText() const
{
    qsizetype count = 0;
    for (const Page& page : m_pages) {
        count += countMatches(page.content, searchText());
    }
    return tr("%n result(s)", nullptr, static_cast<int>(count));
}

// NOLINTNEXTLINE(misc-no-recursion)
bool PreferencesView::matches(const Group& group, const QString& text) const
{
    bool found = std::any_of(group.values.begin(), group.values.end(),
                             [&](const XsdtNode* value) { return matches(*value, text); });
    for (const Group& below : group.groups) {
        found = found || matches(below, text);
    }
    return found;
}

/// Many rows, which take long to look through and to lay out, are filtered once the user pauses.
void PreferencesView::onSearchChanged()
{
    m_rowCount > manyRows ? m_debounce.start() : applyFilter();
}

void PreferencesView::applyFilter()
{
    m_debounce.stop();
    const QString text = searchText();
    QListWidgetItem* firstFound = nullptr;
    for (Page& page : m_pages) {
        page.isFiltered = false;
        const bool found = matches(page.content, text);
        page.item->setHidden(!found);
        if (found && !firstFound) {
            firstFound = page.item;
        }
    }
    const QListWidgetItem* current = m_pageList->currentItem();
    if (!current || current->isHidden()) {
        m_pageList->setCurrentItem(firstFound);
    }
    showPage(m_pageList->currentRow());
}

/// Shows what matches `text` in the section of `group`, and opens it if it holds any. Without a
/// text, all of it, and the section as it was first.
// NOLINTNEXTLINE(misc-no-recursion)
void PreferencesView::filterSection(const Group& group, const QString& text) const
{
    CollapsibleSection* section = group.section;
    const bool found = matches(group, text);
    const bool expands = text.isEmpty() ? section->startExpanded() : found;
    section->setVisible(found);
    if (!expands) {
        section->setExpanded(false); // first, and opened last: hidden rows are changed at no cost
    }
    if (found) {
        filterParts(group, *section->bodyLayout(), text);
    }
    if (expands) {
        section->setExpanded(true);
    }
}

/// The same for the rows and sections of `group`, which stand in `layout`.
// NOLINTNEXTLINE(misc-no-recursion)
void PreferencesView::filterParts(const Group& group, QLayout& layout, const QString& text) const
{
    layout.setEnabled(false); // else each part that is shown lays out all
    for (SettingRow* row : group.rows) {
        row->setVisible(matches(*row->node(), text));
    }
    for (const Group& below : group.groups) {
        if (below.section) {
            filterSection(below, text);
        }
    }
    layout.setEnabled(true);
}

void PreferencesView::showPage(int index)
{
    if (index >= 0) {
        Page& page = m_pages[static_cast<size_t>(index)];
        QWidget* rows = page.column->widget();
        if (page.column->count() == 0) {
            page.column->append(page.content.count(), [this, &page, rows](qsizetype i) {
                return createPart(page.content, i, rows);
            });
        }
        if (!page.isFiltered) {
            page.isFiltered = true;
            // A click in a row ends the pause in typing.
            QWidget* clicked = rows->isAncestorOf(QApplication::focusWidget())
                                   ? QApplication::focusWidget()
                                   : nullptr;
            if (clicked) {
                page.column->setFocus(); // else it would go from row to row as they are hidden
            }
            filterParts(page.content, *rows->layout(), searchText());
            rows->layout()->activate(); // the focus goes to where the row is then
            page.column->verticalScrollBar()->setValue(0);
            if (clicked && clicked->isVisible()) {
                clicked->setFocus();
            }
        }
    }
    m_pageStack->setCurrentIndex(index + 1);
}

} // namespace kse
