// SPDX-License-Identifier: MIT
#include "views/health/InstallFolder.h"

#include "document/XsdtNode.h"
#include "document/XsdtValueType.h"
#include "views/health/HealthEnv.h"

#include <QDir>
#include <QRegularExpression>

using namespace Qt::StringLiterals;

namespace kse {

namespace {

/// The installation that the path in `leaf` leads into; empty if none.
QString installFolderIn(const XsdtNode& leaf, const HealthEnv& env)
{
    constexpr qsizetype longestPath = 400;
    if (leaf.typeCode != XsdtValueType::String || leaf.value.size() > longestPath ||
        !env.isLocalPath(leaf.value)) {
        return {};
    }
    const QString path = leaf.path();
    if (!path.startsWith("Global/Preferences/"_L1) &&
        !path.startsWith("Global/ColorManagement/"_L1) &&
        !path.startsWith("Global/FavoriteProcesses/"_L1)) {
        return {};
    }
    static const QRegularExpression usualName(
        uR"(^(.*[/\\]PixInsight)[/\\](?:bin|rsc|color|library|etc|doc|include|lib|src)[/\\])"_s,
        QRegularExpression::CaseInsensitiveOption);
    // A path to the application's own resources reveals an installation under another name.
    static const QRegularExpression anyName(uR"(^(.+)[/\\]rsc[/\\])"_s);
    QRegularExpressionMatch match = usualName.match(leaf.value);
    if (!match.hasMatch() && path.startsWith("Global/Preferences/Application/"_L1)) {
        match = anyName.match(leaf.value);
    }
    return QDir::fromNativeSeparators(match.captured(1));
}

/// Distinct and sorted, so that the order of the file's settings doesn't matter.
QStringList installFoldersIn(const QList<XsdtNode*>& leaves, const HealthEnv& env)
{
    QStringList folders;
    for (const XsdtNode* leaf : leaves) {
        const QString folder = installFolderIn(*leaf, env);
        if (!folder.isEmpty()) {
            folders.append(folder);
        }
    }
    folders.removeDuplicates();
    folders.sort();
    return folders;
}

} // namespace

ProgramFolder findProgramFolder(const QList<XsdtNode*>& leaves, const HealthEnv& env)
{
    ProgramFolder folder;
    const auto tryFolder = [&](const QString& shown, const QString& path) {
        if (folder.path.isEmpty() && !shown.isEmpty()) {
            folder.tried.append(shown);
            folder.path = !env.exists || env.exists(path) ? path : QString();
        }
    };
    tryFolder(QDir::fromNativeSeparators(env.binFolder), env.binFolder);
    const QStringList installs = installFoldersIn(leaves, env) + env.installFolders;
    for (const QString& install : installs) {
        const QString path = QDir::fromNativeSeparators(install);
        tryFolder(path, path + "/bin"_L1);
    }
    folder.tried.removeDuplicates();
    return folder;
}

} // namespace kse
