// SPDX-License-Identifier: MIT
#include "schema/DeletePolicy.h"

#include "document/Fail.h"
#include "document/TreeWalk.h"
#include "document/XsdtDocument.h"
#include "schema/JsonObject.h"

#include <QHash>
#include <QJsonArray>
#include <QJsonObject>
#include <QJsonValue>
#include <QStringTokenizer>

#include <algorithm>

using namespace Qt::StringLiterals;

namespace kse {

namespace {

QList<PathPattern> readPatterns(const QJsonValue& value)
{
    QList<PathPattern> patterns;
    for (const QString& text : toStringList(value)) {
        PathPattern pattern(text);
        if (!pattern.isEmpty()) {
            patterns.append(std::move(pattern));
        }
    }
    return patterns;
}

QList<CleanupGroup> readCleanup(const QJsonValue& value)
{
    QList<CleanupGroup> groups;
    const QJsonArray array = value.toArray();
    for (const QJsonValue& element : array) {
        const CleanupGroup group{element["title"_L1].toString(),
                                 element["description"_L1].toString(),
                                 toStringList(element["paths"_L1]), element["each"_L1].toBool()};
        if (!group.title.isEmpty() && !group.paths.isEmpty()) {
            groups.append(group);
        }
    }
    return groups;
}

bool matchesAny(const QList<PathPattern>& patterns, const XsdtNode& node)
{
    const PathSegments path = pathSegments(node);
    return std::any_of(patterns.cbegin(), patterns.cend(),
                       [&path](const PathPattern& pattern) { return pattern.matches(path); });
}

bool outranks(const DeleteRule& rule, const DeleteRule& best)
{
    return rule.specificity > best.specificity ||
           (rule.specificity == best.specificity && (!rule.deep || best.deep));
}

} // namespace

bool DeletePolicy::load(const QByteArray& overlayJson, QString* error)
{
    *this = {};
    m_defaultReason = u"This entry is not on the list of entries known to be safe to remove."_s;
    QJsonObject overlay;
    if (!parseJsonObject(overlayJson, u"overlay.json"_s, overlay, error) ||
        !loadRules(overlay["policy"_L1].toObject(), error)) {
        m_rules.clear();
        return false;
    }
    m_compareNoise = readPatterns(overlay["compareNoise"_L1]);
    m_compareNoCopy = readPatterns(overlay["compareNoCopy"_L1]);
    m_editLocked = readPatterns(overlay["editLocked"_L1]);
    m_cleanup = readCleanup(overlay["cleanup"_L1]);
    return true;
}

bool DeletePolicy::loadRules(const QJsonObject& policy, QString* error)
{
    if (policy.contains("defaultReason"_L1)) {
        m_defaultReason = policy["defaultReason"_L1].toString();
    }
    const QHash<QString, DeleteLevel> levels{{u"never"_s, DeleteLevel::Never},
                                             {u"warn"_s, DeleteLevel::Warn},
                                             {u"safe"_s, DeleteLevel::Safe}};
    const QJsonArray rules = policy["delete"_L1].toArray();
    for (const QJsonValue& element : rules) {
        const QString word = element["level"_L1].toString();
        const auto level = levels.constFind(word);
        if (level == levels.cend()) {
            return fail(error, u"overlay.json: unknown delete level '%1'"_s.arg(word));
        }
        DeleteRule rule(element["path"_L1].toString());
        if (rule.isEmpty()) {
            continue;
        }
        rule.groupsOnly = element["groupsOnly"_L1].toBool();
        rule.level = *level;
        rule.reason = element["reason"_L1].toString();
        rule.specificity = int(rule.segments.size() - rule.segments.count(u"*"_s));
        m_rules.append(std::move(rule));
    }
    return true;
}

DeleteDecision DeletePolicy::decide(const XsdtNode* node) const
{
    DeleteDecision decision{DeleteLevel::Never, m_defaultReason};
    if (!node || !node->parent) {
        return decision;
    }
    const PathSegments path = pathSegments(*node);
    const bool isGroup = node->kind == XsdtNode::Kind::Group;
    const DeleteRule* best = nullptr;
    for (const DeleteRule& rule : m_rules) {
        if ((isGroup || !rule.groupsOnly) && (!best || outranks(rule, *best)) &&
            rule.matches(path)) {
            best = &rule;
        }
    }
    if (best) {
        decision.level = best->level;
        if (!best->reason.isEmpty()) {
            decision.reason = best->reason;
        }
    }
    return decision;
}

bool DeletePolicy::isCompareNoise(const XsdtNode* node) const
{
    if (!node || !node->parent) {
        return false;
    }
    return decide(node).level == DeleteLevel::Safe || matchesAny(m_compareNoise, *node);
}

bool DeletePolicy::isCompareNoCopy(const XsdtNode* node) const
{
    return !node || matchesAny(m_compareNoCopy, *node);
}

bool DeletePolicy::isEditLocked(const XsdtNode* node) const
{
    return !node || matchesAny(m_editLocked, *node);
}

QList<XsdtNode*> DeletePolicy::matchPattern(const XsdtDocument& document, QStringView pattern)
{
    const QList<QStringView> segments = pattern.split(u'/', Qt::SkipEmptyParts);
    QList<XsdtNode*> matches;
    walkTree(const_cast<XsdtNode&>(document.root), [&](XsdtNode& node) {
        const QStringView segment = segments.value(node.depth - 1);
        const bool isMatch = segment == u'*' || (!segment.isEmpty() && node.key == segment);
        if (isMatch && node.depth == segments.size()) {
            matches.append(&node);
        }
        return isMatch && node.depth < segments.size() ? Walk::Into : Walk::Over;
    });
    return matches;
}

QList<XsdtNode*> DeletePolicy::warnCandidates(const XsdtDocument& document) const
{
    QList<XsdtNode*> result;
    walkTree(const_cast<XsdtNode&>(document.root), [&](XsdtNode& node) {
        const bool warns = decide(&node).level == DeleteLevel::Warn;
        if (warns) {
            result.append(&node);
        }
        return warns || node.depth == 3 ? Walk::Over : Walk::Into;
    });
    return result;
}

} // namespace kse
