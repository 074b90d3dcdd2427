// SPDX-License-Identifier: MIT
#include "views/cleanup/CleanupRow.h"

#include "document/XsdtNode.h"
#include "views/cleanup/CleanupView.h"
#include "views/cleanup/FormatBytes.h"
#include "views/model/SettingsModel.h"
#include "widgets/PlainText.h"

#include <QSignalBlocker>
#include <QTreeWidget>

#include <algorithm>

namespace kse {

CleanupRow::CleanupRow(const SettingsModel& model, const QString& name)
    : m_model(model)
{
    setText(EntryColumn, withoutMiddle(name, lineLimit));
    setTextAlignment(ValuesColumn, Qt::AlignRight | Qt::AlignAbsolute | Qt::AlignVCenter);
    setTextAlignment(SizeColumn, Qt::AlignRight | Qt::AlignAbsolute | Qt::AlignVCenter);
}

void CleanupRow::addNode(XsdtNode* node)
{
    m_nodes.append(node);
    m_values += node->valueCount();
    m_size += node->serializedSize();
}

void CleanupRow::addNodesOf(const CleanupRow& row)
{
    m_nodes += row.m_nodes;
    m_values += row.m_values;
    m_size += row.m_size;
}

void CleanupRow::refresh()
{
    m_queued = std::count_if(m_nodes.cbegin(), m_nodes.cend(),
                             [](const XsdtNode* node) { return node->isInsideDeletion(); });
}

QVariant CleanupRow::data(int column, int role) const
{
    if (!m_nodes.isEmpty()) { // a tier's title has none
        if (role == Qt::DisplayRole && column != EntryColumn) {
            return columnText(column);
        }
        if (m_queued == m_nodes.size() && isLook(column, role)) {
            return m_model.data(m_model.indexForNode(m_nodes.first()), role);
        }
        if (role == Qt::AccessibleDescriptionRole && column == EntryColumn) {
            return status();
        }
    }
    return QTreeWidgetItem::data(column, role);
}

bool CleanupRow::isLook(int column, int role)
{
    return role == Qt::BackgroundRole || role == Qt::ForegroundRole ||
           role == Qt::AccessibleDescriptionRole ||
           (role == Qt::FontRole && column != StatusColumn); // the status itself is not struck out
}

QString CleanupRow::columnText(int column) const
{
    if (column == ValuesColumn) {
        return QString::number(m_values);
    }
    return column == SizeColumn ? formatBytes(m_size) : status();
}

/// How many of the nodes are queued; empty for a row without a check box.
QString CleanupRow::status() const
{
    if (m_queued == 0 || !(flags() & Qt::ItemIsUserCheckable)) {
        return {};
    }
    return m_queued == m_nodes.size()
               ? CleanupView::tr("Queued for deletion")
               : CleanupView::tr("Partly queued (%1 of %2)").arg(m_queued).arg(m_nodes.size());
}

CleanupParent::CleanupParent(const SettingsModel& model, const QString& title)
    : CleanupRow(model, title)
{
    setFlags(Qt::ItemIsEnabled | Qt::ItemIsUserCheckable | Qt::ItemIsAutoTristate);
}

void CleanupParent::setData(int column, int role, const QVariant& value)
{
    if (role != Qt::CheckStateRole || !treeWidget()) {
        CleanupRow::setData(column, role, value);
        return;
    }
    {
        const QSignalBlocker quiet(treeWidget()->model());
        CleanupRow::setData(column, role, value);
    }
    emitDataChanged();
}

CleanupEntry::CleanupEntry(const SettingsModel& model, const QString& name)
    : CleanupRow(model, name)
{
    setFlags(Qt::ItemIsEnabled | Qt::ItemIsSelectable | Qt::ItemIsUserCheckable);
    setCheckState(EntryColumn, Qt::Unchecked);
}

} // namespace kse
