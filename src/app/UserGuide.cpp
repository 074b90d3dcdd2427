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
    // A save through a link would replace what it points at: in a folder that is open to all, a
    // file of the user's that somebody else has chosen.
    if (QFileInfo(path).isSymbolicLink() && !QFile::remove(path)) {
        return false;
    }
    QSaveFile file(path);
    // It is opening that follows a link: one made since the look above is seen by another.
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
    // A link that is still there couldn't be removed; asked for its owner, it names its target's.
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
