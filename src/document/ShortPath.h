// SPDX-License-Identifier: MIT
#pragma once

#include "document/XsdtNode.h"

#include <QString>

namespace kse {

/// Whole paths are kept for nodes down to this level only. In a deep file with a value at each
/// level, all whole paths together would grow with the square of the file's size.
inline constexpr quint16 deepestWholePath = 1000;

/// How many characters are kept of the paths of deeper nodes.
inline constexpr qsizetype shortPathLength = 1000;

/// `node.path()` down to `deepestWholePath`. For deeper nodes U+2026 and the end of the path, made
/// without reading the keys before it.
[[nodiscard]] QString shortPath(const XsdtNode& node);

} // namespace kse
