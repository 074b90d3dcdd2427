// SPDX-License-Identifier: MIT
#pragma once

#include <QList>

namespace kse {

struct XsdtDocument;
struct XsdtNode;

/// Nodes of the same group that have the same key: a list for each such key, in file order. What
/// is marked for deletion is left out.
[[nodiscard]] QList<QList<XsdtNode*>> duplicateKeys(const XsdtDocument& document);

} // namespace kse
