// SPDX-License-Identifier: MIT
#include "widgets/WrappingRow.h"

#include <QStyle>
#include <QWidget>

#include <algorithm>

namespace kse {

namespace {

bool expands(const QLayoutItem& item)
{
    return item.expandingDirections() & Qt::Horizontal;
}

int neededWidth(const QLayoutItem& item)
{
    return expands(item) ? item.minimumSize().width() : item.sizeHint().width();
}

} // namespace

WrappingRow::WrappingRow(Qt::Alignment alignment)
    : m_alignment(alignment)
{
}

WrappingRow::~WrappingRow()
{
    qDeleteAll(m_items);
}

void WrappingRow::addItem(QLayoutItem* item)
{
    m_items.append(item);
}

QLayoutItem* WrappingRow::itemAt(int index) const
{
    return m_items.value(index);
}

QLayoutItem* WrappingRow::takeAt(int index)
{
    return index >= 0 && index < m_items.size() ? m_items.takeAt(index) : nullptr;
}

int WrappingRow::count() const
{
    return int(m_items.size());
}

QSize WrappingRow::sizeHint() const
{
    QSize size(0, 0);
    for (const QLayoutItem* item : m_items) {
        const QSize hint = item->sizeHint();
        size = {size.width() + hint.width(), std::max(size.height(), hint.height())};
    }
    return size + QSize(gap(Qt::Horizontal) * std::max(0, count() - 1), 0);
}

QSize WrappingRow::minimumSize() const
{
    QSize size;
    for (const QLayoutItem* item : m_items) {
        size = size.expandedTo({neededWidth(*item), item->minimumSize().height()});
    }
    return size;
}

bool WrappingRow::hasHeightForWidth() const
{
    return true;
}

int WrappingRow::heightForWidth(int width) const
{
    int height = -gap(Qt::Vertical);
    for (const Line& line : linesFor(width)) {
        height += line.height + gap(Qt::Vertical);
    }
    return std::max(height, 0);
}

void WrappingRow::setGeometry(const QRect& rect)
{
    QLayout::setGeometry(rect);
    int y = rect.y();
    for (const Line& line : linesFor(rect.width())) {
        placeLine(line, {rect.x(), y, rect.width(), line.height});
        y += line.height + gap(Qt::Vertical);
    }
}

QList<WrappingRow::Line> WrappingRow::linesFor(int width) const
{
    QList<Line> lines;
    for (QLayoutItem* item : m_items) {
        const int needed = neededWidth(*item);
        if (lines.isEmpty() || lines.last().width + gap(Qt::Horizontal) + needed > width) {
            lines.append({{}, -gap(Qt::Horizontal), 0});
        }
        Line& line = lines.last();
        line.items.append(item);
        line.width += gap(Qt::Horizontal) + needed;
        line.height = std::max(line.height, item->sizeHint().height());
    }
    return lines;
}

void WrappingRow::placeLine(const Line& line, const QRect& rect) const
{
    int left = std::max(0, rect.width() - line.width); // left over, for the first item that expands
    const bool fills = std::any_of(line.items.begin(), line.items.end(),
                                   [](const QLayoutItem* item) { return expands(*item); });
    int x = rect.x();
    if (!fills && m_alignment & Qt::AlignTrailing) {
        x += left;
    }
    const Qt::LayoutDirection direction = parentWidget()->layoutDirection();
    for (QLayoutItem* item : line.items) {
        int width = neededWidth(*item);
        if (expands(*item)) {
            width += std::exchange(left, 0);
        }
        item->setGeometry(QStyle::visualRect(direction, rect, {x, rect.y(), width, rect.height()}));
        x += width + gap(Qt::Horizontal);
    }
}

/// The style's spacing, as in other layouts.
int WrappingRow::gap(Qt::Orientation orientation) const
{
    const QWidget* widget = parentWidget();
    const auto metric = orientation == Qt::Horizontal ? QStyle::PM_LayoutHorizontalSpacing
                                                      : QStyle::PM_LayoutVerticalSpacing;
    return widget->style()->pixelMetric(metric, nullptr, widget);
}

} // namespace kse
