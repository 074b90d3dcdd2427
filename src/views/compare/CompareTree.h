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

/// What is open, selected, current and on top. It outlives the rows: groups are known by their
/// names and entries by their nodes, which it tells apart without a look into them.
struct CompareTreeState
{
    QHash<QString, bool> isOpen; ///< For each group.
    QSet<QString> selectedGroups;
    QSet<const XsdtNode*> selectedNodes;
    const XsdtNode* currentNode = nullptr; ///< Null unless the current row is an entry.
    QString currentGroup;
    int groupPlace = -1;   ///< Of the current row's group; -1 for none.
    int placeInGroup = -1; ///< Of the current row; -1 for the group itself.
    int top = 0;
};

/// The list of differences, in groups by their paths.
class CompareTree : public QTreeWidget
{
    Q_OBJECT

public:
    explicit CompareTree(QWidget* parent = nullptr);

    void removeRows();

    /// Shows `rows` instead of what it shows, and owns them. What is in `state` and still there
    /// becomes as it was. Where the current row is gone, the one in its place becomes current. Of
    /// other groups, all in a short list are open and none in a long one. Emits nothing.
    void setRows(const QList<CompareRow*>& rows, const CompareTreeState& state = {});

    /// The entries in the order in which they were given.
    const QList<CompareRow*>& rows() const { return m_rows; }

    CompareTreeState state() const;

    /// The numbers of the selected entries and of those in selected groups, each once.
    QList<int> selectedEntries() const;

    /// The number of the entry that `item` shows; -1 for any other row and for null.
    static int entryIndex(const QTreeWidgetItem* item);

    /// Qt's own takes time with the square of the groups that are open.
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
