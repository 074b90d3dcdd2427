// SPDX-License-Identifier: MIT
#include "views/tree/SettingsTree.h"

#include "document/XsdtNode.h"
#include "views/model/SettingsModel.h"
#include "widgets/CopyKey.h"

namespace kse {

namespace {

QVariant wholeText(const QModelIndex& index)
{
    switch (index.column()) {
    case SettingsModel::SettingColumn:
        return SettingsModel::nodeOf(index)->key;
    case SettingsModel::ValueColumn:
        return index.data(Qt::EditRole);
    default:
        return index.data();
    }
}

} // namespace

SettingsTree::SettingsTree(QWidget* parent)
    : QTreeView(parent)
{
    copyWholeTexts(this, wholeText);
}

bool SettingsTree::edit(const QModelIndex& index, EditTrigger trigger, QEvent* event)
{
    const QModelIndex value = index.siblingAtColumn(SettingsModel::ValueColumn);
    if (trigger != EditKeyPressed || !(value.flags() & Qt::ItemIsEditable)) {
        return QTreeView::edit(index, trigger, event); // a click edits its own cell
    }
    setCurrentIndex(value); // so that Tab moves to the next value
    return QTreeView::edit(value, trigger, event);
}

} // namespace kse
