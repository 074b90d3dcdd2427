// SPDX-License-Identifier: MIT
#pragma once

#include <QStyledItemDelegate>

namespace kse {

/// Edits the value column of the settings tree in place: with a combo box for a Boolean, which
/// opens by itself, and a line edit for all other types. Only what the user changed is written.
class ValueDelegate : public QStyledItemDelegate
{
    Q_OBJECT

public:
    using QStyledItemDelegate::QStyledItemDelegate;

    QWidget* createEditor(QWidget* parent, const QStyleOptionViewItem& option,
                          const QModelIndex& index) const override;
    void setEditorData(QWidget* editor, const QModelIndex& index) const override;
    void setModelData(QWidget* editor, QAbstractItemModel* model,
                      const QModelIndex& index) const override;

signals:
    /// After an edit the row of `key` doesn't match the filter any more. Const, as setModelData().
    void editedRowHidden(const QString& key) const; // clazy:exclude=const-signal-or-slot
};

} // namespace kse
