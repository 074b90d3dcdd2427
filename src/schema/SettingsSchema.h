// SPDX-License-Identifier: MIT
#pragma once

#include <QHash>
#include <QJsonObject>
#include <QList>
#include <QSet>
#include <QString>
#include <QStringList>

class QByteArray;

namespace kse {

struct XsdtDocument;
struct XsdtNode;

/// The kind of a setting, which decides its editor. The order matters: `Integer` to `Real` are the
/// numbers, `FilePath` and `Directory` the paths.
enum class VariableKind {
    Boolean = 0,
    Choice = 1, ///< an integer with named values
    Integer = 2,
    Unsigned = 3,
    Real = 4,
    Text = 5,
    FilePath = 6,
    Directory = 7,
    Color = 8 ///< an unsigned integer that holds an ARGB colour
};

/// One named value of a `Choice`.
struct VariableChoice
{
    qint64 value = 0;
    QString text;
};

/// What is known about one setting.
struct VariableInfo
{
    QString label;
    QString description; ///< May be empty.
    VariableKind kind = VariableKind::Text;
    bool readOnly = false;   ///< PixInsight documents it as read-only or write-only.
    bool documented = false; ///< PixInsight documents it at all.
    bool hasRange = false;
    double min = 0; ///< Both ends are included. An open end is the largest finite double.
    double max = 0;
    QList<VariableChoice> choices; ///< Empty unless `kind` is `Choice`.
};

/// One page of preferences: the full paths of the groups that it shows.
struct PageSpec
{
    QString title;
    QStringList paths;
    QList<XsdtNode*> nodes; ///< The nodes at these paths, in a page made for a document.
};

/// One row of `globals.json`.
struct GlobalVariableRecord
{
    QString description;
    bool readOnly = false;
};

/// What the program knows about settings in addition to their file: labels, descriptions, kinds,
/// ranges, choices and pages. Nothing changes after `load`.
///
/// A variable's id is its node's path without a leading "Global/" and then without a leading
/// "Preferences/". The two tables use ids; pages and hidden paths are full paths.
class SettingsSchema
{
public:
    /// Takes the tables from the bytes of `globals.json` and `overlay.json`. Empty bytes give an
    /// empty table, and succeed. On failure the schema is empty and `error`, unless null, gets
    /// the reason. An empty schema still describes a node by its key and type.
    [[nodiscard]] bool load(const QByteArray& globalsJson, const QByteArray& overlayJson,
                            QString* error = nullptr);

    [[nodiscard]] VariableInfo describe(const XsdtNode& node) const;

    [[nodiscard]] static QString variableId(const XsdtNode& node);

    /// Whether the preferences don't show `node`. Nodes below it are asked about separately.
    [[nodiscard]] bool isHidden(const XsdtNode& node) const;

    /// The pages with those of their paths that `document` has. Pages without any are left out.
    /// Then comes one page for each group of `Global/Preferences` that isn't on another page.
    [[nodiscard]] QList<PageSpec> decoratedPages(const XsdtDocument& document) const;

    /// False if no child of `group` can be in the tables, so that it has only its key and type.
    [[nodiscard]] bool mayDescribeIn(const XsdtNode& group) const;

private:
    void describeDocumented(const QString& id, VariableInfo& info) const;
    void refine(const QString& id, VariableInfo& info) const;

    QHash<QString, GlobalVariableRecord> m_globals;
    QHash<QString, QJsonObject> m_overlay;
    QSet<QString> m_subjects; ///< The first parts of the ids in both tables.
    QList<PageSpec> m_pages;
    QSet<QString> m_hide;
};

} // namespace kse
