// SPDX-License-Identifier: MIT
#pragma once

#include <QtWidgets>

namespace kse {

/// Answers the next modal dialog or menu of class `Widget` from within its own event loop, once.
/// Made before the call that opens it:
///
///     const DialogAnswerer<QMessageBox> answer([](QMessageBox& box) {
///         QCOMPARE(box.text(), u"Delete all?"_s);
///         box.button(QMessageBox::Yes)->click();
///     });
///     window.deleteAll();
///
/// A failed QCOMPARE leaves `answer` early: a dialog that is still open then is closed, so that
/// the test goes on.
template <typename Widget>
struct DialogAnswerer : QTimer
{
    explicit DialogAnswerer(const std::function<void(Widget&)>& answer)
    {
        callOnTimeout([this, answer] {
            QWidget* popup = QApplication::activePopupWidget();
            const QPointer<Widget> open =
                qobject_cast<Widget*>(popup ? popup : QApplication::activeModalWidget());
            if (open && open->isVisible()) {
                stop();
                answer(*open);
            }
            if (open && open->isVisible()) {
                open->close();
            }
        });
        start(10);
    }
};

} // namespace kse
