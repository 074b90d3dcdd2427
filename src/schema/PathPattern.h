// SPDX-License-Identifier: MIT
#pragma once

#include <QStringList>
#include <QStringView>
#include <QVarLengthArray>

namespace kse {

struct XsdtNode;

/// What a node's path holds between its slashes, without empty parts. A key that holds slashes
/// counts as several. The views point into the keys of the node and its ancestors.
using PathSegments = QVarLengthArray<QStringView, 16>;

/// The segments of `node.path()`, made without building the path; none for the root.
[[nodiscard]] PathSegments pathSegments(const XsdtNode& node);

/// A compiled pattern over node paths, such as `ModuleData/*/Interfaces/**`.
///
/// A plain segment matches itself exactly, minding case, and `*` any one segment. `**` as the
/// last segment stands for one or more further levels, so `X/**` doesn't match `X`; alone it
/// matches whatever has a path. `**` elsewhere and forms like `Foo*` are plain segments.
struct PathPattern
{
    QStringList segments; ///< Without the trailing `**`.
    bool deep = false;    ///< The pattern ended in `**`.

    PathPattern() = default;

    /// Splits `pattern` at its slashes and drops empty parts.
    explicit PathPattern(QStringView pattern);

    /// Whether the text held no segment at all. Such a pattern is of no use and isn't kept.
    [[nodiscard]] bool isEmpty() const { return segments.isEmpty() && !deep; }

    [[nodiscard]] bool matches(const PathSegments& path) const;
};

} // namespace kse
