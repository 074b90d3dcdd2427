// SPDX-License-Identifier: MIT
#include "widgets/FittedWindow.h"

#include <QScreen>
#include <QShowEvent>
#include <QStyle>

#include <algorithm>

namespace kse {

void FittedWindow::showEvent(QShowEvent* event)
{
    if (!event->spontaneous()) {
        keepOnScreen();
    }
    QMainWindow::showEvent(event);
}

void FittedWindow::fitMinimumWidth(int minimum)
{
    const bool isForced = m_chosenWidth < minimumWidth() && width() == minimumWidth();
    if (!isForced) {
        m_chosenWidth = width();
    }
    setMinimumWidth(minimum);
    if (isForced && !isMaximized() && !isFullScreen()) {
        resize(std::max(minimum, m_chosenWidth), height());
    }
    const bool isForcedHeight = height() <= minimumSizeHint().height(); // by larger text
    if (m_chosenWidth < minimum || isForcedHeight) {
        keepOnScreen();
    }
}

void FittedWindow::keepOnScreen()
{
    if (isMaximized() || isFullScreen()) {
        return;
    }
    const QRect room = screen()->availableGeometry();
    QSize frame = frameGeometry().size() - size();
    if (frame.isNull()) { // not known before the window is shown
        const int border = style()->pixelMetric(QStyle::PM_MdiSubWindowFrameWidth, nullptr, this);
        const int title = style()->pixelMetric(QStyle::PM_TitleBarHeight, nullptr, this);
        frame = {2 * border, title + border};
    }
    resize(size().boundedTo(room.size() - frame));
    if (isVisible()) {
        const QPoint last = room.topLeft() + QPoint(room.width() - width() - frame.width(),
                                                    room.height() - height() - frame.height());
        move(std::max(room.left(), std::min(x(), last.x())),
             std::max(room.top(), std::min(y(), last.y())));
    }
}

} // namespace kse
