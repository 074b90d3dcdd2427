// SPDX-License-Identifier: MIT
#pragma once

#include <QList>
#include <QScrollArea>

class QFocusFrame;
class QPushButton;
class QVBoxLayout;

namespace kse {

/// A scrolled column of rows or cards that come and go, with a button beneath for those not shown
/// yet. Tab goes through it from top to bottom, whenever its widgets were made.
class WidgetColumn : public QScrollArea
{
    Q_OBJECT

public:
    explicit WidgetColumn(int spacing, QWidget* parent = nullptr);

    /// Takes `widgets`, made as children of `QScrollArea::widget`, as the last of the column.
    void append(const QList<QWidget*>& widgets);

    /// Number of widgets in the column.
    qsizetype count() const { return m_items.size(); }

    /// Lets go of all of them. They die later, since one may be handling an event right now.
    void clear();

    /// What the button says; empty hides it.
    void setMoreText(const QString& text);

signals:
    /// The button was pressed.
    void moreRequested();

protected:
    void focusInEvent(QFocusEvent* event) override;
    void focusOutEvent(QFocusEvent* event) override;

private:
    QVBoxLayout* m_layout = nullptr;
    QPushButton* m_showMoreButton = nullptr;
    QWidget* m_lastTabStop = nullptr; ///< Of the column without the button.
    QFocusFrame* m_focusFrame = nullptr;
    QList<QWidget*> m_items;
};

} // namespace kse
