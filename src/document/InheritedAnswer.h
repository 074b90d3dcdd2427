// SPDX-License-Identifier: MIT
#pragma once

#include "document/XsdtNode.h"

#include <QHash>
#include <QVarLengthArray>

#include <optional>

namespace kse {

/// A yes or no that groups pass on to all inside them. It asks each group only once, so that a deep
/// file takes no longer than a wide one.
class InheritedAnswer
{
public:
    /// The answer of `node` itself or of the nearest group above it that has one. `own` returns a
    /// `std::optional<bool>` for a node; it must have an answer for the root, and for each group
    /// the same one at every call.
    template <typename Own>
    bool of(const XsdtNode& node, const Own& own)
    {
        QVarLengthArray<const XsdtNode*, 16> climbed;
        std::optional<bool> answer = own(node);
        for (const XsdtNode* group = node.parent; !answer; group = group->parent) {
            const auto known = m_groups.constFind(group);
            if (known != m_groups.cend()) {
                answer = *known;
                break;
            }
            climbed.append(group);
            answer = own(*group);
        }
        for (const XsdtNode* group : climbed) {
            m_groups.insert(group, *answer);
        }
        return *answer;
    }

private:
    QHash<const XsdtNode*, bool> m_groups;
};

} // namespace kse
