// SPDX-License-Identifier: MIT
#include "views/health/HealthChecker.h"

#include "document/Leaves.h"
#include "document/ShortPath.h"
#include "document/TreeWalk.h"
#include "document/XsdtDocument.h"
#include "schema/ModuleCatalog.h"
#include "schema/PrettyName.h"
#include "schema/SettingsSchema.h"
#include "views/health/InstallFolder.h"

#include <QCoreApplication>
#include <QDir>
#include <QFileInfo>
#include <QHash>
#include <QThread>

#include <algorithm>
#include <utility>
#include <vector>

using namespace Qt::StringLiterals;

namespace kse {

namespace {

/// The unmarked values in those parts of the file that can hold a path below "Global/", so that
/// nobody has to make paths of all the data of modules. Values too deep for whole paths are left
/// out: no documented setting lies there.
QList<XsdtNode*> unmarkedSettings(const XsdtNode& root)
{
    QList<XsdtNode*> settings;
    for (const auto& child : root.children) {
        // An empty key adds nothing to a path, and a key may hold the separator itself.
        if (!child->markedForDeletion && (child->key.isEmpty() || child->key == "Global"_L1 ||
                                          child->key.startsWith("Global/"_L1))) {
            settings += unmarkedValues(*child);
        }
    }
    settings.removeIf([](const XsdtNode* node) { return node->depth > deepestWholePath; });
    return settings;
}

/// One run of the checks over one document.
class Checkup
{
    Q_DECLARE_TR_FUNCTIONS(HealthChecker)

public:
    Checkup(const XsdtDocument& document, const SettingsSchema& schema, const HealthEnv& env)
        : m_document(document)
        , m_schema(schema)
        , m_env(env)
    {
    }

    QList<Finding> findings();

private:
    void checkValues(const QList<XsdtNode*>& leaves);
    void checkPath(XsdtNode* node, const QString& path, const VariableInfo& info);
    void checkRange(XsdtNode* node, const VariableInfo& info);
    void checkChoice(XsdtNode* node, const VariableInfo& info);
    void checkProcessors();
    void checkModuleFiles(const QList<XsdtNode*>& leaves);
    void matchRegistry(const XsdtNode& registry, const QString& binFolder);
    void checkDuplicates();
    void checkDuplicatesIn(const XsdtNode& group);
    void checkUnusedModules();
    void checkSecurity();

    /// The value at `path` unless it is marked itself, or null.
    XsdtNode* unmarkedValueAt(QStringView path) const;
    bool isMissing(const QString& path) const;

    const XsdtDocument& m_document;
    const SettingsSchema& m_schema;
    const HealthEnv& m_env;
    QList<Finding> m_findings;
    std::vector<size_t> m_hashes; ///< Kept from group to group for its memory.
};

QList<Finding> Checkup::findings()
{
    const QList<XsdtNode*> leaves = unmarkedSettings(m_document.root);
    checkValues(leaves);
    checkProcessors();
    checkModuleFiles(leaves);
    checkDuplicates();
    checkUnusedModules();
    checkSecurity();
    std::stable_sort(m_findings.begin(), m_findings.end(),
                     [](const Finding& a, const Finding& b) { return a.severity > b.severity; });
    return std::move(m_findings);
}

void Checkup::checkValues(const QList<XsdtNode*>& leaves)
{
    for (XsdtNode* leaf : leaves) {
        if (!leaf->isEditableType()) {
            continue;
        }
        const QString path = leaf->path();
        if (!path.startsWith("Global/"_L1)) {
            continue;
        }
        const VariableInfo info = m_schema.describe(*leaf);
        switch (info.kind) {
        case VariableKind::FilePath:
        case VariableKind::Directory:
            checkPath(leaf, path, info);
            break;
        case VariableKind::Integer:
        case VariableKind::Unsigned:
        case VariableKind::Real:
            checkRange(leaf, info);
            break;
        case VariableKind::Choice:
            checkChoice(leaf, info);
            break;
        default:
            break;
        }
    }
}

void Checkup::checkPath(XsdtNode* node, const QString& path, const VariableInfo& info)
{
    if (info.readOnly || !(path.startsWith("Global/Preferences/"_L1) ||
                           path.startsWith("Global/ColorManagement/"_L1))) {
        return;
    }
    // Blanks and PixInsight's own "@" folders aren't paths of a system, so they pass as well.
    if (!isMissing(node->value)) {
        return;
    }
    const QString title = info.kind == VariableKind::Directory ? tr("%1: the folder does not exist")
                                                               : tr("%1: the file does not exist");
    m_findings.append(
        {u"path-missing"_s,
         Severity::Warning,
         title.arg(info.label),
         tr("%1 is not on this computer. If it is a drive that is not connected right now, ignore "
            "this; otherwise point the setting at somewhere that exists.")
             .arg(QDir::toNativeSeparators(node->value)),
         {node}});
}

void Checkup::checkRange(XsdtNode* node, const VariableInfo& info)
{
    bool isNumber = false;
    const double number = node->value.toDouble(&isNumber);
    if (!info.hasRange || !isNumber || !(number < info.min || number > info.max)) {
        return;
    }
    m_findings.append({u"out-of-range"_s,
                       Severity::Problem,
                       tr("%1 is outside its documented range").arg(info.label),
                       tr("The value is %1; PixInsight documents %2 to %3.")
                           .arg(node->value, QString::number(info.min), QString::number(info.max)),
                       {node}});
}

void Checkup::checkChoice(XsdtNode* node, const VariableInfo& info)
{
    const qint64 number = node->value.toLongLong(); // 0 for what is no number
    QStringList options;
    for (const VariableChoice& choice : info.choices) {
        if (choice.value == number) {
            return;
        }
        options.append(tr("%1 = %2").arg(QString::number(choice.value), choice.text));
    }
    m_findings.append(
        {u"unknown-option"_s,
         Severity::Warning,
         tr("%1 has an option value that is not recognised").arg(info.label),
         tr("The value is %1; the known options are: %2.").arg(node->value, options.join(", "_L1)),
         {node}});
}

void Checkup::checkProcessors()
{
    XsdtNode* node = unmarkedValueAt(u"Global/Preferences/Process/MaxProcessors");
    if (m_env.processors <= 0 || !node || node->value.toInt() <= m_env.processors) {
        return;
    }
    m_findings.append(
        {u"too-many-processors"_s,
         Severity::Warning,
         tr("Maximum processors is higher than this computer has"),
         tr("The setting is %1 and this computer has %2 logical processors. This is harmless on "
            "the computer the file came from, but here PixInsight will simply use them all.")
             .arg(node->value, QString::number(m_env.processors)),
         {node}});
}

void Checkup::checkModuleFiles(const QList<XsdtNode*>& leaves)
{
    const XsdtNode* registry = m_document.root.childByKey(u"Modules");
    if (!registry || registry->kind != XsdtNode::Kind::Group) {
        return;
    }
    const ProgramFolder folder = findProgramFolder(leaves, m_env);
    if (!folder.path.isEmpty()) {
        matchRegistry(*registry, folder.path);
        return;
    }
    const QString tried = folder.tried.isEmpty()
                              ? tr("(nowhere: no location is recorded in the file and none is "
                                   "known for this system)")
                              : folder.tried.join(", "_L1);
    m_findings.append({u"modules-unchecked"_s,
                       Severity::Note,
                       tr("Module files were not checked"),
                       tr("The PixInsight program folder could not be found, so the registered "
                          "modules could not be matched to files. Looked in: %1.")
                           .arg(tried),
                       {}});
}

void Checkup::matchRegistry(const XsdtNode& registry, const QString& binFolder)
{
    const QLatin1String prefix("@pxi_bin_dir/");
    QList<XsdtNode*> nodes;
    QStringList names;
    for (const auto& child : registry.children) {
        if (child->kind != XsdtNode::Kind::Value || child->markedForDeletion) {
            continue;
        }
        const QString& path = child->value;
        if (isMissing(path.startsWith(prefix) ? binFolder + u'/' + path.sliced(prefix.size())
                                              : path)) {
            const QString name = ModuleCatalog::moduleNameFromPath(path);
            names.append(name.isEmpty() ? path : name);
            nodes.append(child.get());
        }
    }
    if (nodes.isEmpty()) {
        return;
    }
    m_findings.append({u"module-file-missing"_s, Severity::Warning,
                       tr("%n registered module(s) have no file on this computer", nullptr,
                          static_cast<int>(nodes.size())),
                       tr("Listed in the module registry but not in %1: %2. PixInsight repairs its "
                          "registry at startup, so this only matters if the modules should be "
                          "there.")
                           .arg(QDir::toNativeSeparators(binFolder), names.join(", "_L1)),
                       nodes});
}

void Checkup::checkDuplicates()
{
    checkDuplicatesIn(m_document.root);
    walkTree(m_document.root, [&](const XsdtNode& node) {
        if (node.markedForDeletion) {
            return Walk::Over;
        }
        checkDuplicatesIn(node);
        return Walk::Into;
    });
}

void Checkup::checkDuplicatesIn(const XsdtNode& group)
{
    // Almost no group has duplicates: sorted hashes tell so without a table of its keys.
    m_hashes.clear();
    for (const auto& child : group.children) {
        if (!child->markedForDeletion) {
            m_hashes.push_back(qHash(child->key));
        }
    }
    std::sort(m_hashes.begin(), m_hashes.end());
    if (std::adjacent_find(m_hashes.begin(), m_hashes.end()) == m_hashes.end()) {
        return;
    }
    QHash<QStringView, QList<XsdtNode*>> byKey;
    for (const auto& child : group.children) {
        if (!child->markedForDeletion) {
            byKey[child->key].append(child.get());
        }
    }
    const QString place = group.parent ? shortPath(group) : u"the top level"_s;
    for (const auto& child : group.children) {
        if (child->markedForDeletion) {
            continue;
        }
        const QList<XsdtNode*> same = byKey.take(child->key); // so that each key comes once
        if (same.size() < 2) {
            continue;
        }
        m_findings.append(
            {u"duplicate-key"_s, Severity::Warning,
             tr("\"%1\" appears %2 times in %3")
                 .arg(child->key, QString::number(same.size()), place),
             tr("A key should occur once. PixInsight reads only one of them, so the other holds "
                "data it never uses, or a stale copy that may be the one it picks."),
             same});
    }
}

void Checkup::checkUnusedModules()
{
    const QList<ModuleInfo> modules = ModuleCatalog::unusedModules(m_document);
    if (modules.isEmpty()) {
        return;
    }
    QStringList names;
    qsizetype values = 0;
    QHash<const XsdtNode*, qsizetype> counts; // many modules may share the groups of a process
    for (const ModuleInfo& module : modules) {
        names.append(module.name);
        for (const XsdtNode* node : module.nodes) {
            if (!counts.contains(node)) {
                counts.insert(node, node->valueCount());
            }
            values += counts.value(node);
        }
    }
    m_findings.append({u"unused-modules"_s,
                       Severity::Note,
                       tr("%n module(s) have saved data but are not in the module list", nullptr,
                          static_cast<int>(modules.size())),
                       tr("%1 (%2 values in all). Uninstalled, renamed or replaced modules leave "
                          "their data behind.")
                           .arg(names.join(", "_L1), QString::number(values)),
                       {},
                       FindingAction::OpenUnusedModules});
}

void Checkup::checkSecurity()
{
    QList<XsdtNode*> nodes;
    QStringList names;
    for (const QLatin1String key :
         {"AllowInsecureRepositories"_L1, "AllowUnsignedModuleInstallation"_L1,
          "AllowUnsignedRepositories"_L1, "AllowUnsignedScriptExecution"_L1}) {
        XsdtNode* node = unmarkedValueAt("Global/Preferences/Security/"_L1 + key);
        if (node && node->value == "true"_L1) {
            nodes.append(node);
            names.append(prettyName(node->key).toLower());
        }
    }
    if (nodes.isEmpty()) {
        return;
    }
    m_findings.append({u"unsigned-allowed"_s, Severity::Note,
                       tr("PixInsight is set to allow unsigned or insecure content"),
                       tr("Turned on: %1. That is a choice, not an error; it just lowers "
                          "PixInsight's protection.")
                           .arg(names.join("; "_L1)),
                       nodes});
}

XsdtNode* Checkup::unmarkedValueAt(QStringView path) const
{
    XsdtNode* node = m_document.root.findByPath(path);
    const bool fits = node && node->kind == XsdtNode::Kind::Value && !node->markedForDeletion;
    return fits ? node : nullptr;
}

/// Whether `path` is one of this system and certainly leads nowhere.
bool Checkup::isMissing(const QString& path) const
{
    return isPathForThisSystem(path, m_env.isWindows) && m_env.exists && !m_env.exists(path);
}

} // namespace

HealthEnv HealthEnv::system()
{
    HealthEnv env;
    env.exists = [](const QString& path) {
#ifndef Q_OS_WIN
        if (path.startsWith("~/"_L1)) {
            return QFileInfo::exists(QDir::homePath() + path.sliced(1));
        }
#endif
        return QFileInfo::exists(path);
    };
    env.processors = QThread::idealThreadCount();
#ifndef Q_OS_WIN
    env.isWindows = false;
#endif
    env.installFolders = usualInstallFolders();
    return env;
}

QList<Finding> HealthChecker::run(const XsdtDocument& document, const SettingsSchema& schema,
                                  const HealthEnv& env)
{
    return Checkup(document, schema, env).findings();
}

QString HealthChecker::severityName(Severity severity)
{
    switch (severity) {
    case Severity::Note:
        return QCoreApplication::translate("HealthChecker", "Note");
    case Severity::Warning:
        return QCoreApplication::translate("HealthChecker", "Warning");
    case Severity::Problem:
        return QCoreApplication::translate("HealthChecker", "Problem");
    }
    return {};
}

} // namespace kse
