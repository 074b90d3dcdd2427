// SPDX-License-Identifier: MIT
#pragma once

#include <QString>

namespace kse {

/// Writes the built-in user guide to a file of the system's temporary folder, over what is there;
/// where its name belongs to somebody else, to the program's cache folder. Returns its path, or an
/// empty one if it couldn't be written whole.
[[nodiscard]] QString exportUserGuide();

/// Writes the guide and opens it in the browser.
void showUserGuide();

} // namespace kse
