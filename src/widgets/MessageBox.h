// SPDX-License-Identifier: MIT
#pragma once

#include <QMessageBox>
#include <QString>

namespace kse {

/// A message box that shows its texts letter for letter, and a long one without its middle. It
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

/// Shows a message with "OK" and waits for it.
void showMessage(QWidget* parent, QMessageBox::Icon icon, const QString& title, const QString& text,
                 const QString& informativeText = {});

/// Asks a question and waits. Returns the button pressed; for a box that was closed, the escape
/// button.
[[nodiscard]] QMessageBox::StandardButton askQuestion(QWidget* parent, const QString& title,
                                                      const QString& text,
                                                      QMessageBox::StandardButtons buttons,
                                                      QMessageBox::StandardButton defaultButton,
                                                      const QString& informativeText = {});

} // namespace kse
