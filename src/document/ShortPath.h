// SPDX-License-Identifier: MIT
#pragma once

#include <QString>

namespace kse {

struct XsdtNode;

/// How many characters are kept of the path of a node deeper than `deepestShownLevel`.
inline constexpr qsizetype shortPathLength = 1000;

/// `node.path()` down to `deepestShownLevel`. For deeper nodes U+2026 and the end of the path, made
/// without reading the keys before it.
[[nodiscard]] QString shortPath(const XsdtNode& node);

} // namespace kse
