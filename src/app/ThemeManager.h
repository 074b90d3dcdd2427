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
    static constexpr double defaultFontScale = 1.25; ///< What the user reads as 100 %.

    /// The one instance; it lives to the end of the process.
    static ThemeManager& instance();

    /// Takes over the application's look; with `loadStored` as it was stored last. Needs the
    /// application object, and comes before the first window. A second call does nothing.
    void init(bool loadStored);

    /// Sets and applies; with `store` the next run starts with it, and with the other setting as
    /// it is now. The scale is kept within its limits.
    void setMode(ThemeMode mode, bool store);
    void setFontScale(double scale, bool store);

    /// The same for this run only, from the words of a command line. A theme of none means
    /// System; a scale that is no number changes nothing.
    void overrideMode(const QString& word);
    void overrideFontScale(const QString& text);

    /// Changes the scale by `delta`, to the nearest step of 0.05 within the limits, and stores it.
    void step(double delta);
    void resetFontScale();

    /// Goes to Light if dark is shown, else to Dark, and stores it.
    void toggle();

    ThemeMode mode() const { return m_mode; }
    double fontScale() const { return m_fontScale; }

    /// Whether the dark palette is shown.
    bool isDark() const;

    void save() const;
    void apply();

signals:
    /// After every `apply`, also one that changed nothing.
    void changed();

private:
    ThemeManager() = default;

    void load();

    ThemeMode m_mode = ThemeMode::System;
    double m_fontScale = defaultFontScale;
    QFont m_baseFont; ///< The application's font before any scaling.
    bool m_initialised = false;
    bool m_applying = false;
    bool m_systemIsDark = false; ///< As seen by `init`; for a Qt that doesn't report it.
};

} // namespace kse
