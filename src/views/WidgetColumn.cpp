// SPDX-License-Identifier: MIT
#include "views/WidgetColumn.h"

#include <QApplication>
#include <QPushButton>
#include <QVBoxLayout>

using namespace Qt::StringLiterals;

namespace kse {

WidgetColumn::WidgetColumn(int spacing, QWidget* parent)
    : QScrollArea(parent)
    , m_lastTabStop(this)
{
    auto* container = new QWidget(this);
    m_showMoreButton = new QPushButton(container);
    m_showMoreButton->setObjectName(u"showMoreButton"_s);
    m_showMoreButton->hide();
    connect(m_showMoreButton, &QPushButton::clicked, this, &WidgetColumn::moreRequested);
    m_layout = new QVBoxLayout(container);
    m_layout->setContentsMargins({});
    m_layout->setSpacing(spacing);
    m_layout->addWidget(m_showMoreButton);
    m_layout->addStretch();
    setFrameShape(QFrame::NoFrame);
    setWidgetResizable(true);
    setWidget(container);
}

void WidgetColumn::append(QWidget* widget)
{
    m_layout->insertWidget(m_layout->count() - 2, widget);
    m_items.append(widget);
    // A new widget is the last of its whole window.
    for (QWidget* child : widget->findChildren<QWidget*>()) {
        if ((child->focusPolicy() & Qt::TabFocus) && !child->focusProxy()) {
            setTabOrder(m_lastTabStop, child);
            m_lastTabStop = child;
        }
    }
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
        m_layout->removeWidget(item);
        item->hide();
        item->deleteLater();
    }
    m_items.clear();
}

void WidgetColumn::setMoreText(const QString& text)
{
    if (text.isEmpty() && m_showMoreButton->hasFocus()) {
        focusPreviousChild();
    }
    m_showMoreButton->setText(text);
    m_showMoreButton->setVisible(!text.isEmpty());
}

} // namespace kse
