// SPDX-License-Identifier: MIT
#include "app/MainWindow.h"

#include "views/NodeContextMenu.h"
#include "views/PlainText.h"
#include "views/SettingsFilterProxy.h"
#include "views/SettingsModel.h"

#include <QCheckBox>
#include <QClipboard>
#include <QGuiApplication>
#include <QMenu>
#include <QTreeView>

using namespace Qt::StringLiterals;

namespace kse {

void MainWindow::deleteSelected()
{
    const QModelIndex index = m_tree->currentIndex();
    if (!index.isValid() || !m_tree->selectionModel()->isSelected(index)) {
        return;
    }
    if (XsdtNode* node = m_model->nodeForIndex(m_proxy->mapToSource(index))) {
        deleteNode(node);
    }
}

void MainWindow::deleteNode(XsdtNode* node)
{
    if (node->markedForDeletion) {
        return;
    }
    const QString path = withoutMiddle(node->path(), 500); // what follows it must stay in sight
    if (const XsdtNode* group = node->parent; group && group->isInsideDeletion()) {
        while (!group->markedForDeletion) {
            group = group->parent;
        }
        showStatus(tr("%1 is already queued for deletion with %2.")
                       .arg(path, withoutMiddle(group->path(), 500)),
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
        const quint64 generation = m_model->generation();
        if (!confirmDeletion(path, values, decision.reason) ||
            m_model->generation() != generation) {
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

void MainWindow::showContextMenu(const QPoint& pos)
{
    const QModelIndex index = m_tree->indexAt(pos);
    if (!index.isValid()) {
        return;
    }
    XsdtNode* node = m_model->nodeForIndex(m_proxy->mapToSource(index));
    if (!node) {
        return;
    }
    const bool isValue = node->kind == XsdtNode::Kind::Value;
    const DeleteDecision decision = m_model->deletionDecision(node);
    QMenu menu(this);
    menu.setToolTipsVisible(true);
    QAction* revert = menu.addAction(tr("Revert this value"));
    revert->setEnabled(node->isModified() && !m_running);
    QAction* copyPath = menu.addAction(tr("Copy setting path"));
    QAction* copyValue = menu.addAction(tr("Copy value"));
    copyValue->setEnabled(isValue);
    menu.addSeparator();
    QAction* remove = nullptr;
    QAction* undo = nullptr;
    QAction* why = nullptr;
    if (node->markedForDeletion) {
        undo = menu.addAction(tr("Undo deletion"));
    } else if (node->isInsideDeletion()) {
        menu.addAction(tr("Inside an entry marked for deletion"))->setEnabled(false);
    } else if (decision.level == DeleteLevel::Never) {
        why = menu.addAction(tr("Why can't this be deleted?"));
    } else {
        remove = menu.addAction(decision.level == DeleteLevel::Warn ? tr("Delete this entry...")
                                                                    : tr("Delete this entry"));
        remove->setToolTip(asToolTip(decision.reason));
        remove->setEnabled(!m_running);
    }

    const quint64 generation = m_model->generation();
    const QAction* chosen = menu.exec(m_tree->viewport()->mapToGlobal(pos));
    if (!chosen || m_model->generation() != generation) {
        return;
    }
    if (chosen == revert && !m_running) {
        m_model->revertValue(node);
    } else if (chosen == copyPath) {
        QGuiApplication::clipboard()->setText(node->path());
    } else if (chosen == copyValue) {
        QGuiApplication::clipboard()->setText(node->value);
    } else if (chosen == remove) {
        deleteNode(node);
    } else if (chosen == undo) {
        m_model->undoDeletion(node);
    } else if (chosen == why) {
        showCannotDelete(this, node->path(), decision.reason);
    }
}

} // namespace kse
