// SPDX-License-Identifier: MIT
#pragma once

#include "document/OpenGroups.h"

#include <QString>

namespace kse {

/// The same as `text += addition.toLower()`, but needs no memory of its own for ASCII.
void appendLowerCase(QString& text, const QString& addition);

/// The paths of a tree's nodes in lower case, one after another as a depth-first walk meets them.
/// Each key is put in lower case once, not once for every value beneath it.
class LowerCasePath
{
public:
    explicit LowerCasePath(const XsdtNode& root)
        : m_groups(root, 0)
    {
    }

    /// Goes on to `node`, the next of the walk, which visits every group before its children.
    /// The result is its path in lower case until the next call.
    const QString& moveTo(const XsdtNode& node);

private:
    QString m_path;
    OpenGroups<qsizetype> m_groups; ///< The length of each one's path.
};

} // namespace kse
