// SPDX-License-Identifier: MIT
#pragma once

#include <QFont>
#include <QObject>

namespace kse {

enum class ThemeMode : qint32 { System = 0, Light = 1, Dark = 2 };

/// The look of the whole program: style, palette and text scale of the application object.
/// Nothing happens before `init`. GUI thread only.
class ThemeManager : public QObject
{
    Q_OBJECT

public:
    static constexpr double minimumFontScale = 0.8;
    static constexpr double maximumFontScale = 2.2;
    static constexpr double defaultFontScale = 1.25; ///< Shown to the user as 100 %.

    /// The one instance; it lives to the end of the process.
    static ThemeManager& instance();

    /// Takes over the application's look, with the stored settings if `loadStored`. Must be called
    /// after the application object and before the first window is made. A second call does
    /// nothing.
    void init(bool loadStored);

    /// Sets and applies one of the two settings; with `store` both are stored for the next run.
    /// The scale is clamped to its limits.
    void setMode(ThemeMode mode, bool store);
    void setFontScale(double scale, bool store);

    /// The same for this run only, with a word from the command line. An unknown theme means
    /// System; a scale that isn't a number changes nothing.
    void overrideMode(const QString& word);
    void overrideFontScale(const QString& text);

    /// Changes the scale by `delta`, to a multiple of 0.05 within the limits, and stores it.
    void step(double delta);
    void resetFontScale();

    /// Switches to Light if dark is shown, otherwise to Dark, and stores it.
    void toggle();

    /// Tells whether the desktop prefers dark programs. Newer versions of Qt than 6.4 know it.
    void setSystemIsDark(bool isDark);

    ThemeMode mode() const { return m_mode; }
    double fontScale() const { return m_fontScale; }

    /// Whether the dark palette is shown.
    bool isDark() const;

    void save() const;
    void apply();

signals:
    /// Emitted after every `apply`, even if nothing changed.
    void changed();

private:
    ThemeManager() = default;

    void load();

    ThemeMode m_mode = ThemeMode::System;
    double m_fontScale = defaultFontScale;
    QFont m_baseFont; ///< The application's font before any scaling.
    bool m_initialised = false;
    bool m_applying = false;
    bool m_systemIsDark = false; ///< For versions of Qt that don't report it.
};

} // namespace kse
