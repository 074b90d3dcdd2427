// SPDX-License-Identifier: MIT
#pragma once

#include "support/DialogAnswerer.h"

#include <QContextMenuEvent>
#include <QMenu>
#include <QMessageBox>
#include <QPushButton>
#include <QTest>
#include <QTreeWidget>
#include <QTreeWidgetItemIterator>

namespace kse {

// For the tests of pages whose content is a tree widget.

inline QTreeWidgetItem* treeItem(const QTreeWidget& tree, const QString& text)
{
    return tree.findItems(text, Qt::MatchExactly | Qt::MatchRecursive).value(0);
}

/// The rows as lines: a dot for each level, "[ ]", "[-]" or "[x]" for a box, the texts between
/// bars, and "!" for what is disabled or greyed.
inline QStringList treeLines(QTreeWidget& tree)
{
    QStringList lines;
    for (QTreeWidgetItemIterator it(&tree); *it; ++it) {
        QString line;
        for (const QTreeWidgetItem* above = (*it)->parent(); above; above = above->parent()) {
            line += u'.';
        }
        if (const QVariant box = (*it)->data(0, Qt::CheckStateRole); box.isValid()) {
            line += QStringLiteral("[%1]").arg(QStringLiteral(" -x").at(box.toInt()));
        }
        for (int column = 0; column < tree.columnCount(); ++column) {
            line += (*it)->text(column) + u'|';
        }
        while (line.endsWith(u'|')) {
            line.chop(1);
        }
        const bool grey = (*it)->isDisabled() || (*it)->data(0, Qt::ForegroundRole).isValid();
        lines << line + (grey ? QStringLiteral("!") : QString());
    }
    return lines;
}

/// Opens the context menu on the row of that text by a right click, calls `meanwhile`, and chooses
/// `choice`. Gives what the menu offers, with "!" for what is disabled.
inline QStringList chooseInMenu(
    QTreeWidget& tree, const QString& row, const QString& choice,
    const std::function<void()>& meanwhile = [] {})
{
    QStringList texts;
    const DialogAnswerer<QMenu> answer([&](QMenu& menu) {
        const QList<QAction*> actions = menu.actions();
        for (QAction* action : actions) {
            texts << action->text() + (action->isEnabled() ? QString() : QStringLiteral("!"));
            if (action->text() == choice) {
                menu.setActiveAction(action);
            }
        }
        meanwhile();
        QTest::keyClick(&menu, Qt::Key_Return);
    });
    const QPoint pos = tree.visualItemRect(treeItem(tree, row)).center();
    QContextMenuEvent event(QContextMenuEvent::Mouse, pos, tree.viewport()->mapToGlobal(pos));
    QApplication::sendEvent(tree.viewport(), &event);
    return texts;
}

/// Clicks the button of that name on `page`, calls `meanwhile` while the message box stands that
/// comes, and answers it. Gives its text, then its detailed text if it has one, and "Cancel" or
/// the like for its default button.
inline QStringList clickAndAnswer(
    const QWidget& page, const QString& name, QMessageBox::StandardButton choice,
    const std::function<void()>& meanwhile = [] {})
{
    QStringList texts;
    const DialogAnswerer<QMessageBox> answer([&](QMessageBox& box) {
        texts << box.text() << box.detailedText() << box.defaultButton()->text().remove(u'&');
        texts.removeAll(QString());
        meanwhile();
        box.button(choice)->click();
    });
    page.findChild<QPushButton*>(name)->click();
    return texts;
}

} // namespace kse
