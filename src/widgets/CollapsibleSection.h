// SPDX-License-Identifier: MIT
#pragma once

#include <QWidget>

#include <functional>

class QPoint;
class QVBoxLayout;

namespace kse {

/// A titled part of a page that opens and closes, one step further in than what holds it.
class CollapsibleSection : public QWidget
{
    Q_OBJECT

public:
    CollapsibleSection(const QString& title, bool expanded, QWidget* parent = nullptr);

    /// `title` may come from the file: it is shown letter for letter.
    void setTitle(const QString& title);

    /// How many changes there are within: unless 0, the title tells.
    void setChangeCount(qsizetype count);

    /// Whether something within, or all of it, is queued for deletion, by the title's looks.
    enum class Deletion { None, Within, Whole };
    void setDeletion(Deletion deletion);

    /// For what stands beside the title.
    int titleHeight() const;

    /// Where the content goes; its parent widget is the one to make content for.
    QVBoxLayout* bodyLayout() const { return m_bodyLayout; }

    bool startExpanded() const { return m_startExpanded; }
    void setExpanded(bool expanded);

    /// Runs once, when the section first opens, to fill it.
    void setLazyBuilder(std::function<void()> builder);

    /// Called with a global position when the title is asked for its menu.
    void setContextMenuHandler(std::function<void(const QPoint&)> handler);

protected:
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    class TitleButton;

    void updateCaption();
    QString deletionText() const;

    TitleButton* m_toggleButton = nullptr;
    QWidget* m_body = nullptr;
    QVBoxLayout* m_bodyLayout = nullptr;
    QString m_title;
    qsizetype m_changeCount = 0;
    Deletion m_deletion = Deletion::None;
    bool m_startExpanded = false; ///< As given to the constructor.
    std::function<void()> m_lazyBuilder;
};

} // namespace kse
