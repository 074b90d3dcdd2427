// SPDX-License-Identifier: MIT
#include "app/MainWindow.h"

#include "app/AboutDialog.h"
#include "app/MainMenuBar.h"
#include "app/OpenEditor.h"
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

#include <QAction>
#include <QCloseEvent>
#include <QDateTime>
#include <QFileInfo>
#include <QInputDialog>
#include <QShortcut>
#include <QTabWidget>

using namespace Qt::StringLiterals;

namespace kse {

void MainWindow::connectCommands()
{
    const MainCommands& commands = m_menuBar->commands();
    const auto connectTo = [this](QAction* action, auto slot) {
        // From the event loop, since a dialog would block the screen reader that opens it.
        connect(action, &QAction::triggered, this, slot, Qt::QueuedConnection);
    };
    connectTo(commands.open, &MainWindow::onOpen);
    connectTo(commands.reload, &MainWindow::onReload);
    connectTo(commands.findModule, &MainWindow::onFindModule);
    connectTo(commands.unusedModules, &MainWindow::onUnusedModules);
    connectTo(commands.healthCheck, &MainWindow::onHealthCheck);
    connectTo(commands.save, &MainWindow::onSave);
    connectTo(commands.restore, &MainWindow::onRestoreBackup);
    connectTo(commands.backups, &MainWindow::onManageBackups);
    connectTo(commands.quit, &MainWindow::close);
    connectTo(commands.revert, &MainWindow::onRevertAll);
    connectTo(commands.about, &MainWindow::onAbout);
    connect(commands.expandAll, &QAction::triggered, m_advancedPage, &AllSettingsView::expandAll);
    connect(commands.collapseAll, &QAction::triggered, m_advancedPage,
            &AllSettingsView::resetExpansion);
}

void MainWindow::createKeys()
{
    auto* findKey = new QShortcut(QKeySequence(QKeySequence::Find), this);
    connect(findKey, &QShortcut::activated, this, [this] {
        m_tabs->setCurrentWidget(m_searchView);
        m_searchView->focusQuery();
    });
    // Actions of the window that are in no menu. The tabs themselves turn the page only while the
    // focus is in them, and not in one of their list boxes.
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
    const auto isRefused = [&] {
        if (SettingsStore::isPixInsightClosed(&error)) {
            return false;
        }
        pollEnvironment();
        report(QMessageBox::Critical, tr("Save failed"), error);
        return true;
    };
    if (isRefused()) { // rather than after the review
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
    if (isRefused()) { // before the pages give up their nodes, and what is open and selected
        return false;
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
    const QString remark =
        isMissing(path) ? tr("The file is missing, so there is nothing to back up.") : QString();
    if (askQuestion(this, title, question, QMessageBox::Yes | QMessageBox::No, QMessageBox::No,
                    remark) == QMessageBox::Yes &&
        m_store.loaded && m_store.path == path) {
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
        const QString remark =
            SettingsStore::isPixInsightClosed()
                ? QString()
                : tr("PixInsight is running, so they cannot be saved now. Close PixInsight first.");
        const int answer =
            askQuestion(this, tr("Unsaved changes"),
                        tr("You have %n unsaved change(s).", nullptr, int(pending)),
                        QMessageBox::Save | QMessageBox::Discard | QMessageBox::Cancel,
                        QMessageBox::Save, remark);
        if (answer == QMessageBox::Cancel || (answer == QMessageBox::Save && !onSave())) {
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
