// SPDX-License-Identifier: MIT
#pragma once

#include <QList>
#include <QScrollArea>

class QFocusFrame;
class QPushButton;
class QVBoxLayout;

namespace kse {

/// A scrolled column of rows or cards, with a button at its end to show more of them. Tab goes
/// through it from top to bottom, no matter when the widgets were created.
class WidgetColumn : public QScrollArea
{
    Q_OBJECT

public:
    explicit WidgetColumn(int spacing, QWidget* parent = nullptr);

    /// Adds `widgets`, which are children of `QScrollArea::widget`, at the end of the column.
    void append(const QList<QWidget*>& widgets);

    /// Number of widgets in the column.
    qsizetype count() const { return m_items.size(); }

    /// Removes all widgets, and hides the button. They are deleted later, since one may be handling
    /// an event now.
    void clear();

    /// The text of the button. An empty one hides it.
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
    QWidget* m_lastTabStop = nullptr; ///< Before the button.
    QFocusFrame* m_focusFrame = nullptr;
    QList<QWidget*> m_items;
};

} // namespace kse
