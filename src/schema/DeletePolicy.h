// SPDX-License-Identifier: MIT
#pragma once

#include "schema/PathPattern.h"

#include <QList>
#include <QString>
#include <QStringList>

class QByteArray;
class QJsonObject;

namespace kse {

struct XsdtDocument;
struct XsdtNode;

/// How freely an entry may be deleted, in increasing freedom.
enum class DeleteLevel {
    Never = 0, ///< not offered; the user may ask why
    Warn = 1,  ///< offered, after a confirmation
    Safe = 2   ///< offered without any warning
};

/// One rule of the policy: what it covers and what it says.
struct DeleteRule : PathPattern
{
    using PathPattern::PathPattern;

    bool groupsOnly = false; ///< For a value the rule doesn't exist.
    DeleteLevel level = DeleteLevel::Never;
    QString reason;      ///< Empty: the policy's default reason is shown.
    int specificity = 0; ///< Segments that are not `*`.
};

/// The policy's answer for one node, with the sentence for the user.
struct DeleteDecision
{
    DeleteLevel level = DeleteLevel::Never;
    QString reason;
};

/// One card of the cleanup page.
struct CleanupGroup
{
    QString title;
    QString description;
    QStringList paths; ///< Patterns for `DeletePolicy::matchPattern`.
    bool each = false; ///< Every match is offered by itself instead of the group as a whole.
};

/// Says which entries of a settings file may be deleted, edited and copied, and in what words.
/// The rules are data, from `overlay.json`; what no rule allows is never deleted. Nothing is
/// cached by node, and nothing changes after `load`.
class DeletePolicy
{
public:
    /// Takes the rules and lists from the bytes of `overlay.json`. No bytes are no rules, and
    /// succeed. On failure there are no rules, lists or groups left, so that every node is
    /// `Never`, and `error`, unless null, gets the reason.
    [[nodiscard]] bool load(const QByteArray& overlayJson, QString* error = nullptr);

    /// What may be done with `node`; never for null and for a root. The rule with the most
    /// segments that are not `*` decides, whatever its level. Among equals a rule that ends in
    /// `**` yields to one that doesn't; then the later in the file wins.
    [[nodiscard]] DeleteDecision decide(const XsdtNode* node) const;

    /// Whether a comparison leaves `node` out unless asked: what may be deleted safely, and what
    /// differs between any two files. False for null and for a root.
    [[nodiscard]] bool isCompareNoise(const XsdtNode* node) const;

    /// Whether `node` is of its own file and must not be copied to another. True for null.
    [[nodiscard]] bool isCompareNoCopy(const XsdtNode* node) const;

    /// Whether `node` must not be edited. True for null.
    [[nodiscard]] bool isEditLocked(const XsdtNode* node) const;

    /// The nodes whose keys, from below the root, match `pattern` segment by segment, in file
    /// order, marked and duplicate ones included. Here `**` is a plain segment, and no segment
    /// matches a key that holds a slash.
    [[nodiscard]] static QList<XsdtNode*> matchPattern(const XsdtDocument& document,
                                                       QStringView pattern);

    /// The topmost nodes of level `Warn` in the upper three levels of the tree, in file order.
    [[nodiscard]] QList<XsdtNode*> warnCandidates(const XsdtDocument& document) const;

    [[nodiscard]] const QList<CleanupGroup>& cleanupGroups() const { return m_cleanup; }

private:
    bool loadRules(const QJsonObject& policy, QString* error);

    QList<DeleteRule> m_rules;
    QList<PathPattern> m_compareNoise;
    QList<PathPattern> m_compareNoCopy;
    QList<PathPattern> m_editLocked;
    QList<CleanupGroup> m_cleanup;
    QString m_defaultReason;
};

} // namespace kse
