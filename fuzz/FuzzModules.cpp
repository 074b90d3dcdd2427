// SPDX-License-Identifier: MIT
// An input is a settings file, then, after a byte FF, what is searched for among its modules.
#include "FuzzInput.h"
#include "document/XsdtDocument.h"
#include "schema/ModuleCatalog.h"

using namespace kse;
using namespace ModuleCatalog;

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    const QByteArrayList input = parts(data, size, 2);
    XsdtDocument document;
    if (!document.parse(input[0])) {
        return 0;
    }
    const QString searched = QString::fromUtf8(input[1]).trimmed();
    const QList<ModuleInfo> unused = unusedModules(document);
    const QList<ModuleInfo> found = searchModules(document, searched);
    QStringList names = modulesWithData(document);
    names.removeIf(
        [all = registeredModules(document)](const QString& name) { return all.contains(name); });
    require(names.size() == unused.size(), "data without a registered module");
    for (const ModuleInfo& module : unused + found) {
        require(names.contains(module.name) || module.name.contains(searched, Qt::CaseInsensitive),
                "unused or searched for");
        require(module.registered == (module.registryNode != nullptr), "registered");
        for (const XsdtNode* node : module.nodes) {
            require(node->kind == XsdtNode::Kind::Group && module.nodes.count(node) == 1, "groups");
        }
        require(moduleValueCount(module) == moduleLeaves(module).size(), "value count");
        require((moduleDataSize(module) > 0) == !module.nodes.isEmpty(), "data size");
    }
    return 0;
}
