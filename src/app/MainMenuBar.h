// SPDX-License-Identifier: MIT
#pragma once

#include <QMenuBar>

namespace kse {

/// The commands that the main window carries out.
struct MainCommands
{
    QAction* open = nullptr;
    QAction* reload = nullptr;
    QAction* findModule = nullptr;
    QAction* unusedModules = nullptr;
    QAction* healthCheck = nullptr;
    QAction* save = nullptr;
    QAction* restore = nullptr;
    QAction* backups = nullptr;
    QAction* quit = nullptr;
    QAction* revert = nullptr;
    QAction* toggleTheme = nullptr;
    QAction* expandAll = nullptr;
    QAction* collapseAll = nullptr;
    QAction* about = nullptr;
};

/// The menus of the main window. Themes, text sizes and the guide work by themselves; the window
/// connects its commands.
class MainMenuBar : public QMenuBar
{
    Q_OBJECT

public:
    /// `toggleToolBar` shows or hides the toolbar. It isn't owned.
    MainMenuBar(QAction* toggleToolBar, QWidget* window);

    const MainCommands& commands() const { return m_commands; }

private:
    void createFileMenu();
    void createEditMenu();
    void createViewMenu(QAction* toggleToolBar);
    void createHelpMenu();

    MainCommands m_commands;
};

} // namespace kse
