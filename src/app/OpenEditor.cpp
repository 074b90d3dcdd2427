// SPDX-License-Identifier: MIT
#include "app/OpenEditor.h"

#include <QAbstractItemDelegate>
#include <QAbstractItemView>
#include <QAbstractSpinBox>
#include <QApplication>
#include <QKeyEvent>
#include <QLineEdit>

namespace kse {

namespace {

/// The view whose in-place editor `widget` is, or null.
QAbstractItemView* viewOfEditor(const QWidget& widget)
{
    QWidget* viewport = widget.parentWidget();
    auto* view = viewport ? qobject_cast<QAbstractItemView*>(viewport->parentWidget()) : nullptr;
    return view && view->viewport() == viewport ? view : nullptr;
}

/// Whether `widget` is `ancestor` or below it, across windows: a pop-up is below its editor.
bool isInside(const QWidget* widget, const QWidget* ancestor)
{
    while (widget && widget != ancestor) {
        widget = widget->parentWidget();
    }
    return widget;
}

} // namespace

OpenEditor::OpenEditor(QWidget* window)
    : QObject(window)
    , m_window(window)
{
    qApp->installEventFilter(this);
}

bool OpenEditor::commit()
{
    m_rejected = false;
    QWidget* editor = m_window->focusWidget();
    if (!editor) {
        return true;
    }
    if (QAbstractItemView* view = viewOfEditor(*editor)) {
        QAbstractItemDelegate* delegate = view->itemDelegateForIndex(view->currentIndex());
        emit delegate->commitData(editor);
        emit delegate->closeEditor(editor, QAbstractItemDelegate::NoHint);
        view->setFocus();
    } else if (auto* spinBox = qobject_cast<QAbstractSpinBox*>(editor)) {
        spinBox->interpretText();
    } else if (auto* lineEdit = qobject_cast<QLineEdit*>(editor)) {
        emit lineEdit->editingFinished();
    }
    return !m_rejected;
}

bool OpenEditor::eventFilter(QObject* watched, QEvent* event)
{
    if (event->type() == QEvent::ShortcutOverride) {
        if (static_cast<QKeyEvent*>(event)->matches(QKeySequence::Save) && !commit()) {
            event->accept(); // so that Qt doesn't look up the shortcut
            return true;
        }
    } else if (event->type() == QEvent::MouseButtonPress) {
        const auto* pressed = qobject_cast<QWidget*>(watched);
        if (pressed && !isInside(pressed, m_window->focusWidget()) && !commit()) {
            return true;
        }
    }
    return QObject::eventFilter(watched, event);
}

} // namespace kse
