// SPDX-License-Identifier: MIT
#pragma once

#include <QObject>

class QWidget;

namespace kse {

/// Keeps the mouse wheel from changing a widget that doesn't have the focus. The wheel scrolls the
/// area around the widget instead.
class WheelGuard : public QObject
{
    Q_OBJECT

public:
    /// Guards `widget` for its whole life. From then on it takes the focus by Tab and click, but
    /// not by the wheel.
    static void install(QWidget* widget);

    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    using QObject::QObject;
};

} // namespace kse
