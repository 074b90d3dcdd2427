// SPDX-License-Identifier: MIT
#pragma once

#include "widgets/GradualLayout.h"

#include <QWidget>

#include <functional>

class QPoint;

namespace kse {

/// A titled section of a page that can be collapsed. Its content is indented.
class CollapsibleSection : public QWidget
{
    Q_OBJECT

public:
    CollapsibleSection(const QString& title, bool expanded, QWidget* parent = nullptr);

    /// `title` may come from the file: it is shown letter for letter.
    void setTitle(const QString& title);

    /// Number of changes inside. The title shows it unless it is 0.
    void setChangeCount(qsizetype count);

    enum class Deletion { None, Within, Whole };

    /// Shows in the title whether a part or all of the content is queued for deletion.
    void setDeletion(Deletion deletion);

    /// In pixels, for widgets beside the title.
    int titleHeight() const;

    /// The layout for the content, and with it the content's parent widget.
    GradualLayout* bodyLayout() const { return m_bodyLayout; }

    bool startExpanded() const { return m_startExpanded; }
    void setExpanded(bool expanded);

    /// Runs `builder` once, when the section is first expanded, to fill it; at once if it is
    /// already.
    void setLazyBuilder(std::function<void()> builder);

    /// Calls `handler` with the global position when the user asks for the title's context menu.
    void setContextMenuHandler(std::function<void(const QPoint&)> handler);

protected:
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    class TitleButton;
    class TitleInterface;

    void updateCaption();
    QString deletionText() const;

    TitleButton* m_toggleButton = nullptr;
    QWidget* m_body = nullptr;
    GradualLayout* m_bodyLayout = nullptr;
    QString m_title;
    qsizetype m_changeCount = 0;
    Deletion m_deletion = Deletion::None;
    bool m_startExpanded = false; ///< As given to the constructor.
    std::function<void()> m_lazyBuilder;
};

} // namespace kse
