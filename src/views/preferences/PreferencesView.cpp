// SPDX-License-Identifier: MIT
#include "views/preferences/PreferencesView.h"

#include "document/XsdtDocument.h"
#include "schema/PrettyName.h"
#include "schema/SettingsSchema.h"
#include "views/model/SettingsModel.h"
#include "views/rows/SettingRow.h"
#include "views/rows/SettingRowSet.h"
#include "widgets/CollapsibleSection.h"
#include "widgets/Named.h"
#include "widgets/PlainText.h"
#include "widgets/TabOrder.h"
#include "widgets/WidgetColumn.h"

#include <QEvent>
#include <QHash>
#include <QLabel>
#include <QLineEdit>
#include <QListWidget>
#include <QScrollBar>
#include <QSplitter>
#include <QStackedWidget>
#include <QStyledItemDelegate>
#include <QVBoxLayout>

#include <utility>

using namespace Qt::StringLiterals;

namespace kse {

namespace {

constexpr int maximumNesting = 16; // of sections in one another
// Many times the number of real preferences; Qt lays out no more in time. The limit of a page keeps
// one swollen group from displacing the other pages.
constexpr int maximumRows = 5000;
constexpr int maximumPageRows = 2000;

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

/// Shows the rows that match `text` and hides the others. True if any matches.
bool filterRows(const QList<SettingRow*>& rows, const QString& text)
{
    bool found = false;
    for (SettingRow* row : rows) {
        const bool matches = row->matches(text);
        row->setVisible(matches);
        found = found || matches;
    }
    return found;
}

bool showsContent(const CollapsibleSection& section)
{
    const QBoxLayout* layout = section.bodyLayout();
    for (int i = 0; i < layout->count(); ++i) {
        if (!layout->itemAt(i)->widget()->isHidden()) {
            return true;
        }
    }
    return false;
}

} // namespace

/// The visible part of a group.
struct PreferencesView::Group
{
    XsdtNode* node = nullptr;
    QList<XsdtNode*> values;
    std::vector<Group> groups; // none is empty

    bool isEmpty() const { return values.isEmpty() && groups.empty(); }
};

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
    connect(m_searchEdit, &QLineEdit::textChanged, this, &PreferencesView::applyFilter);
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
    const int width = qBound(170, fontMetrics().averageCharWidth() * 30, 300);
    m_splitter->setSizes({width, m_splitter->width() - m_splitter->handleWidth() - width});
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
        buildPage(spec);
    }
    m_limitLabel->setVisible(m_isCut);
    QList<QWidget*> pages;
    for (int i = 1; i < m_pageStack->count(); ++i) {
        pages.append(m_pageStack->widget(i));
    }
    continueTabOrder(m_pageList, pages);
    updatePageCounts();
    if (m_searchEdit->text().trimmed().isEmpty()) {
        m_pageList->setCurrentRow(0); // showing each row by itself would lay out all pages
    } else {
        applyFilter(); // selects the first page that matches
    }
}

void PreferencesView::discardPages()
{
    m_rowSet->clear();
    m_pages.clear();
    m_rowsLeft = maximumRows;
    m_isCut = false;
    m_limitLabel->hide();
    m_pageList->clear();
    showPage(-1);
    for (int i = m_pageStack->count() - 1; i > 0; --i) {
        QWidget* page = m_pageStack->widget(i);
        m_pageStack->removeWidget(page);
        page->hide();
        page->deleteLater();
    }
}

// NOLINTNEXTLINE(misc-no-recursion): maximumNesting limits the depth, here and below.
PreferencesView::Group PreferencesView::visiblePart(XsdtNode* node, int depth)
{
    Group part{node, {}, {}};
    for (const auto& child : node->children) {
        const bool isGroup = child->kind == XsdtNode::Kind::Group && depth < maximumNesting;
        if ((!isGroup && !child->isEditableType()) || m_schema->isHidden(*child)) {
            continue;
        }
        if (!isGroup) {
            if (m_rowsLeft == 0 || m_pageRowsLeft == 0) {
                m_isCut = true;
                break;
            }
            --m_rowsLeft;
            --m_pageRowsLeft;
            part.values.append(child.get());
        } else if (Group below = visiblePart(child.get(), depth + 1); !below.isEmpty()) {
            part.groups.push_back(std::move(below));
        }
    }
    return part;
}

void PreferencesView::buildPage(const PageSpec& spec)
{
    const bool several = spec.nodes.size() > 1;
    m_pageRowsLeft = maximumPageRows;
    std::vector<Group> groups;
    for (XsdtNode* node : spec.nodes) {
        if (Group group = visiblePart(node, several ? 1 : 0); !group.isEmpty()) {
            groups.push_back(std::move(group));
        }
    }
    if (groups.empty()) {
        return;
    }

    auto* column = new WidgetColumn(0, m_pageStack);
    Page page;
    page.title = shownName(abbreviated(spec.title, titleLimit), spec.nodes.constFirst()->key);
    column->setAccessibleName(page.title);
    page.column = column;
    for (const Group& group : groups) {
        column->append(several ? QList<QWidget*>{buildSection(group, true, column->widget(), page)}
                               : buildGroup(group, column->widget(), page));
    }
    m_pageStack->addWidget(column);
    page.item = new QListWidgetItem(page.title, m_pageList);
    m_pages.push_back(std::move(page));
}

// NOLINTNEXTLINE(misc-no-recursion)
QList<QWidget*> PreferencesView::buildGroup(const Group& group, QWidget* parent, Page& page)
{
    QList<QWidget*> widgets;
    for (XsdtNode* value : group.values) {
        page.rows.append(m_rowSet->add(value, parent));
        widgets.append(page.rows.constLast());
    }
    for (const Group& below : group.groups) {
        widgets.append(buildSection(below, false, parent, page));
    }
    return widgets;
}

// NOLINTNEXTLINE(misc-no-recursion)
QWidget* PreferencesView::buildSection(const Group& group, bool expanded, QWidget* parent,
                                       Page& page)
{
    XsdtNode* node = group.node;
    auto* section =
        new CollapsibleSection(shownName(prettyName(node->key), node->key), expanded, parent);
    section->setContextMenuHandler(
        [this, node](const QPoint& globalPos) { m_rowSet->showMenu(node, globalPos); });
    page.sections.append(section);
    QBoxLayout* layout = section->bodyLayout();
    for (QWidget* widget : buildGroup(group, layout->parentWidget(), page)) {
        layout->addWidget(widget);
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
}

void PreferencesView::updatePageCounts()
{
    for (const Page& page : m_pages) {
        const QWidget* content = page.column->widget();
        QHash<const QWidget*, qsizetype> changedWithin;
        for (const SettingRow* row : page.rows) {
            const QWidget* above = row->node()->isModified() ? row : content;
            while (above != content) {
                above = above->parentWidget();
                ++changedWithin[above];
            }
        }
        for (CollapsibleSection* section : page.sections) {
            section->setChangeCount(changedWithin.value(section));
        }
        const qsizetype changed = changedWithin.value(content);
        QFont font; // sets only the weight; the rest is the list's font
        font.setWeight(changed > 0 ? QFont::Bold : QFont::Normal);
        page.item->setFont(font);
        page.item->setText(changed > 0 ? tr("%1   ● %2").arg(page.title, QString::number(changed))
                                       : page.title);
    }
}

void PreferencesView::applyFilter()
{
    const QString text = m_searchEdit->text().trimmed();
    QListWidgetItem* firstFound = nullptr;
    for (const Page& page : m_pages) {
        page.column->widget()->hide(); // else each row shown or hidden lays out all
        const bool found = filterRows(page.rows, text);
        for (auto it = page.sections.rbegin(); it != page.sections.rend(); ++it) {
            CollapsibleSection* section = *it;
            const bool finds = !text.isEmpty() && showsContent(*section);
            section->setVisible(finds || text.isEmpty());
            section->setExpanded(text.isEmpty() ? section->startExpanded() : finds);
        }
        page.column->widget()->show();
        page.column->verticalScrollBar()->setValue(0);
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

void PreferencesView::showPage(int index)
{
    m_pageStack->setCurrentIndex(index + 1);
}

} // namespace kse
