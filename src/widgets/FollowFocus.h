// SPDX-License-Identifier: MIT
#pragma once

#include <QApplication>
#include <QScrollArea>

namespace kse {

/// Has `area` scroll to what gets the focus in it by the keyboard. Qt 6.4 does so only if the focus
/// was in it before.
inline void followFocus(QScrollArea* area)
{
    QObject::connect(qApp, &QApplication::focusChanged, area,
                     [area](QWidget* before, QWidget* now) {
                         const bool isInside = before && area->widget()->isAncestorOf(now);
                         if (isInside && QApplication::mouseButtons() == Qt::NoButton) {
                             area->ensureWidgetVisible(now);
                         }
                     });
}

} // namespace kse
