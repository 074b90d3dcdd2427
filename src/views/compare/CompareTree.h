// SPDX-License-Identifier: MIT
#pragma once

#include <QHash>
#include <QList>
#include <QSet>
#include <QString>
#include <QTreeWidget>

namespace kse {

class CompareRow;
struct XsdtNode;

/// Which rows are expanded, selected, current and on top. It outlives the rows: it knows groups by
/// name, and entries by the addresses of their nodes, which it never follows.
struct CompareTreeState
{
    QHash<QString, bool> isOpen; ///< For each group.
    QSet<QString> selectedGroups;
    QSet<const XsdtNode*> selectedNodes;
    const XsdtNode* currentNode = nullptr; ///< Null unless the current row is an entry.
    QString currentGroup;
    int groupPlace = -1;   ///< Index of the current row's group; -1 for none.
    int placeInGroup = -1; ///< Index of the current row; -1 for the group itself.
    int top = 0;
};

/// The list of differences, in groups by their paths.
class CompareTree : public QTreeWidget
{
    Q_OBJECT

public:
    explicit CompareTree(QWidget* parent = nullptr);

    void removeRows();

    /// Replaces all rows by `rows`, and owns them. Restores `state` for the rows that still exist.
    /// If the current row is gone, the one in its place becomes current. Groups that `state`
    /// doesn't know are expanded in a short list, and collapsed in a long one. Emits nothing.
    void setRows(const QList<CompareRow*>& rows, const CompareTreeState& state = {});

    CompareTreeState state() const;

    /// The indices of the selected entries and of those in selected groups, each once.
    QList<int> selectedEntries() const;

    /// The index of the entry that `item` shows; -1 for any other row and for null.
    static int entryIndex(const QTreeWidgetItem* item);

    /// Qt's own takes time that grows with the square of the number of expanded groups.
    void selectAll() override;

private:
    void addGroups();
    void restoreOpen(const CompareTreeState& state);
    template <typename IsGroupSelected, typename IsRowSelected>
    void selectRows(IsGroupSelected&& isGroupSelected, IsRowSelected&& isRowSelected);
    void restoreSelection(const CompareTreeState& state);
    void restoreCurrent(const CompareTreeState& state);
    QTreeWidgetItem* nearest(const CompareTreeState& state) const;

    QList<CompareRow*> m_rows;
};

} // namespace kse
