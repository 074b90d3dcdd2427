// SPDX-License-Identifier: MIT
#pragma once

#include <QString>
#include <QStringList>

#include <functional>

namespace kse {

/// What the checks know about the computer.
struct HealthEnv
{
    std::function<bool(const QString&)> exists; ///< Empty if nothing is known about paths.
    int processors = 0;                         ///< Logical ones; 0 or less if unknown.
    bool isWindows = true;                      ///< Decides which paths are local.
    QString binFolder;          ///< PixInsight's program folder; empty if it has to be found.
    QStringList installFolders; ///< Usual places of an installation, without `bin`, in order.

    /// This computer.
    [[nodiscard]] static HealthEnv system();

    /// Whether `path` is an absolute path in the form of the system: a drive or a share on
    /// Windows, a path from the root or the home folder elsewhere.
    [[nodiscard]] bool isLocalPath(const QString& path) const;

    /// Whether `path` is a local path that is known not to exist.
    [[nodiscard]] bool isMissing(const QString& path) const;
};

} // namespace kse
