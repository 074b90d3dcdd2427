// SPDX-License-Identifier: MIT
#include "widgets/FileBox.h"

#include "widgets/WheelGuard.h"

#include <QKeyEvent>
#include <QList>

namespace kse {

FileBox::FileBox(QWidget* parent)
    : QComboBox(parent)
{
    WheelGuard::install(this);
}

void FileBox::keyPressEvent(QKeyEvent* event)
{
    static const QList<int> movingKeys{Qt::Key_Up,       Qt::Key_Down, Qt::Key_PageUp,
                                       Qt::Key_PageDown, Qt::Key_Home, Qt::Key_End};
    const QString text = event->text();
    const bool searches = !text.isEmpty() && text.at(0).isPrint();
    if (searches || movingKeys.contains(event->key())) {
        showPopup();
    } else {
        QComboBox::keyPressEvent(event);
    }
}

} // namespace kse
