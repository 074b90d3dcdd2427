// SPDX-License-Identifier: MIT
#pragma once

#include <QObject>

class QWidget;

namespace kse {

/// Keeps a turn of the mouse wheel from changing a widget that doesn't have the focus: what holds
/// the widget scrolls instead.
class WheelGuard : public QObject
{
    Q_OBJECT

public:
    /// Guards `widget`, which then takes the focus by Tab and click but not by wheel, for as
    /// long as it lives.
    static void install(QWidget* widget);

    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    using QObject::QObject;
};

} // namespace kse
