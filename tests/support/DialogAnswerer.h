// SPDX-License-Identifier: MIT
#pragma once

#include <QApplication>
#include <QPointer>
#include <QTimer>
#include <QWidget>

#include <functional>
#include <utility>

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
    explicit DialogAnswerer(std::function<void(Widget&)> answer)
        : m_answer(std::move(answer))
    {
        m_timer.callOnTimeout([this] {
            QWidget* active = QApplication::activePopupWidget();
            auto* widget =
                qobject_cast<Widget*>(active ? active : QApplication::activeModalWidget());
            if (!widget || !widget->isVisible()) {
                return;
            }
            m_timer.stop();
            m_wasAsked = true;
            const QPointer<QWidget> open = widget;
            m_answer(*widget);
            if (open && open->isVisible()) {
                open->close();
            }
        });
        m_timer.start(10);
    }

    bool wasAsked() const { return m_wasAsked; }

private:
    std::function<void(Widget&)> m_answer;
    QTimer m_timer;
    bool m_wasAsked = false;
};

} // namespace kse
