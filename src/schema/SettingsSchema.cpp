// SPDX-License-Identifier: MIT
#include "schema/SettingsSchema.h"

#include "document/XsdtDocument.h"
#include "document/XsdtValueType.h"
#include "schema/JsonObject.h"
#include "schema/PrettyName.h"

#include <QJsonArray>
#include <QJsonValue>
#include <QRegularExpression>

#include <algorithm>
#include <limits>

using namespace Qt::StringLiterals;

namespace kse {

namespace {

constexpr double largest = std::numeric_limits<double>::max();

VariableKind kindOfType(QChar typeCode)
{
    if (typeCode == XsdtValueType::Boolean) {
        return VariableKind::Boolean;
    }
    if (typeCode == XsdtValueType::Integer) {
        return VariableKind::Integer;
    }
    if (typeCode == XsdtValueType::Unsigned) {
        return VariableKind::Unsigned;
    }
    if (typeCode == XsdtValueType::Real || typeCode == XsdtValueType::RealSingle) {
        return VariableKind::Real;
    }
    return VariableKind::Text;
}

/// The kind of a node by its type, refined by the end of its key. Digits at the very end are
/// ignored: "Color2" is one of several colours.
VariableKind kindOf(const XsdtNode& node)
{
    QStringView base = node.key;
    while (!base.isEmpty() && base.back().isDigit()) {
        base.chop(1);
    }
    const VariableKind kind = kindOfType(node.typeCode);
    if (kind == VariableKind::Unsigned &&
        (base.endsWith("Color"_L1) || base.endsWith("Foreground"_L1) ||
         base.endsWith("Background"_L1))) {
        return VariableKind::Color;
    }
    if (kind == VariableKind::Text) {
        if (base.endsWith("Directory"_L1)) {
            return VariableKind::Directory;
        }
        if (base.endsWith("File"_L1) || base.endsWith("FilePath"_L1) || base.endsWith("Path"_L1)) {
            return VariableKind::FilePath;
        }
    }
    return kind;
}

/// The description without sentences that refer to other documentation.
QString withoutReferences(QString description)
{
    static const QRegularExpression reference(
        u"\\s*See the (?:pcl::\\w+ namespace|documentation for \\w+|[\\w/]+ global variable)\\.?"_s);
    return description.remove(reference).trimmed();
}

/// `number` without its fraction, limited to the range of the type, as a conversion of larger
/// numbers would be undefined.
qint64 truncated(double number)
{
    constexpr double limit = 9223372036854775808.0; // 2^63
    if (number >= limit) {
        return std::numeric_limits<qint64>::max();
    }
    return number < -limit ? std::numeric_limits<qint64>::min() : static_cast<qint64>(number);
}

QList<PageSpec> readPages(const QJsonValue& value)
{
    QList<PageSpec> pages;
    const QJsonArray array = value.toArray();
    for (const QJsonValue& element : array) {
        const PageSpec page{element["title"_L1].toString(), toStringList(element["paths"_L1]), {}};
        if (!page.title.isEmpty() && !page.paths.isEmpty()) {
            pages.append(page);
        }
    }
    return pages;
}

QStringView withoutPrefix(QStringView path)
{
    for (const QLatin1String prefix : {"Global/"_L1, "Preferences/"_L1}) {
        if (path.startsWith(prefix)) {
            path = path.sliced(prefix.size());
        }
    }
    return path;
}

/// What stands before the first slash of `id`.
QString firstPart(QStringView id)
{
    return id.first(std::max(id.indexOf(u'/'), qsizetype{0})).toString();
}

} // namespace

bool SettingsSchema::load(const QByteArray& globalsJson, const QByteArray& overlayJson,
                          QString* error)
{
    *this = {};
    QJsonObject globals;
    QJsonObject overlay;
    if (!parseJsonObject(globalsJson, u"globals.json"_s, globals, error) ||
        !parseJsonObject(overlayJson, u"overlay.json"_s, overlay, error)) {
        return false;
    }
    const QJsonObject records = globals["variables"_L1].toObject();
    for (auto it = records.begin(); it != records.end(); ++it) {
        const QJsonObject record = it.value().toObject();
        m_globals.insert(it.key(),
                         {record["description"_L1].toString(), record["readOnly"_L1].toBool()});
    }
    const QJsonObject refinements = overlay["variables"_L1].toObject();
    for (auto it = refinements.begin(); it != refinements.end(); ++it) {
        m_overlay.insert(it.key(), it.value().toObject());
    }
    for (const QString& id : m_globals.keys() + m_overlay.keys()) {
        m_subjects.insert(firstPart(id));
    }
    m_pages = readPages(overlay["pages"_L1]);
    const QStringList hidden = toStringList(overlay["hide"_L1]);
    m_hide = {hidden.begin(), hidden.end()};
    return true;
}

VariableInfo SettingsSchema::describe(const XsdtNode& node) const
{
    const QString id = variableId(node);
    VariableInfo info;
    info.label = prettyName(node.key);
    info.kind = kindOf(node);
    describeDocumented(id, info);
    refine(id, info);
    return info;
}

void SettingsSchema::describeDocumented(const QString& id, VariableInfo& info) const
{
    const auto record = m_globals.constFind(id);
    if (record == m_globals.constEnd()) {
        return;
    }
    info.documented = true;
    info.readOnly = record->readOnly;
    info.description = withoutReferences(record->description);
    if (info.kind != VariableKind::Integer && info.kind != VariableKind::Unsigned &&
        info.kind != VariableKind::Real) {
        return;
    }
    static const QRegularExpression range(
        u"\\[\\s*(-?\\d+(?:\\.\\d+)?)\\s*,\\s*(-?\\d+(?:\\.\\d+)?)\\s*\\]"_s);
    const QRegularExpressionMatch match = range.match(info.description);
    if (match.hasMatch()) {
        // A number with too many digits for a double is read as infinite, which isn't a bound.
        const auto bound = [&match](int group) {
            return std::clamp(match.capturedView(group).toDouble(), -largest, largest);
        };
        info.hasRange = true;
        info.min = bound(1);
        info.max = bound(2);
    }
}

void SettingsSchema::refine(const QString& id, VariableInfo& info) const
{
    const QJsonObject refinement = m_overlay.value(id);
    if (refinement.contains("label"_L1)) {
        info.label = refinement["label"_L1].toString();
    }
    if (refinement.contains("description"_L1)) {
        info.description = refinement["description"_L1].toString();
    }
    const bool hasMin = refinement.contains("min"_L1);
    const bool hasMax = refinement.contains("max"_L1);
    if ((hasMin || hasMax) && !info.hasRange) {
        info.hasRange = true;
        info.min = -largest;
        info.max = largest;
    }
    if (hasMin) {
        info.min = refinement["min"_L1].toDouble();
    }
    if (hasMax) {
        info.max = refinement["max"_L1].toDouble();
    }
    const QJsonArray choices = refinement["choices"_L1].toArray();
    if (choices.isEmpty() ||
        (info.kind != VariableKind::Integer && info.kind != VariableKind::Unsigned)) {
        return;
    }
    info.kind = VariableKind::Choice;
    for (const QJsonValue& choice : choices) {
        info.choices.append({truncated(choice[0].toDouble()), choice[1].toString()});
    }
}

QString SettingsSchema::variableId(const XsdtNode& node)
{
    return withoutPrefix(node.path()).toString();
}

bool SettingsSchema::mayDescribeIn(const XsdtNode& group) const
{
    const QString start = group.path() + u'/';
    const QString subject = firstPart(withoutPrefix(start));
    return subject.isEmpty() || m_subjects.contains(subject);
}

bool SettingsSchema::isHidden(const XsdtNode& node) const
{
    return !m_hide.isEmpty() && m_hide.contains(node.path());
}

QList<PageSpec> SettingsSchema::decoratedPages(const XsdtDocument& document) const
{
    QList<PageSpec> pages;
    QSet<QString> claimed;
    for (const PageSpec& page : m_pages) {
        PageSpec present{page.title, {}, {}};
        for (const QString& path : page.paths) {
            if (XsdtNode* node = document.root.findByPath(path)) {
                present.paths.append(path);
                present.nodes.append(node);
                claimed.insert(path);
            }
        }
        if (!present.paths.isEmpty()) {
            pages.append(present);
        }
    }
    const XsdtNode* preferences = document.root.findByPath(u"Global/Preferences");
    if (!preferences) {
        return pages;
    }
    for (const auto& child : preferences->children) {
        if (child->kind == XsdtNode::Kind::Group && child->key != "ProcessInterface"_L1 &&
            !claimed.contains(child->path())) {
            pages.append({prettyName(child->key), {child->path()}, {child.get()}});
        }
    }
    return pages;
}

} // namespace kse
