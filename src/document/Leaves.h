// SPDX-License-Identifier: MIT
#pragma once

#include <QList>

namespace kse {

struct XsdtNode;

/// The values below `node` in file order, marked ones included. A value gives only itself.
[[nodiscard]] QList<XsdtNode*> valuesOf(const XsdtNode& node);

/// The same without values that are marked for deletion or lie in a marked group. Marks on `node`
/// itself and above it are ignored.
[[nodiscard]] QList<XsdtNode*> unmarkedValues(const XsdtNode& node);

} // namespace kse
