// SPDX-License-Identifier: MIT
#pragma once

#include <QtWidgets>

namespace kse {

using namespace Qt::StringLiterals;

/// The widgets in `widget`, in the order in which its layout shows them.
inline QList<QWidget*> partsOf(const QWidget& widget)
{
    QList<QWidget*> parts;
    const std::function<void(QLayout*)> append = [&](QLayout* layout) {
        for (int i = 0; layout && i < layout->count(); ++i) {
            QWidget* part = layout->itemAt(i)->widget();
            part ? parts.append(part) : append(layout->itemAt(i)->layout());
        }
    };
    append(widget.layout());
    for (QWidget* child : widget.findChildren<QWidget*>(QString(), Qt::FindDirectChildrenOnly)) {
        if (!child->isWindow() && !parts.contains(child)) {
            parts.append(child);
        }
    }
    return parts;
}

/// What a person or a screen reader finds in a widget, as lines of text: name, value, description,
/// state and look of each part, in all pages; each row of its lists; its commands.
class WindowText
{
public:
    /// Leaves out the promotional strip.
    static QStringList of(QWidget& widget)
    {
        WindowText text;
        text.addWidget(widget, {});
        for (const QAction* action : widget.findChildren<QAction*>()) {
            if (!action->text().isEmpty()) {
                text.add(u"action"_s) << action->text() << action->isEnabled()
                                      << action->isChecked() << action->isVisible();
            }
        }
        return text.m_lines;
    }

private:
    QDebug add(const QString& start)
    {
        m_lines.append(start);
        return QDebug(&m_lines.last()).noquote() << "";
    }

    void addWidget(QWidget& widget, const QString& indent)
    {
        const QString name = widget.objectName();
        const bool isScrolling = name.startsWith("qt_scroll"_L1) && name.endsWith("container"_L1);
        if (isScrolling || name == "adBanner"_L1 || qobject_cast<QStatusBar*>(&widget) ||
            qobject_cast<QSplitterHandle*>(&widget) || qobject_cast<QFocusFrame*>(&widget) ||
            qobject_cast<QMenuBar*>(&widget)) {
            return;
        }
        QAccessibleInterface* found = QAccessible::queryAccessibleInterface(&widget);
        const QAccessible::State state = found->state();
        add(indent) << widget.metaObject()->className() << name << found->text(QAccessible::Name)
                    << found->text(QAccessible::Value) << found->text(QAccessible::Description)
                    << widget.toolTip() << widget.property("text").toString()
                    << (state.disabled ? "off" : "") << (state.checked ? "checked" : "")
                    << (state.readOnly ? "read only" : "") << widget.focusPolicy()
                    << widget.font().toString() << widget.palette().windowText().color().name()
                    << (widget.autoFillBackground() ? widget.palette().window().color() : QColor());
        const QString inside = indent + u' ';
        if (const auto* view = qobject_cast<QAbstractItemView*>(&widget)) {
            addRows(*view, view->rootIndex(), inside);
        } else if (const auto* combo = qobject_cast<QComboBox*>(&widget)) {
            for (int i = 0; i < combo->count(); ++i) {
                add(inside) << combo->itemText(i);
            }
        } else if (const auto* tabs = qobject_cast<QTabBar*>(&widget)) {
            for (int i = 0; i < tabs->count(); ++i) {
                add(inside) << tabs->tabText(i) << (i == tabs->currentIndex());
            }
        } else if (!qobject_cast<QAbstractSpinBox*>(&widget) &&
                   !qobject_cast<QLineEdit*>(&widget)) { // its button comes and goes slowly
            const bool isStack = qobject_cast<QStackedWidget*>(&widget);
            for (QWidget* part : partsOf(widget)) {
                if (isStack || !part->isHidden()) { // a stack hides its pages, which aren't gone
                    addWidget(*part, inside);
                }
            }
        }
    }

    void addRows(const QAbstractItemView& view, const QModelIndex& parent, const QString& indent)
    {
        const auto* tree = qobject_cast<const QTreeView*>(&view);
        const auto* list = qobject_cast<const QListView*>(&view);
        const QAbstractItemModel& model = *view.model();
        for (int row = 0; row < model.rowCount(parent); ++row) {
            if (list ? list->isRowHidden(row) : tree && tree->isRowHidden(row, parent)) {
                continue;
            }
            const QModelIndex first = model.index(row, 0, parent);
            QString line = indent + (tree && tree->isExpanded(first) ? u"open "_s : QString());
            for (int column = 0; column < model.columnCount(parent); ++column) {
                line += cellText(first.siblingAtColumn(column)) + u'|';
            }
            m_lines.append(line + first.data(Qt::ToolTipRole).toString()); // others' tell a cut
            addRows(view, first, indent + u' ');
        }
    }

    static QString cellText(const QModelIndex& cell)
    {
        QString text;
        QDebug out = QDebug(&text).noquote();
        const auto font = cell.data(Qt::FontRole).value<QFont>();
        out << int(cell.flags()) << (font.bold() ? "bold" : "") << (font.strikeOut() ? "out" : "");
        for (const int role : {Qt::BackgroundRole, Qt::ForegroundRole}) {
            out << cell.data(role).value<QBrush>().color().name(QColor::HexArgb);
        }
        for (const int role : {Qt::DisplayRole, Qt::AccessibleTextRole,
                               Qt::AccessibleDescriptionRole, Qt::CheckStateRole}) {
            out << cell.data(role).toString();
        }
        return text;
    }

    QStringList m_lines;
};

} // namespace kse
