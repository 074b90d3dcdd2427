// SPDX-License-Identifier: MIT
#include "document/Leaves.h"

#include "document/TreeWalk.h"

namespace kse {

QList<XsdtNode*> valuesOf(const XsdtNode& node)
{
    auto& top = const_cast<XsdtNode&>(node);
    if (node.kind == XsdtNode::Kind::Value) {
        return {&top};
    }
    QList<XsdtNode*> values;
    walkTree(top, [&](XsdtNode& inner) {
        if (inner.kind == XsdtNode::Kind::Value) {
            values.append(&inner);
        }
        return Walk::Into;
    });
    return values;
}

QList<XsdtNode*> unmarkedValues(const XsdtNode& root)
{
    QList<XsdtNode*> values;
    walkTree(const_cast<XsdtNode&>(root), [&](XsdtNode& node) {
        if (node.markedForDeletion) {
            return Walk::Over;
        }
        if (node.kind == XsdtNode::Kind::Value) {
            values.append(&node);
        }
        return Walk::Into;
    });
    return values;
}

} // namespace kse
