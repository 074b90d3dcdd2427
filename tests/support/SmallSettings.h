// SPDX-License-Identifier: MIT
#pragma once

#include "document/TreeWalk.h"
#include "document/XsdtDocument.h"
#include "support/RandomTree.h"

#include <algorithm>

namespace kse {

/// Copies a random few of the children of `from` to `to`, and of theirs; now and then one twice.
inline void copyRandomPart(const XsdtNode& from, XsdtNode& to, QRandomGenerator& random, int most)
{
    std::vector<const XsdtNode*> some;
    for (const auto& child : from.children) {
        some.insert(some.end(), random.bounded(25) == 0 ? 2 : 1, child.get());
    }
    while (some.size() > std::size_t(most)) {
        some.erase(some.begin() + random.bounded(int(some.size())));
    }
    for (const XsdtNode* child : some) {
        auto node = std::make_unique<XsdtNode>();
        node->kind = child->kind;
        node->key = child->key;
        node->typeCode = child->typeCode;
        node->value = child->value;
        copyRandomPart(*child, *to.append(std::move(node)), random, to.parent ? 2 : 4);
    }
}

/// The bytes of a small settings file: a part of `sample`, with values changed here and there and
/// some nodes that no settings file has. Now and then it isn't in the compact layout.
inline QByteArray smallSettings(const XsdtDocument& sample, QRandomGenerator& random)
{
    XsdtDocument document;
    document.head = sample.head;
    document.tail = sample.tail;
    copyRandomPart(sample.root, document.root, random, 12);
    const QStringList keys =
        QStringLiteral("Geometry Interfaces a/b &x<b>%1 Ostrand 1 n\nl true").split(u' ');
    growRandomTree(document.root, random, keys, random.bounded(12));
    walkTree(document.root, [&](XsdtNode& node) {
        node.markedForDeletion = false;
        if (node.kind == XsdtNode::Kind::Value && random.bounded(8) == 0) {
            node.value = node.typeCode == u's' ? node.value + QString(random.bounded(250), u'y')
                                               : QString::number(random.bounded(9));
        }
        return Walk::Into;
    });
    QByteArray bytes = document.serialize();
    return random.bounded(4) == 0 ? bytes.replace("<i k=", "\n<i k=") : bytes;
}

} // namespace kse
