// SPDX-License-Identifier: MIT
#pragma once

#include <QList>
#include <QString>
#include <QStringList>

namespace kse {

struct XsdtDocument;
struct XsdtNode;

/// The places in a settings file with data of one module. The nodes belong to the document and are
/// invalid once its tree is replaced.
struct ModuleInfo
{
    QString name;
    bool registered = false;          ///< The registry has exactly this name.
    XsdtNode* registryNode = nullptr; ///< Its entry in the registry, or null.
    QList<XsdtNode*> nodes;           ///< Its groups, without the registry entry; see `moduleInfo`.
};

/// The modules that a settings file knows, and its data about each. Nothing is kept between calls
/// and nothing is changed. Names are case-sensitive, but sorted without case.
namespace ModuleCatalog {

/// Whether the top-level `key` belongs to PixInsight itself and isn't a module's group.
[[nodiscard]] bool isKnownTopLevel(const QString& key);

/// "Foo" for a path that ends in "Foo-pxm.dll", "Foo-pxm.so" or "Foo-pxm.dylib"; empty for any
/// other text.
[[nodiscard]] QString moduleNameFromPath(const QString& path);

/// The names in the registry `Modules`, sorted and without duplicates.
[[nodiscard]] QStringList registeredModules(const XsdtDocument& document);

/// The names of the groups in `ModuleData` and `ModuleDataAccess`, except "0", and of the top-level
/// groups that don't belong to PixInsight itself. Sorted and without duplicates.
[[nodiscard]] QStringList modulesWithData(const XsdtDocument& document);

/// The data of the module `name`: its groups in `ModuleData`, in `ModuleDataAccess` and at the top
/// level, then for each of its processes the window options and the usage counters.
[[nodiscard]] ModuleInfo moduleInfo(const XsdtDocument& document, const QString& name);

/// The modules that have data but no registry entry, sorted by name.
[[nodiscard]] QList<ModuleInfo> unusedModules(const XsdtDocument& document);

/// The modules named `text`, ignoring case and surrounding blanks. If there are none, those whose
/// name contains it. `exact`, unless null, says which of the two. An empty text finds nothing.
[[nodiscard]] QList<ModuleInfo> searchModules(const XsdtDocument& document, const QString& text,
                                              bool* exact = nullptr);

/// The registry entry, if any, then every value in `info.nodes`.
[[nodiscard]] QList<XsdtNode*> moduleLeaves(const ModuleInfo& info);

/// Number of values in `moduleLeaves`.
[[nodiscard]] qsizetype moduleValueCount(const ModuleInfo& info);

/// Number of bytes of `info.nodes` in the file. The registry entry isn't counted.
[[nodiscard]] qint64 moduleDataSize(const ModuleInfo& info);

} // namespace ModuleCatalog
} // namespace kse
