// SPDX-License-Identifier: MIT
#pragma once

class QString;
class QWidget;

namespace kse {

class ValueEditor;
struct VariableInfo;

/// A line edit for any text; for a path, with a button that asks for the file or folder. A real
/// number outside `info`'s range is a fault. Types that can't be edited are shown read-only.
/// The arguments are those of `ValueEditor::create`.
[[nodiscard]] ValueEditor* createTextEditor(const VariableInfo& info, const QString& name,
                                            QWidget* parent);

} // namespace kse
