// SPDX-License-Identifier: MIT
#pragma once

#include <QProxyStyle>

namespace kse {

/// The "Fusion" style with a little more calm: pages stand off the frame of their tab, on the
/// window's own colour; boxes to tick are as large as the text beside them and can be seen on a
/// dark ground too; arrows grow with the text; buttons and cells have room beside their text; what
/// stands beside a line edit is as high as it is.
class ThemeStyle : public QProxyStyle
{
public:
    ThemeStyle();

    using QProxyStyle::polish;
    void polish(QWidget* widget) override;
    void drawPrimitive(PrimitiveElement element, const QStyleOption* option, QPainter* painter,
                       const QWidget* widget = nullptr) const override;
    void drawControl(ControlElement element, const QStyleOption* option, QPainter* painter,
                     const QWidget* widget = nullptr) const override;
    void drawComplexControl(ComplexControl control, const QStyleOptionComplex* option,
                            QPainter* painter, const QWidget* widget = nullptr) const override;
    QRect subControlRect(ComplexControl control, const QStyleOptionComplex* option, SubControl part,
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

protected:
    /// Has combo boxes forget their least height with their font, which Qt keeps.
    bool eventFilter(QObject* object, QEvent* event) override;
};

} // namespace kse
