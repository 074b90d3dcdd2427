// SPDX-License-Identifier: MIT
#pragma once

#include <QTreeWidgetItem>

namespace kse {

struct CompareEntry;
struct XsdtNode;

/// A row of the comparison, which shows one difference. Its texts are made only when they are
/// shown, since there may be a hundred thousand rows, all created again at each key typed into the
/// filter. The edit role has the texts in full.
class CompareRow : public QTreeWidgetItem
{
public:
    enum Column { SettingColumn, ThisColumn, OtherColumn, StatusColumn };

    /// `entry`, the one at `index` of its list, isn't owned and must outlive the row.
    CompareRow(const CompareEntry& entry, int index, bool isCopyable);

    const CompareEntry& entry() const { return m_entry; }

    /// Also in the user role of the first column, where rows that aren't entries have -1.
    int index() const { return m_index; }

    QVariant data(int column, int role) const override;

private:
    QVariant text(int column, bool isWhole) const;
    QString toolTipText() const;
    QString cutValue(int column) const;
    QString obstacleText() const;

    const CompareEntry& m_entry;
    const int m_index;
    const bool m_isCopyable;
};

} // namespace kse
