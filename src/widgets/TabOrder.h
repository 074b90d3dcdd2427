// SPDX-License-Identifier: MIT
#pragma once

#include <QList>

class QWidget;

namespace kse {

/// Tells `continueTabOrder` that `widget` takes the focus at some times and not at others, so that
/// it has its place in the order whatever its focus policy is now.
void setMayBeTabStop(QWidget& widget);

/// Has Tab go from `before` through `widgets` and what is in them, in the order in which it was
/// made; for what is made later than its neighbours, since Qt puts a new widget last in the whole
/// window. Returns the last that takes the focus, or `before` if none does.
QWidget* continueTabOrder(QWidget* before, const QList<QWidget*>& widgets);

/// Enables or disables `widget`. If it thereby loses the focus of its window, `heir` gets it: left
/// to Qt it would go to whatever is next, which may be another command.
void setEnabledOrPass(QWidget& widget, bool enabled, QWidget& heir);

} // namespace kse
