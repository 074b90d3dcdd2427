// SPDX-License-Identifier: MIT
// An input is globals.json, overlay.json and, unless a sample will do, a settings file that they
// are asked about, with bytes FF between them.
#include "FuzzInput.h"
#include "document/TreeWalk.h"
#include "document/XsdtDocument.h"
#include "schema/DeletePolicy.h"
#include "schema/PrettyName.h"
#include "schema/SettingsSchema.h"

#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>

#include <algorithm>
#include <cmath>
#include <tuple>

using namespace kse;
using namespace Qt::StringLiterals;

namespace {

constexpr char sample[] =
    R"(<xsdt><i k="Global"><i k="Preferences"><i k="Process"><v k="MaxProcessors" t="i" v="1"/>)"
    R"(<v k="MainColor2" t="u" v="0"/><v k="DataFile" t="s" v=""/></i><i k="MainWindow">)"
    R"(<v k="ActiveWindowOpacity" t="F" v="1"/></i><i k="ProcessInterface"/></i><i k="Statistics">)"
    R"(<v k="a/b" t="u" v="7"/></i></i><i k="ModuleData"><i k="M"><i k="Interfaces"><i k="P">)"
    R"(<i k="Geometry"/></i></i></i></i><i k=""><v k="" t="b" v="true"/></i><v k="**" t="B" v=""/>)"
    R"(<i k="*"><v k="X" t="f" v="1"/></i><i k="Global"><v k="X" t="t" v="1"/></i></xsdt>)";

/// The nodes in file order; of a large document only the first.
QList<XsdtNode*> someNodes(XsdtDocument& document)
{
    QList<XsdtNode*> nodes;
    walkTree(document.root, [&](XsdtNode& node) {
        nodes.append(&node);
        return nodes.size() < 100 ? Walk::Into : Walk::Stop;
    });
    return nodes;
}

/// False if the bytes are neither blank nor an object.
bool plainObject(const QByteArray& bytes, QJsonObject& object)
{
    const QJsonDocument document = QJsonDocument::fromJson(bytes.trimmed());
    object = document.object();
    return document.isObject() || bytes.trimmed().isEmpty();
}

struct PlainPattern
{
    explicit PlainPattern(const QString& text)
        : segments(text.split(u'/', Qt::SkipEmptyParts))
        , isEmpty(segments.isEmpty())
        , deep(segments.endsWith(u"**"_s))
    {
        segments.resize(segments.size() - (deep ? 1 : 0));
    }

    bool matches(const XsdtNode& node) const
    {
        const QStringList path = node.path().split(u'/', Qt::SkipEmptyParts);
        if (isEmpty || (deep ? path.size() <= segments.size() : path.size() != segments.size())) {
            return false;
        }
        for (qsizetype i = 0; i < segments.size(); ++i) {
            if (segments[i] != u'*' && segments[i] != path[i]) {
                return false;
            }
        }
        return true;
    }

    QStringList segments;
    bool isEmpty;
    bool deep;
};

bool matchesAny(const QJsonValue& patterns, const XsdtNode& node)
{
    const QJsonArray list = patterns.toArray();
    return std::any_of(list.begin(), list.end(), [&](const QJsonValue& text) {
        return PlainPattern(text.toString()).matches(node);
    });
}

bool isKnownLevel(const QJsonValue& rule)
{
    return QStringList{u"never"_s, u"warn"_s, u"safe"_s}.contains(rule["level"_L1].toString());
}

/// Of all rules that match, the one with the highest rank.
DeleteDecision plainDecide(const QJsonObject& overlay, const XsdtNode& node)
{
    const QJsonValue policy = overlay["policy"_L1];
    DeleteDecision decision;
    decision.reason =
        policy["defaultReason"_L1].isUndefined()
            ? u"This entry is not on the list of entries known to be safe to remove."_s
            : policy["defaultReason"_L1].toString();
    std::tuple<qsizetype, bool> best{-1, false};
    QJsonValue winner;
    for (const QJsonValue& rule : policy["delete"_L1].toArray()) {
        const PlainPattern pattern(rule["path"_L1].toString());
        const bool applies = node.kind == XsdtNode::Kind::Group || !rule["groupsOnly"_L1].toBool();
        const std::tuple rank{pattern.segments.size() - pattern.segments.count(u"*"_s),
                              !pattern.deep};
        if (applies && rank >= best && pattern.matches(node)) {
            best = rank;
            winner = rule;
        }
    }
    const QString level = winner["level"_L1].toString();
    decision.level = level == u"safe"_s   ? DeleteLevel::Safe
                     : level == u"warn"_s ? DeleteLevel::Warn
                                          : DeleteLevel::Never;
    const QString reason = winner["reason"_L1].toString();
    decision.reason = reason.isEmpty() ? decision.reason : reason;
    return decision;
}

/// Whether the keys above and of `node` are what the pattern asks for, one by one.
bool plainMatchesKeys(const QString& pattern, const XsdtNode* node)
{
    QStringList segments = pattern.split(u'/', Qt::SkipEmptyParts);
    if (segments.isEmpty()) {
        return false;
    }
    for (; node->parent && !segments.isEmpty(); node = node->parent) {
        const QString segment = segments.takeLast();
        if (segment != u'*' && segment != node->key) {
            return false;
        }
    }
    return !node->parent && segments.isEmpty();
}

void requirePolicy(const DeletePolicy& policy, const QJsonObject& overlay, XsdtDocument& document)
{
    const QList<XsdtNode*> nodes = someNodes(document);
    for (const XsdtNode* node : nodes) {
        const DeleteDecision expected = plainDecide(overlay, *node);
        const DeleteDecision decision = policy.decide(node);
        require(decision.level == expected.level && decision.reason == expected.reason, "decision");
        require(policy.isCompareNoise(node) == (expected.level == DeleteLevel::Safe ||
                                                matchesAny(overlay["compareNoise"_L1], *node)),
                "noise");
        require(policy.isCompareNoCopy(node) == matchesAny(overlay["compareNoCopy"_L1], *node),
                "not to be copied");
        require(policy.isEditLocked(node) == matchesAny(overlay["editLocked"_L1], *node), "locked");
    }
    for (const CleanupGroup& group : policy.cleanupGroups()) {
        require(!group.title.isEmpty() && !group.paths.isEmpty(), "no empty cleanup group");
        for (const QString& pattern : group.paths.mid(0, 20)) {
            const QList<XsdtNode*> matches = DeletePolicy::matchPattern(document, pattern);
            for (XsdtNode* node : nodes) {
                require(matches.contains(node) == plainMatchesKeys(pattern, node), "pattern");
            }
        }
    }
    for (const XsdtNode* node : policy.warnCandidates(document)) {
        require(policy.decide(node).level == DeleteLevel::Warn, "candidates are of level warn");
    }
}

void requireDescribed(const SettingsSchema& schema, const QJsonObject& globals,
                      const QJsonObject& overlay, const XsdtNode& node)
{
    const VariableInfo info = schema.describe(node);
    const QString id = SettingsSchema::variableId(node);
    const QJsonObject rows = globals["variables"_L1].toObject();
    const QJsonObject row = rows[id].toObject();
    const QJsonObject refinement = overlay["variables"_L1].toObject()[id].toObject();
    require(info.documented == rows.contains(id), "documented");
    require(info.readOnly == row["readOnly"_L1].toBool(), "read only");
    require(info.label == (refinement.contains("label"_L1) ? refinement["label"_L1].toString()
                                                           : prettyName(node.key)),
            "label");
    require(refinement.contains("description"_L1)
                ? info.description == refinement["description"_L1].toString()
                : row["description"_L1].toString().size() >= info.description.size(),
            "description");
    require(std::isfinite(info.min) && std::isfinite(info.max), "the range is of numbers");
    const bool isNumber =
        node.kind == XsdtNode::Kind::Value && QStringView(u"iufF").contains(node.typeCode);
    const bool bounded = refinement.contains("min"_L1) || refinement.contains("max"_L1);
    require(info.hasRange ? isNumber || bounded : info.min == 0 && info.max == 0, "range");
    require(!refinement.contains("min"_L1) || info.min == refinement["min"_L1].toDouble(), "min");
    require(!refinement.contains("max"_L1) || info.max == refinement["max"_L1].toDouble(), "max");
    const bool isChoice = info.kind == VariableKind::Choice;
    require(isChoice == !info.choices.isEmpty(), "a choice has choices");
    const QJsonArray choices = refinement["choices"_L1].toArray();
    require(!isChoice || info.choices.size() == choices.size(), "all choices");
    require(isChoice || choices.isEmpty() || info.kind != VariableKind::Integer, "no choice lost");
}

void requirePages(const SettingsSchema& schema, const QJsonObject& overlay,
                  const XsdtDocument& document)
{
    QList<std::tuple<QString, QStringList, QList<XsdtNode*>>> expected;
    QStringList claimed;
    for (const QJsonValue& page : overlay["pages"_L1].toArray()) {
        QStringList paths;
        QList<XsdtNode*> nodes;
        for (const QJsonValue& path : page["paths"_L1].toArray()) {
            if (XsdtNode* node = document.root.findByPath(path.toString())) {
                paths.append(path.toString());
                nodes.append(node);
            }
        }
        const QString title = page["title"_L1].toString();
        if (!paths.isEmpty() && !title.isEmpty()) {
            expected.append({title, paths, nodes});
            claimed += paths;
        }
    }
    const XsdtNode* preferences = document.root.findByPath(u"Global/Preferences");
    for (std::size_t i = 0; preferences && i < preferences->children.size(); ++i) {
        XsdtNode* child = preferences->children[i].get();
        if (child->kind == XsdtNode::Kind::Group && child->key != u"ProcessInterface"_s &&
            !claimed.contains(child->path())) {
            expected.append({prettyName(child->key), {child->path()}, {child}});
        }
    }
    const QList<PageSpec> pages = schema.decoratedPages(document);
    require(pages.size() == expected.size(), "pages");
    for (qsizetype i = 0; i < pages.size(); ++i) {
        require(std::tuple(pages[i].title, pages[i].paths, pages[i].nodes) == expected[i], "page");
    }
}

void requireLoaded(const QByteArray& globalsJson, const QByteArray& overlayJson,
                   XsdtDocument& document)
{
    QJsonObject globals;
    QJsonObject overlay;
    const bool globalsAreGood = plainObject(globalsJson, globals);
    const bool overlayIsGood = plainObject(overlayJson, overlay);
    QString error;
    SettingsSchema schema;
    const bool schemaIsLoaded = schema.load(globalsJson, overlayJson, &error);
    require(schemaIsLoaded == (globalsAreGood && overlayIsGood), "schema loads or not");
    require(schemaIsLoaded
                ? error.isEmpty()
                : error.startsWith(globalsAreGood ? u"overlay.json: "_s : u"globals.json: "_s),
            "message of the schema");
    globals = schemaIsLoaded ? globals : QJsonObject();
    const QJsonObject known = schemaIsLoaded ? overlay : QJsonObject();
    for (const XsdtNode* node : someNodes(document)) {
        requireDescribed(schema, globals, known, *node);
        require(schema.isHidden(*node) == known["hide"_L1].toArray().contains(node->path()),
                "hidden");
    }
    requirePages(schema, known, document);

    const QJsonArray rules = overlay["policy"_L1]["delete"_L1].toArray();
    const bool levelsAreGood = std::all_of(rules.begin(), rules.end(), isKnownLevel);
    error.clear();
    DeletePolicy policy;
    const bool policyIsLoaded = policy.load(overlayJson, &error);
    require(policyIsLoaded == (overlayIsGood && levelsAreGood), "policy loads or not");
    require(policyIsLoaded ? error.isEmpty() : error.startsWith(u"overlay.json: "_s),
            "message of the policy");
    if (policyIsLoaded) {
        requirePolicy(policy, overlay, document);
        return;
    }
    require(policy.cleanupGroups().isEmpty() && policy.warnCandidates(document).isEmpty(),
            "nothing of rules that don't load");
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    const QByteArrayList input = parts(data, size, 3);
    XsdtDocument document;
    if (!document.parse(input[2]) && !document.parse(sample)) {
        std::abort();
    }
    requireLoaded(input[0], input[1], document);
    return 0;
}
