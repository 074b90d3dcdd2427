// SPDX-License-Identifier: MIT
#pragma once

#include "session/PixInsightEnv.h"

#include <QDir>
#include <QFile>
#include <QTemporaryDir>

namespace kse {

/// Makes `home` the user's home, also for processes that this one starts.
inline void useAsHome(const QTemporaryDir& home)
{
    for (const char* name : {"HOME", "XDG_CONFIG_HOME", "XDG_CACHE_HOME", "XDG_DATA_HOME"}) {
        qputenv(name, home.path().toLocal8Bit());
    }
}

/// Writes `bytes` to the settings file that the program opens by itself, and returns its path.
inline QString placeSettings(const QByteArray& bytes)
{
    const QString folder = PixInsightEnv::settingsFolders().value(0);
    QFile file(folder + QStringLiteral("/core-001-pxi.settings"));
    if (!QDir().mkpath(folder) || !file.open(QIODevice::WriteOnly) || file.write(bytes) < 0) {
        qFatal("The settings file can't be written.");
    }
    return file.fileName();
}

} // namespace kse
