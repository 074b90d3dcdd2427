// SPDX-License-Identifier: MIT
// An input is globals.json, overlay.json and, unless a sample will do, a settings file that they
// are asked about, with bytes FF between them.
#include "FuzzInput.h"
#include "document/TreeWalk.h"
#include "document/XsdtDocument.h"
#include "schema/DeletePolicy.h"
#include "schema/SettingsSchema.h"

#include <cmath>

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

void requireDescribed(const VariableInfo& info)
{
    require(std::isfinite(info.min) && std::isfinite(info.max), "the range is of numbers");
    require(info.documented || !info.readOnly, "read-only by its documentation");
    require((info.kind == VariableKind::Choice) == !info.choices.isEmpty(), "choices");
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    const QByteArrayList input = parts(data, size, 3);
    XsdtDocument document;
    require(document.parse(input[2]) || document.parse(sample), "the sample parses");
    SettingsSchema schema;
    DeletePolicy policy;
    QString schemaError;
    QString policyError;
    const bool hasSchema = schema.load(input[0], input[1], &schemaError);
    const bool hasPolicy = policy.load(input[1], &policyError);
    require(hasSchema == schemaError.isEmpty() && hasPolicy == policyError.isEmpty(), "messages");
    require(hasPolicy || policy.cleanupGroups().isEmpty(), "no groups of bad rules");
    walkTree(document.root, [&](const XsdtNode& node) {
        const DeleteLevel level = policy.decide(&node).level;
        require(hasPolicy || level == DeleteLevel::Never, "nothing of bad rules");
        require(level != DeleteLevel::Safe || policy.isCompareNoise(&node), "noise");
        requireDescribed(schema.describe(node));
        return Walk::Into;
    });
    for (const PageSpec& page : schema.decoratedPages(document)) {
        require(!page.nodes.isEmpty() && page.nodes.size() == page.paths.size(), "no empty page");
    }
    for (const CleanupGroup& group : policy.cleanupGroups()) {
        require(!group.title.isEmpty() && !group.paths.isEmpty(), "cleanup group");
        const QString& pattern = group.paths.constFirst();
        const qsizetype depth = pattern.split(u'/', Qt::SkipEmptyParts).size();
        for (const XsdtNode* node : DeletePolicy::matchPattern(document, pattern)) {
            require(node->depth == depth, "matches are as deep as the pattern");
        }
    }
    for (const XsdtNode* node : policy.warnCandidates(document)) {
        require(policy.decide(node).level == DeleteLevel::Warn && node->depth <= 3, "candidates");
    }
    return 0;
}
