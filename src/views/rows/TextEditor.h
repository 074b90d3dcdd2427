// SPDX-License-Identifier: MIT
#pragma once

class QString;
class QWidget;

namespace kse {

class ValueEditor;
struct VariableInfo;

/// A line for any text, with a button for a path that asks for the file or folder. A real number
/// out of `info`'s range is a fault. A type that can't be edited is shown, but not to be changed.
/// The arguments are those of `ValueEditor::create`.
[[nodiscard]] ValueEditor* createTextEditor(const VariableInfo& info, const QString& name,
                                            QWidget* parent);

} // namespace kse
