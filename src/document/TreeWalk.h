// SPDX-License-Identifier: MIT
#pragma once

#include "document/XsdtNode.h"

#include <cstddef>
#include <utility>

namespace kse {

/// Where a walk goes after a node.
enum class Walk {
    Into, ///< To the node's children.
    Over, ///< To the next node that isn't below this one.
    Stop  ///< Nowhere: the walk ends.
};

/// Calls `visit` for every node below `root`, depth first and in file order, but not for `root`
/// itself. `visit` takes a node (const if `root` is) and returns a `Walk`. It may change fields,
/// and may add or remove nodes below the one it is given, but no others. `leave` is called for
/// each node that was gone into, after all nodes below it. Returns the node that stopped the walk,
/// or null. Memory is constant, however deep the tree.
template <typename Node, typename Visitor, typename Leaver>
Node* walkTree(Node& root, Visitor&& visit, Leaver&& leave)
{
    Node* node = &root;
    bool enter = true;
    while (true) {
        if (enter && !node->children.empty()) {
            node = node->children.front().get();
        } else {
            if (enter && node != &root) {
                leave(*node);
            }
            // Climb to the nearest ancestor below `root` that has a next sibling.
            while (node != &root) {
                const auto& siblings = node->parent->children;
                const auto next = static_cast<std::size_t>(node->rowInParent()) + 1;
                if (next < siblings.size()) {
                    node = siblings[next].get();
                    break;
                }
                node = node->parent;
                if (node != &root) {
                    leave(*node);
                }
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

/// The same without `leave`.
template <typename Node, typename Visitor>
Node* walkTree(Node& root, Visitor&& visit)
{
    return walkTree(root, std::forward<Visitor>(visit), [](Node&) {});
}

} // namespace kse
