// SPDX-License-Identifier: MIT
#pragma once

#include <QGuiApplication>

namespace kse {

/// Shows the busy cursor for as long as it lives.
class WaitCursor
{
public:
    WaitCursor() { QGuiApplication::setOverrideCursor(Qt::WaitCursor); }
    ~WaitCursor() { QGuiApplication::restoreOverrideCursor(); }
    WaitCursor(const WaitCursor&) = delete;
    WaitCursor& operator=(const WaitCursor&) = delete;
};

} // namespace kse
