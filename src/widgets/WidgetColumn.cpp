// SPDX-License-Identifier: MIT
#include "widgets/WidgetColumn.h"

#include "widgets/Named.h"
#include "widgets/TabOrder.h"

#include <QApplication>
#include <QFocusEvent>
#include <QFocusFrame>
#include <QPushButton>
#include <QVBoxLayout>

using namespace Qt::StringLiterals;

namespace kse {

WidgetColumn::WidgetColumn(int spacing, QWidget* parent)
    : QScrollArea(parent)
    , m_lastTabStop(this)
    , m_focusFrame(new QFocusFrame(this))
{
    auto* container = new QWidget(this);
    m_showMoreButton = named(u"showMoreButton"_s, new QPushButton(container));
    m_showMoreButton->hide();
    connect(m_showMoreButton, &QPushButton::clicked, this, &WidgetColumn::moreRequested);
    m_layout = new QVBoxLayout(container);
    m_layout->setContentsMargins({});
    m_layout->setSpacing(spacing);
    m_layout->addWidget(m_showMoreButton);
    m_layout->addStretch();
    setFrameShape(QFrame::NoFrame);
    setWidgetResizable(true);
    setVerticalScrollBarPolicy(Qt::ScrollBarAlwaysOn); // else every wrapped text is laid out twice
    setWidget(container);
}

void WidgetColumn::append(const QList<QWidget*>& widgets)
{
    for (QWidget* widget : widgets) {
        // Saves a second layout when it is shown.
        widget->resize(viewport()->width(), widget->height());
        m_layout->insertWidget(m_layout->count() - 2, widget);
    }
    m_items += widgets;
    m_lastTabStop = continueTabOrder(m_lastTabStop, widgets);
    setTabOrder(m_lastTabStop, m_showMoreButton);
}

void WidgetColumn::clear()
{
    m_lastTabStop = this;
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
        focusPreviousChild(); // from where Tab leads to what has just been appended
    }
    m_showMoreButton->setText(text);
    m_showMoreButton->setVisible(!text.isEmpty());
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
