// SPDX-License-Identifier: MIT
#pragma once

#include <QList>
#include <QString>
#include <QStringList>

namespace kse {

struct HealthEnv;
struct XsdtNode;

/// Where PixInsight's programs and modules are on this computer.
struct ProgramFolder
{
    QString path;      ///< The `bin` folder itself; empty if none was found.
    QStringList tried; ///< Every folder asked for, in order; those of installations without `bin`.
};

/// Whether `path` is an absolute path in the form of the system: a drive or a share on Windows, a
/// path from the root or the home folder elsewhere.
[[nodiscard]] bool isPathForThisSystem(const QString& path, bool windows);

/// Tries the folder that `env` knows, then the installations that paths among `leaves` lead into,
/// then the usual ones.
[[nodiscard]] ProgramFolder findProgramFolder(const QList<XsdtNode*>& leaves, const HealthEnv& env);

/// Installation folders that are usual on this computer's system, without `bin`.
[[nodiscard]] QStringList usualInstallFolders();

} // namespace kse
