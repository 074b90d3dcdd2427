// SPDX-License-Identifier: MIT
#pragma once

#include <QAccessible>
#include <QWidget>

namespace kse {

/// Has a screen reader say `text`, which `widget` shows where the focus isn't.
inline void announce(QWidget* widget, const QString& text)
{
#if QT_VERSION >= QT_VERSION_CHECK(6, 8, 0)
    QAccessibleAnnouncementEvent event(widget->window(), text);
    QAccessible::updateAccessibility(&event);
#else
    Q_UNUSED(widget) // Qt only reports that the label or the status bar has another text
    Q_UNUSED(text)
#endif
}

} // namespace kse
