// SPDX-License-Identifier: MIT
#pragma once

#include <QList>

namespace kse {

struct XsdtNode;

/// The values at or beneath `node` in file order, marked ones included: a value gives itself.
[[nodiscard]] QList<XsdtNode*> valuesOf(const XsdtNode& node);

/// The same without those beneath `node` that are marked for deletion or lie in a marked group. A
/// mark on `node` itself or above it isn't looked at.
[[nodiscard]] QList<XsdtNode*> unmarkedValues(const XsdtNode& node);

} // namespace kse
