// SPDX-License-Identifier: MIT
#include "document/ShortPath.h"

#include "document/Depth.h"
#include "document/XsdtNode.h"

namespace kse {

QString shortPath(const XsdtNode& node)
{
    if (node.depth <= deepestShownLevel) {
        return node.path();
    }
    QString end;
    for (const XsdtNode* up = &node; up->parent && end.size() < shortPathLength; up = up->parent) {
        end.prepend(up->key);
        end.prepend(u'/');
    }
    return QChar(0x2026) + end.right(shortPathLength);
}

} // namespace kse
