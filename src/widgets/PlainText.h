// SPDX-License-Identifier: MIT
#pragma once

#include <QString>

namespace kse {

// Keys, values and paths come from a file. They are shown letter for letter, never as markup. Our
// labels use Qt::PlainText; where Qt guesses whether a text is markup, one of these functions
// helps.

// Qt lays out a million characters for seconds, however few of them fit. So a text from a file is
// cut to one of these lengths, in characters, wherever it is shown.

/// A tool tip, message box or banner: more would not fit any screen.
inline constexpr qsizetype popupLimit = 2000;
/// A path, key, label or title with a line to itself.
inline constexpr qsizetype lineLimit = 1000;
/// A path in a message, where what follows it must stay in sight.
inline constexpr qsizetype sentenceLimit = 500;
/// A key, label or value in a cell, a caption or a sentence.
inline constexpr qsizetype shortLimit = 200;
/// The title of a page or card, or an entry of a list to choose from.
inline constexpr qsizetype titleLimit = 100;
/// A stored value in a hint beside its editor.
inline constexpr qsizetype hintLimit = 80;

/// The first `length` characters of `text`, one fewer where that would split a surrogate pair.
[[nodiscard]] QString firstCharacters(const QString& text, qsizetype length);

/// `text`, or its first `limit` characters and the number of the others.
[[nodiscard]] QString abbreviated(const QString& text, qsizetype limit);

/// `text` up to `limit` characters. Of a longer one, `limit / 2` characters from the start and from
/// the end, with U+2026 between them, so that the end of a path or sentence isn't lost.
[[nodiscard]] QString withoutMiddle(const QString& text, qsizetype limit);

/// `text` as markup that shows it letter for letter, with its runs of blanks and its line feeds.
[[nodiscard]] QString asMarkup(const QString& text);

/// `text` for a tool tip, or for any other place where Qt guesses whether it is markup. It is
/// abbreviated to `popupLimit`, and turned into markup only if it looks like markup.
[[nodiscard]] QString asToolTip(const QString& text);

/// A title or label that is never blank: `name`, which was made from `key`; else `key`; else
/// "(no name)".
[[nodiscard]] QString shownName(const QString& name, const QString& key);

/// `text` for a drawing that lays it out in the direction of the program. In one from right to
/// left, a text such as "-1" or "/tmp/x" is marked to be read from left to right.
[[nodiscard]] QString inOwnDirection(const QString& text);

/// `text` for a menu entry, button or tab, where an ampersand must not become a mnemonic.
[[nodiscard]] QString asCaption(const QString& text);

} // namespace kse
