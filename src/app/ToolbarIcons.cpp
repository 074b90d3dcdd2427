// SPDX-License-Identifier: MIT
#include "app/ToolbarIcons.h"

#include <QPainter>
#include <QPainterPath>
#include <QPen>
#include <QPolygonF>

#include <algorithm>
#include <cmath>

namespace kse {

namespace {

void drawFolder(QPainter& painter, const QColor&)
{
    painter.drawPolygon(QPolygonF({{3, 6.5}, {9, 6.5}, {11, 9}, {21, 9}, {21, 19}, {3, 19}}));
}

void drawReload(QPainter& painter, const QColor&)
{
    painter.drawArc(QRectF(5, 5, 14, 14), 40 * 16, 290 * 16);
    painter.drawPolyline(QPolygonF({{17.4, 3.3}, {17.4, 7.5}, {13.2, 7.5}}));
}

void drawFloppy(QPainter& painter, const QColor&)
{
    painter.drawRoundedRect(QRectF(4, 4, 16, 16), 3, 3);
    painter.drawRoundedRect(QRectF(8.5, 4, 7, 4.5), 1, 1);
    painter.drawRoundedRect(QRectF(7, 12.5, 10, 7.5), 1, 1);
}

void drawRevert(QPainter& painter, const QColor&)
{
    QPainterPath line({4.5, 8.5});
    line.cubicTo(13.5, 7, 19.5, 11, 19.5, 19);
    painter.drawPath(line);
    painter.drawPolyline(QPolygonF({{8.3, 4.2}, {4.5, 8.5}, {9, 12.2}}));
}

void drawSearch(QPainter& painter, const QColor&)
{
    painter.drawEllipse(QPointF(10.3, 10.3), 5.6, 5.6);
    painter.drawLine(QPointF(14.6, 14.6), QPointF(20, 20));
}

void drawStack(QPainter& painter, const QColor&)
{
    painter.drawRoundedRect(QRectF(7, 4, 10, 4), 1.5, 1.5);
    painter.drawRoundedRect(QRectF(5, 10, 14, 4), 1.5, 1.5);
    painter.drawRoundedRect(QRectF(3, 16, 18, 4), 1.5, 1.5);
}

void drawRestore(QPainter& painter, const QColor&)
{
    QPainterPath tray({4, 14});
    tray.lineTo(4, 18);
    tray.quadTo(4, 20, 6, 20);
    tray.lineTo(18, 20);
    tray.quadTo(20, 20, 20, 18);
    tray.lineTo(20, 14);
    painter.drawPath(tray);
    painter.drawLine(QPointF(12, 15.5), QPointF(12, 4.5));
    painter.drawPolyline(QPolygonF({{8, 8.5}, {12, 4.5}, {16, 8.5}}));
}

void drawTheme(QPainter& painter, const QColor& colour)
{
    const QRectF circle(4, 4, 16, 16);
    painter.drawEllipse(circle);
    painter.setBrush(colour);
    painter.drawChord(circle, 90 * 16, 180 * 16);
}

void drawAbout(QPainter& painter, const QColor& colour)
{
    painter.drawEllipse(QPointF(12, 12), 8.5, 8.5);
    painter.drawLine(QPointF(12, 11), QPointF(12, 16.5));
    painter.setPen(QPen(colour, 2, Qt::SolidLine, Qt::RoundCap, Qt::RoundJoin));
    painter.drawPoint(QPointF(12, 7.8));
}

/// By `ToolbarIconKind`.
constexpr void (*glyphs[])(QPainter&, const QColor&) = {
    drawFolder, drawReload,  drawFloppy, drawRevert, drawSearch,
    drawStack,  drawRestore, drawTheme,  drawAbout,
};

} // namespace

QIcon makeToolbarIcon(ToolbarIconKind kind, const QColor& normal, const QColor& disabled, int size,
                      qreal devicePixelRatio)
{
    const QPixmap enabledPixmap = renderToolbarPixmap(kind, normal, size, devicePixelRatio);
    QIcon icon;
    icon.addPixmap(enabledPixmap, QIcon::Normal, QIcon::Off);
    icon.addPixmap(enabledPixmap, QIcon::Active, QIcon::Off);
    icon.addPixmap(renderToolbarPixmap(kind, disabled, size, devicePixelRatio), QIcon::Disabled,
                   QIcon::Off);
    return icon;
}

QPixmap renderToolbarPixmap(ToolbarIconKind kind, const QColor& colour, int size,
                            qreal devicePixelRatio)
{
    const int side = std::max(8, static_cast<int>(std::lround(size * devicePixelRatio)));
    QPixmap pixmap(side, side);
    pixmap.fill(Qt::transparent);
    pixmap.setDevicePixelRatio(devicePixelRatio);
    QPainter painter(&pixmap);
    painter.setRenderHints(QPainter::Antialiasing | QPainter::TextAntialiasing);
    painter.scale(size / 24.0, size / 24.0);
    drawToolbarGlyph(painter, kind, colour);
    return pixmap;
}

void drawToolbarGlyph(QPainter& painter, ToolbarIconKind kind, const QColor& colour)
{
    painter.setPen(QPen(colour, 1.4, Qt::SolidLine, Qt::RoundCap, Qt::RoundJoin));
    painter.setBrush(Qt::NoBrush);
    glyphs[static_cast<size_t>(kind)](painter, colour);
}

} // namespace kse
