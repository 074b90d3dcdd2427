// SPDX-License-Identifier: MIT
#include "views/rows/NodeContextMenu.h"

#include "document/XsdtNode.h"
#include "schema/DeletePolicy.h"
#include "views/model/SettingsModel.h"
#include "widgets/MessageBox.h"
#include "widgets/PlainText.h"

#include <QCoreApplication>
#include <QMenu>

namespace kse {

namespace {

/// For lupdate: the context of the texts below.
struct NodeContextMenu
{
    Q_DECLARE_TR_FUNCTIONS(NodeContextMenu)
};

struct Entries
{
    QAction* revert = nullptr;
    QAction* undo = nullptr;
    QAction* why = nullptr;
    QAction* remove = nullptr;
    QAction* reveal = nullptr;
};

void addDeletionEntry(QMenu& menu, Entries& entries, const XsdtNode& node,
                      const DeleteDecision& decision, bool readOnly)
{
    if (node.markedForDeletion) {
        entries.undo = menu.addAction(NodeContextMenu::tr("Undo deletion"));
        return;
    }
    if (node.isInsideDeletion()) {
        menu.addAction(NodeContextMenu::tr("Inside a group marked for deletion"))
            ->setEnabled(false);
        return;
    }
    if (decision.level == DeleteLevel::Never) {
        entries.why = menu.addAction(NodeContextMenu::tr("Why can't this be deleted?"));
        return;
    }
    const QString noun = node.kind == XsdtNode::Kind::Value ? NodeContextMenu::tr("setting")
                                                            : NodeContextMenu::tr("group");
    const QString text = decision.level == DeleteLevel::Warn
                             ? NodeContextMenu::tr("Delete this %1...")
                             : NodeContextMenu::tr("Delete this %1");
    entries.remove = menu.addAction(text.arg(noun));
    entries.remove->setToolTip(asToolTip(decision.reason));
    entries.remove->setEnabled(!readOnly);
}

void call(const std::function<void(XsdtNode*)>& function, XsdtNode* node)
{
    if (function) {
        function(node);
    }
}

} // namespace

void showNodeContextMenu(QWidget* parent, SettingsModel* model, XsdtNode* node,
                         const QPoint& globalPos, bool readOnly, const NodeMenuCallbacks& callbacks)
{
    QWidget* window = parent->window(); // `parent` may die beneath the menu
    QMenu menu(window);
    menu.setToolTipsVisible(true);
    Entries entries;
    if (node->kind == XsdtNode::Kind::Value) {
        entries.revert = menu.addAction(NodeContextMenu::tr("Revert this value"));
        entries.revert->setEnabled(node->isModified() && !readOnly && !node->isInsideDeletion());
        menu.addSeparator();
    }
    const DeleteDecision decision = model->deletionDecision(node);
    addDeletionEntry(menu, entries, *node, decision, readOnly);
    if (callbacks.reveal) {
        menu.addSeparator();
        entries.reveal = menu.addAction(NodeContextMenu::tr("Show in All settings"));
    }

    const quint64 generation = model->generation();
    const QAction* chosen = menu.exec(globalPos);
    if (!chosen || model->generation() != generation) {
        return;
    }
    if (chosen == entries.revert) {
        if (!model->isReadOnly()) { // PixInsight may have started beneath the menu
            model->revertValue(node);
        }
    } else if (chosen == entries.undo) {
        call(callbacks.undoDeletion, node);
    } else if (chosen == entries.why) {
        showCannotDelete(window, node->path(), decision.reason);
    } else if (chosen == entries.remove) {
        call(callbacks.deleteNode, node);
    } else if (chosen == entries.reveal) {
        call(callbacks.reveal, node);
    }
}

void showCannotDelete(QWidget* parent, const QString& path, const QString& reason)
{
    showMessage(parent, QMessageBox::Information, NodeContextMenu::tr("Cannot delete"),
                NodeContextMenu::tr("%1\n\n%2").arg(withoutMiddle(path, 500), reason));
}

} // namespace kse
