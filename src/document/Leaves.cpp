// SPDX-License-Identifier: MIT
#include "document/Leaves.h"

#include "document/TreeWalk.h"

namespace kse {

namespace {

QList<XsdtNode*> values(const XsdtNode& node, bool skipMarked)
{
    auto& top = const_cast<XsdtNode&>(node);
    if (node.kind == XsdtNode::Kind::Value) {
        return {&top};
    }
    QList<XsdtNode*> found;
    walkTree(top, [&](XsdtNode& inner) {
        if (skipMarked && inner.markedForDeletion) {
            return Walk::Over;
        }
        if (inner.kind == XsdtNode::Kind::Value) {
            found.append(&inner);
        }
        return Walk::Into;
    });
    return found;
}

} // namespace

QList<XsdtNode*> valuesOf(const XsdtNode& node)
{
    return values(node, false);
}

QList<XsdtNode*> unmarkedValues(const XsdtNode& node)
{
    return values(node, true);
}

} // namespace kse
