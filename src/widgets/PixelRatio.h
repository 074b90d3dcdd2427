// SPDX-License-Identifier: MIT
#pragma once

#include <QEvent>

namespace kse {

/// Whether `event` tells a widget that its device pixel ratio may have changed.
inline bool changesPixelRatio(const QEvent& event)
{
#if QT_VERSION >= QT_VERSION_CHECK(6, 6, 0)
    return event.type() == QEvent::DevicePixelRatioChange;
#else
    return event.type() == QEvent::ScreenChangeInternal;
#endif
}

} // namespace kse
