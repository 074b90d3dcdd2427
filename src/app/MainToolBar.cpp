// SPDX-License-Identifier: MIT
#include "app/MainToolBar.h"

#include "app/MainMenuBar.h"

#include <QApplication>
#include <QSettings>

#include <algorithm>

using namespace Qt::StringLiterals;

namespace kse {

namespace {

constexpr int iconExtent = 18;
const QString visibleKey = u"Appearance/ToolbarVisible"_s;

} // namespace

MainToolBar::MainToolBar(const QString& title, QWidget* parent)
    : QToolBar(title, parent)
{
    setObjectName(u"MainToolbar"_s);
    setMovable(false);
    setToolButtonStyle(Qt::ToolButtonTextUnderIcon);
    setVisible(QSettings().value(visibleKey, true).toBool());
    connect(this, &QToolBar::visibilityChanged, this, &MainToolBar::onVisibilityChanged);
}

void MainToolBar::addCommands(const MainCommands& commands)
{
    addEntry(commands.open, tr("Open"), ToolbarIconKind::Open);
    addEntry(commands.reload, tr("Reload"), ToolbarIconKind::Reload);
    addSeparator();
    addEntry(commands.save, tr("Save"), ToolbarIconKind::Save);
    addEntry(commands.revert, tr("Revert all"), ToolbarIconKind::Revert);
    addSeparator();
    addEntry(commands.findModule, tr("Find module"), ToolbarIconKind::Find);
    addEntry(commands.backups, tr("Backups"), ToolbarIconKind::Backups);
    addEntry(commands.restore, tr("Restore"), ToolbarIconKind::Restore);
    addSeparator();
    addEntry(commands.toggleTheme, tr("Theme"), ToolbarIconKind::Theme);
    addSeparator();
    addEntry(commands.about, tr("About"), ToolbarIconKind::About);
}

/// Appends `action`, with `iconText` below its icon, and without the icon in menus.
void MainToolBar::addEntry(QAction* action, const QString& iconText, ToolbarIconKind kind)
{
    action->setIconText(iconText);
    action->setIconVisibleInMenu(false);
    addAction(action);
    m_toolbarEntries.append({action, kind});
}

void MainToolBar::refresh()
{
    const QPalette palette = QGuiApplication::palette();
    const QColor normal = palette.color(QPalette::Active, QPalette::ButtonText);
    const QColor disabled = palette.color(QPalette::Disabled, QPalette::ButtonText);
    setIconSize({iconExtent, iconExtent});
    QFont font = QApplication::font(); // the toolbar's own may be out of date
    font.setPointSizeF(std::max(font.pointSizeF() * 0.62, 6.5));
    setFont(font);
    const auto children = findChildren<QWidget*>();
    for (QWidget* child : children) {
        child->setFont(font); // a new application font overrides the toolbar's
    }
    setMaximumHeight(QFontMetrics(font).lineSpacing() + 39);
    setStyleSheet(
        u"QToolBar QToolButton {  border-width: 1px; border-style: solid;  border-top-color: "
        u"palette(light); border-left-color: palette(light);  border-bottom-color: palette(dark); "
        u"border-right-color: palette(dark);  border-radius: 2px; padding: 3px 4px; background: "
        u"palette(button); }QToolBar QToolButton:hover { background: palette(midlight); }QToolBar "
        u"QToolButton:pressed {  border-top-color: palette(dark); border-left-color: "
        u"palette(dark);  border-bottom-color: palette(light); border-right-color: "
        u"palette(light);  background: palette(midlight); }QToolBar QToolButton:disabled { "
        u"border-color: palette(mid); background: transparent; }"_s);
    for (const auto& [action, kind] : std::as_const(m_toolbarEntries)) {
        action->setIcon(makeToolbarIcon(kind, normal, disabled, iconExtent, devicePixelRatio()));
    }
}

void MainToolBar::onVisibilityChanged(bool visible)
{
    // The toolbar also appears and disappears with the window; that isn't the user's choice.
    QSettings settings;
    if (window()->isVisible() && settings.value(visibleKey, true).toBool() != visible) {
        settings.setValue(visibleKey, visible);
    }
}

} // namespace kse
