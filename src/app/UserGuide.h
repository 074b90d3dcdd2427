// SPDX-License-Identifier: MIT
#pragma once

#include <QString>

namespace kse {

/// Writes the built-in user guide to a file in the system's temporary folder, or, if another user
/// owns a file of that name there, in the program's cache folder. Overwrites an older one. Returns
/// the path, or an empty one if the guide couldn't be written completely.
[[nodiscard]] QString exportUserGuide();

/// Writes the guide and opens it in the browser.
void showUserGuide();

} // namespace kse
