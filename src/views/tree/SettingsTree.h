// SPDX-License-Identifier: MIT
#pragma once

#include <QTreeView>

namespace kse {

/// The tree of all settings, over a `SettingsModel` or a filter of one. The edit key acts on the
/// row's value, whichever of its cells is current; Copy takes the current cell's whole text.
class SettingsTree : public QTreeView
{
    Q_OBJECT

public:
    explicit SettingsTree(QWidget* parent = nullptr);

protected:
    bool edit(const QModelIndex& index, EditTrigger trigger, QEvent* event) override;
};

} // namespace kse
