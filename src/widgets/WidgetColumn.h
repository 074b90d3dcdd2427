// SPDX-License-Identifier: MIT
#pragma once

#include <QList>
#include <QScrollArea>
#include <QTimer>

#include <functional>

class QFocusFrame;
class QPushButton;
class QSpacerItem;
class QVBoxLayout;

namespace kse {

/// A scrolled column of rows or cards, with a button at its end to show more of them. It creates
/// the ones in sight at once and the others while the event loop has nothing else to do, so that
/// even hundreds don't hold up the window. Tab goes through all from top to bottom.
class WidgetColumn : public QScrollArea
{
    Q_OBJECT

public:
    explicit WidgetColumn(int spacing, QWidget* parent = nullptr);

    /// Adds `count` widgets at the end of the column. `create` is called with 0 to `count` - 1, in
    /// order, and returns a new child of `QScrollArea::widget`.
    void append(qsizetype count, std::function<QWidget*(qsizetype)> create);

    /// Number of widgets, including those that are still to be created.
    qsizetype count() const { return m_items.size() + m_missing; }

    /// Creates those that are missing.
    void complete();

    /// Removes all widgets, and hides the button. They are deleted later, since one may be handling
    /// an event now.
    void clear();

    /// The text of the button. An empty one hides it.
    void setMoreText(const QString& text);

signals:
    /// The button was pressed.
    void moreRequested();

protected:
    bool focusNextPrevChild(bool next) override;
    void focusInEvent(QFocusEvent* event) override;
    void focusOutEvent(QFocusEvent* event) override;

private:
    void createUntil(const std::function<bool()>& isEnough);

    QVBoxLayout* m_layout = nullptr; ///< The widgets, `m_missingSpace`, the button, a stretch.
    QSpacerItem* m_missingSpace = nullptr;
    QPushButton* m_showMoreButton = nullptr;
    QFocusFrame* m_focusFrame = nullptr;
    QList<QWidget*> m_items;
    std::function<QWidget*(qsizetype)> m_create;
    qsizetype m_missing = 0; ///< How many calls of `m_create` are still to come.
    qsizetype m_created = 0; ///< How many there were.
    int m_itemHeight = 0;    ///< The mean of the first ones.
    QTimer m_idleTimer;
};

} // namespace kse
