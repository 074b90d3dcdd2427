// SPDX-License-Identifier: MIT
#pragma once

#include <QList>
#include <QString>

namespace kse {

struct XsdtNode;

/// A node with the text by which a list is sorted: its path, or a name made from it.
struct NamedNode
{
    QString name;
    XsdtNode* node = nullptr; ///< Its document's.
};

/// The same nodes in the order of their names, ignoring case; equal names keep their order.
[[nodiscard]] QList<NamedNode> sortedByName(const QList<NamedNode>& nodes);

/// `nodes` with their paths as names, sorted by them.
[[nodiscard]] QList<NamedNode> sortedByPath(const QList<XsdtNode*>& nodes);

} // namespace kse
