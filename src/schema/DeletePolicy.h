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

/// How freely an entry may be deleted, from least to most.
enum class DeleteLevel {
    Never = 0, ///< not offered; the user may ask why
    Warn = 1,  ///< offered, after a confirmation
    Safe = 2   ///< offered without any warning
};

/// One rule of the policy: a pattern of paths, and what it says about them.
struct DeleteRule : PathPattern
{
    using PathPattern::PathPattern;

    bool groupsOnly = false; ///< The rule doesn't apply to values.
    DeleteLevel level = DeleteLevel::Never;
    QString reason;      ///< If empty, the policy's default reason is shown.
    int specificity = 0; ///< Number of segments that are not `*`.
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
    bool each = false; ///< Every match is offered separately, not the group as a whole.
};

/// The rules on which entries of a settings file may be deleted, edited and copied, with the
/// sentences for the user. The rules are data, from `overlay.json`. An entry without a rule is
/// never deleted. Nothing is cached by node, and nothing changes after `load`.
class DeletePolicy
{
public:
    /// Takes the rules and lists from the bytes of `overlay.json`. Empty bytes give no rules, and
    /// succeed. On failure there are no rules, lists or groups, so that every node is `Never`, and
    /// `error`, unless null, gets the reason.
    [[nodiscard]] bool load(const QByteArray& overlayJson, QString* error = nullptr);

    /// Whether `node` may be deleted: `Never` for null and for a root. The rule with the highest
    /// specificity decides, whichever level it has. Among equals a rule that doesn't end in `**`
    /// comes before one that does, then the later one in the file wins.
    [[nodiscard]] DeleteDecision decide(const XsdtNode* node) const;

    /// Whether a comparison hides `node` unless asked to show it: entries that may be deleted
    /// safely, and those that differ between any two files. False for null and for a root.
    [[nodiscard]] bool isCompareNoise(const XsdtNode* node) const;

    /// Whether `node` belongs to its own file and must not be copied to another. True for null.
    [[nodiscard]] bool isCompareNoCopy(const XsdtNode* node) const;

    /// Whether `node` must not be edited. True for null.
    [[nodiscard]] bool isEditLocked(const XsdtNode* node) const;

    /// The nodes whose keys, from below the root, match `pattern` segment by segment, in file
    /// order, marked and duplicate ones included. `**` has no special meaning here, and no plain
    /// segment matches a key that holds a slash.
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
