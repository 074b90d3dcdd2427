// SPDX-License-Identifier: MIT
#include "views/health/HealthChecker.h"

#include "document/Depth.h"
#include "document/Leaves.h"
#include "document/ShortPath.h"
#include "document/XsdtDocument.h"
#include "schema/ModuleCatalog.h"
#include "schema/PrettyName.h"
#include "schema/SettingsSchema.h"
#include "views/health/DuplicateKeys.h"
#include "views/health/InstallFolder.h"

#include <QCoreApplication>
#include <QDir>
#include <QHash>

#include <algorithm>
#include <utility>

using namespace Qt::StringLiterals;

namespace kse {

namespace {

/// The unmarked values in the parts of the file where a path can start with "Global/", so that the
/// checks needn't make paths for all the data of modules. Values too deep for whole paths are left
/// out: no documented setting is that deep.
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
    settings.removeIf([](const XsdtNode* node) { return node->depth > deepestShownLevel; });
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
    void checkUnusedModules();
    void checkSecurity();

    /// The value at `path`; null if there is none or it is marked itself.
    XsdtNode* unmarkedValueAt(QStringView path) const;

    const XsdtDocument& m_document;
    const SettingsSchema& m_schema;
    const HealthEnv& m_env;
    QList<Finding> m_findings;
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
    // Empty values and PixInsight's own "@" folders aren't local paths, so they pass too.
    if (!m_env.isMissing(node->value)) {
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
    const qint64 number = node->value.toLongLong(); // 0 if it isn't a number
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
        if (m_env.isMissing(path.startsWith(prefix) ? binFolder + u'/' + path.sliced(prefix.size())
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
    const QList<QList<XsdtNode*>> duplicates = duplicateKeys(m_document);
    for (const QList<XsdtNode*>& same : duplicates) {
        const XsdtNode& group = *same.first()->parent;
        m_findings.append(
            {u"duplicate-key"_s, Severity::Warning,
             tr("\"%1\" appears %2 times in %3")
                 .arg(same.first()->key, QString::number(same.size()),
                      group.parent ? shortPath(group) : u"the top level"_s),
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

} // namespace

QList<Finding> HealthChecker::run(const XsdtDocument& document, const SettingsSchema& schema,
                                  const HealthEnv& env)
{
    return Checkup(document, schema, env).findings();
}

QString HealthChecker::severityName(Severity severity)
{
    const QStringList names{Checkup::tr("Note"), Checkup::tr("Warning"), Checkup::tr("Problem")};
    return names.value(static_cast<int>(severity)); // empty for any other number
}

} // namespace kse
