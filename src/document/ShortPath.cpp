// SPDX-License-Identifier: MIT
#include "document/ShortPath.h"

#include "document/Depth.h"
#include "document/XsdtNode.h"

#include <algorithm>
#include <vector>

namespace kse {

QString shortPath(const XsdtNode& node)
{
    if (node.depth <= deepestShownLevel) {
        return node.path();
    }
    std::vector<const XsdtNode*> nodes;
    qsizetype size = 0;
    for (const XsdtNode* up = &node; up->parent && size < shortPathLength; up = up->parent) {
        nodes.push_back(up);
        size += up->key.size() + 1;
    }
    QString end;
    std::for_each(nodes.crbegin(), nodes.crend(), [&end](const XsdtNode* one) {
        end += u'/';
        end += one->key;
    });
    return QChar(0x2026) + end.right(shortPathLength);
}

} // namespace kse
