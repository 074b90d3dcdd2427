// SPDX-License-Identifier: MIT
#pragma once

#include "document/XsdtNode.h"

#include <utility>
#include <vector>

namespace kse {

/// What a depth-first walk remembers about each group that it is in, such as the group's path.
template <typename Memory>
class OpenGroups
{
public:
    OpenGroups(const XsdtNode& root, Memory memory) { enter(root, std::move(memory)); }

    /// What is remembered about the parent of `node`, the next node of the walk. The parent must
    /// have been entered. Groups that the walk has left since then are forgotten.
    Memory& ofParent(const XsdtNode& node)
    {
        while (m_groups.back().first != node.parent) {
            m_groups.pop_back();
        }
        return m_groups.back().second;
    }

    void enter(const XsdtNode& group, Memory memory)
    {
        m_groups.emplace_back(&group, std::move(memory));
    }

private:
    std::vector<std::pair<const XsdtNode*, Memory>> m_groups;
};

} // namespace kse
