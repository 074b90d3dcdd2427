// SPDX-License-Identifier: MIT
#include "widgets/TabOrder.h"

#include <QVariant>
#include <QWidget>

namespace kse {

namespace {

constexpr char mayBeTabStop[] = "mayBeTabStop";

/// Those of `widgets` and their children that take the focus at times, in the order of creation.
QList<QWidget*> tabStops(const QList<QWidget*>& widgets, const QWidget* window)
{
    QList<QWidget*> stops;
    for (QWidget* widget : widgets) {
        for (QWidget* inside : QList{widget} + widget->findChildren<QWidget*>()) {
            const bool isStop =
                (inside->focusPolicy() & Qt::TabFocus) || inside->property(mayBeTabStop).toBool();
            const bool isHere = inside->window() == window; // not in a drop-down list
            if (isStop && isHere && !inside->focusProxy()) {
                stops.append(inside);
            }
        }
    }
    return stops;
}

} // namespace

void setMayBeTabStop(QWidget& widget)
{
    widget.setProperty(mayBeTabStop, true);
}

void continueTabOrder(QWidget* before, const QList<QWidget*>& widgets)
{
    const QList<QWidget*> stops = tabStops(widgets, before->window());
    // Backwards, since Qt looks at every widget between one that it moves and the stop before that.
    for (auto stop = stops.crbegin(); stop != stops.crend(); ++stop) {
        const Qt::FocusPolicy policy = (*stop)->focusPolicy();
        (*stop)->setFocusPolicy(Qt::TabFocus); // else Qt refuses to move it
        QWidget::setTabOrder(before, *stop);
        (*stop)->setFocusPolicy(policy);
    }
}

QWidget* lastTabStop(QWidget& widget)
{
    const QList<QWidget*> stops = tabStops({&widget}, widget.window());
    return stops.isEmpty() ? nullptr : stops.constLast();
}

void setEnabledOrPass(QWidget& widget, bool enabled, QWidget& heir)
{
    if (!enabled && widget.window()->focusWidget() == &widget) {
        heir.setFocus();
    }
    widget.setEnabled(enabled);
}

} // namespace kse
