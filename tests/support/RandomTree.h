// SPDX-License-Identifier: MIT
#pragma once

#include "document/XsdtNode.h"

#include <QRandomGenerator>
#include <QStringList>

namespace kse {

/// Adds `count` nodes beneath `root`: groups at any depth, values with a type and a text of few,
/// now and then a mark. Keys come from `keys`, so that siblings and paths repeat.
inline void growRandomTree(XsdtNode& root, QRandomGenerator& random, const QStringList& keys,
                           int count)
{
    std::vector<XsdtNode*> groups = {&root};
    for (int i = 0; i < count; ++i) {
        auto node = std::make_unique<XsdtNode>();
        node->key = keys[random.bounded(static_cast<int>(keys.size()))];
        node->markedForDeletion = random.bounded(15) == 0;
        XsdtNode* parent = groups[random.bounded(static_cast<quint32>(groups.size()))];
        if (random.bounded(3) == 0) {
            groups.push_back(parent->append(std::move(node)));
            continue;
        }
        node->kind = XsdtNode::Kind::Value;
        node->typeCode = QStringLiteral("isB").at(random.bounded(3));
        node->value = node->original = keys[random.bounded(static_cast<int>(keys.size()))];
        parent->append(std::move(node));
    }
}

} // namespace kse
