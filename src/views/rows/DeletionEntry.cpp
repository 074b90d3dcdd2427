// SPDX-License-Identifier: MIT
#include "views/rows/DeletionEntry.h"

#include "document/XsdtNode.h"
#include "views/model/SettingsModel.h"
#include "widgets/MessageBox.h"
#include "widgets/PlainText.h"

#include <QMenu>

namespace kse {

DeletionEntry::DeletionEntry(QMenu& menu, const SettingsModel& model, XsdtNode* node, bool readOnly,
                             const Words& words)
    : m_node(node)
    , m_decision(model.deletionDecision(node))
{
    if (node->markedForDeletion) {
        m_offer = Offer::Undo;
        m_action = menu.addAction(tr("Undo deletion"));
    } else if (node->isInsideDeletion()) {
        m_action = menu.addAction(words.inside);
        m_action->setEnabled(false);
    } else if (m_decision.level == DeleteLevel::Never) {
        m_offer = Offer::Reason;
        m_action = menu.addAction(tr("Why can't this be deleted?"));
    } else {
        m_offer = Offer::Delete;
        m_action = menu.addAction(m_decision.level == DeleteLevel::Warn ? words.ask : words.remove);
        m_action->setToolTip(asToolTip(m_decision.reason));
        m_action->setEnabled(!readOnly);
    }
}

void DeletionEntry::carryOut(QWidget* parent, const std::function<void(XsdtNode*)>& deleteNode,
                             const std::function<void(XsdtNode*)>& undoDeletion) const
{
    if (m_offer == Offer::Reason) {
        showCannotDelete(parent, m_node->path(), m_decision.reason);
    } else if (m_offer == Offer::Undo && undoDeletion) {
        undoDeletion(m_node);
    } else if (m_offer == Offer::Delete && deleteNode) {
        deleteNode(m_node);
    }
}

void showCannotDelete(QWidget* parent, const QString& path, const QString& reason)
{
    showMessage(parent, QMessageBox::Information, DeletionEntry::tr("Cannot delete"),
                DeletionEntry::tr("%1\n\n%2").arg(withoutMiddle(path, sentenceLimit), reason));
}

} // namespace kse
