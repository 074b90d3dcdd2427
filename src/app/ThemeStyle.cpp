// SPDX-License-Identifier: MIT
#include "app/ThemeStyle.h"

#include <QApplication>
#include <QPainter>
#include <QStyleOption>

#include <algorithm>

using namespace Qt::StringLiterals;

namespace kse {

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
    default:
        return pixels;
    }
}

} // namespace kse
