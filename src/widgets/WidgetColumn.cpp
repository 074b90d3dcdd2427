// SPDX-License-Identifier: MIT
#include "widgets/WidgetColumn.h"

#include "widgets/FollowFocus.h"
#include "widgets/Named.h"

#include <QFocusFrame>
#include <QKeyEvent>
#include <QPushButton>
#include <QScrollBar>
#include <QVBoxLayout>

#include <utility>

using namespace Qt::StringLiterals;

namespace kse {

WidgetColumn::WidgetColumn(int spacing, QWidget* parent)
    : QScrollArea(parent)
    , m_focusFrame(new QFocusFrame(this))
{
    followFocus(this);
    auto* container = new QWidget(this);
    m_showMoreButton = named(u"showMoreButton"_s, new QPushButton(container));
    m_showMoreButton->hide();
    connect(m_showMoreButton, &QPushButton::clicked, this, &WidgetColumn::moreRequested);
    m_rows = new GradualLayout(this);
    m_rows->setSpacing(spacing);
    auto* layout = new QVBoxLayout(container);
    layout->setContentsMargins({});
    layout->setSpacing(spacing);
    layout->addLayout(m_rows);
    layout->addWidget(m_showMoreButton);
    layout->addStretch();
    setFrameShape(QFrame::NoFrame);
    setWidgetResizable(true);
    setVerticalScrollBarPolicy(Qt::ScrollBarAlwaysOn); // else every wrapped text is laid out twice
    setWidget(container);
}

void WidgetColumn::append(qsizetype count, std::function<QWidget*(qsizetype)> create)
{
    m_rows->append(count, std::move(create));
}

bool WidgetColumn::complete()
{
    bool isChanged = false;
    for (auto* rows : findChildren<GradualLayout*>()) {
        isChanged = rows->complete() || isChanged;
    }
    return isChanged;
}

void WidgetColumn::clear()
{
    // The focus stays in the column instead of going from row to row as they are hidden.
    if (isAncestorOf(QApplication::focusWidget())) {
        setFocus();
    }
    m_rows->clear();
    setMoreText({});
}

void WidgetColumn::setMoreText(const QString& text)
{
    if (m_showMoreButton->hasFocus()) {
        QScrollArea::focusNextPrevChild(false); // from where Tab leads to what is appended next
    }
    m_showMoreButton->setText(text);
    m_showMoreButton->setVisible(!text.isEmpty());
}

/// Creates those that are missing, and gives them their places.
void WidgetColumn::fill()
{
    if (widget()->isVisible() && complete()) { // not while it is being hidden
        QCoreApplication::sendPostedEvents(nullptr, QEvent::LayoutRequest);
    }
}

bool WidgetColumn::focusNextPrevChild(bool next)
{
    fill();
    return QScrollArea::focusNextPrevChild(next);
}

void WidgetColumn::keyPressEvent(QKeyEvent* event)
{
    if (event->key() == Qt::Key_Home) {
        verticalScrollBar()->triggerAction(QAbstractSlider::SliderToMinimum);
    } else if (event->key() == Qt::Key_End) {
        fill();
        verticalScrollBar()->triggerAction(QAbstractSlider::SliderToMaximum);
    } else {
        QScrollArea::keyPressEvent(event);
    }
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
