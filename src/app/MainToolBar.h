// SPDX-License-Identifier: MIT
#pragma once

#include "app/ToolbarIcons.h"

#include <QList>
#include <QToolBar>

#include <utility>

namespace kse {

struct MainCommands;

/// The toolbar of the main window. It draws its icons, and remembers between runs whether the user
/// wants to see it.
class MainToolBar : public QToolBar
{
    Q_OBJECT

public:
    explicit MainToolBar(const QString& title, QWidget* parent = nullptr);

    /// Fills the toolbar. `commands` isn't used afterwards, but its actions are.
    void addCommands(const MainCommands& commands);

    /// Adapts to the application's font and palette and to the screen's pixel ratio.
    void refresh();

private slots:
    void onVisibilityChanged(bool visible);

private:
    void addEntry(QAction* action, const QString& iconText, ToolbarIconKind kind);

    QList<std::pair<QAction*, ToolbarIconKind>> m_toolbarEntries;
};

} // namespace kse
