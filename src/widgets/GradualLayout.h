// SPDX-License-Identifier: MIT
#pragma once

#include <QList>
#include <QTimer>
#include <QVBoxLayout>

#include <functional>

class QSpacerItem;

namespace kse {

/// A column of widgets that creates those in sight at once and the others while the event loop has
/// nothing else to do, so that even hundreds don't hold up the window. Tab goes through all from
/// top to bottom.
class GradualLayout : public QVBoxLayout
{
    Q_OBJECT

public:
    /// `before`, which isn't owned, comes before the widgets in Tab order.
    explicit GradualLayout(QWidget* before, QWidget* parent = nullptr);

    /// Adds `count` widgets at the end of the column. `create` is called with 0 to `count` - 1, in
    /// order, and returns a new child of `parentWidget`.
    void append(qsizetype count, std::function<QWidget*(qsizetype)> create);

    /// Number of widgets, including those that are still to be created.
    qsizetype total() const { return m_items.size() + m_missing; }

    /// Creates those that are missing. Returns false if none were.
    bool complete();

    /// Removes all widgets. They are deleted later, since one may be handling an event now.
    void clear();

private:
    void createUntil(const std::function<bool()>& isEnough);
    void stop();

    QWidget* m_before = nullptr;
    QSpacerItem* m_missingSpace = nullptr; ///< The last item.
    QList<QWidget*> m_items;
    std::function<QWidget*(qsizetype)> m_create;
    qsizetype m_missing = 0; ///< How many calls of `m_create` are still to come.
    qsizetype m_created = 0; ///< How many there were.
    int m_itemHeight = 0;    ///< The mean of the first ones.
    QTimer m_idleTimer;
};

} // namespace kse
