// SPDX-License-Identifier: MIT
// An input is a settings file, then, after a byte FF, what is searched for among its modules.
#include "FuzzInput.h"
#include "document/TreeWalk.h"
#include "document/XsdtDocument.h"
#include "schema/ModuleCatalog.h"

#include <algorithm>

using namespace kse;

namespace {

void requireModule(const XsdtDocument& document, const QString& name)
{
    const ModuleInfo module = ModuleCatalog::moduleInfo(document, name);
    require(module.registered == (module.registryNode != nullptr), "registered");
    require(!module.registered ||
                ModuleCatalog::moduleNameFromPath(module.registryNode->value) == name,
            "registry entry");
    for (const XsdtNode* node : module.nodes) {
        require(node->kind == XsdtNode::Kind::Group && module.nodes.count(node) == 1, "groups");
    }
    const QList<XsdtNode*> leaves = ModuleCatalog::moduleLeaves(module);
    require(ModuleCatalog::moduleValueCount(module) == leaves.size(), "value count");
    require((ModuleCatalog::moduleDataSize(module) > 0) == !module.nodes.isEmpty(), "data size");
}

void requireCatalog(const XsdtDocument& document, const QString& searched)
{
    const QStringList registered = ModuleCatalog::registeredModules(document);
    QStringList unused = ModuleCatalog::modulesWithData(document);
    QStringList all = registered + unused;
    for (const QString& name : registered) {
        require(registered.count(name) == 1, "each name once");
        unused.removeAll(name);
    }
    for (const ModuleInfo& module : ModuleCatalog::unusedModules(document)) {
        require(!unused.isEmpty() && module.name == unused.takeFirst(), "unused modules in order");
        require(!module.nodes.isEmpty(), "data");
    }
    require(unused.isEmpty(), "all unused modules");
    all.removeDuplicates();
    for (const QString& name : all.mid(0, 50)) {
        requireModule(document, name);
    }
    bool exact = false;
    const auto found = ModuleCatalog::searchModules(document, searched, &exact);
    const QString wanted = searched.trimmed();
    const auto isFound = [&](const QString& name) {
        return !wanted.isEmpty() && (exact ? name.compare(wanted, Qt::CaseInsensitive) == 0
                                           : name.contains(wanted, Qt::CaseInsensitive));
    };
    require(found.size() == std::count_if(all.begin(), all.end(), isFound), "modules found");
    for (const ModuleInfo& module : found) {
        require(isFound(module.name) && all.contains(module.name), "module found");
    }
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    const QByteArrayList input = parts(data, size, 2);
    XsdtDocument document;
    if (document.parse(input[0])) {
        walkTree(document.root, [&](const XsdtNode& node) {
            const QString name = ModuleCatalog::moduleNameFromPath(node.value);
            require(name.isEmpty() || (!name.contains(u'/') && !name.contains(u'\\') &&
                                       node.value.contains(name + QStringLiteral("-pxm."))),
                    "name");
            return Walk::Into;
        });
        requireCatalog(document, QString::fromUtf8(input[1]));
    }
    return 0;
}
