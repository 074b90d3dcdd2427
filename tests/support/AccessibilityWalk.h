// SPDX-License-Identifier: MIT
#pragma once

#include <QTest>
#include <QtWidgets>

#include <cmath>

namespace kse {

// What somebody without a mouse, or who hears a window instead of seeing it, would stumble over.
// Each function gives a line for each fault.

inline QString accessibleText(QWidget* widget, QAccessible::Text which)
{
    QAccessibleInterface* accessible = QAccessible::queryAccessibleInterface(widget);
    return accessible ? accessible->text(which) : QString();
}

/// What a failure calls a widget: what a user hears, and the names of what holds it.
inline QString whereIs(QWidget* widget)
{
    QStringList names;
    for (const QWidget* w = widget; !w->isWindow(); w = w->parentWidget()) {
        const QString name = w->objectName();
        names.prepend(name.isEmpty() ? QLatin1String(w->metaObject()->className()) : name);
    }
    return QStringLiteral("\"%1\" (%2)")
        .arg(accessibleText(widget, QAccessible::Name), names.join(u'/'));
}

inline QList<QWidget*> shownWidgets(const QWidget& window)
{
    QList<QWidget*> shown = window.findChildren<QWidget*>();
    shown.removeIf([&window](const QWidget* widget) {
        return widget->window() != &window || !widget->isVisibleTo(&window);
    });
    return shown;
}

inline bool isTabStop(const QWidget* widget)
{
    return (widget->focusPolicy() & Qt::TabFocus) && widget->isEnabled() && !widget->focusProxy();
}

/// Whether all that is shown has got its place; layouts of much content take a few turns.
inline bool isLaidOut(const QWidget& window)
{
    const QList<QWidget*> widgets = shownWidgets(window);
    return std::none_of(widgets.begin(), widgets.end(), [](const QWidget* widget) {
        return isTabStop(widget) && widget->height() == 0;
    });
}

/// Whatever takes the focus, and every button, has a name in words.
inline QStringList namelessControls(const QWidget& window)
{
    QStringList faults;
    for (QWidget* widget : shownWidgets(window)) {
        const auto* button = qobject_cast<QAbstractButton*>(widget);
        const bool isOwn = !widget->objectName().startsWith(QLatin1String("qt_"));
        if (!isTabStop(widget) && !(button && isOwn && !button->text().isEmpty())) {
            continue;
        }
        const QString name = accessibleText(widget, QAccessible::Name);
        const bool hasWords = std::any_of(
            name.begin(), name.end(), [](QChar c) { return c.isLetterOrNumber() || c == u'_'; });
        if (!hasWords || Qt::mightBeRichText(name)) {
            faults << QStringLiteral("%1 is called \"%2\"").arg(whereIs(widget), name);
        }
        const auto* view = qobject_cast<QAbstractItemView*>(widget);
        const auto* header = view ? view->findChild<QHeaderView*>() : nullptr;
        for (int i = 0; header && header->isVisible() && i < header->count(); ++i) {
            if (view->model()->headerData(i, header->orientation()).toString().isEmpty()) {
                faults << QStringLiteral("%1 has a column without a name").arg(whereIs(widget));
            }
        }
    }
    return faults;
}

/// A letter underlined twice: in the window with its menu bar, or in one menu.
inline QStringList sharedMnemonics(const QWidget& window)
{
    QStringList faults;
    QHash<QString, QString> taken;
    const auto claim = [&](const QString& text) {
        const QString key = QKeySequence::mnemonic(text).toString();
        if (key.isEmpty()) {
            return;
        }
        if (taken.contains(key)) {
            faults << QStringLiteral("%1: %2, %3").arg(key, taken.value(key), text);
        }
        taken.insert(key, text);
    };
    for (const QWidget* widget : shownWidgets(window)) {
        const auto* label = qobject_cast<const QLabel*>(widget);
        if (const auto* button = qobject_cast<const QAbstractButton*>(widget)) {
            claim(button->text());
        } else if (label && label->buddy()) {
            claim(label->text());
        } else if (const auto* menus = qobject_cast<const QMenuBar*>(widget)) {
            for (const QAction* action : menus->actions()) {
                claim(action->text());
            }
        }
    }
    for (const QMenu* menu : window.findChildren<QMenu*>()) {
        taken.clear();
        for (const QAction* action : menu->actions()) {
            claim(action->text());
        }
    }
    return faults;
}

/// Whether `b` is where who reads `a` comes afterwards: not above it, nor beside it to the left, in
/// the nearest widget that holds both.
inline bool isReadBefore(const QWidget* a, const QWidget* b)
{
    if (a->isAncestorOf(b) || b->isAncestorOf(a)) {
        return a->isAncestorOf(b);
    }
    while (!a->parentWidget()->isAncestorOf(b)) {
        a = a->parentWidget();
    }
    while (b->parentWidget() != a->parentWidget()) {
        b = b->parentWidget();
    }
    const QRect first = a->geometry();
    const QRect second = b->geometry();
    const int overlap = qMin(first.bottom(), second.bottom()) - qMax(first.top(), second.top()) + 1;
    const bool inOneLine = 2 * overlap >= qMin(first.height(), second.height());
    return inOneLine ? first.left() < second.left() : first.top() < second.top();
}

/// Presses Tab all the way round, and Shift+Tab back: each is a ring of all that takes the focus
/// by Tab, in the order of reading.
inline QStringList faultsOfTabOrder(QWidget& window)
{
    QStringList faults;
    QWidget* const start = window.focusWidget();
    if (!start) {
        return {QStringLiteral("Nothing has the focus")};
    }
    const auto round = [&window, start, &faults](Qt::Key key) {
        QList<QWidget*> stops;
        QSet<QWidget*> seen;
        QWidget* stop = start;
        for (; stop && !seen.contains(stop); stop = window.focusWidget()) {
            stops << stop;
            seen << stop;
            QTest::keyClick(stop, key);
        }
        if (stop != start) {
            faults << QStringLiteral("The ring is broken at %1").arg(whereIs(stops.constLast()));
        }
        return stops;
    };
    const QList<QWidget*> forth = round(Qt::Key_Tab);
    QList<QWidget*> back = round(Qt::Key_Backtab);
    std::reverse(back.begin() + 1, back.end());
    if (back != forth) {
        faults << QStringLiteral("Shift+Tab doesn't go back the way that Tab came");
    }
    QStringList turns;
    for (qsizetype i = 0; i < forth.size(); ++i) {
        QWidget* next = forth[(i + 1) % forth.size()];
        if (!isReadBefore(forth[i], next)) {
            turns << QStringLiteral("Tab goes back from %1 to %2")
                         .arg(whereIs(forth[i]), whereIs(next));
        }
    }
    faults += turns.size() > 1 ? turns : QStringList(); // one is from the last to the first
    for (QWidget* widget : shownWidgets(window)) {
        const bool isText = widget->inherits("QTextEdit") || widget->inherits("QPlainTextEdit");
        if ((isTabStop(widget) || isText) && !forth.contains(widget)) {
            faults << QStringLiteral("Tab doesn't reach %1").arg(whereIs(widget));
        }
    }
    return faults;
}

/// Items whose colour tells something that their font or their description doesn't tell too.
inline QStringList toldByColourAlone(const QWidget& window)
{
    QStringList faults;
    for (const auto* view : window.findChildren<QAbstractItemView*>()) {
        if (!view->isVisibleTo(&window) || qobject_cast<const QHeaderView*>(view)) {
            continue;
        }
        const QModelIndexList rows =
            view->model()->match(view->model()->index(0, 0), Qt::DisplayRole, QString(), -1,
                                 Qt::MatchContains | Qt::MatchRecursive);
        for (const QModelIndex& row : rows) {
            for (int column = 0; column < view->model()->columnCount(row.parent()); ++column) {
                const QModelIndex cell = row.siblingAtColumn(column);
                const bool isColoured = cell.data(Qt::BackgroundRole).isValid() ||
                                        cell.data(Qt::ForegroundRole).isValid();
                if (isColoured && !cell.data(Qt::FontRole).isValid() &&
                    cell.data(Qt::AccessibleDescriptionRole).toString().isEmpty()) {
                    faults << cell.data().toString() + QStringLiteral(" is told by its colour");
                }
            }
        }
    }
    return faults;
}

/// The contrast of two opaque colours by WCAG 2, from 1 to 21.
inline double contrast(const QColor& a, const QColor& b)
{
    const auto luminance = [](const QColor& colour) {
        const auto linear = [](double c) {
            return c <= 0.04045 ? c / 12.92 : std::pow((c + 0.055) / 1.055, 2.4);
        };
        return 0.2126 * linear(colour.redF()) + 0.7152 * linear(colour.greenF()) +
               0.0722 * linear(colour.blueF());
    };
    const auto [dark, light] = std::minmax({luminance(a), luminance(b)});
    return (light + 0.05) / (dark + 0.05);
}

/// What is seen behind the text of `widget`, through all that is translucent.
inline QColor shownBackground(const QWidget* widget)
{
    const QColor own = widget->palette().color(widget->backgroundRole());
    if (widget->isWindow()) {
        return own;
    }
    const QColor below = shownBackground(widget->parentWidget());
    const bool isFilled =
        widget->autoFillBackground() || qobject_cast<const QAbstractButton*>(widget) ||
        qobject_cast<const QLineEdit*>(widget) || qobject_cast<const QComboBox*>(widget);
    const float alpha = isFilled ? own.alphaF() : 0;
    const auto mixed = [alpha](float above, float under) {
        return alpha * above + (1 - alpha) * under;
    };
    return QColor::fromRgbF(mixed(own.redF(), below.redF()), mixed(own.greenF(), below.greenF()),
                            mixed(own.blueF(), below.blueF()));
}

/// Texts in use whose contrast is below 4.5, but for those named `quiet`.
inline QStringList faintTexts(const QWidget& window, const QStringList& quiet)
{
    QStringList faults;
    for (QWidget* widget : shownWidgets(window)) {
        const bool hasText = qobject_cast<QLabel*>(widget) || !qobject_cast<QFrame*>(widget);
        if (!widget->isEnabled() || !hasText) {
            continue;
        }
        const double ratio =
            contrast(widget->palette().color(widget->foregroundRole()), shownBackground(widget));
        if (ratio < 4.5 && !quiet.contains(widget->objectName())) {
            faults << QStringLiteral("%1 has a contrast of %2").arg(whereIs(widget)).arg(ratio);
        }
    }
    return faults;
}

} // namespace kse
