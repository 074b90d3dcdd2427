// SPDX-License-Identifier: MIT
#pragma once

#include <QString>
#include <QVariant>

namespace kse {

struct DeleteDecision;
struct XsdtNode;

// How the settings tree shows a node, one function a role. `column` is a `SettingsModel::Column`.
// An invalid variant stands for the view's own look.

[[nodiscard]] QVariant displayText(const XsdtNode& node, int column);

/// The whole value, in its column.
[[nodiscard]] QVariant editText(const XsdtNode& node, int column);

/// The path, the type, the state and, by `decision`, whether the node can be deleted.
[[nodiscard]] QString toolTipText(const XsdtNode& node, const DeleteDecision& decision);

/// In lines of their own, what the font and the colours of the row tell.
[[nodiscard]] QString stateText(const XsdtNode& node);

[[nodiscard]] QVariant rowFont(const XsdtNode& node);
[[nodiscard]] QVariant rowBackground(const XsdtNode& node);
[[nodiscard]] QVariant rowForeground(const XsdtNode& node);

/// How a value's text shows in a list: line feeds as U+23CE, encoded blocks as their length, and
/// no more than `limit` characters, with U+2026 for the rest.
[[nodiscard]] QString displayValue(const XsdtNode& node, const QString& text, qsizetype limit);

} // namespace kse
