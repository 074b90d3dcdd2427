// SPDX-License-Identifier: MIT
#include "app/MainWindow.h"

#include "app/OpenEditor.h"
#include "app/WaitCursor.h"
#include "session/DurableFile.h"
#include "session/PixInsightEnv.h"
#include "session/dialogs/BackupsDialog.h"
#include "session/dialogs/ReviewDialog.h"
#include "views/model/SettingsModel.h"
#include "views/model/TreeGuard.h"
#include "widgets/MessageBox.h"

#include <QCloseEvent>
#include <QDateTime>
#include <QFileInfo>
#include <QInputDialog>

using namespace Qt::StringLiterals;

namespace kse {

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

} // namespace kse
