// SPDX-License-Identifier: MIT
#pragma once

#include <QByteArray>
#include <QString>

namespace kse {

struct XsdtDocument;
struct XsdtNode;

/// Appends the element of `node` to `buffer`, in UTF-8 and PixInsight's compact layout: no white
/// space between elements, attributes in the order k, t, v and in double quotes. With
/// `skipMarked`, nodes marked for deletion are left out. `node` must not be the root.
void writeNode(const XsdtNode& node, QByteArray& buffer, bool skipMarked);

/// Bytes that `writeNode` appends for `node`, marked descendants included.
[[nodiscard]] qint64 elementSize(const XsdtNode& node);

/// The whole file in UTF-8, without nodes marked for deletion.
[[nodiscard]] QByteArray writeXsdt(const XsdtDocument& document);

/// `text` with the five characters " & ' < > written as named references.
[[nodiscard]] QString escapeText(const QString& text);

} // namespace kse
