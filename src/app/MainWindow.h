// SPDX-License-Identifier: MIT
#pragma once

#include "schema/DeletePolicy.h"
#include "schema/SettingsSchema.h"
#include "session/SettingsStore.h"
#include "widgets/FittedWindow.h"

#include <QMessageBox>

#include <utility>

class QTabWidget;

namespace kse {

class AdBanner;
class AllSettingsView;
class BannerRow;
class CleanupView;
class CompareView;
class HealthView;
class MainMenuBar;
class MainToolBar;
class OpenEditor;
class OpenFileBox;
class PreferencesView;
class SearchView;
class SettingsModel;
class UnusedModulesView;

/// The program's one window. It owns the open file, the built-in tables and the tree model, and
/// carries out every command. Code that replaces nodes runs in `replaceTree`, so that no view keeps
/// a node that is gone.
class MainWindow : public FittedWindow
{
    Q_OBJECT

public:
    /// How messages that need no answer reach the user.
    enum class Messages {
        Boxes,         ///< modal boxes
        StandardError, ///< lines on standard error: nobody is there to close a box
    };

    /// Reads the built-in tables, opens the first settings file found and starts the poll.
    explicit MainWindow(Messages messages = Messages::Boxes);
    ~MainWindow() override;

    /// Opens `path` and drops pending changes without asking. A failure is told to the user; a
    /// file that can't be read leaves the open one as it is, one that doesn't parse leaves none.
    bool openFile(const QString& path);

    /// Lets the promotional strip choose what it shows, `delayMs` from now or, for 0, at once.
    void startBanner(bool allowNetwork, int delayMs);

    /// Renders the pages and dialogs of the open file to PNG files in `dir`, which is made if it
    /// doesn't exist; the preferences as `searchText` leaves them. Changes settings on the way and
    /// takes the changes back; never saves.
    void renderScreenshots(const QString& dir, const QString& searchText);

protected:
    bool event(QEvent* event) override;
    void closeEvent(QCloseEvent* event) override;

private slots:
    void onOpen();
    void onReload();
    bool onSave();
    void onRestoreBackup();
    void onRevertAll();
    void onEdited();
    void pollEnvironment();
    void onFindModule();
    void onUnusedModules();
    void onHealthCheck();
    void onAbout();
    void onManageBackups();
    void refreshToolbarIcons();
    void updateMinimumWidth();
    void updateStatusBarStyle();
    void onFileActivated(int index);
    void onThemeChanged();

private:
    void loadTables();
    void buildUi();
    QWidget* createFileRow();
    void createPages();
    void connectPages();
    void connectCommands();
    void createKeys();
    void connectTheme();
    void updateHeights();
    int leastWidth() const;

    void attachViews();
    void detachViews();

    /// Runs `operation`, which may replace or destroy nodes, while no view holds any.
    template <typename Operation>
    bool replaceTree(Operation&& operation)
    {
        detachViews();
        const bool done = std::forward<Operation>(operation)();
        attachViews();
        return done;
    }

    /// Calls `operation` with each page but the tree, which shows the model and holds no document,
    /// and the comparison, which also needs the file's path.
    template <typename Operation>
    void forEachPage(Operation&& operation)
    {
        operation(m_preferencesView);
        operation(m_searchView);
        operation(m_unusedModulesView);
        operation(m_healthView);
        operation(m_cleanupView);
    }

    void setPagesReadOnly();

    /// Whether a file is open; if not, a box titled `title` tells the user to open one.
    bool hasFile(const QString& title);

    /// Says why `path` can't be opened. If it is the open file, and gone, its newest readable
    /// backup is offered at once.
    void reportUnopened(const QString& path, const QString& error);
    void restoreFrom(const QString& backup);

    /// Whether pending changes may go: there are none, or the user says so. `tail` ends the text.
    bool confirmDiscard(const QString& tail);
    void rebuildFileBox();
    void refreshBanner();
    void refreshActions(qsizetype pending);
    void turnPage(int step);
    void revealNode(XsdtNode* node);
    void searchEverywhere(const QString& text);
    void deleteNode(XsdtNode* node);
    bool confirmDeletion(const QString& path, int values, const QString& reason);
    void report(QMessageBox::Icon icon, const QString& title, const QString& text,
                const QString& informativeText = {});
    void showRejection(const QString& reason);
    void showStatus(const QString& text, int milliseconds);

    /// Path of the open file; empty if none is open.
    QString openPath() const;
    qsizetype pendingCount() const;

    Messages m_messages;
    SettingsStore m_store;
    SettingsSchema m_schema;
    DeletePolicy m_policy;
    SettingsModel* m_model = nullptr;
    OpenEditor* m_openEditor = nullptr;
    QString m_said; ///< The last message in the status bar that is no status tip.
    PreferencesView* m_preferencesView = nullptr;
    CleanupView* m_cleanupView = nullptr;
    CompareView* m_compareView = nullptr;
    HealthView* m_healthView = nullptr;
    SearchView* m_searchView = nullptr;
    UnusedModulesView* m_unusedModulesView = nullptr;
    OpenFileBox* m_fileBox = nullptr;
    AllSettingsView* m_advancedPage = nullptr;
    QTabWidget* m_tabs = nullptr;
    BannerRow* m_banner = nullptr;
    MainToolBar* m_toolbar = nullptr;
    MainMenuBar* m_menuBar = nullptr;
    double m_lastFontScale = 0;
    AdBanner* m_adBanner = nullptr;
    bool m_running = false;
    bool m_staleOnDisk = false;
    bool m_dontAskDelete = false;
};

} // namespace kse
