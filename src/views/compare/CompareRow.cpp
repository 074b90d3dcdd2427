// SPDX-License-Identifier: MIT
#include "views/compare/CompareRow.h"

#include "document/XsdtNode.h"
#include "document/XsdtValueType.h"
#include "views/compare/CompareEngine.h"
#include "views/compare/CompareView.h"
#include "views/model/NodeLooks.h"
#include "widgets/PlainText.h"

#include <QApplication>
#include <QPalette>
#include <QStyle>
#include <QTreeWidget>

namespace kse {

namespace {

constexpr qsizetype valueLimit = 90;
constexpr qsizetype toolTipValueLimit = 300;

QString statusText(const CompareEntry& entry)
{
    const QStringList texts{CompareView::tr("Different"), CompareView::tr("Only in this file"),
                            CompareView::tr("Only in the other file")}; // by `CompareState`
    const QString& text = texts.at(static_cast<int>(entry.state));
    if (entry.state != CompareState::Different ||
        entry.thisNode->typeCode == entry.otherNode->typeCode) {
        return text;
    }
    return text + CompareView::tr(" (type %1 / %2)")
                      .arg(QString(entry.thisNode->typeCode), QString(entry.otherNode->typeCode));
}

} // namespace

CompareRow::CompareRow(const CompareEntry& entry, int index, bool isCopyable)
    : m_entry(entry)
    , m_index(index)
    , m_isCopyable(isCopyable)
{
}

QVariant CompareRow::data(int column, int role) const
{
    if (role == Qt::DisplayRole || role == Qt::EditRole) {
        return text(column, role == Qt::EditRole);
    }
    if (role == Qt::ToolTipRole && (column == ThisColumn || column == OtherColumn)) {
        return cutValue(column);
    }
    if (column != SettingColumn) {
        return {};
    }
    switch (role) {
    case Qt::UserRole:
        return m_index;
    case Qt::ToolTipRole:
        return toolTipText();
    case Qt::AccessibleDescriptionRole:
        return obstacleText().trimmed();
    case Qt::ForegroundRole:
        return m_entry.state == CompareState::Different && !m_isCopyable
                   ? QApplication::palette().brush(QPalette::Disabled, QPalette::Text)
                   : QVariant();
    default:
        return {};
    }
}

/// The text of a cell, in full or as short as it is shown.
QVariant CompareRow::text(int column, bool isWhole) const
{
    if (column == StatusColumn) {
        return statusText(m_entry);
    }
    if (column == SettingColumn) {
        const QString name = groupedPath(m_entry.path).name;
        return isWhole ? name : withoutMiddle(name, lineLimit);
    }
    const XsdtNode* node = column == ThisColumn ? m_entry.thisNode : m_entry.otherNode;
    if (!node) {
        return {};
    }
    return isWhole ? node->value : displayValue(*node, node->value, valueLimit);
}

QString CompareRow::toolTipText() const
{
    QString text = withoutMiddle(m_entry.path, lineLimit);
    if (m_entry.thisNode) {
        text += CompareView::tr("\nThis file: %1")
                    .arg(firstCharacters(m_entry.thisNode->value, toolTipValueLimit));
    }
    if (m_entry.otherNode) {
        text += CompareView::tr("\nOther file: %1")
                    .arg(firstCharacters(m_entry.otherNode->value, toolTipValueLimit));
    }
    return asToolTip(text + obstacleText());
}

/// The value in `column` for its tool tip; empty if the cell has room for all of it.
QString CompareRow::cutValue(int column) const
{
    const XsdtNode* node = column == ThisColumn ? m_entry.thisNode : m_entry.otherNode;
    if (!node) {
        return {};
    }
    const QTreeWidget& tree = *treeWidget();
    const QString shown = displayValue(*node, node->value, valueLimit);
    const int margin = tree.style()->pixelMetric(QStyle::PM_FocusFrameHMargin, nullptr, &tree) + 1;
    const int room = tree.columnWidth(column) - 2 * margin;
    if (node->value.size() <= valueLimit && tree.fontMetrics().horizontalAdvance(shown) <= room) {
        return {};
    }
    return asMarkup(node->typeCode == XsdtValueType::Block
                        ? shown
                        : abbreviated(node->value, lineLimit)); // only markup wraps
}

/// As a line of its own, why the other file's value can't be copied; empty if it can.
QString CompareRow::obstacleText() const
{
    if (m_entry.state == CompareState::Different && !m_isCopyable) {
        return CompareView::tr("\nCannot be copied: protected value type, specific to one "
                               "PixInsight installation, or queued for deletion.");
    }
    if (m_entry.state == CompareState::OnlyOther) {
        return CompareView::tr("\nDoes not exist in this file; adding entries is not offered.");
    }
    return {};
}

} // namespace kse
