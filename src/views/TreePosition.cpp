// SPDX-License-Identifier: MIT
#include "views/TreePosition.h"

#include <QAbstractProxyModel>
#include <QTreeView>

namespace kse {

TreePosition::TreePosition(QTreeView& tree, const QAbstractProxyModel& proxy)
    : m_tree(tree)
    , m_proxy(proxy)
    , m_top(proxy.mapToSource(tree.indexAt({0, 0}).siblingAtColumn(0)))
{
}

void TreePosition::restore() const
{
    for (QModelIndex source = m_top; source.isValid(); source = source.parent()) {
        const QModelIndex shown = m_proxy.mapFromSource(source);
        if (m_tree.visualRect(shown).isValid()) {
            m_tree.scrollTo(shown, QAbstractItemView::PositionAtTop);
            return;
        }
    }
}

} // namespace kse
