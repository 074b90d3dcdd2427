// SPDX-License-Identifier: MIT
#include "app/MainWindow.h"

#include "app/AboutDialog.h"
#include "app/MainToolBar.h"
#include "app/OpenEditor.h"
#include "app/ThemeManager.h"
#include "app/UserGuide.h"
#include "app/WaitCursor.h"
#include "session/DurableFile.h"
#include "session/PixInsightEnv.h"
#include "session/dialogs/BackupsDialog.h"
#include "session/dialogs/ReviewDialog.h"
#include "views/cleanup/UnusedModulesView.h"
#include "views/health/HealthView.h"
#include "views/model/SettingsModel.h"
#include "views/model/TreeGuard.h"
#include "views/search/ModuleSearch.h"
#include "views/search/ModuleSearchDialog.h"
#include "views/search/SearchView.h"
#include "views/tree/AllSettingsView.h"
#include "widgets/MessageBox.h"

#include <QActionGroup>
#include <QApplication>
#include <QCloseEvent>
#include <QDateTime>
#include <QFileInfo>
#include <QInputDialog>
#include <QMenuBar>
#include <QShortcut>
#include <QTabWidget>

using namespace Qt::StringLiterals;

namespace kse {

namespace {

/// Ctrl+= is how Ctrl++ is typed on many keyboards; where the platform binds it to zooming in
/// already, naming it twice would make it ambiguous and dead.
QList<QKeySequence> zoomInKeys()
{
    QList<QKeySequence> keys = QKeySequence::keyBindings(QKeySequence::ZoomIn);
    const QKeySequence equal(Qt::CTRL | Qt::Key_Equal);
    if (!keys.contains(equal)) {
        keys.append(equal);
    }
    return keys;
}

/// Appends an action that calls `slot` of `receiver` to `menu`.
template <typename Receiver, typename Slot>
QAction* addCommand(QMenu* menu, const QString& name, const QString& text, Receiver* receiver,
                    Slot slot)
{
    QAction* action = menu->addAction(text);
    action->setObjectName(name);
    QObject::connect(action, &QAction::triggered, receiver, slot);
    return action;
}

} // namespace

void MainWindow::createFileMenu()
{
    QMenu* menu = menuBar()->addMenu(tr("&File"));
    m_actOpen =
        addCommand(menu, u"actOpen"_s, tr("&Open settings file..."), this, &MainWindow::onOpen);
    m_actOpen->setShortcuts(QKeySequence::Open);
    m_actReload =
        addCommand(menu, u"actReload"_s, tr("&Reload from disk"), this, &MainWindow::onReload);
    m_actReload->setShortcuts(QKeySequence::Refresh);
    menu->addSeparator();
    m_actFindModule = addCommand(menu, u"actFindModule"_s, tr("Find &module data..."), this,
                                 &MainWindow::onFindModule);
    m_actFindModule->setShortcut(Qt::CTRL | Qt::Key_M);
    m_actFindModule->setStatusTip(tr("Look up everything the file records about one module"));
    addCommand(menu, u"actUnused"_s, tr("&Unused module data"), this, &MainWindow::onUnusedModules)
        ->setStatusTip(
            tr("Modules with saved data that are no longer in PixInsight's module list"));
    addCommand(menu, u"actHealth"_s, tr("Run &health check"), this, &MainWindow::onHealthCheck)
        ->setStatusTip(tr("Look for settings that are probably wrong"));
    menu->addSeparator();
    m_actSave = addCommand(menu, u"actSave"_s, tr("&Save changes..."), this, &MainWindow::onSave);
    m_actSave->setShortcuts(QKeySequence::Save);
    m_actSave->setStatusTip(tr("Review the pending changes, then save"));
    m_actRestore = addCommand(menu, u"actRestore"_s, tr("Restore &backup..."), this,
                              &MainWindow::onRestoreBackup);
    m_actBackups = addCommand(menu, u"actBackups"_s, tr("&Manage backups..."), this,
                              &MainWindow::onManageBackups);
    menu->addSeparator();
    QAction* quit = menu->addAction(tr("&Quit"), this, &QWidget::close);
    quit->setShortcuts(QKeySequence::Quit);
    quit->setMenuRole(QAction::QuitRole);
}

QAction* MainWindow::createEditMenu()
{
    QMenu* menu = menuBar()->addMenu(tr("&Edit"));
    m_actRevert =
        addCommand(menu, u"actRevert"_s, tr("Revert &all changes"), this, &MainWindow::onRevertAll);
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
    QAction* toggleTheme = addCommand(themes, u"actToggleTheme"_s, tr("Toggle light/dark"), theme,
                                      &ThemeManager::toggle);
    toggleTheme->setShortcut(Qt::CTRL | Qt::SHIFT | Qt::Key_D);
    return toggleTheme;
}

void MainWindow::createViewMenu()
{
    QMenu* menu = menuBar()->addMenu(tr("&View"));
    menu->addAction(tr("&Expand all"), m_advancedPage, &AllSettingsView::expandAll);
    menu->addAction(tr("&Collapse all"), m_advancedPage, &AllSettingsView::resetExpansion);
    menu->addSeparator();
    ThemeManager* theme = &ThemeManager::instance();
    menu->addAction(tr("&Larger text"), theme, [theme] { theme->step(0.1); })
        ->setShortcuts(zoomInKeys());
    menu->addAction(tr("&Smaller text"), theme, [theme] { theme->step(-0.1); })
        ->setShortcuts(QKeySequence::ZoomOut);
    menu->addAction(tr("&Default text size"), theme, &ThemeManager::resetFontScale)
        ->setShortcut(Qt::CTRL | Qt::Key_0);
    menu->addSeparator();
    menu->addAction(m_toolbar->toggleViewAction());
    m_toolbar->toggleViewAction()->setText(tr("&Toolbar"));
}

QAction* MainWindow::createHelpMenu()
{
    QMenu* menu = menuBar()->addMenu(tr("&Help"));
    menu->addAction(tr("&User Guide"), this, &showUserGuide);
    menu->addSeparator();
    QAction* about = addCommand(menu, u"actAbout"_s, tr("&About Kestrane Settings Editor"), this,
                                &MainWindow::onAbout);
    about->setMenuRole(QAction::AboutRole);
    menu->addAction(tr("About &Qt"), qApp, &QApplication::aboutQt)
        ->setMenuRole(QAction::AboutQtRole);
    return about;
}

void MainWindow::fillToolBar(QAction* toggleTheme, QAction* about)
{
    m_toolbar->addEntry(m_actOpen, tr("Open"), ToolbarIconKind::Open);
    m_toolbar->addEntry(m_actReload, tr("Reload"), ToolbarIconKind::Reload);
    m_toolbar->addSeparator();
    m_toolbar->addEntry(m_actSave, tr("Save"), ToolbarIconKind::Save);
    m_toolbar->addEntry(m_actRevert, tr("Revert all"), ToolbarIconKind::Revert);
    m_toolbar->addSeparator();
    m_toolbar->addEntry(m_actFindModule, tr("Find module"), ToolbarIconKind::Find);
    m_toolbar->addEntry(m_actBackups, tr("Backups"), ToolbarIconKind::Backups);
    m_toolbar->addEntry(m_actRestore, tr("Restore"), ToolbarIconKind::Restore);
    m_toolbar->addSeparator();
    m_toolbar->addEntry(toggleTheme, tr("Theme"), ToolbarIconKind::Theme);
    m_toolbar->addSeparator();
    m_toolbar->addEntry(about, tr("About"), ToolbarIconKind::About);
    connect(m_toolbar, &QToolBar::visibilityChanged, this, &MainWindow::updateMinimumWidth);
}

void MainWindow::createKeys()
{
    auto* findKey = new QShortcut(QKeySequence(QKeySequence::Find), this);
    connect(findKey, &QShortcut::activated, this, [this] {
        m_tabs->setCurrentWidget(m_searchView);
        m_searchView->focusQuery();
    });
    // Actions of the window and of no menu. The tabs themselves turn the page only while the focus
    // is in them, and not in one of their list boxes.
    const auto add = [this](const QString& text, const QList<QKeySequence>& keys) {
        auto* action = new QAction(text, this);
        action->setShortcuts(keys);
        addAction(action);
        return action;
    };
    auto previousKeys = QKeySequence::keyBindings(QKeySequence::PreviousChild);
    previousKeys.append(Qt::CTRL | Qt::SHIFT | Qt::Key_Tab); // as Backtab it isn't found under X11
    connect(add(tr("Next page"), QKeySequence::keyBindings(QKeySequence::NextChild)),
            &QAction::triggered, this, [this] { turnPage(1); });
    connect(add(tr("Previous page"), previousKeys), &QAction::triggered, this,
            [this] { turnPage(m_tabs->count() - 1); });
    connect(add(tr("User Guide"), QKeySequence::keyBindings(QKeySequence::HelpContents)),
            &QAction::triggered, this, &showUserGuide);
}

void MainWindow::turnPage(int step)
{
    if (!m_openEditor->commit()) {
        return;
    }
    if (!m_tabs->isAncestorOf(focusWidget())) {
        m_tabs->setFocus(Qt::ShortcutFocusReason);
    }
    m_tabs->setCurrentIndex((m_tabs->currentIndex() + step) % m_tabs->count());
}

bool MainWindow::onSave()
{
    if (!m_openEditor->commit()) {
        return false;
    }
    if (pendingCount() == 0) {
        return true;
    }
    QString error;
    if (!SettingsStore::isPixInsightClosed(&error)) { // rather than after the review
        pollEnvironment();
        report(QMessageBox::Critical, tr("Save failed"), error);
        return false;
    }
    const TreeGuard guard(m_model);
    const int answer = ReviewDialog(m_model, &m_store.document, this, &m_schema).exec();
    if (answer != QDialog::Accepted || !guard.isSameTree()) {
        return false;
    }
    if (pendingCount() == 0) {
        return true;
    }
    QString backupPath;
    QString remark;
    const auto save = [&] {
        const WaitCursor wait;
        return m_store.save(&error, &backupPath, &remark);
    };
    // A save without deletions destroys no node, so the tree keeps its expansion.
    const bool destroysNodes = !m_store.document.deletions().isEmpty();
    const bool saved = destroysNodes ? replaceTree(save) : save();
    if (!saved) {
        report(QMessageBox::Critical, tr("Save failed"), error, remark);
        pollEnvironment();
        return false;
    }
    m_model->refreshAll();
    showStatus(tr("Saved. Backup: %1").arg(QFileInfo(backupPath).fileName()), 10000);
    rebuildFileBox();
    refreshBanner();
    if (!remark.isEmpty()) {
        report(QMessageBox::Warning, tr("Save changes"), remark);
    }
    return true;
}

void MainWindow::onRestoreBackup()
{
    if (!m_store.loaded || !m_openEditor->commit()) {
        return;
    }
    const QString title = tr("Restore backup");
    const QString path = m_store.path;
    const QStringList backups = PixInsightEnv::backupsOf(path);
    if (backups.isEmpty()) {
        showMessage(this, QMessageBox::Information, title,
                    tr("No backups were found next to the settings file."));
        return;
    }
    QStringList lines;
    for (const QString& backup : backups) {
        const QFileInfo info(backup);
        lines.append(tr("%1   (%2, %3 KiB)")
                         .arg(info.fileName(),
                              info.lastModified().toString(u"yyyy-MM-dd HH:mm:ss"_s),
                              QString::number(info.size() / 1024)));
    }
    bool chosen = false;
    const QString line = QInputDialog::getItem(this, title, tr("Backup to restore (newest first):"),
                                               lines, 0, false, &chosen);
    if (!chosen || !confirmDiscard(tr("Restoring discards them."))) {
        return;
    }
    const QString backup = backups.value(lines.indexOf(line));
    const QString question = tr("Replace the current settings file with\n%1\n\nThe current file "
                                "is backed up first.")
                                 .arg(QFileInfo(backup).fileName());
    PlainMessageBox box(QMessageBox::Question, title, question, QMessageBox::Yes | QMessageBox::No,
                        this);
    box.setDefaultButton(QMessageBox::No);
    if (isMissing(path)) {
        box.setPlainInformativeText(tr("The file is missing, so there is nothing to back up."));
    }
    if (box.exec() == QMessageBox::Yes && m_store.loaded && m_store.path == path) {
        restoreFrom(backup);
    }
}

void MainWindow::restoreFrom(const QString& backup)
{
    QString error;
    QString remark;
    const bool restored = replaceTree([&] {
        const WaitCursor wait;
        return m_store.restoreBackup(backup, &error, &remark);
    });
    m_staleOnDisk = !restored && m_store.isChangedOnDisk();
    refreshBanner();
    if (!restored) {
        report(QMessageBox::Critical, tr("Restore failed"), error, remark);
        return;
    }
    showStatus(tr("Restored %1").arg(QFileInfo(backup).fileName()), 8000);
    if (!remark.isEmpty()) {
        report(QMessageBox::Warning, tr("Restore backup"), remark);
    }
}

void MainWindow::onManageBackups()
{
    if (!m_store.loaded) {
        return;
    }
    BackupsDialog dialog(m_store.path, this);
    connect(&dialog, &BackupsDialog::message, this,
            [this](const QString& text) { showStatus(text, 10000); });
    dialog.exec();
}

void MainWindow::closeEvent(QCloseEvent* event)
{
    if (!m_openEditor->commit()) {
        event->ignore(); // the user has to see what became of the text
        return;
    }
    const qsizetype pending = pendingCount();
    if (pending > 0) {
        PlainMessageBox box(QMessageBox::Question, tr("Unsaved changes"),
                            tr("You have %n unsaved change(s).", nullptr, int(pending)),
                            QMessageBox::Save | QMessageBox::Discard | QMessageBox::Cancel, this);
        box.setDefaultButton(QMessageBox::Save);
        if (!SettingsStore::isPixInsightClosed()) {
            box.setPlainInformativeText(
                tr("PixInsight is running, so they cannot be saved now. Close PixInsight first."));
        }
        const int answer = box.exec();
        const bool stay =
            answer == QMessageBox::Cancel || (answer == QMessageBox::Save && !onSave());
        if (stay) {
            event->ignore();
            return;
        }
    }
    event->accept();
}

void MainWindow::onRevertAll()
{
    const qsizetype pending = m_openEditor->commit() ? pendingCount() : 0;
    if (pending == 0) {
        return;
    }
    const TreeGuard guard(m_model);
    const bool confirmed =
        askQuestion(this, tr("Revert all changes"),
                    tr("Discard all %n unsaved change(s)?", nullptr, int(pending)),
                    QMessageBox::Yes | QMessageBox::No, QMessageBox::No) == QMessageBox::Yes;
    if (confirmed && guard.isSameTree()) {
        m_advancedPage->revertAll();
    }
}

void MainWindow::onAbout()
{
    const QString version = m_store.loaded ? recordedVersion(m_store.document) : QString();
    AboutDialog(openPath(), version, this).exec();
}

bool MainWindow::hasFile(const QString& title)
{
    if (!m_store.loaded) {
        showMessage(this, QMessageBox::Information, title, tr("Open a settings file first."));
    }
    return m_store.loaded;
}

void MainWindow::onHealthCheck()
{
    if (hasFile(tr("Health check"))) {
        m_healthView->run(); // first: shown unchecked, it would run by itself and then again
        m_tabs->setCurrentWidget(m_healthView);
    }
}

void MainWindow::onUnusedModules()
{
    if (hasFile(tr("Unused module data"))) {
        m_unusedModulesView->refresh();
        m_tabs->setCurrentWidget(m_unusedModulesView);
    }
}

void MainWindow::onFindModule()
{
    const QString title = tr("Find module data");
    if (!hasFile(title)) {
        return;
    }
    ModuleSearchDialog dialog(knownModules(m_store.document), this);
    if (dialog.exec() != QDialog::Accepted || !m_store.loaded) {
        return;
    }
    const QString text = dialog.moduleName();
    if (dialog.mode() == ModuleSearchMode::Full) {
        searchEverywhere(text);
        return;
    }
    const ModuleSearch found(m_store.document, text);
    if (found.nodes.isEmpty()) {
        const QString question =
            tr("Nothing recorded for \"%1\" in the places module names usually go.\n\nRun a full "
               "search instead?")
                .arg(text);
        if (askQuestion(this, title, question, QMessageBox::Yes | QMessageBox::No,
                        QMessageBox::Yes) == QMessageBox::Yes &&
            m_store.loaded) {
            searchEverywhere(text);
        }
        return;
    }
    m_tabs->setCurrentWidget(m_searchView);
    m_searchView->showRestricted(found.nodes, found.banner);
    m_searchView->focusQuery();
}

void MainWindow::searchEverywhere(const QString& text)
{
    m_tabs->setCurrentWidget(m_searchView);
    m_searchView->searchEverywhere(text);
    m_searchView->focusQuery();
}

void MainWindow::revealNode(XsdtNode* node)
{
    if (!node) {
        return;
    }
    m_tabs->setCurrentWidget(m_advancedPage);
    m_advancedPage->reveal(node);
}

} // namespace kse
