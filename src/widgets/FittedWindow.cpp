// SPDX-License-Identifier: MIT
#include "widgets/FittedWindow.h"

#include "widgets/FollowFocus.h"

#include <QLayout>
#include <QScreen>
#include <QScrollBar>
#include <QShowEvent>
#include <QStyle>

#include <algorithm>
#include <utility>

namespace kse {

class FittedWindow::Content : public QScrollArea
{
public:
    explicit Content(QWidget* content)
    {
        setWidget(content);
        setFrameShape(NoFrame);
        setFocusPolicy(Qt::NoFocus);
        setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
        viewport()->setAutoFillBackground(false);
        content->setAutoFillBackground(false);
        followFocus(this);
    }

    /// In height, in pixels.
    void setRoom(int room)
    {
        if (room != std::exchange(m_room, room)) { // else each layout would ask for the next
            updateGeometry();
        }
    }

    QSize sizeHint() const override { return widget()->sizeHint(); }

    QSize minimumSizeHint() const override
    {
        const QSize least = widget()->minimumSizeHint();
        const int bar = least.height() > m_room ? verticalScrollBar()->sizeHint().width() : 0;
        return {least.width() + bar, std::min(least.height(), m_room)};
    }

protected:
    bool event(QEvent* event) override
    {
        if (event->type() == QEvent::LayoutRequest) {
            updateGeometry();
            fitContent();
        }
        return QScrollArea::event(event);
    }

    void resizeEvent(QResizeEvent* event) override
    {
        QScrollArea::resizeEvent(event);
        fitContent();
    }

private:
    /// `setWidgetResizable` would take the height that wrapped rows like to have for the least.
    void fitContent()
    {
        const int least = widget()->minimumSizeHint().height();
        widget()->resize(viewport()->width(), std::max(viewport()->height(), least));
    }

    int m_room = QWIDGETSIZE_MAX;
};

void FittedWindow::setContent(QWidget* content)
{
    m_content = new Content(content);
    setCentralWidget(m_content);
}

void FittedWindow::showEvent(QShowEvent* event)
{
    if (!event->spontaneous()) {
        fitSize(minimumWidth());
        // If large text needs more than the screen has, smaller text gives that back.
        m_chosen = m_chosen.boundedTo(room());
        keepOnScreen();
        m_fitted = size();
    }
    QMainWindow::showEvent(event);
}

void FittedWindow::fitMinimumWidth(int minimum)
{
    fitSize(minimum);
    if (size() != m_chosen) {
        keepOnScreen();
        m_fitted = size();
    }
}

void FittedWindow::fitSize(int minimum)
{
    const auto chosen = [](int now, int before, int fitted, int least) {
        // The display server may tell a size late, when the minimum has already taken more.
        return now == fitted || (now <= least && before < least) ? before : now;
    };
    m_chosen = {chosen(width(), m_chosen.width(), m_fitted.width(), minimumWidth()),
                chosen(height(), m_chosen.height(), m_fitted.height(), minimumHeight())};
    setMinimumWidth(minimum);
    if (isVisible()) {
        m_content->setRoom(room().height() - (height() - m_content->height()));
    }
    layout()->activate(); // sets the minimum height
    if (!isMaximized() && !isFullScreen()) {
        resize(m_chosen.expandedTo(minimumSize()));
    }
    m_fitted = size();
}

QSize FittedWindow::room() const
{
    QSize frame = frameGeometry().size() - size();
    if (frame.isNull()) { // not known before the window is shown
        const int border = style()->pixelMetric(QStyle::PM_MdiSubWindowFrameWidth, nullptr, this);
        const int title = style()->pixelMetric(QStyle::PM_TitleBarHeight, nullptr, this);
        frame = {2 * border, title + border};
    }
    return screen()->availableSize() - frame;
}

void FittedWindow::keepOnScreen()
{
    if (isMaximized() || isFullScreen()) {
        return;
    }
    resize(size().boundedTo(room()));
    if (isVisible()) {
        const QRect screen = this->screen()->availableGeometry();
        const QSize left = room() - size();
        const QPoint last = screen.topLeft() + QPoint(left.width(), left.height());
        move(std::max(screen.left(), std::min(x(), last.x())),
             std::max(screen.top(), std::min(y(), last.y())));
    }
}

} // namespace kse
