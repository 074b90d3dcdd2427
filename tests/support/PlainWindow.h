// SPDX-License-Identifier: MIT
#pragma once

#include "document/TreeWalk.h"
#include "document/XsdtDocument.h"
#include "document/XsdtValueType.h"
#include "schema/DeletePolicy.h"
#include "schema/ModuleCatalog.h"
#include "schema/PrettyName.h"
#include "schema/SettingsSchema.h"
#include "support/PlainWays.h"
#include "support/TextRows.h"
#include "support/WindowPicture.h"
#include "views/FormatBytes.h"
#include "views/HealthChecker.h"
#include "views/PlainText.h"

#include <QFileInfo>
#include <QMap>

namespace kse {

using namespace Qt::StringLiterals;

/// What the pages of the window should show, worked out from the document in the plainest way:
/// every page anew from nothing but the nodes and what the user did on it last. The lines are
/// those of `WindowPicture.h`.
struct PlainWindow
{
    PlainWindow()
    {
        const QByteArray overlay = builtInTable("overlay.json");
        if (!schema.load(builtInTable("globals.json"), overlay) || !policy.load(overlay)) {
            qFatal("the tables don't load");
        }
    }

    SettingsSchema schema;
    DeletePolicy policy;
    const HealthEnv env = HealthEnv::system();
    XsdtDocument* document = nullptr; ///< The window's; null while nothing is open.
    bool running = false;
    bool stale = false;

    // --- any page ---

    static qsizetype pending(const XsdtNode& root)
    {
        qsizetype count = 0;
        walkTree(root, [&](const XsdtNode& node) {
            count += node.markedForDeletion || node.value != node.original ? 1 : 0;
            return node.markedForDeletion ? Walk::Over : Walk::Into;
        });
        return count;
    }

    QStringList frame() const
    {
        const bool open = document;
        const qsizetype changes = open ? pending(document->root) : 0;
        const auto state = [](const char* name, bool on) {
            return QString::fromLatin1(name) + (on ? u" on"_s : u" off"_s);
        };
        QString banner;
        if (running) {
            banner = u"<b>PixInsight is running - view only.</b> It keeps its settings in memory "
                     "and overwrites this file, so edits made now would be lost. Close PixInsight "
                     "to edit. #5affbe00"_s;
        } else if (stale) {
            banner = u"<b>The file changed on disk since it was loaded.</b>"_s;
            if (changes > 0) {
                banner += u" Saving is blocked. Reload to continue (your %1 unsaved change(s) "
                          "will be discarded)."_s.arg(changes);
            }
            banner += u" #5aff7800 Reload"_s;
        } else if (open && !document->defaultLayout) {
            banner = u"This file uses a non-default layout (for example indented XML). Values are "
                     "unaffected; saving will rewrite it in PixInsight's compact layout. "
                     "#4650a0ff"_s;
        }
        return {changes > 0 ? u"Kestrane Settings Editor - %1 unsaved change(s)"_s.arg(changes)
                            : u"Kestrane Settings Editor"_s,
                banner,
                state("actReload", open),
                state("actSave", open && changes > 0 && !running && !stale),
                state("actRestore", open && !running),
                state("actBackups", open),
                state("actRevert", changes > 0)};
    }

    QString row(const XsdtNode& node, bool withPath) const
    {
        const VariableInfo info = schema.describe(node);
        QStringList groups = node.path().split(u'/');
        groups.removeLast();
        const bool changed = node.value != node.original;
        const bool inside = isInside(node);
        const bool canEdit = !running && !info.readOnly && isEditable(node) && !inside &&
                             !policy.isEditLocked(&node);
        return asCaption(info.label) + u" ("_s +
               (withPath ? groups.join(u" \u203A "_s) : QString()) + u") "_s + editor(node, info) +
               marks({{changed, 'B'},
                      {inside, 'S'},
                      {changed, 'A'},
                      {changed && !running && !inside, 'R'},
                      {canEdit, 'E'},
                      {true, 'Z'}}) +
               u' ' +
               (changed ? asToolTip(u"Revert to the value on disk: "_s + node.original.left(80))
                        : u"Unchanged"_s) +
               u" | "_s +
               asToolTip(node.path() +
                         (info.documented ? u""_s : u"\n(not documented by PixInsight)"_s));
    }

    static bool isInside(const XsdtNode& node)
    {
        return node.markedForDeletion || (node.parent && isInside(*node.parent));
    }

    static bool isEditable(const XsdtNode& node)
    {
        return node.kind == XsdtNode::Kind::Value && u"biuFfs"_s.contains(node.typeCode);
    }

    // --- the tree of all settings ---

    QString treeFilter;
    bool treeChangedOnly = false;

    bool passesFilter(const XsdtNode& node) const
    {
        if (treeChangedOnly && node.value == node.original && !node.markedForDeletion) {
            return false;
        }
        return node.path().contains(treeFilter, Qt::CaseInsensitive) ||
               (isEditable(node) && node.value.contains(treeFilter, Qt::CaseInsensitive));
    }

    bool isInTree(const XsdtNode& node) const
    {
        return passesFilter(node) ||
               std::any_of(node.children.begin(), node.children.end(),
                           [this](const auto& child) { return isInTree(*child); });
    }

    void appendTree(const XsdtNode& group, const QString& indent, QStringList& lines) const
    {
        for (const auto& child : group.children) {
            if (isInTree(*child)) {
                lines.append(indent + treeRow(*child));
                appendTree(*child, indent + u'.', lines);
            }
        }
    }

    QStringList tree() const
    {
        QStringList lines;
        if (document) {
            appendTree(document->root, {}, lines);
        }
        return lines;
    }

    // --- preferences ---

    QString preferencesText; ///< Trimmed.
    int preferencesRow = -1;
    QSet<const XsdtNode*> unmatched;
    QHash<const XsdtNode*, bool> toggled; ///< Sections that the user opened or closed.

    struct PreferencesPage
    {
        QString title;
        QStringList lines;
        QList<XsdtNode*> rows;
        QList<XsdtNode*> sections;
        bool found = false;
    };

    QList<PreferencesPage> preferences() const
    {
        QList<PreferencesPage> pages;
        if (!document) {
            return pages;
        }
        const QList<PageSpec> specs = schema.decoratedPages(*document);
        for (const PageSpec& spec : specs) {
            PreferencesPage page;
            for (XsdtNode* node : spec.nodes) {
                if (spec.nodes.size() == 1) {
                    appendGroup(*node, {}, page);
                } else if (hasVisible(*node)) {
                    appendSection(*node, true, {}, page);
                }
            }
            if (!page.rows.isEmpty()) {
                const auto changed =
                    std::count_if(page.rows.begin(), page.rows.end(),
                                  [](const XsdtNode* n) { return n->value != n->original; });
                page.found = std::any_of(page.rows.begin(), page.rows.end(),
                                         [this](const XsdtNode* n) { return isMatched(*n); });
                page.title = (page.found ? u""_s : u"-"_s) + spec.title +
                             (changed > 0 ? u"   ● %1 bold"_s.arg(changed) : QString());
                pages.append(page);
            }
        }
        return pages;
    }

    /// What a change of the search text does.
    void filterPreferences(const QString& text)
    {
        preferencesText = text.trimmed();
        unmatched.clear();
        toggled.clear();
        const QList<PreferencesPage> all = preferences();
        for (const PreferencesPage& page : all) {
            for (const XsdtNode* node : page.rows) {
                const VariableInfo info = schema.describe(*node);
                const bool matches = hasText(info.label) || hasText(node->key) ||
                                     hasText(info.description) ||
                                     (node->typeCode == u's' && hasText(node->value));
                if (!matches) {
                    unmatched.insert(node);
                }
            }
        }
        const QList<PreferencesPage> pages = preferences();
        if (preferencesRow < 0 || preferencesRow >= pages.size() || !pages[preferencesRow].found) {
            const auto first = std::find_if(pages.begin(), pages.end(),
                                            [](const PreferencesPage& page) { return page.found; });
            preferencesRow = first == pages.end() ? -1 : int(first - pages.begin());
        }
    }

    // --- search ---

    QList<XsdtNode*> results;
    qsizetype limit = 100;
    bool restricted = false;
    QSet<XsdtNode*> restriction;
    QString restrictionText;
    bool hasQuery = false;

    void search(SearchQuery query)
    {
        limit = 100;
        results.clear();
        hasQuery = !query.terms.isEmpty() || query.changedOnly || restricted;
        if (!document || !hasQuery) {
            return;
        }
        QList<SearchIndexEntry> index = buildSearchIndex(*document, schema);
        index.removeIf([&](const SearchIndexEntry& entry) {
            const XsdtNode& node = *entry.node;
            const bool member = restricted && restriction.contains(entry.node);
            return (restricted && !member) ||
                   (!query.includeProtected && !isEditable(node) && !member) ||
                   (query.changedOnly && node.value == node.original && !isInside(node));
        });
        const QList<qsizetype> places = plainSearch(index, query);
        for (const qsizetype place : places) {
            results.append(index[place].node);
        }
    }

    QStringList searchPage() const
    {
        const qsizetype shown = qMin(limit, results.size());
        QStringList lines{restricted ? restrictionText : u"no banner"_s, QString()};
        if (!document) {
            return lines;
        }
        if (!hasQuery) {
            lines[1] = u"Type to search the names, values and descriptions of every setting in the "
                       "file."_s;
        } else if (results.isEmpty()) {
            lines[1] = u"No matching settings."_s;
        } else if (shown < results.size()) {
            lines[1] = u"%1 results, showing the best %2. Refine the search or show more."_s
                           .arg(results.size())
                           .arg(shown);
        } else {
            lines[1] = u"%1 result(s)"_s.arg(results.size());
        }
        for (qsizetype i = 0; i < shown; ++i) {
            lines.append(row(*results[i], true));
        }
        if (shown < results.size()) {
            lines.append(u"<Show more results (%1 more)>"_s.arg(results.size() - shown));
        }
        return lines;
    }

    // --- cleanup ---

    struct CleanupEntry
    {
        QString name;
        QString numbers; ///< "values|size", as when the list was built.
        QList<XsdtNode*> nodes;
        QStringList details; ///< Of a whole group.
        qint64 size = 0;
        bool isWarn = false;
        bool isTicked = false;
        int heading = -1; ///< In `headings`, for one of many matches.
    };
    QList<CleanupEntry> entries; ///< In the order of the page.
    QStringList headings;

    void buildCleanup()
    {
        entries.clear();
        headings.clear();
        if (!document) {
            return;
        }
        for (const CleanupGroup& group : policy.cleanupGroups()) {
            group.each ? addMatches(group) : addWhole(group);
        }
        QList<CleanupEntry> warned;
        const QList<XsdtNode*> candidates = policy.warnCandidates(*document);
        for (XsdtNode* node : candidates) {
            warned.append(entryOf(node->path(), {node}));
            warned.last().isWarn = true;
        }
        sortByName(warned);
        entries += warned;
    }

    QStringList cleanup() const
    {
        QStringList lines{cleanupStatus()};
        if (!document) {
            return lines;
        }
        const QString off = running ? u"!"_s : QString();
        for (const bool warn : {false, true}) {
            QStringList below;
            QList<bool> ticks;
            int heading = -1;
            for (const CleanupEntry& entry : entries) {
                if (entry.isWarn != warn) {
                    continue;
                }
                ticks.append(entry.isTicked);
                if (entry.heading >= 0 && entry.heading != heading) {
                    heading = entry.heading;
                    QList<bool> own;
                    for (const CleanupEntry& sibling : entries) {
                        if (sibling.heading == heading) {
                            own.append(sibling.isTicked);
                        }
                    }
                    below.append(u'.' + boxOf(own) + headings[heading] + off);
                }
                const QString dots = entry.heading >= 0 ? u".."_s : u"."_s;
                const QString status = queuedText(entry);
                below.append(dots + boxOf({entry.isTicked}) + entry.name + u'|' + entry.numbers +
                             (status.isEmpty() ? QString() : u'|' + status) + off);
                for (const QString& detail : entry.details) {
                    below.append(u".."_s + detail + off);
                }
            }
            lines.append(boxOf(ticks) +
                         (warn ? u"Saved tool and script settings - deleting loses your "
                                 "configuration"_s
                               : u"Safe to clean - PixInsight recreates these"_s) +
                         off);
            if (below.isEmpty()) {
                below.append(
                    (warn ? u".No tool settings found."_s : u".Nothing to clean in this file."_s) +
                    off);
            }
            lines += below;
        }
        return lines;
    }

    // --- unused modules ---

    struct UnusedModule
    {
        ModuleInfo info;
        bool isTicked = false;
        bool isOpen = false;
        bool isBuilt = false;
    };
    QList<UnusedModule> modules;

    void buildModules()
    {
        modules.clear();
        if (document) {
            for (const ModuleInfo& info : ModuleCatalog::unusedModules(*document)) {
                modules.append({info});
            }
        }
    }

    QStringList unusedModules() const
    {
        QStringList lines;
        qsizetype queued = 0;
        qsizetype ticked = 0;
        qint64 bytes = 0;
        for (const UnusedModule& module : modules) {
            const ModuleInfo& info = module.info;
            const auto marked = std::count_if(info.nodes.begin(), info.nodes.end(),
                                              [](const XsdtNode* n) { return isInside(*n); });
            const qint64 size = ModuleCatalog::moduleDataSize(info);
            queued += marked > 0 ? 1 : 0;
            ticked += module.isTicked ? 1 : 0;
            bytes += module.isTicked ? size : 0;
            lines.append((module.isTicked ? u"[x]"_s : u"[ ]"_s) + (running ? u"!"_s : u""_s));
            QString title = u"%1  -  %2 value(s), %3"_s.arg(
                info.name, QString::number(ModuleCatalog::moduleValueCount(info)),
                formatBytes(size));
            if (marked > 0) {
                title += marked == info.nodes.size() ? u"   [queued for deletion]"_s
                                                     : u"   [partly queued for deletion]"_s;
            }
            lines.append((module.isOpen ? u"v "_s : u"> "_s) + asCaption(title));
            if (module.isBuilt) {
                appendModule(info, lines);
            }
        }
        QString summary;
        if (document && modules.isEmpty()) {
            summary = u"No unused module data: every module with saved data is in the module "
                      "list."_s;
        } else if (document && ticked > 0) {
            summary = u"%1 unused module(s); %2 ticked (about %3); %4 queued for deletion"_s.arg(
                QString::number(modules.size()), QString::number(ticked), formatBytes(bytes),
                QString::number(queued));
        } else if (document) {
            summary = u"%1 unused module(s); %2 queued for deletion"_s.arg(
                QString::number(modules.size()), QString::number(queued));
        }
        lines.prepend(summary + (!running && ticked > 0 ? u" (ticked on)"_s : u" (ticked off)"_s) +
                      (modules.isEmpty() ? u" (all off)"_s : u" (all on)"_s));
        return lines;
    }

    // --- health check ---

    QList<Finding> findings;
    bool hasChecked = false;
    bool isCheckOld = false;

    void check()
    {
        findings = document ? HealthChecker::run(*document, schema, env) : QList<Finding>();
        hasChecked = document;
        isCheckOld = false;
    }

    QStringList health() const
    {
        if (!hasChecked) {
            return {u"Health check"_s, QString()};
        }
        std::array<int, 3> counts = {};
        for (const Finding& finding : findings) {
            ++counts.at(std::size_t(finding.severity));
        }
        const int sum = counts[1] + counts[2];
        QStringList lines{
            sum > 0 ? u"Health check (%1)"_s.arg(sum) : u"Health check"_s,
            findings.isEmpty()
                ? u"No problems found."_s
                : u"%1 problem(s), %2 warning(s), %3 note(s)"_s.arg(counts[2]).arg(counts[1]).arg(
                      counts[0])};
        if (isCheckOld && !findings.isEmpty()) {
            lines[1] += u"   (You changed settings: run the check again to re-check.)"_s;
        }
        for (const Finding& finding : findings) {
            lines.append(u"<b>%1:</b> %2"_s.arg(HealthChecker::severityName(finding.severity),
                                                asMarkup(finding.title)));
            lines.append(finding.detail);
            appendNodes(finding, lines);
            if (finding.action == FindingAction::OpenUnusedModules) {
                lines.append(u"<Open Unused modules>"_s);
            }
        }
        return lines;
    }

    // --- comparison ---

    QString otherPath;
    XsdtDocument other;
    std::array<bool, 3> shownStates = {true, false, false};
    bool hideNoise = true;
    QString compareText; ///< Trimmed.

    QList<CompareEntry> differences() const
    {
        return document && !otherPath.isEmpty() ? plainCompare(*document, other)
                                                : QList<CompareEntry>();
    }

    bool isShown(const CompareEntry& entry) const
    {
        const auto holds = [this](const XsdtNode* node) {
            return node && node->value.contains(compareText, Qt::CaseInsensitive);
        };
        return shownStates.at(std::size_t(entry.state)) && !isNoise(entry) &&
               (entry.path.contains(compareText, Qt::CaseInsensitive) || holds(entry.thisNode) ||
                holds(entry.otherNode));
    }

    bool isCopyable(const CompareEntry& entry) const
    {
        return entry.state == CompareState::Different && isEditable(*entry.thisNode) &&
               !isInside(*entry.thisNode) && !policy.isCompareNoCopy(entry.thisNode);
    }

    /// The entries in the order of the page, which groups them.
    QList<CompareEntry> shownDifferences() const
    {
        QStringList groups;
        QMap<QString, QList<CompareEntry>> byGroup;
        const QList<CompareEntry> all = differences();
        for (const CompareEntry& entry : all) {
            if (isShown(entry)) {
                const QString group = groupedPath(entry.path).group;
                if (!byGroup.contains(group)) {
                    groups.append(group);
                }
                byGroup[group].append(entry);
            }
        }
        QList<CompareEntry> shown;
        for (const QString& group : groups) {
            shown += byGroup[group];
        }
        return shown;
    }

    QStringList comparison() const
    {
        if (!document) {
            return {QString(), u"<Use the other file's value for all shown>!"_s};
        }
        if (otherPath.isEmpty()) {
            return {u"Pick another settings file to see how it differs from this one."_s,
                    u"<Use the other file's value for all shown>!"_s};
        }
        std::array<int, 3> counts = {};
        int hidden = 0;
        const QList<CompareEntry> all = differences();
        for (const CompareEntry& entry : all) {
            isNoise(entry) ? ++hidden : ++counts.at(std::size_t(entry.state));
        }
        QString summary =
            u"%1 different, %2 only in this file, %3 only in the other file"_s.arg(counts[0])
                .arg(counts[1])
                .arg(counts[2]);
        if (hidden > 0) {
            summary +=
                u" (%1 more hidden as statistics, window state or generated lists)"_s.arg(hidden);
        }
        QStringList rows;
        int copyable = 0;
        QString group;
        const QList<CompareEntry> shown = shownDifferences();
        for (const CompareEntry& entry : shown) {
            const GroupedPath path = groupedPath(entry.path);
            if (rows.isEmpty() || path.group != group) {
                group = path.group;
                rows.append(group);
            }
            copyable += isCopyable(entry) ? 1 : 0;
            rows.append(compareRow(entry, path.name));
        }
        if (shown.isEmpty()) {
            rows.append(u"Nothing to show with the current filters."_s);
        }
        const QString all_ = u"<Use the other file's value for all shown"_s +
                             (copyable > 0 ? u" (%1)>"_s.arg(copyable) : u">"_s) +
                             (copyable > 0 && !running ? u""_s : u"!"_s);
        return QStringList{summary, all_} + rows;
    }

private:
    QString editor(const XsdtNode& node, const VariableInfo& info) const
    {
        const QString& value = node.value;
        switch (info.kind) {
        case VariableKind::Boolean:
            return value == u"true"_s ? u"true"_s : u"false"_s;
        case VariableKind::Choice: {
            QString text =
                u"Other (%1) of %2"_s.arg(value, QString::number(info.choices.size() + 1));
            for (const VariableChoice& choice : info.choices) {
                if (choice.value == value.toLongLong()) {
                    text = choice.text + u" of %1"_s.arg(info.choices.size());
                    break;
                }
            }
            return text;
        }
        case VariableKind::Integer:
            return QString::number(value.toInt());
        case VariableKind::Unsigned:
            return info.hasRange && info.min >= 0 && info.max <= 2147483647
                       ? QString::number(value.toInt())
                       : QString::number(value.toDouble(), 'f', 0);
        case VariableKind::Color:
            return u'#' + u"%1"_s.arg(value.toUInt(), 8, 16, QChar(u'0')).toUpper();
        default:
            return isEditable(node) ? value : shownValue(node, value.size());
        }
    }

    static QString shownValue(const XsdtNode& node, qsizetype length)
    {
        if (node.typeCode == u'B') {
            return u"(%1 characters of encoded data)"_s.arg(node.value.size());
        }
        QString text = node.value.left(length);
        text.replace(u'\n', QChar(0x23CE));
        return node.value.size() > length ? text + QChar(0x2026) : text;
    }

    QString treeRow(const XsdtNode& node) const
    {
        const bool isValue = node.kind == XsdtNode::Kind::Value;
        const bool changed = node.value != node.original;
        const bool inside = isInside(node);
        const bool isProtected = isValue && !isEditable(node);
        QString type = isValue ? typeName(node.typeCode)
                               : u"%1 item(s)"_s.arg(qsizetype(node.children.size()));
        QString tip = node.path();
        if (isValue) {
            tip += u'\n' + type;
            tip += isProtected ? u" - protected, shown for reference only"_s : QString();
        }
        tip += changed ? u"\nOriginal value: "_s + node.original.left(200) : QString();
        const DeleteDecision decision = policy.decide(&node);
        if (node.markedForDeletion) {
            type = u"Will be deleted"_s;
            tip += u"\nMarked for deletion (%1 value(s)); removed when you save."_s.arg(
                countValues(node));
        } else if (inside) {
            tip += u"\nInside an entry marked for deletion."_s;
        } else if (decision.level != DeleteLevel::Never) {
            tip += u"\nCan be deleted: "_s + decision.reason;
        }
        const bool canEdit = isEditable(node) && !running && !inside && !policy.isEditLocked(&node);
        return node.key + u'|' + (isValue ? shownValue(node, 200) : QString()) + u'|' + type +
               marks({{changed, 'B'},
                      {inside, 'S'},
                      {changed && !node.markedForDeletion, 'A'},
                      {node.markedForDeletion, 'r'},
                      {inside || isProtected, 'g'},
                      {canEdit, 'E'}}) +
               u' ' + asToolTip(tip);
    }

    static qsizetype countValues(const XsdtNode& node)
    {
        qsizetype count = node.kind == XsdtNode::Kind::Value ? 1 : 0;
        for (const auto& child : node.children) {
            count += countValues(*child);
        }
        return count;
    }

    bool hasText(const QString& text) const
    {
        return text.contains(preferencesText, Qt::CaseInsensitive);
    }

    bool isMatched(const XsdtNode& node) const
    {
        return preferencesText.isEmpty() || !unmatched.contains(&node);
    }

    bool hasVisible(const XsdtNode& group) const
    {
        return std::any_of(group.children.begin(), group.children.end(), [this](const auto& child) {
            return !schema.isHidden(*child) && (isEditable(*child) || hasVisible(*child));
        });
    }

    bool hasMatch(const XsdtNode& group) const
    {
        return std::any_of(group.children.begin(), group.children.end(), [this](const auto& child) {
            return !schema.isHidden(*child) &&
                   (isEditable(*child) ? isMatched(*child) : hasMatch(*child));
        });
    }

    void appendGroup(const XsdtNode& group, const QString& indent, PreferencesPage& page) const
    {
        for (const auto& child : group.children) {
            if (isEditable(*child) && !schema.isHidden(*child)) {
                page.rows.append(child.get());
                page.lines.append(indent + (isMatched(*child) ? u""_s : u"-"_s) +
                                  row(*child, false));
            }
        }
        for (const auto& child : group.children) {
            if (!isEditable(*child) && !schema.isHidden(*child) && hasVisible(*child)) {
                appendSection(*child, false, indent, page);
            }
        }
    }

    void appendSection(XsdtNode& group, bool startsOpen, const QString& indent,
                       PreferencesPage& page) const
    {
        const bool filtered = !preferencesText.isEmpty();
        const bool matches = hasMatch(group);
        const bool open = toggled.value(&group, filtered ? matches : startsOpen);
        page.sections.append(&group);
        page.lines.append(indent + (filtered && !matches ? u"-"_s : u""_s) +
                          (open ? u"v "_s : u"> "_s) + asCaption(prettyName(group.key)));
        appendGroup(group, indent + u' ', page);
    }

    CleanupEntry entryOf(const QString& name, const QList<XsdtNode*>& nodes) const
    {
        CleanupEntry entry;
        entry.name = name;
        entry.nodes = nodes;
        qsizetype values = 0;
        for (const XsdtNode* node : nodes) {
            values += countValues(*node);
            entry.size += node->serializedSize();
        }
        entry.numbers = QString::number(values) + u'|' + formatBytes(entry.size);
        return entry;
    }

    static void sortByName(QList<CleanupEntry>& list)
    {
        std::stable_sort(list.begin(), list.end(), [](const auto& a, const auto& b) {
            return QString::compare(a.name, b.name, Qt::CaseInsensitive) < 0;
        });
    }

    bool isSafe(const XsdtNode* node) const
    {
        return node && policy.decide(node).level == DeleteLevel::Safe;
    }

    void addWhole(const CleanupGroup& group)
    {
        QList<XsdtNode*> nodes;
        for (const QString& path : group.paths) {
            if (XsdtNode* node = document->root.findByPath(path); isSafe(node)) {
                nodes.append(node);
            }
        }
        if (nodes.isEmpty()) {
            return;
        }
        CleanupEntry entry = entryOf(group.title, nodes);
        for (XsdtNode* node : std::as_const(nodes)) {
            entry.details.append(node->path() + u'|' + entryOf({}, {node}).numbers);
        }
        entries.append(entry);
    }

    void addMatches(const CleanupGroup& group)
    {
        QList<XsdtNode*> nodes;
        QList<CleanupEntry> matches;
        for (const QString& pattern : group.paths) {
            const QList<XsdtNode*> found = DeletePolicy::matchPattern(*document, pattern);
            for (XsdtNode* node : found) {
                if (isSafe(node)) {
                    nodes.append(node);
                    matches.append(entryOf(geometryName(*node), {node}));
                    matches.last().heading = int(headings.size());
                }
            }
        }
        if (nodes.isEmpty()) {
            return;
        }
        sortByName(matches);
        headings.append(u"%1 (%2)|"_s.arg(group.title, QString::number(nodes.size())) +
                        entryOf({}, nodes).numbers);
        entries += matches;
    }

    static QString geometryName(const XsdtNode& node)
    {
        QStringList parts = node.path().split(u'/', Qt::SkipEmptyParts);
        parts.removeAll(u"ModuleData"_s);
        parts.removeAll(u"Interfaces"_s);
        if (!parts.isEmpty() && parts.last() == u"Geometry"_s) {
            parts.removeLast();
        }
        return parts.join(u" \u203A "_s);
    }

    static QString boxOf(const QList<bool>& ticks)
    {
        if (ticks.isEmpty()) {
            return {};
        }
        return !ticks.contains(true) ? u"[ ]"_s : !ticks.contains(false) ? u"[x]"_s : u"[-]"_s;
    }

    static QString queuedText(const CleanupEntry& entry)
    {
        const auto queued = std::count_if(entry.nodes.begin(), entry.nodes.end(),
                                          [](const XsdtNode* n) { return isInside(*n); });
        if (queued == 0 || queued == entry.nodes.size()) {
            return queued == 0 ? QString() : u"Queued for deletion"_s;
        }
        return u"Partly queued (%1 of %2)"_s.arg(queued).arg(entry.nodes.size());
    }

    QString cleanupStatus() const
    {
        qsizetype ticked = 0;
        qsizetype queued = 0;
        qint64 size = 0;
        for (const CleanupEntry& entry : entries) {
            ticked += entry.isTicked ? 1 : 0;
            size += entry.isTicked ? entry.size : 0;
            queued += queuedText(entry).isEmpty() ? 0 : 1;
        }
        if (running) {
            return u"PixInsight is running: view only. (off)"_s;
        }
        return ticked > 0 ? u"Ticked: %1 (about %2) (on)"_s.arg(ticked).arg(formatBytes(size))
                          : u"Queued for deletion: %1 (off)"_s.arg(queued);
    }

    void appendModule(const ModuleInfo& info, QStringList& lines) const
    {
        QList<XsdtNode*> nodes = info.nodes;
        std::stable_sort(nodes.begin(), nodes.end(), [](const XsdtNode* a, const XsdtNode* b) {
            return QString::compare(a->path(), b->path(), Qt::CaseInsensitive) < 0;
        });
        for (const XsdtNode* node : std::as_const(nodes)) {
            const QList<XsdtNode*> values = valuesOf(*node);
            lines.append(u" %1  (%2 value(s))"_s.arg(node->path(), QString::number(values.size())));
            for (const XsdtNode* value : values) {
                lines.append(u' ' + row(*value, false));
            }
        }
    }

    void appendNodes(const Finding& finding, QStringList& lines) const
    {
        for (const XsdtNode* node : finding.nodes.mid(0, 12)) {
            if (node->kind == XsdtNode::Kind::Value) {
                lines.append(row(*node, true));
                continue;
            }
            lines.append(u"<b>%1</b>  (%2 value(s))"_s.arg(asMarkup(node->path()),
                                                           QString::number(countValues(*node))));
            lines.append(u"<Show in All settings>"_s);
            const bool can = policy.decide(node).level != DeleteLevel::Never && !running;
            lines.append(u"<Delete this one...>"_s + (can ? u""_s : u"!"_s));
        }
        if (finding.nodes.size() > 12) {
            lines.append(u"...and %1 more."_s.arg(finding.nodes.size() - 12));
        }
    }

    bool isNoise(const CompareEntry& entry) const
    {
        return hideNoise &&
               policy.isCompareNoise(entry.thisNode ? entry.thisNode : entry.otherNode);
    }

    QString compareRow(const CompareEntry& entry, const QString& name) const
    {
        static const QStringList states{u"Different"_s, u"Only in this file"_s,
                                        u"Only in the other file"_s};
        const auto shown = [](const XsdtNode* node) {
            return node ? shownValue(*node, 90) : QString();
        };
        QString status = states[int(entry.state)];
        const bool isDifferent = entry.state == CompareState::Different;
        if (isDifferent && entry.thisNode->typeCode != entry.otherNode->typeCode) {
            status += u" (type %1 / %2)"_s.arg(QString(entry.thisNode->typeCode),
                                               QString(entry.otherNode->typeCode));
        }
        return u'.' + name + u'|' + shown(entry.thisNode) + u'|' + shown(entry.otherNode) + u'|' +
               status + (isDifferent && !isCopyable(entry) ? u"!"_s : u""_s);
    }
};

} // namespace kse
