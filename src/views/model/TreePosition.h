// SPDX-License-Identifier: MIT
#pragma once

class QAbstractProxyModel;
class QTreeView;

namespace kse {

struct XsdtNode;

/// Keeps the current cell and the scroll position of a view over a proxy while the proxy's filter
/// changes, or while the model is reset without a change of its nodes. Make one before that, and
/// call `restore` when filter and expansion are as they shall be:
///
///     const TreePosition position(*m_tree, *m_proxy);
///     m_proxy->setFilterText(text);
///     m_tree->expandAll();
///     position.restore();
class TreePosition
{
public:
    /// `proxy`, which `tree` shows, is one of a `SettingsModel`.
    TreePosition(QTreeView& tree, const QAbstractProxyModel& proxy);

    /// Makes the cell that was current so again, if it is in sight. Scrolls the row that was on top
    /// back there or, where it is out of sight, the nearest of its ancestors that isn't. Expands
    /// nothing.
    void restore() const;

private:
    QTreeView& m_tree;
    const QAbstractProxyModel& m_proxy;
    const XsdtNode* m_top = nullptr;
    const XsdtNode* m_current = nullptr;
    int m_currentColumn = 0;
    bool m_isSelected = false;
};

} // namespace kse
