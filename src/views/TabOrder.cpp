// SPDX-License-Identifier: MIT
#include "views/TabOrder.h"

#include <QWidget>

namespace kse {

QWidget* continueTabOrder(QWidget* before, const QList<QWidget*>& widgets)
{
    QList<QWidget*> stops;
    for (QWidget* widget : widgets) {
        for (QWidget* inside : QList{widget} + widget->findChildren<QWidget*>()) {
            if ((inside->focusPolicy() & Qt::TabFocus) && !inside->focusProxy()) {
                stops.append(inside);
            }
        }
    }
    // Backwards, since Qt looks at every widget between one that it moves and the stop before that.
    for (auto stop = stops.crbegin(); stop != stops.crend(); ++stop) {
        QWidget::setTabOrder(before, *stop);
    }
    return stops.isEmpty() ? before : stops.constLast();
}

} // namespace kse
