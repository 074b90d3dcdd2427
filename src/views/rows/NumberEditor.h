// SPDX-License-Identifier: MIT
#pragma once

class QString;
class QWidget;

namespace kse {

class ValueEditor;
struct VariableInfo;

/// A spin box for a whole number in `info`'s range. A stored value outside it extends the range.
/// The arguments are those of `ValueEditor::create`.
[[nodiscard]] ValueEditor* createNumberEditor(const VariableInfo& info, const QString& name,
                                              QWidget* parent);

} // namespace kse
