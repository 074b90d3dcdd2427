// SPDX-License-Identifier: MIT
#pragma once

#include <QStringList>
#include <QStringView>
#include <QVarLengthArray>

namespace kse {

struct XsdtNode;

/// The parts of a node's path between slashes, without empty parts. A key that holds slashes gives
/// several. The views point into the keys of the node and its ancestors.
using PathSegments = QVarLengthArray<QStringView, 16>;

/// The segments of `node.path()`, made without building the path; none for the root.
[[nodiscard]] PathSegments pathSegments(const XsdtNode& node);

/// A compiled pattern over node paths, such as `ModuleData/*/Interfaces/**`.
///
/// A plain segment matches exactly itself, with case, and `*` matches any one segment. `**` as the
/// last segment matches one or more further levels, so `X/**` doesn't match `X`. The pattern `**`
/// matches every node that has a path. `**` elsewhere and forms like `Foo*` are plain segments.
struct PathPattern
{
    QStringList segments; ///< Without the trailing `**`.
    bool deep = false;    ///< The pattern ends in `**`.

    PathPattern() = default;

    /// Splits `pattern` at its slashes and ignores empty parts.
    explicit PathPattern(QStringView pattern);

    /// Whether the pattern has no segment at all and is of no use.
    [[nodiscard]] bool isEmpty() const { return segments.isEmpty() && !deep; }

    [[nodiscard]] bool matches(const PathSegments& path) const;
};

} // namespace kse
