// SPDX-License-Identifier: MIT
#include "document/LowerCasePath.h"

namespace kse {

const QString& LowerCasePath::moveTo(const XsdtNode& node)
{
    m_path.truncate(m_groups.ofParent(node));
    if (!m_path.isEmpty()) {
        m_path += u'/';
    }
    m_path += node.key.toLower();
    if (node.kind == XsdtNode::Kind::Group) {
        m_groups.enter(node, m_path.size());
    }
    return m_path;
}

} // namespace kse
