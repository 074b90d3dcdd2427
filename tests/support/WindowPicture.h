// SPDX-License-Identifier: MIT
#pragma once

#include "document/XsdtNode.h"
#include "views/CollapsibleSection.h"
#include "views/ColorButton.h"
#include "views/SettingRow.h"
#include "views/SettingsModel.h"

#include <QApplication>
#include <QCheckBox>
#include <QColor>
#include <QComboBox>
#include <QDoubleSpinBox>
#include <QLabel>
#include <QLayout>
#include <QLineEdit>
#include <QPushButton>
#include <QSpinBox>
#include <QStringList>
#include <QToolButton>
#include <QTreeView>

namespace kse {

using namespace Qt::StringLiterals;

// What the window's pages show, as lines of text. `PlainWindow` tells what they should be.

/// Marks behind a text: each letter that applies.
inline QString marks(std::initializer_list<std::pair<bool, char>> letters)
{
    QString text = QStringLiteral(" /");
    for (const auto& [applies, letter] : letters) {
        text += applies ? QString(QLatin1Char(letter)) : QString();
    }
    return text;
}

/// What stands in the editor of a row.
inline QString editorText(const SettingRow& row)
{
    if (const auto* box = row.findChild<QCheckBox*>(QStringLiteral("checkBox"))) {
        return box->isChecked() ? QStringLiteral("true") : QStringLiteral("false");
    }
    if (const auto* combo = row.findChild<QComboBox*>(QStringLiteral("comboBox"))) {
        return combo->currentText() + QStringLiteral(" of %1").arg(combo->count());
    }
    if (const auto* spin = row.findChild<QSpinBox*>(QStringLiteral("spinBox"))) {
        return QString::number(spin->value());
    }
    if (const auto* spin = row.findChild<QDoubleSpinBox*>(QStringLiteral("doubleSpinBox"))) {
        return QString::number(spin->value(), 'f', 0);
    }
    if (const auto* line = row.findChild<QLineEdit*>(QStringLiteral("lineEdit"))) {
        return line->text();
    }
    const auto* color = row.findChild<ColorButton*>(QStringLiteral("colorButton"));
    return color ? color->text() : QString();
}

/// A row of a page. B: bold, S: struck through, A: amber, R: can be reverted, E: can be edited,
/// Z: texts are of the sizes that the text scale gives.
inline QString rowLine(const SettingRow& row)
{
    const auto label = [&row](const char* name) {
        return row.findChild<QLabel*>(QLatin1String(name));
    };
    const QFont font = label("nameLabel")->font();
    const auto* revert = row.findChild<QToolButton*>(QStringLiteral("revertButton"));
    const QWidget* host = row.findChild<QWidget*>(QStringLiteral("editorHost"));
    const bool amber = row.autoFillBackground() &&
                       row.palette().color(QPalette::Window) == QColor(255, 190, 0, 55);
    const qreal size = QApplication::font().pointSizeF();
    const bool hasSizes = qFuzzyCompare(font.pointSizeF(), size) &&
                          qFuzzyCompare(label("descriptionLabel")->font().pointSizeF(), 0.9 * size);
    return label("nameLabel")->text() + u" ("_s +
           (label("pathLabel")->isHidden() ? QString() : label("pathLabel")->text()) + u") "_s +
           editorText(row) +
           marks({{font.bold(), 'B'},
                  {font.strikeOut(), 'S'},
                  {amber, 'A'},
                  {revert->isEnabled(), 'R'},
                  {host->isEnabledTo(&row), 'E'},
                  {hasSizes, 'Z'}}) +
           u' ' + revert->toolTip() + u" | "_s + row.toolTip();
}

inline QString titleOf(const CollapsibleSection& section)
{
    return section.findChild<QToolButton*>(QStringLiteral("toggleButton"))->text();
}

inline bool isOpen(const CollapsibleSection& section)
{
    return section.findChild<QToolButton*>(QStringLiteral("toggleButton"))->isChecked();
}

/// What a page built of widgets shows, from top to bottom. "-" stands before what is hidden, "v"
/// or ">" before the title of a section, "!" behind what is disabled; what a section holds is
/// indented.
inline void appendLines(const QLayout& layout, const QString& indent, QStringList& lines)
{
    for (int i = 0; i < layout.count(); ++i) {
        QWidget* widget = layout.itemAt(i)->widget();
        if (!widget) {
            if (const QLayout* inner = layout.itemAt(i)->layout()) {
                appendLines(*inner, indent, lines);
            }
            continue;
        }
        const QString start = indent + (widget->isHidden() ? u"-"_s : u""_s);
        if (const auto* row = qobject_cast<SettingRow*>(widget)) {
            lines.append(start + rowLine(*row));
        } else if (const auto* section = qobject_cast<CollapsibleSection*>(widget)) {
            const bool open = isOpen(*section);
            const bool bodyHidden = section->bodyLayout()->parentWidget()->isHidden();
            lines.append(start + (open ? u"v "_s : u"> "_s) + titleOf(*section) +
                         (open == bodyHidden ? u" (arrow and body differ)"_s : u""_s));
            appendLines(*section->bodyLayout(), indent + u' ', lines);
        } else if (const auto* box = qobject_cast<QCheckBox*>(widget)) {
            lines.append(start + (box->isChecked() ? u"[x]"_s : u"[ ]"_s) +
                         (box->isEnabled() ? u""_s : u"!"_s));
        } else if (const auto* label = qobject_cast<QLabel*>(widget)) {
            lines.append(start + label->text());
        } else if (const auto* button = qobject_cast<QPushButton*>(widget)) {
            if (!button->isHidden()) {
                lines.append(start + u'<' + button->text() + u'>' +
                             (button->isEnabledTo(widget->parentWidget()) ? u""_s : u"!"_s));
            }
        } else if (widget->layout()) {
            appendLines(*widget->layout(), indent, lines);
        }
    }
}

/// How a row of the settings tree looks, other than by its texts. E: can be edited, g: grey.
inline QString lookOf(const QModelIndex& index)
{
    const QVariant font = index.data(Qt::FontRole);
    const QVariant background = index.data(Qt::BackgroundRole);
    const QVariant foreground = index.data(Qt::ForegroundRole);
    const QColor grey = QApplication::palette().color(QPalette::Disabled, QPalette::Text);
    const bool editable =
        index.siblingAtColumn(SettingsModel::ValueColumn).flags() & Qt::ItemIsEditable;
    return marks({{font.isValid() && font.value<QFont>().bold(), 'B'},
                  {font.isValid() && font.value<QFont>().strikeOut(), 'S'},
                  {background.value<QColor>() == QColor(255, 190, 0, 70), 'A'},
                  {background.value<QColor>() == QColor(230, 60, 60, 60), 'r'},
                  {foreground.isValid() && foreground.value<QColor>() == grey, 'g'},
                  {foreground.isValid() && foreground.value<QColor>() != grey, '?'},
                  {editable, 'E'}}) +
           u' ' + index.data(Qt::ToolTipRole).toString();
}

/// All rows of `model` beneath `parent`.
inline void appendLines(const QAbstractItemModel& model, const QModelIndex& parent,
                        const QString& indent, QStringList& lines)
{
    for (int row = 0; row < model.rowCount(parent); ++row) {
        const QModelIndex index = model.index(row, 0, parent);
        lines.append(indent + index.data().toString() + u'|' +
                     index.siblingAtColumn(1).data().toString() + u'|' +
                     index.siblingAtColumn(2).data().toString() + lookOf(index));
        appendLines(model, index, indent + u'.', lines);
    }
}

/// The rows that `view` lays out, from top to bottom, and those that it should: the children of
/// what is expanded.
inline QList<QModelIndex> laidOutRows(const QTreeView& view)
{
    QList<QModelIndex> rows;
    for (QModelIndex i = view.model()->index(0, 0); i.isValid(); i = view.indexBelow(i)) {
        rows.append(i);
    }
    return rows;
}

inline void appendExpandedRows(const QTreeView& view, const QModelIndex& parent,
                               QList<QModelIndex>& rows)
{
    for (int row = 0; row < view.model()->rowCount(parent); ++row) {
        const QModelIndex index = view.model()->index(row, 0, parent);
        rows.append(index);
        if (view.isExpanded(index)) {
            appendExpandedRows(view, index, rows);
        }
    }
}

} // namespace kse
