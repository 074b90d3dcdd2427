// SPDX-License-Identifier: MIT
#include "app/MainMenuBar.h"

#include "app/ThemeManager.h"
#include "app/UserGuide.h"
#include "widgets/Named.h"

#include <QActionGroup>
#include <QApplication>

using namespace Qt::StringLiterals;

namespace kse {

namespace {

/// Ctrl+= is how Ctrl++ is typed on many keyboards; where the platform binds it to zooming in
/// already, naming it twice would make it ambiguous, and it would do nothing.
QList<QKeySequence> zoomInKeys()
{
    QList<QKeySequence> keys = QKeySequence::keyBindings(QKeySequence::ZoomIn);
    const QKeySequence equal(Qt::CTRL | Qt::Key_Equal);
    if (!keys.contains(equal)) {
        keys.append(equal);
    }
    return keys;
}

QAction* addCommand(QMenu* menu, const QString& name, const QString& text,
                    QKeySequence::StandardKey key = QKeySequence::UnknownKey)
{
    QAction* action = named(name, menu->addAction(text));
    action->setShortcuts(key);
    return action;
}

} // namespace

MainMenuBar::MainMenuBar(QAction* toggleToolBar, QWidget* window)
    : QMenuBar(window)
{
    createFileMenu();
    createEditMenu();
    createViewMenu(toggleToolBar);
    createHelpMenu();
}

void MainMenuBar::createFileMenu()
{
    QMenu* menu = addMenu(tr("&File"));
    m_commands.open =
        addCommand(menu, u"actOpen"_s, tr("&Open settings file..."), QKeySequence::Open);
    m_commands.reload =
        addCommand(menu, u"actReload"_s, tr("&Reload from disk"), QKeySequence::Refresh);
    menu->addSeparator();
    m_commands.findModule = addCommand(menu, u"actFindModule"_s, tr("Find &module data..."));
    m_commands.findModule->setShortcut(Qt::CTRL | Qt::Key_M);
    m_commands.findModule->setStatusTip(tr("Look up everything the file records about one module"));
    m_commands.unusedModules = addCommand(menu, u"actUnused"_s, tr("&Unused module data"));
    m_commands.unusedModules->setStatusTip(
        tr("Modules with saved data that are no longer in PixInsight's module list"));
    m_commands.healthCheck = addCommand(menu, u"actHealth"_s, tr("Run &health check"));
    m_commands.healthCheck->setStatusTip(tr("Look for settings that are probably wrong"));
    menu->addSeparator();
    m_commands.save = addCommand(menu, u"actSave"_s, tr("&Save changes..."), QKeySequence::Save);
    m_commands.save->setStatusTip(tr("Review the pending changes, then save"));
    m_commands.restore = addCommand(menu, u"actRestore"_s, tr("Restore &backup..."));
    m_commands.backups = addCommand(menu, u"actBackups"_s, tr("&Manage backups..."));
    menu->addSeparator();
    m_commands.quit = addCommand(menu, u"actQuit"_s, tr("&Quit"), QKeySequence::Quit);
    m_commands.quit->setMenuRole(QAction::QuitRole);
}

void MainMenuBar::createEditMenu()
{
    QMenu* menu = addMenu(tr("&Edit"));
    m_commands.revert = addCommand(menu, u"actRevert"_s, tr("Revert &all changes"));
    menu->addSeparator();

    QMenu* themes = menu->addMenu(tr("&Theme"));
    auto* group = new QActionGroup(this);
    ThemeManager* theme = &ThemeManager::instance();
    const auto add = [themes, group, theme](ThemeMode mode, const QString& text) {
        QAction* action =
            themes->addAction(text, theme, [theme, mode] { theme->setMode(mode, true); });
        action->setCheckable(true);
        action->setChecked(theme->mode() == mode);
        group->addAction(action);
        connect(theme, &ThemeManager::changed, action, [theme, mode, action] {
            if (theme->mode() == mode) {
                action->setChecked(true);
            }
        });
    };
    add(ThemeMode::Light, tr("&Light"));
    add(ThemeMode::Dark, tr("&Dark"));
    add(ThemeMode::System, tr("Follow &system"));
    themes->addSeparator();
    m_commands.toggleTheme = addCommand(themes, u"actToggleTheme"_s, tr("Toggle light/dark"));
    m_commands.toggleTheme->setShortcut(Qt::CTRL | Qt::SHIFT | Qt::Key_D);
    connect(m_commands.toggleTheme, &QAction::triggered, theme, &ThemeManager::toggle);
}

void MainMenuBar::createViewMenu(QAction* toggleToolBar)
{
    QMenu* menu = addMenu(tr("&View"));
    m_commands.expandAll = addCommand(menu, u"actExpandAll"_s, tr("&Expand all"));
    m_commands.collapseAll = addCommand(menu, u"actCollapseAll"_s, tr("&Collapse all"));
    menu->addSeparator();
    ThemeManager* theme = &ThemeManager::instance();
    menu->addAction(tr("&Larger text"), theme, [theme] { theme->step(0.1); })
        ->setShortcuts(zoomInKeys());
    menu->addAction(tr("&Smaller text"), theme, [theme] { theme->step(-0.1); })
        ->setShortcuts(QKeySequence::ZoomOut);
    menu->addAction(tr("&Default text size"), theme, &ThemeManager::resetFontScale)
        ->setShortcut(Qt::CTRL | Qt::Key_0);
    menu->addSeparator();
    menu->addAction(toggleToolBar);
    toggleToolBar->setText(tr("&Toolbar"));
}

void MainMenuBar::createHelpMenu()
{
    QMenu* menu = addMenu(tr("&Help"));
    menu->addAction(tr("&User Guide"), this, &showUserGuide);
    menu->addSeparator();
    m_commands.about = addCommand(menu, u"actAbout"_s, tr("&About Kestrane Settings Editor"));
    m_commands.about->setMenuRole(QAction::AboutRole);
    QAction* aboutQt = menu->addAction(tr("About &Qt"));
    aboutQt->setMenuRole(QAction::AboutQtRole);
    connect(aboutQt, &QAction::triggered, qApp, &QApplication::aboutQt, Qt::QueuedConnection);
}

} // namespace kse
