// SPDX-License-Identifier: MIT
#pragma once

#include <QMainWindow>

namespace kse {

/// A main window that is no larger than its screen, and whose minimum width follows its content.
class FittedWindow : public QMainWindow
{
    Q_OBJECT

public:
    using QMainWindow::QMainWindow;

protected:
    void showEvent(QShowEvent* event) override;

    /// Makes `width` the minimum. Width that only the former minimum took is given back.
    void fitMinimumWidth(int width);

private:
    /// Makes the window no larger than its screen has room for, and all of it visible.
    void keepOnScreen();

    int m_chosenWidth = 0; ///< What the window had before its minimum took more.
};

} // namespace kse
