// SPDX-License-Identifier: MIT
// An input is a settings file, then, after a byte FF, what is searched for among its modules.
#include "FuzzInput.h"
#include "document/TreeWalk.h"
#include "document/XsdtDocument.h"
#include "schema/ModuleCatalog.h"

#include <QRegularExpression>

#include <algorithm>

using namespace kse;
using namespace Qt::StringLiterals;

namespace {

using Nodes = QList<XsdtNode*>;

QString plainName(const QString& path)
{
    static const QRegularExpression expression(uR"(([^/\\]+?)-pxm\.(?:dll|so|dylib)$)"_s);
    return expression.match(path).captured(1);
}

XsdtNode* group(const XsdtNode* parent, const QString& key)
{
    XsdtNode* child = parent ? parent->childByKey(key) : nullptr;
    return child && child->kind == XsdtNode::Kind::Group ? child : nullptr;
}

/// The groups among the children of `parent`, which may be null.
Nodes groups(const XsdtNode* parent)
{
    Nodes groups;
    for (std::size_t i = 0; parent && i < parent->children.size(); ++i) {
        XsdtNode* child = parent->children[i].get();
        if (child->kind == XsdtNode::Kind::Group) {
            groups.append(child);
        }
    }
    return groups;
}

XsdtNode* plainRegistryNode(const XsdtDocument& document, const QString& name)
{
    const XsdtNode* modules = group(&document.root, u"Modules"_s);
    for (std::size_t i = 0; modules && i < modules->children.size(); ++i) {
        XsdtNode* child = modules->children[i].get();
        if (child->kind == XsdtNode::Kind::Value && plainName(child->value) == name) {
            return child;
        }
    }
    return nullptr;
}

/// Where the data of module `name` lies, looking through every place anew.
Nodes plainNodes(const XsdtDocument& document, const QString& name)
{
    Nodes nodes;
    QStringList processes{name};
    const auto scan = [&](const XsdtNode* parent, bool interfaces) {
        for (XsdtNode* module : groups(parent)) {
            if (module->key != name) {
                continue;
            }
            nodes.append(module);
            const XsdtNode* list = interfaces ? group(module, u"Interfaces"_s) : nullptr;
            for (std::size_t i = 0; list && i < list->children.size(); ++i) {
                processes.append(list->children[i]->key);
            }
        }
    };
    scan(group(&document.root, u"ModuleData"_s), true);
    scan(group(&document.root, u"ModuleDataAccess"_s), false);
    if (!ModuleCatalog::isKnownTopLevel(name)) {
        scan(&document.root, true);
    }
    processes.removeDuplicates();
    const XsdtNode* global = group(&document.root, u"Global"_s);
    const XsdtNode* options = group(group(global, u"Preferences"_s), u"ProcessInterface"_s);
    const XsdtNode* counters = group(group(global, u"Statistics"_s), u"Process"_s);
    for (const QString& process : processes) {
        for (const XsdtNode* place : {options, counters}) {
            if (XsdtNode* node = group(place, process)) {
                nodes.append(node);
            }
        }
    }
    return nodes;
}

QSet<QString> plainNamesWithData(const XsdtDocument& document)
{
    QSet<QString> names;
    for (const QString& container : {u"ModuleData"_s, u"ModuleDataAccess"_s}) {
        for (const XsdtNode* node : groups(group(&document.root, container))) {
            if (node->key != u'0') {
                names.insert(node->key);
            }
        }
    }
    for (const XsdtNode* node : groups(&document.root)) {
        if (!ModuleCatalog::isKnownTopLevel(node->key)) {
            names.insert(node->key);
        }
    }
    return names;
}

void requireSortedOnce(const QStringList& names)
{
    for (qsizetype i = 1; i < names.size(); ++i) {
        require(names[i - 1].compare(names[i], Qt::CaseInsensitive) <= 0, "sorted");
    }
    require(QSet<QString>(names.begin(), names.end()).size() == names.size(), "each name once");
}

void requireModule(const XsdtDocument& document, const ModuleInfo& module)
{
    require(module.registryNode == plainRegistryNode(document, module.name), "registry entry");
    require(module.registered == (module.registryNode != nullptr), "registered");
    require(module.nodes == plainNodes(document, module.name), "places of a module");
    const Nodes leaves = ModuleCatalog::moduleLeaves(module);
    require(ModuleCatalog::moduleValueCount(module) == leaves.size(), "value count");
    const bool areValues = std::all_of(leaves.begin(), leaves.end(), [](const XsdtNode* leaf) {
        return leaf->kind == XsdtNode::Kind::Value;
    });
    require(areValues, "leaves are values");
    require((ModuleCatalog::moduleDataSize(module) > 0) == !module.nodes.isEmpty(), "data size");
}

void requireFound(const XsdtDocument& document, const QStringList& all, const QString& text)
{
    QStringList same;
    QStringList containing;
    const QString wanted = text.trimmed();
    for (const QString& name : all) {
        if (name.compare(wanted, Qt::CaseInsensitive) == 0) {
            same.append(name);
        } else if (name.contains(wanted, Qt::CaseInsensitive)) {
            containing.append(name);
        }
    }
    QStringList expected = wanted.isEmpty() ? QStringList() : same.isEmpty() ? containing : same;
    bool exact = false;
    QStringList found;
    for (const ModuleInfo& module : ModuleCatalog::searchModules(document, text, &exact)) {
        found.append(module.name);
    }
    require(exact == (!wanted.isEmpty() && !same.isEmpty()), "exact");
    std::sort(expected.begin(), expected.end());
    std::sort(found.begin(), found.end());
    require(found == expected, "modules found");
}

void requireCatalog(const XsdtDocument& document, const QString& searched)
{
    const QStringList registered = ModuleCatalog::registeredModules(document);
    const QStringList withData = ModuleCatalog::modulesWithData(document);
    requireSortedOnce(registered);
    requireSortedOnce(withData);
    require(QSet<QString>(withData.begin(), withData.end()) == plainNamesWithData(document),
            "names with data");
    QStringList unused = withData;
    for (const QString& name : registered) {
        unused.removeAll(name);
    }
    const QList<ModuleInfo> modules = ModuleCatalog::unusedModules(document);
    require(modules.size() == unused.size(), "unused modules");
    for (qsizetype i = 0; i < modules.size(); ++i) {
        require(modules[i].name == unused[i], "unused modules in order");
    }
    QStringList all = registered + withData;
    all.removeDuplicates();
    for (const QString& name : all.mid(0, 50)) {
        requireModule(document, ModuleCatalog::moduleInfo(document, name));
    }
    requireFound(document, all, searched);
}

void requireNames(const XsdtDocument& document)
{
    walkTree(document.root, [&](const XsdtNode& node) {
        require(ModuleCatalog::moduleNameFromPath(node.value) == plainName(node.value), "name");
        return Walk::Into;
    });
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    const QByteArrayList input = parts(data, size, 2);
    XsdtDocument document;
    if (document.parse(input[0])) {
        requireNames(document);
        requireCatalog(document, QString::fromUtf8(input[1]));
    }
    return 0;
}
