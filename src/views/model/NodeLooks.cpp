// SPDX-License-Identifier: MIT
#include "views/model/NodeLooks.h"

#include "document/XsdtNode.h"
#include "document/XsdtValueType.h"
#include "schema/DeletePolicy.h"
#include "views/model/SettingsModel.h"
#include "widgets/PlainText.h"

#include <QApplication>
#include <QColor>
#include <QFont>
#include <QPalette>

namespace kse {

namespace {

bool isProtected(const XsdtNode& node)
{
    return node.kind == XsdtNode::Kind::Value && !node.isEditableType();
}

QString typeText(const XsdtNode& node)
{
    if (node.markedForDeletion) {
        return SettingsModel::tr("Will be deleted");
    }
    if (node.kind == XsdtNode::Kind::Value) {
        return typeName(node.typeCode);
    }
    return SettingsModel::tr("%n item(s)", nullptr, static_cast<int>(node.children.size()));
}

} // namespace

QVariant displayText(const XsdtNode& node, int column)
{
    switch (column) {
    case SettingsModel::SettingColumn:
        return abbreviated(node.key, lineLimit);
    case SettingsModel::ValueColumn:
        return node.kind == XsdtNode::Kind::Value ? displayValue(node, node.value, shortLimit)
                                                  : QVariant();
    default:
        return typeText(node);
    }
}

QVariant editText(const XsdtNode& node, int column)
{
    const bool isValue = node.kind == XsdtNode::Kind::Value;
    return isValue && column == SettingsModel::ValueColumn ? QVariant(node.value) : QVariant();
}

QString stateText(const XsdtNode& node)
{
    QString text;
    if (isProtected(node)) {
        text += u'\n' + typeName(node.typeCode) +
                SettingsModel::tr(" - protected, shown for reference only");
    }
    if (node.isModified()) {
        text += SettingsModel::tr("\nOriginal value: %1")
                    .arg(firstCharacters(node.original, shortLimit));
    }
    if (node.markedForDeletion) {
        text += SettingsModel::tr("\nMarked for deletion (%n value(s)); removed when you save.",
                                  nullptr, static_cast<int>(node.valueCount()));
    } else if (node.isInsideDeletion()) {
        text += SettingsModel::tr("\nInside an entry marked for deletion.");
    }
    return text;
}

QString toolTipText(const XsdtNode& node, const DeleteDecision& decision)
{
    QString text = withoutMiddle(node.path(), lineLimit);
    if (node.kind == XsdtNode::Kind::Value && !isProtected(node)) {
        text += u'\n' + typeName(node.typeCode);
    }
    text += stateText(node);
    if (!node.isInsideDeletion() && decision.level > DeleteLevel::Never) {
        text += SettingsModel::tr("\nCan be deleted: %1").arg(decision.reason);
    }
    return asToolTip(text);
}

QVariant rowFont(const XsdtNode& node)
{
    const bool modified = node.isModified();
    const bool struckOut = node.isInsideDeletion();
    if (!modified && !struckOut) {
        return {};
    }
    QFont font = QApplication::font();
    if (modified || node.markedForDeletion) {
        font.setWeight(modified ? QFont::Bold : QFont::Normal);
    }
    font.setStrikeOut(struckOut);
    return font;
}

QVariant rowBackground(const XsdtNode& node)
{
    if (node.markedForDeletion) {
        return QColor(230, 60, 60, 60);
    }
    return node.isModified() ? QVariant(QColor(255, 190, 0, 70)) : QVariant();
}

QVariant rowForeground(const XsdtNode& node)
{
    if (!isProtected(node) && !node.isInsideDeletion()) {
        return {};
    }
    return QApplication::palette().color(QPalette::Disabled, QPalette::Text);
}

QString displayValue(const XsdtNode& node, const QString& text, qsizetype limit)
{
    if (node.typeCode == XsdtValueType::Block) {
        return SettingsModel::tr("(%1 characters of encoded data)").arg(text.size());
    }
    QString shown = text;
    if (text.size() > limit) {
        shown = firstCharacters(text, limit) + QChar(0x2026);
    }
    return shown.replace(u'\n', QChar(0x23CE));
}

} // namespace kse
