// SPDX-License-Identifier: MIT
#pragma once

class QLineEdit;
class QString;

namespace kse {

/// Puts `text`, of a value in a file, in `edit` without a change: `edit.text()` is `text` until
/// the user edits it. Of more than a million characters only the first 1,000 are shown, not to
/// be edited, and a tool tip says why.
void showFileText(QLineEdit& edit, const QString& text);

} // namespace kse
