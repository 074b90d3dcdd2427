// SPDX-License-Identifier: MIT
#pragma once

#include <QApplication>
#include <QPointer>
#include <QTimer>
#include <QWidget>

#include <functional>

namespace kse {

/// Answers the next modal dialog or menu of class `Widget` from within its own event loop, once.
/// Made before the call that opens it; `wasAsked` afterwards tells whether it came.
///
///     DialogAnswerer<QMessageBox> answer([](QMessageBox& box) {
///         QCOMPARE(box.text(), u"Delete all?"_s);
///         box.button(QMessageBox::Yes)->click();
///     });
///     window.deleteAll();
///     QVERIFY(answer.wasAsked());
///
/// A failed QCOMPARE leaves `answer` early: a dialog that is still open then is closed, so that
/// the test goes on.
template <typename Widget>
class DialogAnswerer
{
public:
    explicit DialogAnswerer(const std::function<void(Widget&)>& answer)
    {
        m_timer.callOnTimeout([this, answer] {
            QWidget* popup = QApplication::activePopupWidget();
            const QPointer<Widget> open =
                qobject_cast<Widget*>(popup ? popup : QApplication::activeModalWidget());
            if (open && open->isVisible()) {
                m_timer.stop();
                answer(*open);
            }
            if (open && open->isVisible()) {
                open->close();
            }
        });
        m_timer.start(10);
    }

    bool wasAsked() const { return !m_timer.isActive(); }

private:
    QTimer m_timer;
};

} // namespace kse
