// SPDX-License-Identifier: MIT
#pragma once

#include <QMessageBox>
#include <QString>

namespace kse {

// Keys, values and paths come from a file and are data wherever they are shown. Labels of ours use
// Qt::PlainText; where Qt decides by itself whether a text is markup, one of these goes between.

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
/// letter for letter, abbreviated beyond 2,000 characters. Other text comes back unchanged.
[[nodiscard]] QString asToolTip(const QString& text);

/// `name`, made from `key`, for a title or a label; something to see and to hear where it is blank.
[[nodiscard]] QString shownName(const QString& name, const QString& key);

/// `text` for a menu entry, button or tab: an ampersand is no mnemonic.
[[nodiscard]] QString asCaption(const QString& text);

/// A message box whose texts are shown letter for letter, without the middle of a long one. It
/// belongs to `parent`'s window. The caller may add to it before `exec`.
class PlainMessageBox : public QMessageBox
{
public:
    PlainMessageBox(Icon icon, const QString& title, const QString& text,
                    StandardButtons buttons = Ok, QWidget* parent = nullptr);

    void setPlainInformativeText(const QString& text);

    /// Like `setDetailedText`, but the keyboard reaches and scrolls the text.
    void setReachableDetails(const QString& text);
};

/// Shows the box with "OK" and waits for it.
void showMessage(QWidget* parent, QMessageBox::Icon icon, const QString& title, const QString& text,
                 const QString& informativeText = {});

/// Asks with a question mark and waits; the button pressed, or the escape button.
[[nodiscard]] QMessageBox::StandardButton askQuestion(QWidget* parent, const QString& title,
                                                      const QString& text,
                                                      QMessageBox::StandardButtons buttons,
                                                      QMessageBox::StandardButton defaultButton);

} // namespace kse
