// SPDX-License-Identifier: MIT
#pragma once

#include <QtGlobal>

class QString;

namespace kse {

struct VariableInfo;
struct XsdtNode;

/// How many characters of a value the review shows in a cell or remark.
inline constexpr qsizetype reviewedValueLimit = 120;

// Remarks on what the texts of a change don't show: the name of a choice, #AARRGGBB for a colour,
// and blanks and line ends at the end. Sentences for the user; empty if there is nothing to say.

/// On an edit of `node`, a value that `info` describes: its text on disk and its text now.
[[nodiscard]] QString editRemark(const XsdtNode& node, const VariableInfo& info);

/// On the removal of `node`, a value that `info` describes.
[[nodiscard]] QString removalRemark(const XsdtNode& node, const VariableInfo& info);

} // namespace kse
