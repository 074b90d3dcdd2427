// SPDX-License-Identifier: MIT
#include "views/model/TreePosition.h"

#include "document/XsdtNode.h"
#include "views/model/SettingsModel.h"

#include <QAbstractProxyModel>
#include <QTreeView>

namespace kse {

TreePosition::TreePosition(QTreeView& tree, const QAbstractProxyModel& proxy)
    : m_tree(tree)
    , m_proxy(proxy)
    , m_top(SettingsModel::nodeOf(tree.indexAt({0, 0})))
    , m_current(SettingsModel::nodeOf(tree.currentIndex()))
    , m_currentColumn(tree.currentIndex().column())
    , m_isSelected(tree.selectionModel()->isSelected(tree.currentIndex()))
{
}

void TreePosition::restore() const
{
    const auto* model = static_cast<const SettingsModel*>(m_proxy.sourceModel());
    const auto shown = [&](const XsdtNode* node, int column = 0) {
        return m_proxy.mapFromSource(model->indexForNode(node, column));
    };
    if (const QModelIndex current = shown(m_current, m_currentColumn);
        current.isValid() && current != m_tree.currentIndex()) {
        const bool autoScroll = m_tree.hasAutoScroll();
        m_tree.setAutoScroll(false); // it would expand the groups above
        m_tree.selectionModel()->setCurrentIndex(
            current, m_isSelected ? QItemSelectionModel::SelectCurrent | QItemSelectionModel::Rows
                                  : QItemSelectionModel::NoUpdate);
        m_tree.setAutoScroll(autoScroll);
    }
    for (const XsdtNode* node = m_top; node; node = node->parent) {
        if (const QModelIndex top = shown(node); m_tree.visualRect(top).isValid()) {
            m_tree.scrollTo(top, QAbstractItemView::PositionAtTop);
            return;
        }
    }
}

} // namespace kse
