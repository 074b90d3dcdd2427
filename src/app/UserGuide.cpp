// SPDX-License-Identifier: MIT
#include "app/UserGuide.h"

#include <QFile>
#include <QSaveFile>
#include <QStandardPaths>

using namespace Qt::StringLiterals;

namespace kse {

QString exportUserGuide()
{
    QFile guide(u":/help/help.html"_s);
    if (!guide.open(QIODevice::ReadOnly)) {
        return {};
    }
    const QByteArray page = guide.readAll();
    const QString path = QStandardPaths::writableLocation(QStandardPaths::TempLocation) +
                         u"/KestraneSettingsEditor-Help.html"_s;
    QSaveFile file(path);
    const bool written =
        file.open(QIODevice::WriteOnly) && file.write(page) == page.size() && file.commit();
    return written ? path : QString();
}

} // namespace kse
