// SPDX-License-Identifier: MIT
#pragma once

#include <QList>
#include <QString>
#include <QStringList>

namespace kse {

struct XsdtDocument;
struct XsdtNode;

/// Where a settings file holds data of one module. The nodes are the document's and die with its
/// tree.
struct ModuleInfo
{
    QString name;
    bool registered = false;          ///< The registry holds exactly this name.
    XsdtNode* registryNode = nullptr; ///< Its entry there, or null.
    QList<XsdtNode*> nodes;           ///< Whole groups, never the registry entry; see `moduleInfo`.
};

/// Which modules a settings file knows and what it records about each. Nothing is kept between
/// calls and nothing is changed. Names are case-sensitive, their order isn't.
namespace ModuleCatalog {

/// Whether a top-level `key` is PixInsight's own and thus no module's group.
[[nodiscard]] bool isKnownTopLevel(const QString& key);

/// `Foo` of a path that ends in `Foo-pxm.dll`, `.so` or `.dylib`; empty for any other text.
[[nodiscard]] QString moduleNameFromPath(const QString& path);

/// Names in the registry `Modules`, sorted, each once.
[[nodiscard]] QStringList registeredModules(const XsdtDocument& document);

/// Names of the groups in `ModuleData` and `ModuleDataAccess` (but "0") and of the top-level groups
/// that aren't PixInsight's own; sorted, each once.
[[nodiscard]] QStringList modulesWithData(const XsdtDocument& document);

/// All that is recorded about `name`: its groups in `ModuleData`, in `ModuleDataAccess` and at the
/// top level, then for each of its processes the window options and the usage counters.
[[nodiscard]] ModuleInfo moduleInfo(const XsdtDocument& document, const QString& name);

/// The modules with data and without a registry entry, sorted by name.
[[nodiscard]] QList<ModuleInfo> unusedModules(const XsdtDocument& document);

/// The modules named `text` but for case and surrounding blanks; if there are none, those whose
/// name contains it. `exact`, unless null, tells which. An empty text finds nothing.
[[nodiscard]] QList<ModuleInfo> searchModules(const XsdtDocument& document, const QString& text,
                                              bool* exact = nullptr);

/// The registry entry, if any, and every value at or below `info.nodes`, in that order.
[[nodiscard]] QList<XsdtNode*> moduleLeaves(const ModuleInfo& info);

/// Number of values in `moduleLeaves`.
[[nodiscard]] qsizetype moduleValueCount(const ModuleInfo& info);

/// Bytes that `info.nodes` take in the file, without the registry entry.
[[nodiscard]] qint64 moduleDataSize(const ModuleInfo& info);

} // namespace ModuleCatalog
} // namespace kse
