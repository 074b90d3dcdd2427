// SPDX-License-Identifier: MIT
#pragma once

#include <QString>

namespace kse {

/// Writes the built-in user guide to a file of the system's temporary folder, over what is there.
/// Returns its path, or an empty one if it couldn't be written whole.
[[nodiscard]] QString exportUserGuide();

} // namespace kse
