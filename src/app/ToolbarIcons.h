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

/// The icon in `normal`, also under the mouse, and in `disabled`, for `size` by `size` pixels
/// that are independent of the device. Painted, so that it follows the palette.
[[nodiscard]] QIcon makeToolbarIcon(ToolbarIconKind kind, const QColor& normal,
                                    const QColor& disabled, int size, qreal devicePixelRatio);

/// One picture of it on a transparent ground, at least 8 device pixels wide.
[[nodiscard]] QPixmap renderToolbarPixmap(ToolbarIconKind kind, const QColor& colour, int size,
                                          qreal devicePixelRatio);

/// Draws it with `painter` in a square from (0, 0) to (24, 24). Changes the painter's pen and
/// brush.
void drawToolbarGlyph(QPainter& painter, ToolbarIconKind kind, const QColor& colour);

} // namespace kse
