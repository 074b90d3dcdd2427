// SPDX-License-Identifier: MIT
#include "views/rows/NodeContextMenu.h"

#include "document/XsdtNode.h"
#include "views/model/SettingsModel.h"
#include "views/model/TreeGuard.h"
#include "views/rows/DeletionEntry.h"

#include <QCoreApplication>
#include <QMenu>

namespace kse {

namespace {

/// The context of the texts for lupdate.
struct NodeContextMenu
{
    Q_DECLARE_TR_FUNCTIONS(NodeContextMenu)
};

DeletionEntry::Words deletionWords(const XsdtNode& node)
{
    const QString noun = node.kind == XsdtNode::Kind::Value ? NodeContextMenu::tr("setting")
                                                            : NodeContextMenu::tr("group");
    return {NodeContextMenu::tr("Inside a group marked for deletion"),
            NodeContextMenu::tr("Delete this %1").arg(noun),
            NodeContextMenu::tr("Delete this %1...").arg(noun)};
}

} // namespace

void showNodeContextMenu(QWidget* parent, SettingsModel* model, XsdtNode* node,
                         const QPoint& globalPos, bool readOnly, const NodeMenuCallbacks& callbacks)
{
    QWidget* window = parent->window(); // `parent` may die while the menu is open
    QMenu menu(window);
    menu.setToolTipsVisible(true);
    QAction* revert = nullptr;
    if (node->kind == XsdtNode::Kind::Value) {
        revert = menu.addAction(NodeContextMenu::tr("Revert this value"));
        revert->setEnabled(node->isModified() && !readOnly && !node->isInsideDeletion());
        menu.addSeparator();
    }
    const DeletionEntry deletion(menu, *model, node, readOnly, deletionWords(*node));
    const QAction* reveal = nullptr;
    if (callbacks.reveal) {
        menu.addSeparator();
        reveal = menu.addAction(NodeContextMenu::tr("Show in All settings"));
    }

    const TreeGuard guard(model);
    const QAction* chosen = menu.exec(globalPos);
    if (!chosen || !guard.isSameTree()) {
        return;
    }
    if (chosen == revert && !model->isReadOnly()) { // PixInsight may have started meanwhile
        model->revertValue(node);
    } else if (deletion.is(chosen)) {
        deletion.carryOut(window, callbacks.deleteNode, callbacks.undoDeletion);
    } else if (chosen == reveal) {
        callbacks.reveal(node);
    }
}

} // namespace kse
