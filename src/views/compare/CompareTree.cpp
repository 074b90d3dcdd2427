// SPDX-License-Identifier: MIT
#include "views/compare/CompareTree.h"

#include "views/compare/CompareEngine.h"
#include "views/compare/CompareRow.h"
#include "widgets/CopyKey.h"
#include "widgets/PlainText.h"

#include <QHeaderView>
#include <QItemSelection>
#include <QScrollBar>
#include <QSignalBlocker>

#include <algorithm>

namespace kse {

namespace {

constexpr int maximumExpanded = 400; // rows; in longer lists groups start collapsed

/// A row that isn't an entry. Its user role has -1 where entries have their index.
QTreeWidgetItem* createTopLevelRow(const QString& text)
{
    auto* row = new QTreeWidgetItem({withoutMiddle(text, lineLimit)});
    row->setData(CompareRow::SettingColumn, Qt::UserRole, -1);
    return row;
}

/// The whole name, of which a row may show only a part.
QString nameOf(const QTreeWidgetItem& group)
{
    const auto* first = static_cast<const CompareRow*>(group.child(0));
    return first ? groupedPath(first->entry().path).group : QString();
}

/// Null for a group.
const XsdtNode* nodeOf(const QTreeWidgetItem& item)
{
    return item.parent() ? static_cast<const CompareRow&>(item).entry().node() : nullptr;
}

} // namespace

CompareTree::CompareTree(QWidget* parent)
    : QTreeWidget(parent)
{
    setAccessibleName(tr("Differences"));
    setHeaderLabels({tr("Setting"), tr("This file"), tr("Other file"), tr("Status")});
    setSelectionMode(QAbstractItemView::ExtendedSelection);
    setAlternatingRowColors(true);
    setUniformRowHeights(true);
    setTextElideMode(Qt::ElideMiddle); // what differs is often the end of a path
    setContextMenuPolicy(Qt::CustomContextMenu);
    copyWholeTexts(this, [](const QModelIndex& index) { return index.data(Qt::EditRole); });
    header()->setStretchLastSection(false);
    header()->setSectionResizeMode(CompareRow::SettingColumn, QHeaderView::Interactive);
    header()->resizeSection(CompareRow::SettingColumn, 340);
    header()->setSectionResizeMode(CompareRow::ThisColumn, QHeaderView::Stretch);
    header()->setSectionResizeMode(CompareRow::OtherColumn, QHeaderView::Stretch);
    header()->setSectionResizeMode(CompareRow::StatusColumn, QHeaderView::ResizeToContents);
}

void CompareTree::removeRows()
{
    const QSignalBlocker blocker(this);
    m_rows.clear();
    clear();
}

void CompareTree::setRows(const QList<CompareRow*>& rows, const CompareTreeState& state)
{
    const QSignalBlocker blocker(this);
    clear();
    m_rows = rows;
    addGroups();
    // In this order: to span a row, the view lays out the list, and from then on each group that
    // is expanded costs as much time as the whole list.
    restoreOpen(state);
    for (int i = 0; i < topLevelItemCount(); ++i) {
        setFirstColumnSpanned(i, {}, true);
    }
    restoreSelection(state);
    restoreCurrent(state);
    doItemsLayout(); // gives the scroll bar its range
    verticalScrollBar()->setValue(state.top);
}

void CompareTree::addGroups()
{
    QFont bold;
    bold.setBold(true);
    QList<QTreeWidgetItem*> topLevelRows;
    QHash<QString, QTreeWidgetItem*> groups;
    for (CompareRow* row : std::as_const(m_rows)) {
        const QString name = groupedPath(row->entry().path).group;
        QTreeWidgetItem*& group = groups[name];
        if (!group) {
            group = createTopLevelRow(name);
            group->setFont(CompareRow::SettingColumn, bold);
            topLevelRows.append(group);
        }
        group->addChild(row);
    }
    if (topLevelRows.isEmpty()) {
        topLevelRows.append(createTopLevelRow(tr("Nothing to show with the current filters.")));
        topLevelRows.first()->setFlags(Qt::ItemIsEnabled);
    }
    // Filled and all at once: the tree does all its work again for each row added alone.
    addTopLevelItems(topLevelRows);
}

// Here and below, groups are found by index: given the item, Qt would search all groups for it.
CompareTreeState CompareTree::state() const
{
    CompareTreeState state;
    for (int i = 0; i < topLevelItemCount(); ++i) {
        state.isOpen.insert(nameOf(*topLevelItem(i)), isExpanded(model()->index(i, 0)));
    }
    const QList<QTreeWidgetItem*> selected = selectedItems();
    for (const QTreeWidgetItem* item : selected) {
        if (const XsdtNode* node = nodeOf(*item)) {
            state.selectedNodes.insert(node);
        } else {
            state.selectedGroups.insert(nameOf(*item));
        }
    }
    if (QTreeWidgetItem* current = currentItem()) {
        QTreeWidgetItem* group = current->parent() ? current->parent() : current;
        state.currentNode = nodeOf(*current);
        state.currentGroup = nameOf(*group);
        state.groupPlace = indexOfTopLevelItem(group);
        state.placeInGroup = group->indexOfChild(current);
    }
    state.top = verticalScrollBar()->value();
    return state;
}

void CompareTree::restoreOpen(const CompareTreeState& state)
{
    const bool isShort = m_rows.size() <= maximumExpanded;
    for (int i = 0; i < topLevelItemCount(); ++i) {
        if (state.isOpen.value(nameOf(*topLevelItem(i)), isShort)) {
            expand(model()->index(i, 0));
        }
    }
}

template <typename IsGroupSelected, typename IsRowSelected>
void CompareTree::selectRows(IsGroupSelected&& isGroupSelected, IsRowSelected&& isRowSelected)
{
    QItemSelection selection;
    // Neighbours share a range: Qt goes through all ranges again and again.
    const auto add = [&](const QModelIndex& parent, auto&& isSelected) {
        int first = 0;
        for (int row = 0; row <= model()->rowCount(parent); ++row) {
            if (row == model()->rowCount(parent) || !isSelected(row)) {
                if (first < row) {
                    selection.append({model()->index(first, CompareRow::SettingColumn, parent),
                                      model()->index(row - 1, CompareRow::StatusColumn, parent)});
                }
                first = row + 1;
            }
        }
    };
    add({}, [&](int i) { return isGroupSelected(*topLevelItem(i)); });
    for (int i = 0; i < topLevelItemCount(); ++i) {
        const QTreeWidgetItem* group = topLevelItem(i);
        const QModelIndex index = model()->index(i, 0);
        add(index, [&](int row) { return isRowSelected(index, *group->child(row)); });
    }
    clearSelection(); // else Qt compares each new range with each old one
    selectionModel()->select(selection, QItemSelectionModel::Select);
}

void CompareTree::restoreSelection(const CompareTreeState& state)
{
    selectRows(
        [&](const QTreeWidgetItem& group) { return state.selectedGroups.contains(nameOf(group)); },
        [&](const QModelIndex&, const QTreeWidgetItem& row) {
            return state.selectedNodes.contains(nodeOf(row));
        });
}

void CompareTree::selectAll()
{
    selectRows(
        [](const QTreeWidgetItem&) { return true; },
        [this](const QModelIndex& group, const QTreeWidgetItem&) { return isExpanded(group); });
}

void CompareTree::restoreCurrent(const CompareTreeState& state)
{
    if (state.groupPlace < 0 || m_rows.isEmpty()) {
        return;
    }
    QTreeWidgetItem* item = nearest(state);
    if (item->parent() && !item->parent()->isExpanded()) {
        item = item->parent(); // the view would open it
    }
    setCurrentItem(item, CompareRow::SettingColumn, QItemSelectionModel::NoUpdate);
}

/// The row that was current, or the one in its place.
QTreeWidgetItem* CompareTree::nearest(const CompareTreeState& state) const
{
    for (CompareRow* row : m_rows) {
        if (row->entry().node() == state.currentNode) {
            return row;
        }
    }
    for (int i = 0; i < topLevelItemCount(); ++i) {
        QTreeWidgetItem* group = topLevelItem(i);
        if (nameOf(*group) == state.currentGroup) {
            return state.placeInGroup < 0
                       ? group
                       : group->child(std::min(state.placeInGroup, group->childCount() - 1));
        }
    }
    return topLevelItem(std::min(state.groupPlace, topLevelItemCount() - 1));
}

QList<int> CompareTree::selectedEntries() const
{
    QList<int> indices;
    QSet<int> taken;
    const auto take = [&](const QTreeWidgetItem* item) {
        const int index = entryIndex(item);
        if (index >= 0 && !taken.contains(index)) {
            taken.insert(index);
            indices.append(index);
        }
    };
    const QList<QTreeWidgetItem*> items = selectedItems();
    for (const QTreeWidgetItem* item : items) {
        take(item);
        for (int i = 0; i < item->childCount(); ++i) {
            take(item->child(i));
        }
    }
    return indices;
}

int CompareTree::entryIndex(const QTreeWidgetItem* item)
{
    return item && item->parent() ? static_cast<const CompareRow*>(item)->index() : -1;
}

} // namespace kse
