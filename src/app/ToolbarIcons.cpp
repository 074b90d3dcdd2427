// SPDX-License-Identifier: MIT
#include "app/ToolbarIcons.h"

#include <QPainter>
#include <QPainterPath>
#include <QPen>
#include <QPolygonF>

#include <algorithm>
#include <cmath>

namespace kse {

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
    switch (kind) {
    case ToolbarIconKind::Open:
        painter.drawPolygon(QPolygonF({{3, 6.5}, {9, 6.5}, {11, 9}, {21, 9}, {21, 19}, {3, 19}}));
        break;
    case ToolbarIconKind::Reload:
        painter.drawArc(QRectF(5, 5, 14, 14), 40 * 16, 290 * 16);
        painter.drawPolyline(QPolygonF({{17.4, 3.3}, {17.4, 7.5}, {13.2, 7.5}}));
        break;
    case ToolbarIconKind::Save:
        painter.drawRoundedRect(QRectF(4, 4, 16, 16), 3, 3);
        painter.drawRoundedRect(QRectF(8.5, 4, 7, 4.5), 1, 1);
        painter.drawRoundedRect(QRectF(7, 12.5, 10, 7.5), 1, 1);
        break;
    case ToolbarIconKind::Revert: {
        QPainterPath line({4.5, 8.5});
        line.cubicTo(13.5, 7, 19.5, 11, 19.5, 19);
        painter.drawPath(line);
        painter.drawPolyline(QPolygonF({{8.3, 4.2}, {4.5, 8.5}, {9, 12.2}}));
        break;
    }
    case ToolbarIconKind::Find:
        painter.drawEllipse(QPointF(10.3, 10.3), 5.6, 5.6);
        painter.drawLine(QPointF(14.6, 14.6), QPointF(20, 20));
        break;
    case ToolbarIconKind::Backups:
        painter.drawRoundedRect(QRectF(7, 4, 10, 4), 1.5, 1.5);
        painter.drawRoundedRect(QRectF(5, 10, 14, 4), 1.5, 1.5);
        painter.drawRoundedRect(QRectF(3, 16, 18, 4), 1.5, 1.5);
        break;
    case ToolbarIconKind::Restore: {
        QPainterPath tray({4, 14});
        tray.lineTo(4, 18);
        tray.quadTo(4, 20, 6, 20);
        tray.lineTo(18, 20);
        tray.quadTo(20, 20, 20, 18);
        tray.lineTo(20, 14);
        painter.drawPath(tray);
        painter.drawLine(QPointF(12, 15.5), QPointF(12, 4.5));
        painter.drawPolyline(QPolygonF({{8, 8.5}, {12, 4.5}, {16, 8.5}}));
        break;
    }
    case ToolbarIconKind::Theme: {
        const QRectF circle(4, 4, 16, 16);
        painter.drawEllipse(circle);
        painter.setBrush(colour);
        painter.drawChord(circle, 90 * 16, 180 * 16);
        break;
    }
    case ToolbarIconKind::About:
        painter.drawEllipse(QPointF(12, 12), 8.5, 8.5);
        painter.drawLine(QPointF(12, 11), QPointF(12, 16.5));
        painter.setPen(QPen(colour, 2, Qt::SolidLine, Qt::RoundCap, Qt::RoundJoin));
        painter.drawPoint(QPointF(12, 7.8));
        break;
    }
}

} // namespace kse
