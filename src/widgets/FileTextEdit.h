// SPDX-License-Identifier: MIT
#pragma once

class QLineEdit;
class QString;

namespace kse {

/// Shows `text`, a value from a file, in `edit` unchanged: `edit.text()` is `text` until the user
/// edits it. A text of more than a million characters can't be edited: only its first `lineLimit`
/// characters are shown, and a tool tip says why.
void showFileText(QLineEdit& edit, const QString& text);

} // namespace kse
