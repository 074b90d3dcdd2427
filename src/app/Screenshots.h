// SPDX-License-Identifier: MIT
#pragma once

#include <QCoreApplication>
#include <QString>

class QTabWidget;
class QWidget;

namespace kse {

class SettingsModel;
class SettingsSchema;
class SettingsStore;

/// Draws the pages and dialogs of a window into PNG files. It uses the window as somebody at the
/// screen would, and finds what it needs of it by type and object name.
class Screenshots
{
    Q_DECLARE_TR_FUNCTIONS(Screenshots)

public:
    /// Draws `window`, whose open file is that of `store`, into `dir`. Owns none of them.
    Screenshots(QWidget* window, SettingsStore& store, const SettingsSchema& schema,
                const QString& dir);

    /// Makes the folder and all pictures; those of the preferences as `searchText` leaves them.
    /// Changes settings on the way and takes the changes back; never saves.
    void render(const QString& searchText);

private:
    void grabPreferences(const QString& searchText);
    void grabSearch();
    void grabUnusedModules();
    void grabCleanup();
    void grabComparison();
    void grabHealth();
    void grabDialogs();
    void grabTree();
    void grab(QWidget& widget, const QString& name);

    QWidget* m_window = nullptr;
    SettingsStore& m_store;
    const SettingsSchema& m_schema;
    QString m_dir;
    SettingsModel* m_model = nullptr;
    QTabWidget* m_tabs = nullptr;
};

} // namespace kse
