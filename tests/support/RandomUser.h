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
    std::function<void()> onOpened; ///< Called for each dialog, menu or box as it comes.
    std::function<void()> onAnswer; ///< Called before a button of a dialog is pressed.
    QStringList log;                ///< What was done.
    QRandomGenerator random;

    explicit RandomUser(quint32 seed)
        : random(seed)
    {
        look();
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
        for (QWidget* widget : usable<QWidget>(place)) {
            if (isTarget(*widget)) {
                targets[kindOf(*widget)].append(widget);
            }
        }
        if (!targets.isEmpty()) {
            use(*pick(pick(targets.values())));
        }
    }

    void trigger(QAction& action)
    {
        log << u"command \"%1\""_s.arg(action.text());
        action.trigger();
        QCoreApplication::processEvents(); // commands run a turn later
    }

    void use(QWidget& widget)
    {
        log << kindOf(widget) + u' ' + widget.accessibleName().left(60);
        if (hasMenu(widget) && (oneIn(3) || qobject_cast<SettingRow*>(&widget))) {
            askForMenu(widget, QPoint(5, 5));
        } else if (auto* view = qobject_cast<QAbstractItemView*>(&widget)) {
            useView(*view);
        } else if (isOneOf<QLineEdit, QAbstractSpinBox>(&widget)) {
            typeInto(widget);
        } else if (auto* combo = qobject_cast<QComboBox*>(&widget)) {
            combo->setFocus();
            combo->setCurrentIndex(below(combo->count()));
            log << u"  chooses "_s + combo->currentText();
            emit combo->activated(combo->currentIndex());
        } else {
            const int x = qobject_cast<QTabBar*>(&widget) ? below(widget.width()) : 8;
            QTest::mouseClick(&widget, Qt::LeftButton, {}, QPoint(x, widget.height() / 2));
        }
    }

private:
    /// The widgets of that class in sight and enabled.
    template <typename Widget>
    static QList<Widget*> usable(const QWidget& place)
    {
        QList<Widget*> widgets = place.findChildren<Widget*>();
        widgets.removeIf([&place](const QWidget* widget) {
            return widget->window() != place.window() || !widget->isVisible() ||
                   !widget->isEnabled();
        });
        return widgets;
    }

    template <typename... Widgets>
    static bool isOneOf(const QObject* object)
    {
        return (qobject_cast<const Widgets*>(object) || ...);
    }

    static bool hasMenu(const QWidget& widget)
    {
        return isOneOf<SettingRow>(&widget) || widget.contextMenuPolicy() == Qt::CustomContextMenu;
    }

    static bool isTarget(const QWidget& widget)
    {
        const bool isPart =
            widget.objectName().startsWith("qt_"_L1) || isOneOf<QHeaderView>(&widget) ||
            isOneOf<QComboBox, QTabBar, QToolBar, QAbstractSpinBox>(widget.parentWidget());
        return hasMenu(widget) || isOneOf<QTabBar>(&widget) ||
               (!isPart &&
                isOneOf<QAbstractButton, QLineEdit, QComboBox, QAbstractSpinBox, QAbstractItemView>(
                    &widget));
    }

    static QString kindOf(const QWidget& widget)
    {
        const auto* button = qobject_cast<const QAbstractButton*>(&widget);
        const QString name =
            widget.objectName().isEmpty() && button ? button->text() : widget.objectName();
        return QLatin1String(widget.metaObject()->className()) + u' ' + name;
    }

    static void askForMenu(QWidget& widget, QPoint pos)
    {
        QContextMenuEvent event(QContextMenuEvent::Mouse, pos, widget.mapToGlobal(pos));
        QApplication::sendEvent(&widget, &event);
    }

    /// Now and then without Return.
    void typeInto(QWidget& widget)
    {
        static const QStringList texts =
            u"|e|Global|pre|true|in|os co|/m|-3|007| 12 |1.50|1e400|4294967295|7|0|nan|<b>&%1|"
            "false|1,5"_s.split(u'|')
            << QString(300, u'z');
        const QString text = pick(texts);
        const int end = below(8);
        log << u"  types \"%1\", %2"_s.arg(text).arg(end);
        widget.setFocus();
        QTest::keyClick(&widget, Qt::Key_A, Qt::ControlModifier);
        QTest::keyClick(&widget, Qt::Key_Backspace);
        QTest::keyClicks(&widget, text);
        if (end >= 2) {
            QTest::keyClick(&widget, end == 2 ? Qt::Key_Escape : Qt::Key_Return);
        }
    }

    void useView(QAbstractItemView& view)
    {
        QList<QModelIndex> rows;
        auto* tree = qobject_cast<QTreeView*>(&view);
        for (QModelIndex i = view.model()->index(0, 0); i.isValid();
             i = tree ? tree->indexBelow(i) : i.siblingAtRow(i.row() + 1)) {
            if (!view.visualRect(i).isEmpty()) {
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
        log << u"  %1 on \"%2\""_s.arg(what).arg(row.data().toString());
        QTest::mouseClick(view.viewport(), Qt::LeftButton,
                          what == 5 ? Qt::ControlModifier : Qt::NoModifier, place);
        if (what < 2) {
            editRow(view, row);
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

    void editRow(QAbstractItemView& view, const QModelIndex& row)
    {
        view.setCurrentIndex(row.siblingAtColumn(row.model()->columnCount(row.parent()) > 1));
        QTest::keyClick(&view, Qt::Key_F2);
        QWidget* editor = view.window()->focusWidget();
        const QWidget* popup = QApplication::activePopupWidget();
        if (isOneOf<QLineEdit>(editor)) {
            typeInto(*editor);
        } else if (auto* list = popup ? popup->findChild<QAbstractItemView*>() : nullptr) {
            QTest::keyClick(list, oneIn(2) ? Qt::Key_Down : Qt::Key_Up);
            QTest::keyClick(list, Qt::Key_Return);
        }
    }

    void look()
    {
        QTimer::singleShot(2, this, &RandomUser::look); // first: what opens has its own event loop
        QWidget* popup = QApplication::activePopupWidget();
        const QPointer<QWidget> open = popup ? popup : QApplication::activeModalWidget();
        if (!open || !open->isVisible() || m_open.contains(open)) {
            return;
        }
        m_open.append(open);
        if (!popup || isOneOf<QMenu>(popup)) { // not a list below a text
            onOpened();
            if (open && open->isVisible()) {
                popup ? choose(static_cast<QMenu&>(*popup)) : answer(*open);
            }
        }
        if (open && open->isVisible()) {
            open->close();
        }
        m_open.removeLast();
    }

    void choose(QMenu& menu)
    {
        QAction* choice = pick(menu.actions());
        log << u"  menu: "_s + choice->text();
        menu.setActiveAction(choice);
        QTest::keyClick(&menu, choice->isEnabled() ? Qt::Key_Return : Qt::Key_Escape);
    }

    void answer(QWidget& dialog)
    {
        const QPointer<QWidget> open = &dialog;
        if (auto* files = qobject_cast<QFileDialog*>(&dialog)) {
            const QFileInfoList found = QDir(files->directory()).entryInfoList(QDir::Files);
            if (!found.isEmpty() && oneIn(2)) {
                files->selectFile(pick(found).filePath());
            }
        } else if (auto* colors = qobject_cast<QColorDialog*>(&dialog)) {
            colors->setCurrentColor(QColor::fromRgba(random.generate()));
        } else {
            for (int i = below(4); i > 0 && open && open->isVisible(); --i) {
                onAnswer();
                act(dialog);
            }
        }
        const auto buttons = open ? usable<QPushButton>(*open) : QList<QPushButton*>();
        if (!buttons.isEmpty()) {
            onAnswer();
            use(*pick(buttons));
        }
    }

    QList<QPointer<QWidget>> m_open; ///< Being answered, the innermost last.
};

} // namespace kse
