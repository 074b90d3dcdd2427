// SPDX-License-Identifier: MIT
#pragma once

namespace kse {

/// Writes the guide and opens it in the browser.
void showUserGuide();

} // namespace kse
