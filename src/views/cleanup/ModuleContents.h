// SPDX-License-Identifier: MIT
#pragma once

#include <QHash>

namespace kse {

struct ModuleInfo;
struct XsdtNode;

/// What the groups of a module hold.
struct ModuleContent
{
    qsizetype values = 0;       ///< As `ModuleCatalog::moduleValueCount`.
    qint64 bytes = 0;           ///< As `ModuleCatalog::moduleDataSize`.
    qsizetype queuedGroups = 0; ///< How many of the groups the next save removes.
    bool holdsQueued = false;   ///< Something inside a group is marked for deletion.
};

/// Counts and sizes the data of modules. It walks through each group once, also if modules share
/// it, and remembers the result until it is told to forget it.
class ModuleContents
{
public:
    ModuleContent of(const ModuleInfo& module);

    /// After a change of `node` or, for null, of any number of nodes.
    void forget(const XsdtNode* node);

private:
    QHash<const XsdtNode*, ModuleContent> m_groups;
};

} // namespace kse
