// SPDX-License-Identifier: MIT
#include "widgets/WidgetColumn.h"

#include "widgets/Named.h"
#include "widgets/TabOrder.h"

#include <QApplication>
#include <QElapsedTimer>
#include <QFocusEvent>
#include <QFocusFrame>
#include <QPushButton>
#include <QVBoxLayout>

#include <utility>

using namespace Qt::StringLiterals;

namespace kse {

namespace {

// Milliseconds.
constexpr qint64 sliceTime = 8; // half a frame
constexpr qint64 longestStart = 40;

} // namespace

WidgetColumn::WidgetColumn(int spacing, QWidget* parent)
    : QScrollArea(parent)
    , m_focusFrame(new QFocusFrame(this))
{
    m_idleTimer.setInterval(0);
    connect(&m_idleTimer, &QTimer::timeout, this, [this] {
        QElapsedTimer timer;
        timer.start();
        createUntil([&timer] { return timer.hasExpired(sliceTime); });
    });
    auto* container = new QWidget(this);
    m_showMoreButton = named(u"showMoreButton"_s, new QPushButton(container));
    m_showMoreButton->hide();
    connect(m_showMoreButton, &QPushButton::clicked, this, &WidgetColumn::moreRequested);
    m_layout = new QVBoxLayout(container);
    m_layout->setContentsMargins({});
    m_layout->setSpacing(spacing);
    m_missingSpace = new QSpacerItem(0, 0);
    m_layout->addItem(m_missingSpace);
    m_layout->addWidget(m_showMoreButton);
    m_layout->addStretch();
    setFrameShape(QFrame::NoFrame);
    setWidgetResizable(true);
    setVerticalScrollBarPolicy(Qt::ScrollBarAlwaysOn); // else every wrapped text is laid out twice
    setWidget(container);
}

void WidgetColumn::append(qsizetype count, std::function<QWidget*(qsizetype)> create)
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
            height += last->sizeHint().height() + m_layout->spacing();
        }
        m_itemHeight = height / int(m_created);
        // The column itself may not be laid out yet, and many rows may be hidden.
        return height > window()->height() || timer.hasExpired(longestStart);
    });
}

void WidgetColumn::complete()
{
    createUntil([] { return false; });
}

/// Creates the next widgets, at least one, until `isEnough`.
void WidgetColumn::createUntil(const std::function<bool()>& isEnough)
{
    if (m_missing == 0) {
        return;
    }
    const qsizetype before = m_items.size();
    do {
        QWidget* widget = m_create(m_created++);
        --m_missing;
        // Saves a second layout when it is shown.
        widget->resize(viewport()->width(), widget->height());
        m_layout->insertWidget(m_layout->count() - 3, widget);
        m_items.append(widget);
    } while (m_missing > 0 && !isEnough());
    QWidget* stop = before > 0 ? lastTabStop(*m_items.at(before - 1)) : nullptr;
    setTabOrder(continueTabOrder(stop ? stop : this, m_items.sliced(before)), m_showMoreButton);
    if (m_missing == 0) {
        m_idleTimer.stop();
        m_create = nullptr;
    } else {
        m_idleTimer.start();
    }
    // The missing ones get about the room that they will take, so that the scroll bar doesn't jump.
    m_missingSpace->changeSize(0, int(m_missing) * m_itemHeight);
    m_layout->invalidate();
}

void WidgetColumn::clear()
{
    m_missing = 0;
    m_create = nullptr;
    m_idleTimer.stop();
    m_missingSpace->changeSize(0, 0);
    // The focus stays in the column instead of going from row to row as they are hidden.
    if (isAncestorOf(QApplication::focusWidget())) {
        setFocus();
    }
    for (QWidget* item : std::as_const(m_items)) {
        delete m_layout->takeAt(0); // in constant time, where `removeWidget` searches
        item->hide();
        item->deleteLater();
    }
    m_items.clear();
    setMoreText({});
}

void WidgetColumn::setMoreText(const QString& text)
{
    if (text.isEmpty() && m_showMoreButton->hasFocus()) {
        QScrollArea::focusNextPrevChild(
            false); // from where Tab leads to what has just been appended
    }
    m_showMoreButton->setText(text);
    m_showMoreButton->setVisible(!text.isEmpty());
}

bool WidgetColumn::focusNextPrevChild(bool next)
{
    if (isVisible() && m_missing > 0) { // not while it is being hidden
        complete();
        for (QWidget* item : std::as_const(m_items)) { // shows those that are new
            QCoreApplication::sendPostedEvents(item, QEvent::MetaCall);
        }
        QCoreApplication::sendPostedEvents(nullptr, QEvent::LayoutRequest); // and places them
    }
    return QScrollArea::focusNextPrevChild(next);
}

void WidgetColumn::focusInEvent(QFocusEvent* event)
{
    QScrollArea::focusInEvent(event);
    if (event->reason() == Qt::TabFocusReason || event->reason() == Qt::BacktabFocusReason) {
        m_focusFrame->setWidget(this); // nothing else shows the focus
    }
}

void WidgetColumn::focusOutEvent(QFocusEvent* event)
{
    QScrollArea::focusOutEvent(event);
    switch (event->reason()) {
    case Qt::ActiveWindowFocusReason:
    case Qt::PopupFocusReason:
    case Qt::MenuBarFocusReason:
        break; // comes back by itself
    default:
        m_focusFrame->setWidget(nullptr);
    }
}

} // namespace kse
