// SPDX-License-Identifier: MIT
#pragma once

#include "document/OpenGroups.h"

#include <QString>

namespace kse {

/// `text.toLower()`, which takes several times as long for ASCII.
inline QString lowerCase(const QString& text)
{
    QString lower(text.size(), Qt::Uninitialized);
    QChar* to = lower.data();
    for (const QChar c : text) {
        if (c.unicode() >= 128) {
            return text.toLower();
        }
        const bool isUpper = c >= u'A' && c <= u'Z';
        *to++ = isUpper ? QChar(c.unicode() + (u'a' - u'A')) : c;
    }
    return lower;
}

/// Makes the lower-case paths of nodes during a depth-first walk. Each key is converted once, not
/// once for every value below it.
class LowerCasePath
{
public:
    explicit LowerCasePath(const XsdtNode& root)
        : m_groups(root, 0)
    {
    }

    /// Moves on to `node`, the next node of the walk, and returns its path, which is valid until
    /// the next call. The walk must visit every group before its children.
    const QString& moveTo(const XsdtNode& node)
    {
        m_path.truncate(m_groups.ofParent(node));
        if (!m_path.isEmpty()) {
            m_path += u'/';
        }
        m_path += lowerCase(node.key);
        if (node.kind == XsdtNode::Kind::Group) {
            m_groups.enter(node, m_path.size());
        }
        return m_path;
    }

private:
    QString m_path;
    OpenGroups<qsizetype> m_groups; ///< Holds the length of each group's path.
};

} // namespace kse
