// SPDX-License-Identifier: MIT
#pragma once

#include "views/rows/SettingRow.h"

#include <QTest>
#include <QtWidgets>

namespace kse {

using namespace Qt::StringLiterals;

/// Somebody who uses whatever is in sight and enabled, and answers whatever asks: the same things
/// for the same seed. Knows no window: targets are found by what kind of widget they are.
class RandomUser : public QObject
{
public:
    std::function<void(QWidget&)> onOpened; ///< Called for each dialog, menu or box as it comes.
    std::function<void(QWidget&)> onAnswer; ///< Called for each as it is about to be answered.
    QStringList words;                      ///< What parts of are typed, beside the usual.
    QStringList log;                        ///< What was done.
    QRandomGenerator random;

    explicit RandomUser(quint32 seed)
        : random(seed)
    {
        lookSoon();
    }

    int below(qsizetype count) { return int(random.bounded(quint32(count))); }
    bool oneIn(int count) { return below(count) == 0; }
    template <typename List>
    auto pick(const List& list)
    {
        return list[below(list.size())];
    }

    /// Uses a widget in `place`: each kind of those in sight is as likely as any other.
    void act(QWidget& place)
    {
        QMap<QString, QList<QWidget*>> targets;
        for (QWidget* widget : place.findChildren<QWidget*>()) {
            if (widget->window() == place.window() && widget->isVisible() && widget->isEnabled() &&
                isTarget(*widget)) {
                targets[kindOf(*widget)].append(widget);
            }
        }
        if (!targets.isEmpty()) {
            use(*pick(pick(targets.values())));
        }
    }

    /// Triggers one of the commands that `window` has enabled.
    void command(const QWidget& window)
    {
        QList<QAction*> actions = window.findChildren<QAction*>();
        actions.removeIf([](const QAction* action) {
            return !action->isEnabled() || action->text().isEmpty() || action->menu();
        });
        trigger(*pick(actions));
    }

    void trigger(QAction& action)
    {
        log << u"command \"%1\""_s.arg(action.text());
        action.trigger();
    }

    void use(QWidget& widget)
    {
        const QString target = kindOf(widget) + u" \""_s + widget.accessibleName().left(60) + u'"';
        if (hasMenu(widget) && (oneIn(3) || qobject_cast<SettingRow*>(&widget))) {
            log << u"menu of "_s + target;
            askForMenu(widget, QPoint(5, 5));
        } else if (auto* view = qobject_cast<QAbstractItemView*>(&widget)) {
            useView(*view, target);
        } else if (auto* edit = qobject_cast<QLineEdit*>(&widget)) {
            typeInto(*edit, target);
        } else if (auto* spin = qobject_cast<QAbstractSpinBox*>(&widget)) {
            const QString typed = QString::number(below(60) - 10);
            log << u"type %1 into %2"_s.arg(typed, target);
            spin->setFocus();
            spin->selectAll();
            QTest::keyClicks(spin, typed);
            QTest::keyClick(spin, Qt::Key_Return);
        } else if (auto* combo = qobject_cast<QComboBox*>(&widget)) {
            const int item = below(combo->count());
            log << u"choose \"%1\" from %2"_s.arg(combo->itemText(item), target);
            combo->setFocus();
            combo->setCurrentIndex(item);
            emit combo->activated(item);
        } else if (auto* tabs = qobject_cast<QTabBar*>(&widget)) {
            const int tab = below(tabs->count());
            log << u"show "_s + tabs->tabText(tab);
            QTest::mouseClick(tabs, Qt::LeftButton, {}, tabs->tabRect(tab).center());
        } else {
            log << u"press "_s + target;
            QTest::mouseClick(&widget, Qt::LeftButton, {}, QPoint(8, widget.height() / 2));
        }
    }

private:
    static bool isInRow(const QWidget* widget)
    {
        while (widget && !qobject_cast<const SettingRow*>(widget)) {
            widget = widget->parentWidget();
        }
        return widget;
    }

    static bool hasMenu(const QWidget& widget)
    {
        return qobject_cast<const SettingRow*>(&widget) ||
               widget.contextMenuPolicy() == Qt::CustomContextMenu;
    }

    static bool isTarget(const QWidget& widget)
    {
        const QWidget* parent = widget.parentWidget();
        const bool isPart =
            widget.objectName().startsWith("qt_"_L1) || qobject_cast<const QHeaderView*>(&widget) ||
            qobject_cast<const QComboBox*>(parent) || qobject_cast<const QTabBar*>(parent) ||
            qobject_cast<const QToolBar*>(parent) || qobject_cast<const QAbstractSpinBox*>(parent);
        return hasMenu(widget) || qobject_cast<const QTabBar*>(&widget) ||
               (!isPart && (qobject_cast<const QAbstractButton*>(&widget) ||
                            qobject_cast<const QLineEdit*>(&widget) ||
                            qobject_cast<const QComboBox*>(&widget) ||
                            qobject_cast<const QAbstractSpinBox*>(&widget) ||
                            qobject_cast<const QAbstractItemView*>(&widget)));
    }

    static QString kindOf(const QWidget& widget)
    {
        const auto* button = qobject_cast<const QAbstractButton*>(&widget);
        const QString name =
            widget.objectName().isEmpty() && button ? button->text() : widget.objectName();
        return (isInRow(&widget) ? u"row "_s : QString()) +
               QLatin1String(widget.metaObject()->className()) + u' ' + name;
    }

    static void askForMenu(QWidget& widget, QPoint pos)
    {
        QContextMenuEvent event(QContextMenuEvent::Mouse, pos, widget.mapToGlobal(pos));
        QApplication::sendEvent(&widget, &event);
    }

    QString value()
    {
        static const QStringList texts{u"true"_s,  u"false"_s, u"0"_s,          u"7"_s,
                                       u"-3"_s,    u"007"_s,   u" 12 "_s,       u"1.50"_s,
                                       u"1e400"_s, u"1,5"_s,   u"4294967295"_s, u"2147483648"_s,
                                       QString(),  u"nan"_s,   u"<b>&%1"_s,     u"two words"_s};
        return oneIn(12) ? QString(150 + below(200), u'z') : pick(texts);
    }

    /// Part of a key or value of the file, nothing, or anything.
    QString searchText()
    {
        if (words.isEmpty() || oneIn(4)) {
            return oneIn(2) ? QString() : value();
        }
        return pick(words).left(oneIn(3) ? 20 : 1 + below(6));
    }

    /// Now and then without Return.
    void typeInto(QLineEdit& edit, const QString& target)
    {
        const bool isValue =
            isInRow(&edit) || qobject_cast<QAbstractItemView*>(edit.parentWidget()->parentWidget());
        const QString typed = oneIn(8) ? edit.text() : isValue ? value() : searchText();
        const int end = below(8);
        log << u"type \"%1\"%2 into %3"_s.arg(typed, end < 2 ? u" without Return"_s : u""_s,
                                              target);
        edit.setFocus();
        edit.selectAll();
        QTest::keyClick(&edit, Qt::Key_Backspace);
        QTest::keyClicks(&edit, typed);
        if (end >= 2) {
            QTest::keyClick(&edit, end == 2 ? Qt::Key_Escape : Qt::Key_Return);
        }
    }

    void useView(QAbstractItemView& view, const QString& target)
    {
        QList<QModelIndex> rows;
        const auto* tree = qobject_cast<QTreeView*>(&view);
        const auto* list = qobject_cast<QListWidget*>(&view);
        for (QModelIndex i = view.model()->index(0, 0); i.isValid();
             i = tree ? tree->indexBelow(i) : i.siblingAtRow(i.row() + 1)) {
            if (!list || !list->isRowHidden(i.row())) {
                rows.append(i);
            }
        }
        if (rows.isEmpty()) {
            return;
        }
        const QModelIndex row = pick(rows);
        view.setFocus();
        view.scrollTo(row);
        const QPoint place = view.visualRect(row).center();
        const int what = below(8);
        log << u"%1 on \"%2\" of %3"_s.arg(QStringList{u"edit"_s, u"edit"_s, u"menu"_s, u"Space"_s,
                                                       u"Delete"_s, u"click"_s, u"open or close"_s,
                                                       u"double click"_s}[what],
                                           row.data().toString(), target);
        const bool adds = what == 5 && oneIn(3);
        QTest::mouseClick(view.viewport(), Qt::LeftButton,
                          adds ? Qt::ControlModifier : Qt::NoModifier, place);
        if (what < 2) {
            editRow(view, row, target);
        } else if (what == 2) {
            askForMenu(*view.viewport(), place);
        } else if (what == 3 || what == 4) {
            QTest::keyClick(&view, what == 3 ? Qt::Key_Space : Qt::Key_Delete);
        } else if (what == 6 && tree) {
            QTest::keyClick(&view, tree->isExpanded(row) ? Qt::Key_Left : Qt::Key_Right);
        } else if (what == 7) {
            QTest::mouseDClick(view.viewport(), Qt::LeftButton, {}, place);
        }
    }

    void editRow(QAbstractItemView& view, const QModelIndex& row, const QString& target)
    {
        view.setCurrentIndex(row.siblingAtColumn(row.model()->columnCount(row.parent()) > 1));
        QTest::keyClick(&view, Qt::Key_F2);
        QWidget* editor = view.window()->focusWidget();
        if (auto* line = qobject_cast<QLineEdit*>(editor)) {
            typeInto(*line, target);
        } else if (qobject_cast<QComboBox*>(editor)) {
            const QWidget* popup = QApplication::activePopupWidget();
            auto* list = popup ? popup->findChild<QAbstractItemView*>() : nullptr;
            QWidget* keyboard = list ? list : editor;
            QTest::keyClick(keyboard, oneIn(2) ? Qt::Key_Down : Qt::Key_Up);
            QTest::keyClick(keyboard, Qt::Key_Return);
        }
    }

    // --- what asks ---

    void lookSoon()
    {
        QTimer::singleShot(2, this, [this] { look(); });
    }

    void look()
    {
        lookSoon(); // first: what opens beneath this has its own event loop
        QWidget* popup = QApplication::activePopupWidget();
        const QPointer<QWidget> open = popup ? popup : QApplication::activeModalWidget();
        if (!open || !open->isVisible() || m_open.contains(open)) {
            return;
        }
        m_open.append(open);
        if (!popup || qobject_cast<QMenu*>(popup)) { // not a list beneath a text
            onOpened(*open);
            if (open && open->isVisible()) {
                answer(*open);
            }
        }
        if (open && open->isVisible()) {
            open->close();
        }
        m_open.removeLast();
    }

    void answer(QWidget& widget)
    {
        if (auto* menu = qobject_cast<QMenu*>(&widget)) {
            QList<QAction*> choices = menu->actions();
            choices.removeIf([](const QAction* action) { return action->isSeparator(); });
            QAction* choice = pick(choices);
            log << u"  menu: "_s + choice->text();
            menu->setActiveAction(choice);
            QTest::keyClick(menu, choice->isEnabled() ? Qt::Key_Return : Qt::Key_Escape);
            return;
        }
        const QPointer<QWidget> open = &widget;
        if (auto* files = qobject_cast<QFileDialog*>(&widget)) {
            const QFileInfoList found = QDir(files->directory()).entryInfoList(QDir::Files);
            if (!found.isEmpty() && oneIn(2)) {
                files->selectFile(pick(found).filePath());
            }
        } else if (auto* colors = qobject_cast<QColorDialog*>(&widget)) {
            colors->setCurrentColor(QColor::fromRgba(random.generate()));
        } else if (!qobject_cast<QMessageBox*>(&widget)) {
            for (int i = below(4); i > 0 && open && open->isVisible(); --i) {
                onAnswer(widget);
                act(widget);
            }
        }
        if (open && open->isVisible()) {
            onAnswer(widget);
            press(widget);
        }
    }

    void press(QWidget& dialog)
    {
        QList<QPushButton*> buttons = dialog.findChildren<QPushButton*>();
        buttons.removeIf([&dialog](const QPushButton* button) {
            return !button->isVisible() || !button->isEnabled() || button->window() != &dialog;
        });
        const auto* box = qobject_cast<QMessageBox*>(&dialog);
        if (box && box->checkBox() && oneIn(3)) {
            box->checkBox()->click();
        }
        if (!buttons.isEmpty()) {
            QPushButton* button = pick(buttons);
            log << u"  %1 \"%2\": %3"_s.arg(QLatin1String(dialog.metaObject()->className()),
                                            dialog.windowTitle(), button->text());
            button->click();
        }
    }

    QList<QPointer<QWidget>> m_open; ///< Being answered, the innermost last.
};

} // namespace kse
