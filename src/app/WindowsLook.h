// SPDX-License-Identifier: MIT
#pragma once

#include <QAbstractNativeEventFilter>
#include <QObject>

class QWindow;

namespace kse {

class ThemeManager;

/// What Windows' own look asks of the program: the frame of each window is as dark as the theme,
/// and the theme "System" follows Windows' choice, which Qt before 6.5 doesn't report. Works as
/// long as it lives. Windows only.
class WindowsLook : public QObject, public QAbstractNativeEventFilter
{
public:
    /// `manager` has its look already, and outlives this.
    explicit WindowsLook(ThemeManager& manager);

    bool eventFilter(QObject* watched, QEvent* event) override;
    bool nativeEventFilter(const QByteArray& type, void* message, qintptr* result) override;

private:
    void readChoice();
    void colourFrames() const;
    void colourFrame(const QWindow& window) const;

    ThemeManager& m_manager;
};

} // namespace kse
