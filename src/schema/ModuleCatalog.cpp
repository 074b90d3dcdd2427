// SPDX-License-Identifier: MIT
#include "schema/ModuleCatalog.h"

#include "document/Leaves.h"
#include "document/XsdtDocument.h"

#include <QHash>
#include <QSet>

#include <algorithm>
#include <utility>

using namespace Qt::StringLiterals;

namespace kse {

namespace {

bool isGroup(const XsdtNode& node)
{
    return node.kind == XsdtNode::Kind::Group;
}

/// The first child of `parent` with that key if it is a group, else null. `parent` may be null.
XsdtNode* groupAt(const XsdtNode* parent, QStringView key)
{
    XsdtNode* child = parent ? parent->childByKey(key) : nullptr;
    return child && isGroup(*child) ? child : nullptr;
}

QHash<QString, QList<XsdtNode*>> groupsByKey(const XsdtNode* parent)
{
    QHash<QString, QList<XsdtNode*>> groups;
    if (parent) {
        for (const auto& child : parent->children) {
            if (isGroup(*child)) {
                groups[child->key].append(child.get());
            }
        }
    }
    return groups;
}

/// The result of `groupAt` for each key: null if the first child with that key is a value.
QHash<QString, XsdtNode*> firstGroups(const XsdtNode* parent)
{
    QHash<QString, XsdtNode*> groups;
    if (parent) {
        for (const auto& child : parent->children) {
            if (!groups.contains(child->key)) {
                groups.insert(child->key, isGroup(*child) ? child.get() : nullptr);
            }
        }
    }
    return groups;
}

/// The first registry entry of each module.
QHash<QString, XsdtNode*> registryOf(const XsdtDocument& document)
{
    QHash<QString, XsdtNode*> registry;
    if (const XsdtNode* modules = groupAt(&document.root, u"Modules")) {
        for (const auto& child : modules->children) {
            const QString name = child->kind == XsdtNode::Kind::Value
                                     ? ModuleCatalog::moduleNameFromPath(child->value)
                                     : QString();
            if (!name.isEmpty() && !registry.contains(name)) {
                registry.insert(name, child.get());
            }
        }
    }
    return registry;
}

/// The places in a document with data of modules, indexed by key. It lives for one call. Without it
/// each place would be scanned once for every module.
class ModulePlaces
{
public:
    explicit ModulePlaces(const XsdtDocument& document)
        : registry(registryOf(document))
        , m_data(groupsByKey(groupAt(&document.root, u"ModuleData")))
        , m_access(groupsByKey(groupAt(&document.root, u"ModuleDataAccess")))
        , m_top(groupsByKey(&document.root))
    {
        const XsdtNode* global = groupAt(&document.root, u"Global");
        m_windowOptions =
            firstGroups(groupAt(groupAt(global, u"Preferences"), u"ProcessInterface"));
        m_counters = firstGroups(groupAt(groupAt(global, u"Statistics"), u"Process"));
    }

    QStringList namesWithData() const;
    ModuleInfo info(const QString& name) const;

    const QHash<QString, XsdtNode*> registry;

private:
    QHash<QString, QList<XsdtNode*>> m_data;
    QHash<QString, QList<XsdtNode*>> m_access;
    QHash<QString, QList<XsdtNode*>> m_top;
    QHash<QString, XsdtNode*> m_windowOptions;
    QHash<QString, XsdtNode*> m_counters;
};

QStringList ModulePlaces::namesWithData() const
{
    QStringList names = m_data.keys();
    names += m_access.keys();
    names.removeAll(u"0"_s);
    for (auto it = m_top.keyBegin(); it != m_top.keyEnd(); ++it) {
        if (!ModuleCatalog::isKnownTopLevel(*it)) {
            names.append(*it);
        }
    }
    return names;
}

ModuleInfo ModulePlaces::info(const QString& name) const
{
    ModuleInfo info;
    info.name = name;
    info.registryNode = registry.value(name);
    info.registered = info.registryNode != nullptr;
    QStringList processes{name}; // a process often has its module's name
    const auto scan = [&](const QList<XsdtNode*>& groups) {
        for (const XsdtNode* group : groups) {
            if (const XsdtNode* interfaces = groupAt(group, u"Interfaces")) {
                for (const auto& child : interfaces->children) {
                    processes.append(child->key);
                }
            }
        }
        info.nodes += groups;
    };
    scan(m_data.value(name));
    info.nodes += m_access.value(name);
    if (!ModuleCatalog::isKnownTopLevel(name)) {
        scan(m_top.value(name));
    }
    processes.removeDuplicates();
    for (const QString& process : std::as_const(processes)) {
        for (XsdtNode* node : {m_windowOptions.value(process), m_counters.value(process)}) {
            if (node) {
                info.nodes.append(node);
            }
        }
    }
    return info;
}

/// Sorts without case and removes duplicates. Names that differ only in case have a fixed order.
QStringList sortedOnce(QStringList names)
{
    names.removeDuplicates();
    std::sort(names.begin(), names.end(), [](const QString& a, const QString& b) {
        const int order = a.compare(b, Qt::CaseInsensitive);
        return order != 0 ? order < 0 : a < b;
    });
    return names;
}

} // namespace

bool ModuleCatalog::isKnownTopLevel(const QString& key)
{
    static const QSet<QString> known{u"Global"_s,
                                     u"MainWindow"_s,
                                     u"Modules"_s,
                                     u"ModuleData"_s,
                                     u"ModuleDataAccess"_s,
                                     u"ScriptData"_s,
                                     u"LastVersion"_s,
                                     u"PixInsight"_s,
                                     u"CentralWidgetClients"_s,
                                     u"CommandHistory"_s,
                                     u"DontShowAgain"_s,
                                     u"ExtensibleWidgets"_s,
                                     u"FileExplorer"_s,
                                     u"FloatingInstanceInfoViewer"_s,
                                     u"FloatingSourceEditor"_s,
                                     u"ThreadPerformanceOptimization"_s};
    return known.contains(key);
}

QString ModuleCatalog::moduleNameFromPath(const QString& path)
{
    // No regular expression: one that may begin anywhere takes quadratic time on a long value.
    QStringView name = path;
    if (name.endsWith(u'\n')) {
        name.chop(1);
    }
    for (const QLatin1String suffix : {"-pxm.dll"_L1, "-pxm.so"_L1, "-pxm.dylib"_L1}) {
        if (name.endsWith(suffix)) {
            name.chop(suffix.size());
            return name.sliced(std::max(name.lastIndexOf(u'/'), name.lastIndexOf(u'\\')) + 1)
                .toString();
        }
    }
    return {};
}

QStringList ModuleCatalog::registeredModules(const XsdtDocument& document)
{
    return sortedOnce(registryOf(document).keys());
}

QStringList ModuleCatalog::modulesWithData(const XsdtDocument& document)
{
    return sortedOnce(ModulePlaces(document).namesWithData());
}

ModuleInfo ModuleCatalog::moduleInfo(const XsdtDocument& document, const QString& name)
{
    return ModulePlaces(document).info(name);
}

QList<ModuleInfo> ModuleCatalog::unusedModules(const XsdtDocument& document)
{
    const ModulePlaces places(document);
    QList<ModuleInfo> unused;
    for (const QString& name : sortedOnce(places.namesWithData())) {
        if (!places.registry.contains(name)) {
            unused.append(places.info(name));
        }
    }
    return unused;
}

QList<ModuleInfo> ModuleCatalog::searchModules(const XsdtDocument& document, const QString& text,
                                               bool* exact)
{
    const ModulePlaces places(document);
    const QString wanted = text.trimmed();
    QStringList same;
    QStringList containing;
    if (!wanted.isEmpty()) {
        QStringList names = places.registry.keys();
        names += places.namesWithData();
        for (const QString& name : sortedOnce(names)) {
            if (name.compare(wanted, Qt::CaseInsensitive) == 0) {
                same.append(name);
            } else if (name.contains(wanted, Qt::CaseInsensitive)) {
                containing.append(name);
            }
        }
    }
    if (exact) {
        *exact = !same.isEmpty();
    }
    QList<ModuleInfo> modules;
    for (const QString& name : same.isEmpty() ? containing : same) {
        modules.append(places.info(name));
    }
    return modules;
}

QList<XsdtNode*> ModuleCatalog::moduleLeaves(const ModuleInfo& info)
{
    QList<XsdtNode*> leaves;
    if (info.registryNode) {
        leaves.append(info.registryNode);
    }
    for (const XsdtNode* node : info.nodes) {
        leaves += valuesOf(*node);
    }
    return leaves;
}

qsizetype ModuleCatalog::moduleValueCount(const ModuleInfo& info)
{
    qsizetype count = info.registryNode ? 1 : 0;
    for (const XsdtNode* node : info.nodes) {
        count += node->valueCount();
    }
    return count;
}

qint64 ModuleCatalog::moduleDataSize(const ModuleInfo& info)
{
    qint64 size = 0;
    for (const XsdtNode* node : info.nodes) {
        size += node->serializedSize();
    }
    return size;
}

} // namespace kse
