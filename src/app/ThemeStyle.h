// SPDX-License-Identifier: MIT
#pragma once

#include <QProxyStyle>

namespace kse {

/// The "Fusion" style with a little more calm: pages stand off the frame of their tab, on the
/// window's own colour; boxes to tick are as large as the text beside them and can be seen on a
/// dark ground too; buttons and cells have room beside their text; what stands beside a line edit
/// is as high as it is.
class ThemeStyle : public QProxyStyle
{
public:
    ThemeStyle();

    void drawPrimitive(PrimitiveElement element, const QStyleOption* option, QPainter* painter,
                       const QWidget* widget = nullptr) const override;
    void drawControl(ControlElement element, const QStyleOption* option, QPainter* painter,
                     const QWidget* widget = nullptr) const override;
    int pixelMetric(PixelMetric metric, const QStyleOption* option = nullptr,
                    const QWidget* widget = nullptr) const override;
    QSize sizeFromContents(ContentsType type, const QStyleOption* option, const QSize& contents,
                           const QWidget* widget = nullptr) const override;
    int styleHint(StyleHint hint, const QStyleOption* option = nullptr,
                  const QWidget* widget = nullptr,
                  QStyleHintReturn* returnData = nullptr) const override;
    QRect subElementRect(SubElement element, const QStyleOption* option,
                         const QWidget* widget = nullptr) const override;
};

} // namespace kse
