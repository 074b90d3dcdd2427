// SPDX-License-Identifier: MIT
#include "widgets/GradualLayout.h"

#include "widgets/TabOrder.h"

#include <QCoreApplication>
#include <QElapsedTimer>
#include <QWidget>
#include <QWindow>

#include <utility>

namespace kse {

namespace {

// Milliseconds.
constexpr qint64 sliceTime = 8; // half a frame
constexpr qint64 longestStart = 40;
constexpr int exposureTime = 15;

/// Asks a widget for its height only once, which is remembered: no column squeezes its rows.
class RowItem : public QWidgetItemV2
{
public:
    using QWidgetItemV2::QWidgetItemV2;

    int minimumHeightForWidth(int width) const override { return heightForWidth(width); }
};

} // namespace

GradualLayout::GradualLayout(QWidget* before, QWidget* parent)
    : QVBoxLayout(parent)
    , m_before(before)
    , m_missingSpace(new QSpacerItem(0, 0))
{
    addItem(m_missingSpace);
    m_idleTimer.setInterval(0);
    connect(&m_idleTimer, &QTimer::timeout, this, [this] {
        const QWindow* window = parentWidget()->window()->windowHandle();
        const bool isAwaited = window && window->isVisible() && !window->isExposed() &&
                               !parentWidget()->window()->isMinimized();
        m_idleTimer.setInterval(isAwaited ? exposureTime : 0);
        if (isAwaited) {
            return; // the window is painted first
        }
        QElapsedTimer timer;
        timer.start();
        createUntil([&timer] { return timer.hasExpired(sliceTime); });
    });
}

void GradualLayout::append(qsizetype count, std::function<QWidget*(qsizetype)> create)
{
    complete();
    m_create = std::move(create);
    m_missing = count;
    m_created = 0;
    QElapsedTimer timer;
    timer.start();
    int height = 0;
    createUntil([&] {
        const QWidget* last = m_items.constLast();
        if (!last->isHidden() || !last->testAttribute(Qt::WA_WState_ExplicitShowHide)) {
            height += last->sizeHint().height() + spacing();
        }
        m_itemHeight = height / int(m_created);
        // The column itself may not be laid out yet, and many rows may be hidden.
        return height > parentWidget()->window()->height() || timer.hasExpired(longestStart);
    });
}

bool GradualLayout::complete()
{
    const bool wasMissing = m_missing > 0;
    createUntil([] { return false; });
    return wasMissing;
}

/// Creates the next widgets, at least one, until `isEnough`.
void GradualLayout::createUntil(const std::function<bool()>& isEnough)
{
    if (m_missing == 0) {
        return;
    }
    const qsizetype before = m_items.size();
    // Saves a second layout when a widget is shown. The parent itself may not be laid out yet.
    const QWidget& outer = *parentWidget()->parentWidget();
    const int width = outer.width() - contentsMargins().left() - contentsMargins().right();
    do {
        QWidget* widget = m_create(m_created++);
        --m_missing;
        widget->resize(width, widget->height());
        addChildWidget(widget);
        insertItem(count() - 1, new RowItem(widget));
        m_items.append(widget);
    } while (m_missing > 0 && !isEnough());
    QLayout* column = parentWidget()->layout();
    column->setEnabled(false); // or it would be laid out for each widget that is shown
    for (qsizetype i = before; i < m_items.size(); ++i) {
        QCoreApplication::sendPostedEvents(m_items.at(i), QEvent::MetaCall); // shows it
    }
    QWidget* stop = before > 0 ? lastTabStop(*m_items.at(before - 1)) : nullptr;
    continueTabOrder(stop ? stop : m_before, m_items.sliced(before));
    if (m_missing == 0) {
        m_idleTimer.stop();
        m_create = nullptr;
    } else {
        m_idleTimer.start();
    }
    // The missing ones get about the room that they will take, so that the scroll bar doesn't jump.
    m_missingSpace->changeSize(0, int(m_missing) * m_itemHeight);
    invalidate();
    column->setEnabled(true);
    column->activate();
}

void GradualLayout::stop()
{
    m_missing = 0;
    m_create = nullptr;
    m_idleTimer.stop();
}

void GradualLayout::clear()
{
    stop();
    m_missingSpace->changeSize(0, 0);
    for (QWidget* item : std::as_const(m_items)) {
        for (auto* inner : item->findChildren<GradualLayout*>()) {
            inner->stop();
        }
        delete takeAt(0); // in constant time, where `removeWidget` searches
        item->hide();
        item->deleteLater();
    }
    m_items.clear();
}

} // namespace kse
