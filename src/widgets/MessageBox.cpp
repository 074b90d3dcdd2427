// SPDX-License-Identifier: MIT
#include "widgets/MessageBox.h"

#include "widgets/PlainText.h"

#include <QCoreApplication>
#include <QTextEdit>

namespace kse {

PlainMessageBox::PlainMessageBox(Icon icon, const QString& title, const QString& text,
                                 StandardButtons buttons, QWidget* parent)
    : QMessageBox(icon, title, withoutMiddle(text, popupLimit), buttons,
                  parent ? parent->window() : nullptr)
{
    setTextFormat(Qt::PlainText);
}

void PlainMessageBox::setPlainInformativeText(const QString& text)
{
    // Qt ignores the text format for the informative text and guesses.
    setInformativeText(asToolTip(text));
}

void PlainMessageBox::setReachableDetails(const QString& text)
{
    setDetailedText(text);
    if (auto* details = findChild<QTextEdit*>()) {
        details->setFocusPolicy(Qt::StrongFocus);
        details->setTabChangesFocus(true);
        details->setAccessibleName(QCoreApplication::translate("PlainText", "Details"));
    }
}

void showMessage(QWidget* parent, QMessageBox::Icon icon, const QString& title, const QString& text,
                 const QString& informativeText)
{
    PlainMessageBox box(icon, title, text, QMessageBox::Ok, parent);
    box.setPlainInformativeText(informativeText);
    box.exec();
}

QMessageBox::StandardButton askQuestion(QWidget* parent, const QString& title, const QString& text,
                                        QMessageBox::StandardButtons buttons,
                                        QMessageBox::StandardButton defaultButton,
                                        const QString& informativeText)
{
    PlainMessageBox box(QMessageBox::Question, title, text, buttons, parent);
    box.setPlainInformativeText(informativeText);
    box.setDefaultButton(defaultButton);
    return static_cast<QMessageBox::StandardButton>(box.exec());
}

} // namespace kse
