// SPDX-License-Identifier: MIT
#include "app/UserGuide.h"

#include <QDesktopServices>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QSaveFile>
#include <QStandardPaths>
#include <QUrl>

using namespace Qt::StringLiterals;

namespace kse {

namespace {

bool writeWhole(const QString& path, const QByteArray& bytes)
{
    // Saving through a link would replace its target. In a folder where everybody may write,
    // somebody else could have made it point to one of the user's files.
    if (QFileInfo(path).isSymbolicLink() && !QFile::remove(path)) {
        return false;
    }
    QSaveFile file(path);
    // A link made since the check above would be followed by `open`, so check again after it.
    return file.open(QIODevice::WriteOnly) && !QFileInfo(path).isSymbolicLink() &&
           file.write(bytes) == bytes.size() && file.commit();
}

} // namespace

QString exportUserGuide()
{
    QFile guide(u":/help/help.html"_s);
    if (!guide.open(QIODevice::ReadOnly)) {
        return {};
    }
    const QByteArray page = guide.readAll();
    const QString name = u"/KestraneSettingsEditor-Help.html"_s;
    const QString path = QStandardPaths::writableLocation(QStandardPaths::TempLocation) + name;
    if (writeWhole(path, page)) {
        return path;
    }
    const QString cache = QStandardPaths::writableLocation(QStandardPaths::CacheLocation);
    QDir().mkpath(cache);
    const QFileInfo taken(path);
    // A link that is still there couldn't be removed, and `ownerId` would be that of its target.
    const bool isForeign =
        taken.isSymbolicLink() || (taken.exists() && taken.ownerId() != QFileInfo(cache).ownerId());
    return isForeign && writeWhole(cache + name, page) ? cache + name : QString();
}

void showUserGuide()
{
    if (const QString path = exportUserGuide(); !path.isEmpty()) {
        QDesktopServices::openUrl(QUrl::fromLocalFile(path));
    }
}

} // namespace kse
