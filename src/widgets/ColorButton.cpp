// SPDX-License-Identifier: MIT
#include "widgets/ColorButton.h"

#include "widgets/PixelRatio.h"

#include <QColorDialog>
#include <QPainter>
#include <QPixmap>
#include <QPointer>

using namespace Qt::StringLiterals;

namespace kse {

namespace {

constexpr QSize swatchSize(36, 16);

/// A checkerboard behind the colour shows how transparent it is.
QPixmap swatch(const QColor& color, qreal devicePixelRatio)
{
    constexpr QColor darkGrey(200, 200, 200);
    constexpr QColor lightGrey(250, 250, 250);

    QPixmap pixmap(swatchSize * devicePixelRatio);
    pixmap.setDevicePixelRatio(devicePixelRatio);
    pixmap.fill(darkGrey);
    const auto [width, height] = std::pair(swatchSize.width(), swatchSize.height());
    QPainter painter(&pixmap);
    painter.fillRect(0, 0, width / 2, height / 2, lightGrey);
    painter.fillRect(width / 2, height / 2, width / 2, height / 2, lightGrey);
    painter.fillRect(0, 0, width, height, color);
    painter.setPen(QColor(90, 90, 90));
    painter.drawRect(0, 0, width - 1, height - 1);
    return pixmap;
}

} // namespace

ColorButton::ColorButton(QWidget* parent)
    : QPushButton(parent)
{
    setMinimumWidth(150);
    setSizePolicy(QSizePolicy::Fixed, QSizePolicy::Fixed);
    setArgb(0);
    connect(this, &QPushButton::clicked, this, &ColorButton::onClicked);
}

void ColorButton::setArgb(quint32 argb)
{
    m_argb = argb;
    drawSwatch();
    setText(u"#%1"_s.arg(QString::number(argb, 16).toUpper().rightJustified(8, u'0')));
}

bool ColorButton::event(QEvent* event)
{
    if (event->type() == QEvent::Polish || changesPixelRatio(*event)) {
        drawSwatch();
    }
    return QPushButton::event(event);
}

void ColorButton::drawSwatch()
{
    setIcon(swatch(QColor::fromRgba(m_argb), devicePixelRatio()));
    setIconSize(swatchSize);
}

void ColorButton::onClicked()
{
    const QPointer<ColorButton> self(this);
    const QColor color = QColorDialog::getColor(QColor::fromRgba(m_argb), window(),
                                                tr("Choose color"), QColorDialog::ShowAlphaChannel);
    if (self && color.isValid()) {
        emit colorPicked(color.rgba());
    }
}

} // namespace kse
