// SPDX-License-Identifier: MIT
#pragma once

#include <QtGlobal>

namespace kse {

/// The deepest level whose nodes have a row in the tree and are told by their whole path. Deeper
/// nodes stay in the document and are saved with it. Qt's views and proxies recurse, and in a deep
/// file with a value at each level all whole paths together would grow with the square of the
/// file's size.
inline constexpr quint16 deepestShownLevel = 1000;

} // namespace kse
