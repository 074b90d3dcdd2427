// SPDX-License-Identifier: MIT
#pragma once

#include "document/XsdtNode.h"

namespace kse {

/// Where a walk goes after a node.
enum class Walk {
    Into, ///< on to the node's children
    Over, ///< past the node, leaving out what lies beneath it
    Stop  ///< nowhere: the walk ends
};

/// Calls `visit` for every node beneath `root`, without `root` itself, depth first and in file
/// order. `visit` takes a node (const if `root` is) and returns a `Walk`. It may change fields,
/// and may add or remove nodes beneath the one it is given, but no others. Returns the node that
/// stopped the walk, or null. Constant memory, whatever the depth.
template <typename Node, typename Visitor>
Node* walkTree(Node& root, Visitor&& visit)
{
    Node* node = &root;
    bool enter = true;
    while (true) {
        if (enter && !node->children.empty()) {
            node = node->children.front().get();
        } else {
            // Climb to the nearest ancestor that has a next sibling below `root`.
            while (node != &root) {
                const auto& siblings = node->parent->children;
                const auto next = static_cast<std::size_t>(node->rowInParent()) + 1;
                if (next < siblings.size()) {
                    node = siblings[next].get();
                    break;
                }
                node = node->parent;
            }
            if (node == &root) {
                return nullptr;
            }
        }
        const Walk walk = visit(*node);
        if (walk == Walk::Stop) {
            return node;
        }
        enter = walk == Walk::Into;
    }
}

} // namespace kse
