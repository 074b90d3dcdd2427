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
            if (QWidget* part = layout->itemAt(i)->widget()) {
                parts.append(part);
            } else {
                append(layout->itemAt(i)->layout());
            }
        }
    };
    append(widget.layout());
    const QSet<QWidget*> laidOut(parts.begin(), parts.end());
    for (QWidget* child : widget.findChildren<QWidget*>(QString(), Qt::FindDirectChildrenOnly)) {
        if (!laidOut.contains(child) && !child->isWindow()) {
            parts.append(child);
        }
    }
    return parts;
}

/// What a person or a screen reader finds in a window, as lines of text: role, name, value,
/// description and state of each widget, in all pages; each row of its lists; its commands.
class WindowText
{
public:
    /// Leaves out what is called by one of `omitted`.
    static QStringList of(const QWidget& window, const QSet<QString>& omitted = {})
    {
        WindowText text;
        text.m_omitted = omitted;
        text.addParts(window, {});
        for (const QAction* action : window.findChildren<QAction*>()) {
            if (!action->text().isEmpty()) {
                text.m_lines.append(u"action "_s + action->text() +
                                    state({{action->isEnabled(), "on"},
                                           {action->isChecked(), "checked"},
                                           {action->isVisible(), "visible"}}));
            }
        }
        return text.m_lines;
    }

    /// `widget` by itself.
    static QStringList ofPart(QWidget& widget)
    {
        WindowText text;
        text.addWidget(widget, {});
        return text.m_lines;
    }

private:
    static QString state(std::initializer_list<std::pair<bool, const char*>> states)
    {
        QString text;
        for (const auto& [applies, name] : states) {
            text += applies ? u' ' + QLatin1String(name) : QString();
        }
        return text;
    }

    static QString look(const QFont& font)
    {
        return state({{font.bold(), "bold"}, {font.strikeOut(), "struck"}});
    }

    void addParts(const QWidget& widget, const QString& indent)
    {
        const bool isStack = qobject_cast<const QStackedWidget*>(&widget);
        for (QWidget* part : partsOf(widget)) {
            if (isStack || !part->isHidden()) { // a stack hides its pages, which aren't gone
                addWidget(*part, indent);
            }
        }
    }

    void addWidget(QWidget& widget, const QString& indent)
    {
        const QString name = widget.objectName();
        const bool isScrolling = name.startsWith("qt_scroll"_L1) && name.endsWith("container"_L1);
        if (isScrolling || m_omitted.contains(name) || qobject_cast<QStatusBar*>(&widget) ||
            qobject_cast<QSplitterHandle*>(&widget) || qobject_cast<QFocusFrame*>(&widget) ||
            qobject_cast<QMenuBar*>(&widget)) {
            return;
        }
        m_lines.append(indent + describe(widget));
        const QString inside = indent + u' ';
        if (auto* view = qobject_cast<QAbstractItemView*>(&widget)) {
            addRows(*view, view->rootIndex(), inside);
            addLaidOut(*view, inside);
        } else if (auto* combo = qobject_cast<QComboBox*>(&widget)) {
            for (int i = 0; i < combo->count(); ++i) {
                m_lines.append(inside + combo->itemText(i));
            }
        } else if (auto* tabs = qobject_cast<QTabBar*>(&widget)) {
            for (int i = 0; i < tabs->count(); ++i) {
                m_lines.append(inside + tabs->tabText(i) +
                               state({{i == tabs->currentIndex(), "current"}}));
            }
        } else if (!qobject_cast<QAbstractSpinBox*>(&widget) &&
                   !qobject_cast<QLineEdit*>(&widget)) { // its button comes and goes slowly
            addParts(widget, inside);
        }
    }

    static QString describe(QWidget& widget)
    {
        QAccessibleInterface* found = QAccessible::queryAccessibleInterface(&widget);
        const QAccessible::State states = found->state();
        const auto* label = qobject_cast<const QLabel*>(&widget);
        const auto* button = qobject_cast<const QAbstractButton*>(&widget);
        const QPalette& palette = widget.palette();
        return QStringList{QLatin1String(widget.metaObject()->className()),
                           widget.objectName(),
                           found->text(QAccessible::Name),
                           found->text(QAccessible::Value),
                           found->text(QAccessible::Description),
                           widget.toolTip(),
                           label    ? label->text()
                           : button ? button->text()
                                    : QString(),
                           state({{states.disabled, "off"},
                                  {states.checked, "checked"},
                                  {states.readOnly, "readonly"},
                                  {widget.focusPolicy() & Qt::TabFocus, "tabstop"}}),
                           look(widget.font()),
                           QString::number(widget.font().pointSizeF()),
                           palette.color(QPalette::WindowText).name(),
                           widget.autoFillBackground()
                               ? palette.color(QPalette::Window).name(QColor::HexArgb)
                               : QString()}
            .join(u" | "_s);
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
            QString line = indent;
            for (int column = 0; column < model.columnCount(parent); ++column) {
                line += cell(first.siblingAtColumn(column)) + u'|';
            }
            m_lines.append(line + state({{tree && tree->isExpanded(first), "open"}}));
            addRows(view, first, indent + u' ');
        }
    }

    static QString cell(const QModelIndex& index)
    {
        QList<int> roles{Qt::DisplayRole, Qt::AccessibleTextRole, Qt::AccessibleDescriptionRole,
                         Qt::CheckStateRole};
        if (index.column() == 0) { // elsewhere it tells what is cut off, a matter of width
            roles.append(Qt::ToolTipRole);
        }
        QString text;
        for (const int role : std::as_const(roles)) {
            text += index.data(role).toString() + u' ';
        }
        if (const QVariant font = index.data(Qt::FontRole); font.isValid()) {
            text += look(font.value<QFont>());
        }
        for (const int role : {Qt::BackgroundRole, Qt::ForegroundRole}) {
            if (const QVariant brush = index.data(role); brush.isValid()) {
                text += u' ' + brush.value<QBrush>().color().name(QColor::HexArgb);
            }
        }
        const Qt::ItemFlags flags = index.flags();
        return text + state({{!(flags & Qt::ItemIsEnabled), "off"},
                             {flags & Qt::ItemIsEditable, "editable"},
                             {flags & Qt::ItemIsSelectable, "selectable"}});
    }

    /// What the view has laid out; it may have missed a change of its model.
    void addLaidOut(const QAbstractItemView& view, const QString& indent)
    {
        if (const auto* tree = qobject_cast<const QTreeView*>(&view)) {
            QString line = indent + u"laid out:"_s;
            for (QModelIndex i = tree->model()->index(0, 0); i.isValid(); i = tree->indexBelow(i)) {
                line += u' ' + i.data().toString();
            }
            m_lines.append(line);
        }
    }

    QSet<QString> m_omitted;
    QStringList m_lines;
};

} // namespace kse
