// SPDX-License-Identifier: MIT
#include "app/ThemeStyle.h"

#include <QApplication>
#include <QPainter>
#include <QStyleOption>

#include <algorithm>

using namespace Qt::StringLiterals;

namespace kse {

namespace {

// More than Fusion's, so that a column of numbers at the right doesn't touch the next one's text.
constexpr int cellMargin = 3;

} // namespace

ThemeStyle::ThemeStyle()
    : QProxyStyle(u"Fusion"_s)
{
}

void ThemeStyle::drawPrimitive(PrimitiveElement element, const QStyleOption* option,
                               QPainter* painter, const QWidget* widget) const
{
    QProxyStyle::drawPrimitive(element, option, painter, widget);
    if (element != PE_IndicatorCheckBox && element != PE_IndicatorRadioButton) {
        return;
    }
    // Fusion's own outline is darker than the window, which on a dark one is no outline at all.
    QColor outline = option->palette.color(QPalette::Text);
    outline.setAlpha(128);
    painter->save();
    painter->setPen(outline);
    painter->setBrush(Qt::NoBrush);
    const QRect frame = option->rect.adjusted(0, 0, -1, -1);
    if (element == PE_IndicatorCheckBox) {
        painter->drawRect(frame);
    } else {
        painter->setRenderHint(QPainter::Antialiasing);
        painter->drawEllipse(QRectF(frame).adjusted(0.5, 0.5, -0.5, -0.5));
    }
    painter->restore();
}

int ThemeStyle::pixelMetric(PixelMetric metric, const QStyleOption* option,
                            const QWidget* widget) const
{
    const int pixels = QProxyStyle::pixelMetric(metric, option, widget);
    switch (metric) {
    case PM_IndicatorWidth:
    case PM_IndicatorHeight:
    case PM_ExclusiveIndicatorWidth:
    case PM_ExclusiveIndicatorHeight:
        return std::max(pixels, QFontMetrics(QApplication::font()).ascent());
    case PM_FocusFrameHMargin: // beside the text of every cell
    case PM_HeaderMargin:
        return pixels + cellMargin;
    default:
        return pixels;
    }
}

} // namespace kse
