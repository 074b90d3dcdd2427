// SPDX-License-Identifier: MIT
#pragma once

#include <QMainWindow>

namespace kse {

/// A main window that is no larger than its screen, and whose minimum size follows its content. If
/// the screen is too low for that, the content scrolls.
class FittedWindow : public QMainWindow
{
    Q_OBJECT

public:
    using QMainWindow::QMainWindow;

protected:
    void showEvent(QShowEvent* event) override;

    /// Call it once, instead of `setCentralWidget`.
    void setContent(QWidget* content);

    /// Makes `minimum` the minimum width; the layout tells the height. What only the former minimum
    /// took is given back. All of the window stays visible.
    void fitMinimumWidth(int minimum);

    /// The same without moving the window: while the user drags an edge, the window manager holds
    /// its position, and the window would jump to and fro.
    void fitSize(int minimum);

private:
    class Content;

    /// The largest size of a window on this screen, without its frame.
    QSize room() const;

    /// Makes the window no larger than its screen has room for, and all of it visible.
    void keepOnScreen();

    Content* m_content = nullptr;
    QSize m_chosen{0, 0}; ///< What the window had before its minimum took more.
    QSize m_fitted{0, 0}; ///< What it got then.
};

} // namespace kse
