// SPDX-License-Identifier: MIT
#pragma once

#include "schema/DeletePolicy.h"

#include <QCoreApplication>

#include <functional>

class QAction;
class QMenu;
class QWidget;

namespace kse {

class SettingsModel;
struct XsdtNode;

/// The entry of a node's context menu that deletes the node, takes its deletion back, or tells why
/// it can't be deleted. Inside another deletion it can't be chosen and only says so.
class DeletionEntry
{
    Q_DECLARE_TR_FUNCTIONS(DeletionEntry)

public:
    /// The texts in which the menus differ.
    struct Words
    {
        QString inside; ///< Inside another deletion.
        QString remove;
        QString ask; ///< In place of `remove` where a question follows.
    };

    /// Adds the entry to `menu`, which owns it. What it does stays as decided here, also if the
    /// node changes while the menu is open.
    DeletionEntry(QMenu& menu, const SettingsModel& model, XsdtNode* node, bool readOnly,
                  const Words& words);

    bool is(const QAction* chosen) const { return chosen == m_action; }

    /// Calls the function that suits the entry, unless it is empty, or shows the reason in a box
    /// of `parent`'s window. For an entry that was chosen; the node must still be alive.
    void carryOut(QWidget* parent, const std::function<void(XsdtNode*)>& deleteNode,
                  const std::function<void(XsdtNode*)>& undoDeletion) const;

private:
    enum class Offer { Nothing, Undo, Reason, Delete };

    XsdtNode* m_node = nullptr;
    DeleteDecision m_decision;
    Offer m_offer = Offer::Nothing;
    QAction* m_action = nullptr;
};

/// Tells why the entry at `path` stays, in a box of `parent`'s window.
void showCannotDelete(QWidget* parent, const QString& path, const QString& reason);

} // namespace kse
