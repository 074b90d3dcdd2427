// SPDX-License-Identifier: MIT
#pragma once

#include <QProxyStyle>

namespace kse {

/// The "Fusion" style with boxes to tick that are as large as the text beside them, and whose
/// outline can be seen on a dark ground too, and with a little more room beside the text of cells.
class ThemeStyle : public QProxyStyle
{
public:
    ThemeStyle();

    void drawPrimitive(PrimitiveElement element, const QStyleOption* option, QPainter* painter,
                       const QWidget* widget = nullptr) const override;
    int pixelMetric(PixelMetric metric, const QStyleOption* option = nullptr,
                    const QWidget* widget = nullptr) const override;
};

} // namespace kse
