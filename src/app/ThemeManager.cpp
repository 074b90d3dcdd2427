// SPDX-License-Identifier: MIT
#include "app/ThemeManager.h"

#include "app/ThemeStyle.h"

#include <QApplication>
#include <QFontInfo>
#include <QPalette>
#include <QSettings>
#include <QStyleHints>
#include <QToolTip>

#include <algorithm>
#include <cmath>

using namespace Qt::StringLiterals;

namespace kse {

namespace {

constexpr QLatin1String themeKey("Appearance/Theme");
constexpr QLatin1String fontScaleKey("Appearance/FontScale");

struct RoleColour
{
    QPalette::ColorRole role;
    QRgb dark;
    QRgb light;
};

constexpr RoleColour roleColours[] = {
    {QPalette::Window, qRgb(45, 45, 48), qRgb(240, 240, 240)},
    {QPalette::WindowText, qRgb(228, 228, 228), qRgb(20, 20, 20)},
    {QPalette::Base, qRgb(30, 30, 32), qRgb(255, 255, 255)},
    {QPalette::AlternateBase, qRgb(39, 39, 42), qRgb(245, 245, 246)},
    {QPalette::ToolTipBase, qRgb(62, 62, 66), qRgb(255, 255, 235)},
    {QPalette::ToolTipText, qRgb(235, 235, 235), qRgb(20, 20, 20)},
    {QPalette::Text, qRgb(228, 228, 228), qRgb(20, 20, 20)},
    {QPalette::PlaceholderText, qRgb(140, 140, 145), qRgb(125, 125, 125)},
    {QPalette::Button, qRgb(60, 60, 64), qRgb(236, 236, 236)},
    {QPalette::ButtonText, qRgb(228, 228, 228), qRgb(20, 20, 20)},
    {QPalette::BrightText, qRgb(255, 90, 90), qRgb(200, 0, 0)},
    {QPalette::Link, qRgb(90, 160, 255), qRgb(0, 102, 204)},
    {QPalette::Highlight, qRgb(42, 130, 218), qRgb(48, 140, 198)},
    {QPalette::HighlightedText, qRgb(255, 255, 255), qRgb(255, 255, 255)},
    {QPalette::Light, qRgb(80, 80, 85), qRgb(255, 255, 255)},
    {QPalette::Midlight, qRgb(66, 66, 70), qRgb(227, 227, 227)},
    {QPalette::Mid, qRgb(38, 38, 41), qRgb(160, 160, 160)},
    {QPalette::Dark, qRgb(24, 24, 26), qRgb(160, 160, 160)},
    {QPalette::Shadow, qRgb(10, 10, 12), qRgb(105, 105, 105)},
};

constexpr RoleColour disabledColours[] = {
    {QPalette::WindowText, qRgb(128, 128, 132), qRgb(140, 140, 140)},
    {QPalette::Text, qRgb(128, 128, 132), qRgb(140, 140, 140)},
    {QPalette::ButtonText, qRgb(128, 128, 132), qRgb(140, 140, 140)},
    {QPalette::Highlight, qRgb(80, 80, 86), qRgb(190, 190, 190)},
};

QPalette createPalette(bool dark)
{
    QPalette palette;
    for (const RoleColour& colour : roleColours) {
        palette.setColor(QPalette::All, colour.role, dark ? colour.dark : colour.light);
    }
    for (const RoleColour& colour : disabledColours) {
        palette.setColor(QPalette::Disabled, colour.role, dark ? colour.dark : colour.light);
    }
    return palette;
}

// NaN compares false, so it becomes the lower limit, like a stored text that isn't a number.
double limitedScale(double scale)
{
    return scale > ThemeManager::minimumFontScale ? std::min(scale, ThemeManager::maximumFontScale)
                                                  : ThemeManager::minimumFontScale;
}

// A font whose size was set in pixels has no point size.
double pointSize(const QFont& font)
{
    return font.pointSizeF() > 0 ? font.pointSizeF() : QFontInfo(font).pointSizeF();
}

} // namespace

ThemeManager& ThemeManager::instance()
{
    // Never destroyed: its font must not be released after the application object is gone.
    static auto* const manager = new ThemeManager;
    return *manager;
}

void ThemeManager::init(bool loadStored)
{
    if (m_initialised) {
        return;
    }
    m_initialised = true;
    m_baseFont = QApplication::font();
    const QPalette system = QApplication::palette();
    m_systemIsDark =
        system.color(QPalette::WindowText).lightness() > system.color(QPalette::Window).lightness();
    QApplication::setStyle(new ThemeStyle);
    if (loadStored) {
        load();
    }
#if QT_VERSION >= QT_VERSION_CHECK(6, 5, 0)
    connect(QGuiApplication::styleHints(), &QStyleHints::colorSchemeChanged, this, [this] {
        if (m_mode == ThemeMode::System && !m_applying) {
            apply();
        }
    });
#endif
    apply();
}

void ThemeManager::setMode(ThemeMode mode, bool store)
{
    m_mode = mode;
    apply();
    if (store) {
        save();
    }
}

void ThemeManager::setFontScale(double scale, bool store)
{
    m_fontScale = limitedScale(scale);
    apply();
    if (store) {
        save();
    }
}

void ThemeManager::overrideMode(const QString& word)
{
    const QString mode = word.toLower();
    setMode(mode == "dark"_L1    ? ThemeMode::Dark
            : mode == "light"_L1 ? ThemeMode::Light
                                 : ThemeMode::System,
            false);
}

void ThemeManager::overrideFontScale(const QString& text)
{
    bool isNumber = false;
    const double scale = text.toDouble(&isNumber);
    if (isNumber && !std::isnan(scale)) {
        setFontScale(scale, false);
    }
}

void ThemeManager::step(double delta)
{
    setFontScale(std::round((m_fontScale + delta) * 20) / 20, true);
}

void ThemeManager::resetFontScale()
{
    setFontScale(defaultFontScale, true);
}

void ThemeManager::toggle()
{
    setMode(isDark() ? ThemeMode::Light : ThemeMode::Dark, true);
}

void ThemeManager::setSystemIsDark(bool isDark)
{
    if (m_systemIsDark != isDark) {
        m_systemIsDark = isDark;
        apply();
    }
}

bool ThemeManager::isDark() const
{
    if (m_mode != ThemeMode::System) {
        return m_mode == ThemeMode::Dark;
    }
#if QT_VERSION >= QT_VERSION_CHECK(6, 5, 0)
    return QGuiApplication::styleHints()->colorScheme() == Qt::ColorScheme::Dark;
#else
    return m_systemIsDark;
#endif
}

void ThemeManager::load()
{
    const QSettings settings;
    const int mode = settings.value(themeKey).toInt();
    m_mode = mode >= 0 && mode <= 2 ? static_cast<ThemeMode>(mode) : ThemeMode::System;
    m_fontScale = limitedScale(settings.value(fontScaleKey, defaultFontScale).toDouble());
}

void ThemeManager::save() const
{
    QSettings settings;
    settings.setValue(themeKey, static_cast<int>(m_mode));
    settings.setValue(fontScaleKey, m_fontScale);
}

void ThemeManager::apply()
{
    if (!m_initialised) {
        return;
    }
    m_applying = true;
#if QT_VERSION >= QT_VERSION_CHECK(6, 8, 0)
    QGuiApplication::styleHints()->setColorScheme(m_mode == ThemeMode::Dark ? Qt::ColorScheme::Dark
                                                  : m_mode == ThemeMode::Light
                                                      ? Qt::ColorScheme::Light
                                                      : Qt::ColorScheme::Unknown);
#endif
    const QPalette palette = createPalette(isDark());
    QApplication::setPalette(palette);
    QToolTip::setPalette(palette); // doesn't follow the application's
    QFont font = m_baseFont;
    font.setPointSizeF(pointSize(m_baseFont) * m_fontScale);
    QApplication::setFont(font);
    m_applying = false;
    emit changed();
}

} // namespace kse
