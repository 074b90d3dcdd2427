// SPDX-License-Identifier: MIT
#include "document/NamedNode.h"

#include "document/TextOrder.h"
#include "document/XsdtNode.h"

namespace kse {

QList<NamedNode> sortedByName(const QList<NamedNode>& nodes)
{
    QList<QStringView> names;
    names.reserve(nodes.size());
    for (const NamedNode& named : nodes) {
        names.append(named.name);
    }
    QList<NamedNode> sorted;
    sorted.reserve(nodes.size());
    for (const qsizetype place : orderIgnoringCase(names)) {
        sorted.append(nodes[place]);
    }
    return sorted;
}

QList<NamedNode> sortedByPath(const QList<XsdtNode*>& nodes)
{
    QList<NamedNode> named;
    named.reserve(nodes.size());
    for (XsdtNode* node : nodes) {
        named.append({node->path(), node});
    }
    return sortedByName(named);
}

} // namespace kse
