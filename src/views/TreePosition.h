// SPDX-License-Identifier: MIT
#pragma once

#include <QPersistentModelIndex>

class QAbstractProxyModel;
class QTreeView;

namespace kse {

/// Keeps the scroll position of a view over a proxy while the proxy's filter changes. Make one
/// before the change, and call `restore` when filter and expansion are as they shall be:
///
///     const TreePosition position(*m_tree, *m_proxy);
///     m_proxy->setFilterText(text);
///     m_tree->expandAll();
///     position.restore();
///
/// What is current and selected stays so by itself as far as the filter leaves it in.
class TreePosition
{
public:
    TreePosition(QTreeView& tree, const QAbstractProxyModel& proxy);

    /// Scrolls the row that was on top back there or, where it is out of sight, the nearest of
    /// its ancestors that isn't. Expands nothing.
    void restore() const;

private:
    QTreeView& m_tree;
    const QAbstractProxyModel& m_proxy;
    QPersistentModelIndex m_top; ///< In the proxy's source.
};

} // namespace kse
