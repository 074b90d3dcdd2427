// SPDX-License-Identifier: MIT
#pragma once

#include "document/TreeWalk.h"
#include "document/XsdtDocument.h"
#include "support/RandomTree.h"

#include <QRandomGenerator>

#include <algorithm>
#include <vector>

namespace kse {

/// Copies a random few of the children of `from` to `to`, and of theirs; now and then one twice.
inline void copyRandomPart(const XsdtNode& from, XsdtNode& to, QRandomGenerator& random,
                           std::size_t most)
{
    std::vector<std::size_t> rows(from.children.size());
    for (std::size_t i = 0; i < rows.size(); ++i) {
        rows[i] = i;
    }
    std::shuffle(rows.begin(), rows.end(), random);
    rows.resize(std::min(rows.size(), most));
    std::sort(rows.begin(), rows.end());
    for (const std::size_t row : rows) {
        const XsdtNode& child = *from.children[row];
        const int copies = random.bounded(25) == 0 ? 2 : 1;
        for (int i = 0; i < copies; ++i) {
            auto node = std::make_unique<XsdtNode>();
            node->kind = child.kind;
            node->key = child.key;
            node->typeCode = child.typeCode;
            node->value = child.value;
            copyRandomPart(child, *to.append(std::move(node)), random, to.parent ? 2 : 4);
        }
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
    const QStringList keys = {QStringLiteral("Geometry"),   QStringLiteral("Interfaces"),
                              QStringLiteral("a/b"),        QStringLiteral("&x <b>%1"),
                              QStringLiteral("Ostrand"),    QStringLiteral("1"),
                              QStringLiteral("line\nfeed"), QStringLiteral("true")};
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
