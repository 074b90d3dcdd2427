// SPDX-License-Identifier: MIT
#pragma once

#include <QList>
#include <QString>
#include <QStringList>

#include <functional>

namespace kse {

class SettingsSchema;
struct XsdtDocument;
struct XsdtNode;

enum class Severity { Note = 0, Warning = 1, Problem = 2 };
enum class FindingAction { None = 0, OpenUnusedModules = 1 };

/// Something in a settings file that is probably wrong. Its texts are plain text.
struct Finding
{
    QString id; ///< Which check it comes from; stable.
    Severity severity = Severity::Note;
    QString title;
    QString detail;
    QList<XsdtNode*> nodes; ///< The settings concerned; the document's. May be empty.
    FindingAction action = FindingAction::None;
};

/// What the checks know of the computer.
struct HealthEnv
{
    std::function<bool(const QString&)> exists; ///< Empty: nothing can be told about paths.
    int processors = 0;                         ///< Logical ones; 0 or less is unknown.
    bool isWindows = true;                      ///< Which form of path is a local one.
    QString binFolder;                          ///< PixInsight's program folder, if known already.
    QStringList installFolders; ///< Where an installation usually is, without `bin`, in order.

    /// This computer.
    [[nodiscard]] static HealthEnv system();
};

namespace HealthChecker {

/// Looks through `document` and changes nothing: problems first, then warnings, then notes. What
/// is marked for deletion is left out, and what can't be judged raises no finding.
[[nodiscard]] QList<Finding> run(const XsdtDocument& document, const SettingsSchema& schema,
                                 const HealthEnv& env);

[[nodiscard]] QString severityName(Severity severity);

} // namespace HealthChecker
} // namespace kse
