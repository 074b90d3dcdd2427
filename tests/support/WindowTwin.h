// SPDX-License-Identifier: MIT
#pragma once

#include "support/WindowFixture.h"
#include "views/rows/SettingRow.h"
#include "widgets/WidgetColumn.h"

namespace kse {

/// The widgets in `widget`, in the order in which its layout shows them.
inline QList<QWidget*> partsOf(const QWidget& widget)
{
    const auto* stack = qobject_cast<const QStackedWidget*>(&widget);
    if (stack && stack->objectName() == "pageStack"_L1) {
        return {stack->currentWidget()}; // its other pages may not have their widgets yet
    }
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

/// Has a second window show what a first one does, as a user would bring it there.
class WindowTwin
{
public:
    /// A window on `path` that never was on the screen. It finds the file as it was `loaded`, and
    /// then as it is now; gets the pending changes of `document`; and nothing else.
    static std::unique_ptr<MainWindow> make(const QString& path, const QByteArray& loaded,
                                            XsdtDocument* document)
    {
        const QByteArray now = contentOf(path);
        write(path, loaded);
        auto window = std::make_unique<MainWindow>(MainWindow::Messages::StandardError);
        window->findChild<QTimer*>(u"pollTimer"_s)->stop();
        window->openFile(path);
        write(path, now);
        QMetaObject::invokeMethod(window.get(), "pollEnvironment");
        window->setAttribute(Qt::WA_DontShowOnScreen);
        window->show();
        settle();
        carryChanges(document, *window->findChild<SettingsModel*>());
        return window;
    }

    /// Makes the choices of `from` in `to`: unless `isLoaded` just now, also what is open, current,
    /// selected or ticked, which a new file doesn't keep.
    static void carryChoices(QWidget& from, QWidget& to, bool isLoaded = false)
    {
        for (QWidget* window : {&from, &to}) { // a list may be as it was when it last opened
            if (auto* files = window->findChild<QComboBox*>(u"fileCombo"_s)) {
                files->showPopup();
                files->hidePopup();
            }
        }
        carry(from, to, true);
        settle();
        if (!isLoaded) {
            carry(from, to, false);
            settle();
        }
    }

private:
    static void carryChanges(XsdtDocument* from, SettingsModel& to)
    {
        const QList<XsdtNode*> nodes = nodesOf(from);
        const QList<XsdtNode*> twins = nodesOf(to.document());
        if (nodes.size() != twins.size() || !from) {
            return; // which shows
        }
        to.document()->defaultLayout = from->defaultLayout; // which a save doesn't change
        emit to.edited();
        const bool wasReadOnly = to.isReadOnly();
        to.setReadOnly(false);
        {
            const SettingsModel::Batch batch(to);
            for (qsizetype i = nodes.size() - 1; i >= 0; --i) { // a mark within a mark comes first
                if (nodes[i]->isModified()) {
                    to.setValue(twins[i], nodes[i]->value);
                }
                if (nodes[i]->markedForDeletion) {
                    (void)to.markForDeletion(twins[i]);
                }
            }
        }
        to.setReadOnly(wasReadOnly);
    }

    /// Goes through the parts of both, which belong together by class, name and order: inputs, or
    /// the rest. Leaves out the values of settings.
    static void carry(QWidget& from, QWidget& to, bool inputs)
    {
        if (qobject_cast<SettingRow*>(&to)) {
            return;
        }
        if (auto* column = qobject_cast<WidgetColumn*>(&to)) {
            column->complete();
        }
        auto* view = qobject_cast<QAbstractItemView*>(&to);
        const bool isToggle = qobject_cast<QAbstractButton*>(&to) && !qobject_cast<QCheckBox*>(&to);
        if (inputs == (!view && !isToggle)) {
            view ? carryRows(static_cast<QAbstractItemView&>(from), {}, *view, {})
                 : carryInput(from, to);
        }
        if (view || qobject_cast<QComboBox*>(&to)) {
            return;
        }
        const auto nameOf = [](const QWidget* part) {
            return QLatin1String(part->metaObject()->className()) + part->objectName();
        };
        QHash<QString, QList<QWidget*>> parts;
        for (QWidget* part : partsOf(from)) {
            parts[nameOf(part)].append(part);
        }
        for (QWidget* part : partsOf(to)) {
            if (QList<QWidget*>& like = parts[nameOf(part)]; !like.isEmpty()) {
                carry(*like.takeFirst(), *part, inputs);
            }
        }
    }

    static void carryInput(QWidget& from, QWidget& to)
    {
        const QMetaProperty input = to.metaObject()->userProperty();
        if (auto* tabs = qobject_cast<QTabBar*>(&to)) {
            tabs->setCurrentIndex(static_cast<QTabBar&>(from).currentIndex());
        } else if (const QVariant value = input.read(&from); value != input.read(&to)) {
            input.write(&to, value);
            auto* combo = qobject_cast<QComboBox*>(&to);
            if (combo && input.read(&to) == value) {
                emit combo->activated(combo->currentIndex());
            }
        }
    }

    static void carryRows(const QAbstractItemView& from, const QModelIndex& fromParent,
                          QAbstractItemView& to, const QModelIndex& toParent)
    {
        auto* tree = qobject_cast<QTreeView*>(&to);
        for (int row = 0; row < to.model()->rowCount(toParent); ++row) {
            const QModelIndex like = from.model()->index(row, 0, fromParent);
            const QModelIndex index = to.model()->index(row, 0, toParent);
            if (!like.isValid()) {
                return;
            }
            carryRows(from, like, to, index); // a parent's box follows those below it
            if (tree) {
                tree->setExpanded(index, static_cast<const QTreeView&>(from).isExpanded(like));
            }
            const QVariant ticked = like.data(Qt::CheckStateRole);
            if (ticked.isValid() &&
                !(to.model()->hasChildren(index) && index.flags() & Qt::ItemIsAutoTristate)) {
                to.model()->setData(index, ticked, Qt::CheckStateRole);
            }
            if (from.selectionModel()->isSelected(like)) {
                to.selectionModel()->select(index, QItemSelectionModel::Select |
                                                       QItemSelectionModel::Rows);
            }
            if (from.currentIndex().siblingAtColumn(0) == like) {
                to.selectionModel()->setCurrentIndex(index, QItemSelectionModel::NoUpdate);
            }
        }
    }
};

} // namespace kse
