// SPDX-License-Identifier: MIT
#pragma once

#include "widgets/GradualLayout.h"

#include <QScrollArea>

#include <functional>

class QFocusFrame;
class QPushButton;

namespace kse {

/// A scrolled column of rows or cards, created bit by bit, with a button at its end to show more of
/// them. Home and End scroll it where the focus has no use for them.
class WidgetColumn : public QScrollArea
{
    Q_OBJECT

public:
    explicit WidgetColumn(int spacing, QWidget* parent = nullptr);

    /// As `GradualLayout::append`. `create` returns a new child of `QScrollArea::widget`.
    void append(qsizetype count, std::function<QWidget*(qsizetype)> create);

    /// Number of widgets, including those that are still to be created.
    qsizetype count() const { return m_rows->total(); }

    /// Creates those that are missing, also inside them. Returns false if none were.
    bool complete();

    /// Removes all widgets, and hides the button. They are deleted later, since one may be handling
    /// an event now.
    void clear();

    /// The text of the button. An empty one hides it. If it has the focus, this goes to the last
    /// widget: set the text before more are appended.
    void setMoreText(const QString& text);

signals:
    /// The button was pressed.
    void moreRequested();

protected:
    bool focusNextPrevChild(bool next) override;
    void keyPressEvent(QKeyEvent* event) override;
    void focusInEvent(QFocusEvent* event) override;
    void focusOutEvent(QFocusEvent* event) override;

private:
    void fill();

    GradualLayout* m_rows = nullptr;
    QPushButton* m_showMoreButton = nullptr;
    QFocusFrame* m_focusFrame = nullptr;
};

} // namespace kse
