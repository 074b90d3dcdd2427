// SPDX-License-Identifier: MIT
#pragma once

#include <QLayout>
#include <QList>

namespace kse {

/// A row of widgets that goes on beneath where it is too narrow for all of them. One that expands
/// in width takes what its line leaves over, and makes do with its minimum. There are no margins.
class WrappingRow : public QLayout
{
public:
    /// Lines that nothing fills begin at the leading side, or end at the trailing one.
    explicit WrappingRow(Qt::Alignment alignment = Qt::AlignLeading);
    ~WrappingRow() override;

    void addItem(QLayoutItem* item) override;
    QLayoutItem* itemAt(int index) const override;
    QLayoutItem* takeAt(int index) override;
    int count() const override;

    QSize sizeHint() const override;
    QSize minimumSize() const override;
    bool hasHeightForWidth() const override;
    int heightForWidth(int width) const override;
    void setGeometry(const QRect& rect) override;

private:
    /// Consecutive items that stand beside each other.
    struct Line
    {
        QList<QLayoutItem*> items;
        int width = 0;
        int height = 0;
    };

    QList<Line> linesFor(int width) const;
    void placeLine(const Line& line, const QRect& rect) const;
    int gap(Qt::Orientation orientation) const;

    Qt::Alignment m_alignment;
    QList<QLayoutItem*> m_items;
};

} // namespace kse
