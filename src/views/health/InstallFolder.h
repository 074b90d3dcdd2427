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
    QStringList tried; ///< Where it was looked for, in order; installations without `bin`.
};

/// Tries `env.binFolder`, then the installations that paths among `leaves` lead into, then
/// `env.installFolders`.
[[nodiscard]] ProgramFolder findProgramFolder(const QList<XsdtNode*>& leaves, const HealthEnv& env);

} // namespace kse
