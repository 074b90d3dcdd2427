// SPDX-License-Identifier: MIT
#include "views/cleanup/ModuleContents.h"

#include "document/TreeWalk.h"
#include "schema/ModuleCatalog.h"

namespace kse {

namespace {

ModuleContent contentOf(const XsdtNode& group)
{
    ModuleContent content;
    content.bytes = group.serializedSize();
    walkTree(group, [&content](const XsdtNode& node) {
        content.values += node.kind == XsdtNode::Kind::Value ? 1 : 0;
        content.holdsQueued = content.holdsQueued || node.markedForDeletion;
        return Walk::Into;
    });
    return content;
}

} // namespace

ModuleContent ModuleContents::of(const ModuleInfo& module)
{
    ModuleContent sum;
    sum.values = module.registryNode ? 1 : 0;
    for (const XsdtNode* node : module.nodes) {
        auto group = m_groups.find(node);
        if (group == m_groups.end()) {
            group = m_groups.insert(node, contentOf(*node));
        }
        sum.values += group->values;
        sum.bytes += group->bytes;
        sum.queuedGroups += node->isInsideDeletion() ? 1 : 0;
        sum.holdsQueued = sum.holdsQueued || group->holdsQueued;
    }
    return sum;
}

void ModuleContents::forget(const XsdtNode* node)
{
    if (!node) {
        m_groups.clear();
    }
    for (; node; node = node->parent) {
        m_groups.remove(node);
    }
}

} // namespace kse
