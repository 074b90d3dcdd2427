// SPDX-License-Identifier: MIT
#pragma once

#include "document/XsdtNode.h"

#include <QString>

namespace kse {

/// Whole paths are kept of nodes down to this level only. With an entry at each level of a deep
/// file, those of all of them together would be as large as the square of the file.
inline constexpr quint16 deepestWholePath = 1000;

/// How much is kept of other paths, in characters.
inline constexpr qsizetype shortPathLength = 1000;

/// `node.path()` down to the deepest level of whole paths; beyond, U+2026 and the end of the path,
/// made without looking at what lies before it.
[[nodiscard]] QString shortPath(const XsdtNode& node);

} // namespace kse
