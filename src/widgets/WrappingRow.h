// SPDX-License-Identifier: MIT
#pragma once

#include <QLayout>
#include <QList>

namespace kse {

/// A row of widgets that wraps into more lines if it is too narrow. A widget that expands in width
/// takes the rest of its line, and needs only its minimum width. There are no margins.
class WrappingRow : public QLayout
{
public:
    /// `alignment` is leading or trailing, for lines without a widget that expands.
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
    /// The items of one line, from left to right or as the layout direction says.
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
