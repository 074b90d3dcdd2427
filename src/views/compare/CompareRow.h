// SPDX-License-Identifier: MIT
#pragma once

#include <QTreeWidgetItem>

namespace kse {

struct CompareEntry;
struct XsdtNode;

/// One difference in the list of the comparison. Its texts are made when they are seen: there may
/// be a hundred thousand rows, all made anew at each key typed into the filter. The edit role has
/// them unshortened.
class CompareRow : public QTreeWidgetItem
{
public:
    enum Column { SettingColumn, ThisColumn, OtherColumn, StatusColumn };

    /// `entry` isn't owned and must outlive the row; it is the one at `index` of its list.
    CompareRow(const CompareEntry& entry, int index, bool isCopyable);

    const CompareEntry& entry() const { return m_entry; }

    /// The one of the open file or else the other's.
    const XsdtNode* node() const;

    /// In the user role of the first column, too. Rows that are no entries have -1 there.
    int index() const { return m_index; }

    QVariant data(int column, int role) const override;

private:
    QString shownText(int column) const;
    QVariant wholeText(int column) const;
    QString toolTipText() const;
    QString cutValue(int column) const;
    QString obstacleText() const;

    const CompareEntry& m_entry;
    const int m_index;
    const bool m_isCopyable;
};

} // namespace kse
