// SPDX-License-Identifier: MIT
#pragma once

#include "app/ToolbarIcons.h"

#include <QList>
#include <QToolBar>

#include <utility>

namespace kse {

/// The toolbar of the main window. It draws its icons, and remembers between runs whether the user
/// wants to see it.
class MainToolBar : public QToolBar
{
    Q_OBJECT

public:
    explicit MainToolBar(const QString& title, QWidget* parent = nullptr);

    /// Appends `action`, with `iconText` under its icon and without the icon in menus.
    void addEntry(QAction* action, const QString& iconText, ToolbarIconKind kind);

    /// Adapts to the application's font and palette and to the screen's pixel ratio.
    void refresh();

private slots:
    void onVisibilityChanged(bool visible);

private:
    QList<std::pair<QAction*, ToolbarIconKind>> m_toolbarEntries;
};

} // namespace kse
