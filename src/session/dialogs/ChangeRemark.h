// SPDX-License-Identifier: MIT
#pragma once

class QString;

namespace kse {

struct VariableInfo;
struct XsdtNode;

// What the texts of a change don't show by themselves: what editors show for them, as the name of a
// choice or #AARRGGBB for a colour, and the blanks and line ends that they end in. Sentences for
// the user; empty where there is nothing to say.

/// Of `node`, a value, its text on disk and the one it has now. `info` describes it.
[[nodiscard]] QString editRemark(const XsdtNode& node, const VariableInfo& info);

/// Of `node`, a value that goes. `info` describes it.
[[nodiscard]] QString removalRemark(const XsdtNode& node, const VariableInfo& info);

} // namespace kse
