// SPDX-License-Identifier: MIT
#pragma once

#include <QCoreApplication>
#include <QString>

class QTabWidget;
class QWidget;

namespace kse {

class SettingsModel;
class SettingsSchema;
struct SettingsStore;

/// Saves the pages and dialogs of a window as PNG files. It drives the window from outside and
/// finds its widgets by type and object name.
class Screenshots
{
    Q_DECLARE_TR_FUNCTIONS(Screenshots)

public:
    /// Draws `window`, which shows the file of `store`, into the folder `dir`. Owns neither window,
    /// store nor schema; they must outlive it.
    Screenshots(QWidget* window, SettingsStore& store, const SettingsSchema& schema,
                const QString& dir);

    /// Makes the folder and all pictures. The Preferences pages are filtered by `searchText`.
    /// Changes settings on the way and reverts them; never saves.
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
