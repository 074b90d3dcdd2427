// SPDX-License-Identifier: MIT
#pragma once

#include <QList>

class QWidget;

namespace kse {

/// Marks `widget` for `continueTabOrder` as one that takes the focus at times. It gets its place in
/// the order even if its focus policy is `Qt::NoFocus` now.
void setMayBeTabStop(QWidget& widget);

/// Makes Tab go from `before` through `widgets` and their children, in the order of creation. For
/// widgets that are created later than their neighbours: Qt puts a new one last in the whole
/// window.
void continueTabOrder(QWidget* before, const QList<QWidget*>& widgets);

/// The last widget in `widget`, or itself, that takes the focus at times; null if there is none.
QWidget* lastTabStop(QWidget& widget);

/// Enables or disables `widget`. If that takes the focus from it, `heir` gets the focus: Qt would
/// give it to the next widget, which may be another command.
void setEnabledOrPass(QWidget& widget, bool enabled, QWidget& heir);

} // namespace kse
