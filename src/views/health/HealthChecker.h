// SPDX-License-Identifier: MIT
#pragma once

#include "views/health/HealthEnv.h"

#include <QList>
#include <QString>

namespace kse {

class SettingsSchema;
struct XsdtDocument;
struct XsdtNode;

enum class Severity { Note = 0, Warning = 1, Problem = 2 };
enum class FindingAction { None = 0, OpenUnusedModules = 1 };

/// Something in a settings file that is probably wrong. Its texts are plain text.
struct Finding
{
    QString id; ///< Of the check; never changes.
    Severity severity = Severity::Note;
    QString title;
    QString detail;
    QList<XsdtNode*> nodes; ///< The document's nodes that it is about. May be empty.
    FindingAction action = FindingAction::None;
};

namespace HealthChecker {

/// Checks `document` and changes nothing. Problems come first, then warnings, then notes. Nodes
/// that are marked for deletion are left out, and what can't be judged raises no finding.
[[nodiscard]] QList<Finding> run(const XsdtDocument& document, const SettingsSchema& schema,
                                 const HealthEnv& env);

[[nodiscard]] QString severityName(Severity severity);

} // namespace HealthChecker
} // namespace kse
