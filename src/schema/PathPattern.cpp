// SPDX-License-Identifier: MIT
#include "schema/PathPattern.h"

#include "document/XsdtNode.h"

#include <QStringTokenizer>

#include <algorithm>

using namespace Qt::StringLiterals;

namespace kse {

PathSegments pathSegments(const XsdtNode& node)
{
    QVarLengthArray<const XsdtNode*, 16> chain;
    for (const XsdtNode* step = &node; step->parent; step = step->parent) {
        chain.append(step);
    }
    PathSegments segments;
    for (auto step = chain.crbegin(); step != chain.crend(); ++step) {
        for (const QStringView part : qTokenize((*step)->key, u'/', Qt::SkipEmptyParts)) {
            segments.append(part);
        }
    }
    return segments;
}

PathPattern::PathPattern(QStringView pattern)
    : segments(pattern.toString().split(u'/', Qt::SkipEmptyParts))
{
    if (!segments.isEmpty() && segments.last() == "**"_L1) {
        deep = true;
        segments.removeLast();
    }
}

bool PathPattern::matches(const PathSegments& path) const
{
    if (deep ? path.size() <= segments.size() : path.size() != segments.size()) {
        return false;
    }
    return std::equal(segments.cbegin(), segments.cend(), path.cbegin(),
                      [](const QString& segment, QStringView key) {
                          return segment == QLatin1Char('*') || segment == key;
                      });
}

} // namespace kse
