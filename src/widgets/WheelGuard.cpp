// SPDX-License-Identifier: MIT
#include "widgets/WheelGuard.h"

#include <QCoreApplication>
#include <QWheelEvent>
#include <QWidget>

namespace kse {

namespace {

/// Sends `wheel`, which was turned over `widget`, to its ancestors until one accepts it. Qt does so
/// for real events, but not for a copy.
void handOn(const QWidget& widget, const QWheelEvent& wheel)
{
    for (QWidget* above = widget.parentWidget(); above; above = above->parentWidget()) {
        QWheelEvent copy(above->mapFromGlobal(wheel.globalPosition()), wheel.globalPosition(),
                         wheel.pixelDelta(), wheel.angleDelta(), wheel.buttons(), wheel.modifiers(),
                         wheel.phase(), wheel.inverted(), wheel.source(), wheel.pointingDevice());
        if ((QCoreApplication::sendEvent(above, &copy) && copy.isAccepted()) || above->isWindow()) {
            return;
        }
    }
}

} // namespace

void WheelGuard::install(QWidget* widget)
{
    widget->setFocusPolicy(Qt::StrongFocus);
    widget->installEventFilter(new WheelGuard(widget));
}

bool WheelGuard::eventFilter(QObject* watched, QEvent* event)
{
    const auto* widget = qobject_cast<QWidget*>(watched);
    if (event->type() != QEvent::Wheel || !widget || widget->hasFocus()) {
        return false;
    }
    handOn(*widget, static_cast<const QWheelEvent&>(*event));
    return true;
}

} // namespace kse
