// SPDX-License-Identifier: MIT
#include "views/WheelGuard.h"

#include <QEvent>
#include <QWidget>

namespace kse {

void WheelGuard::install(QWidget* widget)
{
    widget->setFocusPolicy(Qt::StrongFocus);
    widget->installEventFilter(new WheelGuard(widget));
}

bool WheelGuard::eventFilter(QObject* watched, QEvent* event)
{
    const auto* widget = qobject_cast<QWidget*>(watched);
    return event->type() == QEvent::Wheel && widget && !widget->hasFocus();
}

} // namespace kse
