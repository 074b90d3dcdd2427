// SPDX-License-Identifier: MIT
#pragma once

#include <QString>

namespace kse {

// Keys, values and paths come from a file and are data wherever they are shown. Labels of ours use
// Qt::PlainText; where Qt decides by itself whether a text is markup, one of these goes between.

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

/// `text` itself up to `limit` characters; else its first `limit` and how many more there are.
/// For texts so long that Qt can't lay them out in a time that isn't felt.
[[nodiscard]] QString abbreviated(const QString& text, qsizetype limit);

/// `text` itself up to `limit` characters; else as many of its start and end with U+2026 between
/// them. For sentences that hold a path and end in what was or wasn't done.
[[nodiscard]] QString withoutMiddle(const QString& text, qsizetype limit);

/// `text` as markup that shows it letter for letter, runs of blanks and line feeds among it.
[[nodiscard]] QString asMarkup(const QString& text);

/// `text` for a tool tip, or anything else that takes what looks like markup for markup: shown
/// letter for letter, abbreviated to `popupLimit`. Other text comes back unchanged.
[[nodiscard]] QString asToolTip(const QString& text);

/// `name`, made from `key`, for a title or a label; something to see and to hear where it is blank.
[[nodiscard]] QString shownName(const QString& name, const QString& key);

/// `text` for a menu entry, button or tab: an ampersand is no mnemonic.
[[nodiscard]] QString asCaption(const QString& text);

} // namespace kse
