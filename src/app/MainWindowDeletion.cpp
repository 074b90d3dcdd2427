// SPDX-License-Identifier: MIT
#include "app/MainWindow.h"

#include "views/model/SettingsModel.h"
#include "views/model/TreeGuard.h"
#include "views/rows/DeletionEntry.h"
#include "widgets/MessageBox.h"
#include "widgets/PlainText.h"

#include <QCheckBox>

namespace kse {

void MainWindow::deleteNode(XsdtNode* node)
{
    if (node->markedForDeletion) {
        return;
    }
    const QString path = withoutMiddle(node->path(), sentenceLimit);
    if (const XsdtNode* group = node->parent; group && group->isInsideDeletion()) {
        while (!group->markedForDeletion) {
            group = group->parent;
        }
        showStatus(tr("%1 is already queued for deletion with %2.")
                       .arg(path, withoutMiddle(group->path(), sentenceLimit)),
                   8000);
        return;
    }
    const int values = int(node->valueCount());
    const DeleteDecision decision = m_model->deletionDecision(node);
    if (decision.level == DeleteLevel::Never) {
        showCannotDelete(this, path, decision.reason);
        return;
    }
    if (decision.level == DeleteLevel::Warn && !m_dontAskDelete) {
        const TreeGuard guard(m_model);
        if (!confirmDeletion(path, values, decision.reason) || !guard.isSameTree()) {
            return;
        }
    }
    QString error;
    if (!m_model->markForDeletion(node, &error)) {
        showMessage(this, QMessageBox::Information, tr("Cannot delete"), error);
        return;
    }
    showStatus(
        tr("%1 queued for deletion (%n value(s)). Save to apply.", nullptr, values).arg(path),
        8000);
}

bool MainWindow::confirmDeletion(const QString& path, int values, const QString& reason)
{
    PlainMessageBox box(QMessageBox::Warning, tr("Delete saved information?"),
                        tr("Delete %1?\n(%n value(s))", nullptr, values).arg(path),
                        QMessageBox::Yes | QMessageBox::Cancel, this);
    box.setDefaultButton(QMessageBox::Cancel);
    box.setPlainInformativeText(
        reason + tr("\n\nNothing is removed until you save, and you can undo it before then."));
    box.setCheckBox(new QCheckBox(tr("Don't ask again until I close the program")));
    if (box.exec() != QMessageBox::Yes) {
        return false;
    }
    m_dontAskDelete = box.checkBox()->isChecked();
    return true;
}

} // namespace kse
