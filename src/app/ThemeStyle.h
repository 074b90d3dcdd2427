// SPDX-License-Identifier: MIT
#pragma once

#include <QProxyStyle>

namespace kse {

/// The "Fusion" style, a little calmer. Pages have a margin inside their tab and the window's
/// background. Check boxes and radio buttons grow with the text and have an outline on a dark
/// background too. Arrows grow with the text. Buttons and cells have more room around their text,
/// and buttons and check boxes are at least as high as a line edit. In a right-to-left layout each
/// text keeps its own direction.
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
    void drawItemText(QPainter* painter, const QRect& rect, int flags, const QPalette& palette,
                      bool enabled, const QString& text,
                      QPalette::ColorRole role = QPalette::NoRole) const override;
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
    /// Makes combo boxes compute their minimum height, which Qt caches, again for a new font.
    bool eventFilter(QObject* object, QEvent* event) override;
};

} // namespace kse
