// SPDX-License-Identifier: MIT
#pragma once

#include <QStyledItemDelegate>

namespace kse {

/// Edits the value column of the settings tree in place: a list of two for a Boolean, open from
/// the start, a line for all else. What the user didn't change is never written.
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
    /// An edit has taken the row of `key` out of what a filter shows.
    void editedRowHidden(const QString& key) const;
};

} // namespace kse
