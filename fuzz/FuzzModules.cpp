// SPDX-License-Identifier: MIT
// An input is a settings file, then, after a byte FF, what is searched for among its modules.
#include "FuzzInput.h"
#include "document/XsdtDocument.h"
#include "schema/ModuleCatalog.h"

using namespace kse;
using namespace ModuleCatalog;

namespace {

/// Checks each module, and returns their names.
QStringList namesOf(const QList<ModuleInfo>& modules)
{
    QStringList names;
    for (const ModuleInfo& module : modules) {
        require(module.registered == (module.registryNode != nullptr), "registered");
        for (const XsdtNode* node : module.nodes) {
            require(node->kind == XsdtNode::Kind::Group && module.nodes.count(node) == 1, "groups");
        }
        require(moduleValueCount(module) == moduleLeaves(module).size(), "value count");
        require((moduleDataSize(module) > 0) == !module.nodes.isEmpty(), "data size");
        names += module.name;
    }
    return names;
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
    unused.removeIf([&](const QString& name) { return registered.contains(name); });
    require(namesOf(unusedModules(document)) == unused, "data without a registered module");
    bool exact = false;
    const QString searched = QString::fromUtf8(input[1]).trimmed();
    QStringList found = namesOf(searchModules(document, u' ' + searched, &exact));
    all.removeDuplicates();
    all.removeIf([&](const QString& name) {
        return searched.isEmpty() || (exact ? name.compare(searched, Qt::CaseInsensitive) != 0
                                            : !name.contains(searched, Qt::CaseInsensitive));
    });
    found.sort();
    all.sort();
    require(found == all, "modules found");
    return 0;
}
