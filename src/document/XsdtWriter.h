// SPDX-License-Identifier: MIT
#pragma once

#include <QByteArray>
#include <QString>

namespace kse {

struct XsdtDocument;
struct XsdtNode;

/// Appends the element of `node` to `buffer`, in UTF-8 and PixInsight's compact layout: no white
/// space between elements, attributes in the order k, t, v and in double quotes. With
/// `skipMarked`, what is marked for deletion is left out. `node` isn't the root.
void writeNode(const XsdtNode& node, QByteArray& buffer, bool skipMarked);

/// `text` with the five characters " & ' < > written as named references.
[[nodiscard]] QString escapeText(const QString& text);

/// Whether `document.serialize()` would give exactly `bytes`. Stops at the first difference.
[[nodiscard]] bool hasCanonicalLayout(const XsdtDocument& document, const QByteArray& bytes);

} // namespace kse
