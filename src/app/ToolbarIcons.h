// SPDX-License-Identifier: MIT
#pragma once

#include <QColor>
#include <QIcon>
#include <QPixmap>

class QPainter;

namespace kse {

enum class ToolbarIconKind {
    Open = 0,
    Reload = 1,
    Save = 2,
    Revert = 3,
    Find = 4,
    Backups = 5,
    Restore = 6,
    Theme = 7,
    About = 8
};

/// The icon of `size` by `size` device-independent pixels, in the colour `normal`, also under the
/// mouse, or `disabled`. Icons are drawn, so that they can follow the palette.
[[nodiscard]] QIcon makeToolbarIcon(ToolbarIconKind kind, const QColor& normal,
                                    const QColor& disabled, int size, qreal devicePixelRatio);

/// The icon on a transparent background, at least 8 device pixels wide.
[[nodiscard]] QPixmap renderToolbarPixmap(ToolbarIconKind kind, const QColor& colour, int size,
                                          qreal devicePixelRatio);

/// Draws the icon with `painter` in a square from (0, 0) to (24, 24). Changes the painter's pen and
/// brush.
void drawToolbarGlyph(QPainter& painter, ToolbarIconKind kind, const QColor& colour);

} // namespace kse
