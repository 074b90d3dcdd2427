// SPDX-License-Identifier: MIT
#pragma once

#include <QTreeView>

namespace kse {

/// The view of all settings, for a `SettingsModel` or a proxy of one. The edit key edits the value
/// of the row, no matter which cell is current. Copy copies the whole text of the current cell.
class SettingsTree : public QTreeView
{
    Q_OBJECT

public:
    explicit SettingsTree(QWidget* parent = nullptr);

protected:
    bool edit(const QModelIndex& index, EditTrigger trigger, QEvent* event) override;
};

} // namespace kse
