// SPDX-License-Identifier: MIT
#include "views/rows/ConfirmDeletion.h"

#include "views/model/TreeGuard.h"
#include "widgets/MessageBox.h"

#include <QCoreApplication>

namespace kse {

bool confirmDeletion(QWidget* parent, const SettingsModel& model, const QString& title,
                     const QString& text, const QStringList& names)
{
    PlainMessageBox box(QMessageBox::Warning, title, text, QMessageBox::Yes | QMessageBox::Cancel,
                        parent);
    box.setPlainInformativeText(QCoreApplication::translate(
        "ConfirmDeletion", "Nothing is removed until you save, and you can undo it before then."));
    if (!names.isEmpty()) {
        box.setReachableDetails(names.join(u'\n'));
    }
    box.setDefaultButton(QMessageBox::Cancel);
    const TreeGuard guard(&model);
    return box.exec() == QMessageBox::Yes && guard.isSameTree();
}

} // namespace kse
