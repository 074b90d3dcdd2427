// SPDX-License-Identifier: MIT
#include "views/ValueDelegate.h"

#include "document/XsdtValueType.h"
#include "views/FileTextEdit.h"
#include "views/PlainText.h"
#include "views/SettingsModel.h"

#include <QComboBox>
#include <QLineEdit>

using namespace Qt::StringLiterals;

namespace kse {

QWidget* ValueDelegate::createEditor(QWidget* parent, const QStyleOptionViewItem& option,
                                     const QModelIndex& index) const
{
    const auto* node = index.data(SettingsModel::NodeRole).value<XsdtNode*>();
    QWidget* editor = nullptr;
    if (node && node->typeCode == XsdtValueType::Boolean) {
        auto* combo = new QComboBox(parent);
        combo->addItems({u"true"_s, u"false"_s});
        connect(combo, &QComboBox::activated, this, [this, combo] {
            auto* self = const_cast<ValueDelegate*>(this); // signals aren't const
            emit self->commitData(combo);
            emit self->closeEditor(combo);
        });
        editor = combo;
    } else {
        editor = QStyledItemDelegate::createEditor(parent, option, index);
    }
    if (editor && node) {
        editor->setAccessibleName(abbreviated(node->key, 200));
    }
    return editor;
}

void ValueDelegate::setEditorData(QWidget* editor, const QModelIndex& index) const
{
    const QString text = index.data(Qt::EditRole).toString();
    if (auto* combo = qobject_cast<QComboBox*>(editor)) {
        combo->setCurrentIndex(combo->findText(text)); // of another text, none
    } else if (auto* line = qobject_cast<QLineEdit*>(editor)) {
        showFileText(*line, text);
    } else {
        QStyledItemDelegate::setEditorData(editor, index);
    }
}

void ValueDelegate::setModelData(QWidget* editor, QAbstractItemModel* model,
                                 const QModelIndex& index) const
{
    if (const auto* combo = qobject_cast<QComboBox*>(editor)) {
        if (combo->currentIndex() >= 0) {
            model->setData(index, combo->currentText(), Qt::EditRole);
        }
    } else if (const auto* line = qobject_cast<QLineEdit*>(editor)) {
        // An unchanged text isn't given to the model, which might normalise it.
        if (!line->isReadOnly() && line->text() != index.data(Qt::EditRole).toString()) {
            model->setData(index, line->text(), Qt::EditRole);
        }
    } else {
        QStyledItemDelegate::setModelData(editor, model, index);
    }
}

} // namespace kse
