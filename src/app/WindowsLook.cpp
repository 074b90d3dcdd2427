// SPDX-License-Identifier: MIT
#include "app/WindowsLook.h"

#include "app/ThemeManager.h"

#include <QGuiApplication>
#include <QPlatformSurfaceEvent>
#include <QSettings>
#include <QWindow>

#include <windows.h>

#include <dwmapi.h>

#include <cwchar>

using namespace Qt::StringLiterals;

namespace kse {

WindowsLook::WindowsLook(ThemeManager& manager)
    : m_manager(manager)
{
    readChoice();
    // Queued, because Qt sets the frames of the open windows after a change of colours, and leaves
    // them light unless Windows is dark too.
    connect(&manager, &ThemeManager::changed, this, &WindowsLook::colourFrames,
            Qt::QueuedConnection);
    QCoreApplication* application = QCoreApplication::instance();
    application->installEventFilter(this);
    application->installNativeEventFilter(this);
}

bool WindowsLook::eventFilter(QObject* watched, QEvent* event)
{
    if (event->type() == QEvent::PlatformSurface) {
        const auto* window = qobject_cast<QWindow*>(watched);
        const auto change = static_cast<QPlatformSurfaceEvent*>(event)->surfaceEventType();
        if (window && change == QPlatformSurfaceEvent::SurfaceCreated) {
            colourFrame(*window);
        }
    }
    return QObject::eventFilter(watched, event);
}

bool WindowsLook::nativeEventFilter(const QByteArray& /*type*/, void* message, qintptr* /*result*/)
{
    const auto* const native = static_cast<const MSG*>(message);
    const auto* const subject = reinterpret_cast<const wchar_t*>(native->lParam);
    if (native->message == WM_SETTINGCHANGE && subject &&
        std::wcscmp(subject, L"ImmersiveColorSet") == 0) {
        const auto follow = [this] {
            readChoice();
            colourFrames();
        };
        QMetaObject::invokeMethod(this, follow, Qt::QueuedConnection);
    }
    return false;
}

void WindowsLook::readChoice()
{
    const QSettings choice(u"HKEY_CURRENT_USER\\Software\\Microsoft\\Windows\\CurrentVersion\\"
                           "Themes\\Personalize"_s,
                           QSettings::NativeFormat);
    m_manager.setSystemIsDark(choice.value("AppsUseLightTheme"_L1, 1).toInt() == 0);
}

void WindowsLook::colourFrames() const
{
    const QWindowList windows = QGuiApplication::topLevelWindows();
    for (const QWindow* window : windows) {
        if (window->handle()) {
            colourFrame(*window);
        }
    }
}

void WindowsLook::colourFrame(const QWindow& window) const
{
    constexpr DWORD useImmersiveDarkMode = 20; // as documented; in Windows 10 from version 2004
    const BOOL isDark = m_manager.isDark();
    // Fails on older versions, whose frames stay as they are.
    DwmSetWindowAttribute(reinterpret_cast<HWND>(window.winId()), useImmersiveDarkMode, &isDark,
                          sizeof isDark);
}

} // namespace kse
