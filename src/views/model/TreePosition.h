// SPDX-License-Identifier: MIT
#pragma once

class QAbstractProxyModel;
class QTreeView;

namespace kse {

struct XsdtNode;

/// Keeps the current cell and the scroll position of a view on a proxy during a change of the
/// proxy's filter, or a reset of the model that keeps its nodes. Make one before the change, and
/// call `restore` when filter and expansion are done:
///
///     const TreePosition position(*m_tree, *m_proxy);
///     m_proxy->setFilterText(text);
///     m_tree->expandAll();
///     position.restore();
class TreePosition
{
public:
    /// `tree` shows `proxy`, whose source is a `SettingsModel`.
    TreePosition(QTreeView& tree, const QAbstractProxyModel& proxy);

    /// Makes the former current cell current again if it is still shown. Scrolls the former top row
    /// to the top or, if it isn't shown, its nearest ancestor that is. Expands nothing.
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
