// SPDX-License-Identifier: MIT
// An input is a settings file, then, after a byte FF, what is searched for among its modules.
#include "FuzzInput.h"
#include "document/XsdtDocument.h"
#include "schema/ModuleCatalog.h"

using namespace kse;
using namespace ModuleCatalog;

namespace {

void requireModule(const ModuleInfo& module)
{
    require(module.registered == (module.registryNode != nullptr), "registered");
    require(!module.registered || moduleNameFromPath(module.registryNode->value) == module.name,
            "registry entry");
    for (const XsdtNode* node : module.nodes) {
        require(node->kind == XsdtNode::Kind::Group && module.nodes.count(node) == 1, "groups");
    }
    require(moduleValueCount(module) == moduleLeaves(module).size(), "value count");
    require((moduleDataSize(module) > 0) == !module.nodes.isEmpty(), "data size");
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    const QByteArrayList input = parts(data, size, 2);
    XsdtDocument document;
    if (!document.parse(input[0])) {
        return 0;
    }
    const QStringList registered = registeredModules(document);
    QStringList unused = modulesWithData(document);
    QStringList all = registered + unused;
    require(QStringList(registered).removeDuplicates() == 0, "each name once");
    unused.removeIf([&](const QString& name) { return registered.contains(name); });
    for (const ModuleInfo& module : unusedModules(document)) {
        require(!unused.isEmpty() && module.name == unused.takeFirst(), "unused modules in order");
        require(!module.nodes.isEmpty(), "data");
        requireModule(module);
    }
    require(unused.isEmpty(), "all unused modules");
    bool exact = false;
    const QString searched = QString::fromUtf8(input[1]).trimmed();
    const QList<ModuleInfo> found = searchModules(document, u' ' + searched, &exact);
    all.removeDuplicates();
    all.removeIf([&](const QString& name) {
        return searched.isEmpty() || (exact ? name.compare(searched, Qt::CaseInsensitive) != 0
                                            : !name.contains(searched, Qt::CaseInsensitive));
    });
    require(found.size() == all.size(), "modules found");
    for (const ModuleInfo& module : found) {
        require(all.contains(module.name), "module found");
        requireModule(module);
    }
    return 0;
}
