// SPDX-License-Identifier: MIT
#include "views/model/ValueDelegate.h"

#include "document/XsdtValueType.h"
#include "views/model/SettingsModel.h"
#include "widgets/FileTextEdit.h"
#include "widgets/PlainText.h"
#include "widgets/Spoken.h"

#include <QAbstractItemView>
#include <QComboBox>
#include <QCoreApplication>
#include <QCursor>
#include <QKeyEvent>
#include <QLineEdit>
#include <QStyle>
#include <QTimer>
#include <QWheelEvent>

using namespace Qt::StringLiterals;

namespace kse {

namespace {

/// A combo box with the two values of a Boolean, which opens by itself. The open list gets the
/// keys, so it passes those that end an edit on to the box, where the delegate expects them.
class BooleanEditor : public QComboBox
{
public:
    explicit BooleanEditor(QWidget* parent)
        : QComboBox(parent)
    {
        addItems({u"true"_s, u"false"_s});
        view()->installEventFilter(this);
        QTimer::singleShot(0, this, [this] { openList(); }); // when it has its place and its text
    }

    bool eventFilter(QObject* watched, QEvent* event) override
    {
        const bool isOverride = event->type() == QEvent::ShortcutOverride;
        if (watched != view() || !(isOverride || event->type() == QEvent::KeyPress)) {
            return QComboBox::eventFilter(watched, event);
        }
        const auto* key = static_cast<QKeyEvent*>(event);
        const bool takes = key->key() == Qt::Key_Return || key->key() == Qt::Key_Enter ||
                           key->key() == Qt::Key_Tab || key->key() == Qt::Key_Backtab;
        if (!takes && !key->matches(QKeySequence::Cancel)) {
            return QComboBox::eventFilter(watched, event);
        }
        if (isOverride) {
            event->accept(); // else the list closes at once
            return true;
        }
        // If the text is neither value, no row is selected until the user goes to one.
        if (const QModelIndex row = view()->currentIndex();
            takes && view()->selectionModel()->isSelected(row)) {
            setCurrentIndex(row.row());
        }
        hidePopup();
        QCoreApplication::sendEvent(this, event);
        return true;
    }

protected:
    void wheelEvent(QWheelEvent* event) override
    {
        event->ignore(); // scrolls the tree
    }

private:
    void openList()
    {
        if (!isVisible()) { // closed already, perhaps with the whole document
            return;
        }
        // By a press, so that the release of the click that opened the editor chooses nothing.
        const QPointF pos = mapFromGlobal(QPointF(QCursor::pos()));
        QMouseEvent press(QEvent::MouseButtonPress, pos, mapToGlobal(pos), Qt::LeftButton,
                          Qt::LeftButton, Qt::NoModifier);
        mousePressEvent(&press);
    }
};

} // namespace

QWidget* ValueDelegate::createEditor(QWidget* parent, const QStyleOptionViewItem& option,
                                     const QModelIndex& index) const
{
    const auto* node = SettingsModel::nodeOf(index);
    const QString name = abbreviated(node->key, shortLimit);
    QWidget* editor = nullptr;
    if (node->typeCode == XsdtValueType::Boolean) {
        auto* combo = new BooleanEditor(parent);
        connect(combo, &QComboBox::activated, this, [this, combo] {
            auto* self = const_cast<ValueDelegate*>(this); // signals aren't const
            emit self->commitData(combo);
            emit self->closeEditor(combo);
        });
        combo->view()->setAccessibleName(name);
        setSpokenLabel(combo, name);
        editor = combo;
    } else {
        editor = QStyledItemDelegate::createEditor(parent, option, index); // a line edit
        // Its text stays where the cell's is: a cell leaves 1 pixel more, a line edit 2.
        const int margin = editor->style()->pixelMetric(QStyle::PM_FocusFrameHMargin) + 1 - 2;
        static_cast<QLineEdit*>(editor)->setTextMargins(margin, 0, margin, 0);
    }
    editor->setAccessibleName(name);
    return editor;
}

void ValueDelegate::setEditorData(QWidget* editor, const QModelIndex& index) const
{
    const QString text = index.data(Qt::EditRole).toString();
    if (auto* combo = qobject_cast<QComboBox*>(editor)) {
        combo->setCurrentIndex(combo->findText(text)); // -1 for any other text
    } else {
        showFileText(*static_cast<QLineEdit*>(editor), text);
    }
}

void ValueDelegate::setModelData(QWidget* editor, QAbstractItemModel* model,
                                 const QModelIndex& index) const
{
    const QPersistentModelIndex row(index);
    const auto* node = SettingsModel::nodeOf(index);
    if (const auto* combo = qobject_cast<QComboBox*>(editor)) {
        if (combo->currentIndex() >= 0) {
            model->setData(index, combo->currentText(), Qt::EditRole);
        }
    } else {
        const auto* line = static_cast<const QLineEdit*>(editor);
        // The model might normalise even an unchanged text.
        if (!line->isReadOnly() && line->text() != index.data(Qt::EditRole).toString()) {
            model->setData(index, line->text(), Qt::EditRole);
        }
    }
    if (!row.isValid()) {
        emit editedRowHidden(abbreviated(node->key, shortLimit));
    }
}

} // namespace kse
