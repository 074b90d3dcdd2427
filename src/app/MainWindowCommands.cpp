// SPDX-License-Identifier: MIT
#include "app/MainWindow.h"

#include "app/AboutDialog.h"
#include "app/OpenEditor.h"
#include "app/UserGuide.h"
#include "views/model/NodeLooks.h"
#include "views/model/SettingsModel.h"
#include "views/model/TreeGuard.h"
#include "views/tree/AllSettingsView.h"
#include "widgets/MessageBox.h"
#include "widgets/PixelRatio.h"
#include "widgets/PlainText.h"

#include <QActionGroup>
#include <QApplication>
#include <QLayout>
#include <QMenuBar>
#include <QScreen>
#include <QSettings>
#include <QShowEvent>
#include <QStatusBar>
#include <QStyle>
#include <QTabWidget>
#include <QTimer>
#include <QToolBar>

#include <algorithm>
#include <cmath>

using namespace Qt::StringLiterals;

namespace kse {

namespace {

constexpr int toolbarIconSize = 18;
const QString toolbarVisibleKey = u"Appearance/ToolbarVisible"_s;

/// Ctrl+= is how Ctrl++ is typed on many keyboards; where the platform binds it to zooming in
/// already, naming it twice would make it ambiguous and dead.
QList<QKeySequence> zoomInKeys()
{
    QList<QKeySequence> keys = QKeySequence::keyBindings(QKeySequence::ZoomIn);
    const QKeySequence equal(Qt::CTRL | Qt::Key_Equal);
    if (!keys.contains(equal)) {
        keys.append(equal);
    }
    return keys;
}

} // namespace

void MainWindow::createActions()
{
    const auto create = [this](const QString& name, const QString& text,
                               const QList<QKeySequence>& keys = {}) {
        auto* action = new QAction(text, this);
        action->setObjectName(name);
        action->setShortcuts(keys);
        return action;
    };
    m_actOpen = create(u"actOpen"_s, tr("&Open settings file..."),
                       QKeySequence::keyBindings(QKeySequence::Open));
    m_actReload = create(u"actReload"_s, tr("&Reload from disk"),
                         QKeySequence::keyBindings(QKeySequence::Refresh));
    m_actSave =
        create(u"actSave"_s, tr("&Save changes..."), QKeySequence::keyBindings(QKeySequence::Save));
    m_actSave->setStatusTip(tr("Review the pending changes, then save"));
    m_actRestore = create(u"actRestore"_s, tr("Restore &backup..."));
    m_actBackups = create(u"actBackups"_s, tr("&Manage backups..."));
    m_actRevert = create(u"actRevert"_s, tr("Revert &all changes"));
    m_actFindModule =
        create(u"actFindModule"_s, tr("Find &module data..."), {Qt::CTRL | Qt::Key_M});
    m_actFindModule->setStatusTip(tr("Look up everything the file records about one module"));
    m_actUnused = create(u"actUnused"_s, tr("&Unused module data"));
    m_actUnused->setStatusTip(
        tr("Modules with saved data that are no longer in PixInsight's module list"));
    m_actHealth = create(u"actHealth"_s, tr("Run &health check"));
    m_actHealth->setStatusTip(tr("Look for settings that are probably wrong"));
    m_actToggleTheme =
        create(u"actToggleTheme"_s, tr("Toggle light/dark"), {Qt::CTRL | Qt::SHIFT | Qt::Key_D});

    m_actAbout = create(u"actAbout"_s, tr("&About Kestrane Settings Editor"));
    m_actAbout->setMenuRole(QAction::AboutRole);

    connect(m_actOpen, &QAction::triggered, this, &MainWindow::onOpen);
    connect(m_actReload, &QAction::triggered, this, &MainWindow::onReload);
    connect(m_actSave, &QAction::triggered, this, &MainWindow::onSave);
    connect(m_actRestore, &QAction::triggered, this, &MainWindow::onRestoreBackup);
    connect(m_actBackups, &QAction::triggered, this, &MainWindow::onManageBackups);
    connect(m_actRevert, &QAction::triggered, this, &MainWindow::onRevertAll);
    connect(m_actFindModule, &QAction::triggered, this, &MainWindow::onFindModule);
    connect(m_actUnused, &QAction::triggered, this, &MainWindow::onUnusedModules);
    connect(m_actHealth, &QAction::triggered, this, &MainWindow::onHealthCheck);
    connect(m_actAbout, &QAction::triggered, this, &MainWindow::onAbout);
    connect(m_actToggleTheme, &QAction::triggered, &ThemeManager::instance(),
            &ThemeManager::toggle);
}

void MainWindow::createMenus()
{
    QMenu* file = menuBar()->addMenu(tr("&File"));
    file->addActions({m_actOpen, m_actReload});
    file->addSeparator();
    file->addActions({m_actFindModule, m_actUnused, m_actHealth});
    file->addSeparator();
    file->addActions({m_actSave, m_actRestore, m_actBackups});
    file->addSeparator();
    QAction* quit = file->addAction(tr("&Quit"), this, &QWidget::close);
    quit->setShortcuts(QKeySequence::Quit);
    quit->setMenuRole(QAction::QuitRole);

    QMenu* edit = menuBar()->addMenu(tr("&Edit"));
    edit->addAction(m_actRevert);
    edit->addSeparator();
    createThemeMenu(*edit->addMenu(tr("&Theme")));

    QMenu* view = menuBar()->addMenu(tr("&View"));
    view->addAction(tr("&Expand all"), m_advancedPage, &AllSettingsView::expandAll);
    view->addAction(tr("&Collapse all"), m_advancedPage, &AllSettingsView::resetExpansion);
    view->addSeparator();
    ThemeManager* theme = &ThemeManager::instance();
    view->addAction(tr("&Larger text"), theme, [theme] { theme->step(0.1); })
        ->setShortcuts(zoomInKeys());
    view->addAction(tr("&Smaller text"), theme, [theme] { theme->step(-0.1); })
        ->setShortcuts(QKeySequence::ZoomOut);
    view->addAction(tr("&Default text size"), theme, &ThemeManager::resetFontScale)
        ->setShortcut(Qt::CTRL | Qt::Key_0);
    view->addSeparator();
    m_toolbar = addToolBar(tr("Main toolbar"));
    view->addAction(m_toolbar->toggleViewAction());
    m_toolbar->toggleViewAction()->setText(tr("&Toolbar"));

    QMenu* help = menuBar()->addMenu(tr("&Help"));
    help->addAction(tr("&User Guide"), this, &showUserGuide);
    help->addSeparator();
    help->addAction(m_actAbout);
    help->addAction(tr("About &Qt"), qApp, &QApplication::aboutQt)
        ->setMenuRole(QAction::AboutQtRole);
}

void MainWindow::createThemeMenu(QMenu& menu)
{
    auto* group = new QActionGroup(this);
    const auto add = [&](ThemeMode mode, const QString& text) {
        QAction* action = menu.addAction(text);
        action->setCheckable(true);
        action->setChecked(ThemeManager::instance().mode() == mode);
        group->addAction(action);
        connect(action, &QAction::triggered, this,
                [mode] { ThemeManager::instance().setMode(mode, true); });
        m_themeActions.insert(mode, action);
    };
    add(ThemeMode::Light, tr("&Light"));
    add(ThemeMode::Dark, tr("&Dark"));
    add(ThemeMode::System, tr("Follow &system"));
    menu.addSeparator();
    menu.addAction(m_actToggleTheme);
}

void MainWindow::createToolBar()
{
    m_toolbar->setObjectName("MainToolbar"_L1);
    m_toolbar->setMovable(false);
    m_toolbar->setToolButtonStyle(Qt::ToolButtonTextUnderIcon);
    const auto add = [this](QAction* action, const QString& iconText, ToolbarIconKind kind) {
        action->setIconText(iconText);
        action->setIconVisibleInMenu(false);
        m_toolbar->addAction(action);
        m_toolbarEntries.append({action, kind});
    };
    add(m_actOpen, tr("Open"), ToolbarIconKind::Open);
    add(m_actReload, tr("Reload"), ToolbarIconKind::Reload);
    m_toolbar->addSeparator();
    add(m_actSave, tr("Save"), ToolbarIconKind::Save);
    add(m_actRevert, tr("Revert all"), ToolbarIconKind::Revert);
    m_toolbar->addSeparator();
    add(m_actFindModule, tr("Find module"), ToolbarIconKind::Find);
    add(m_actBackups, tr("Backups"), ToolbarIconKind::Backups);
    add(m_actRestore, tr("Restore"), ToolbarIconKind::Restore);
    m_toolbar->addSeparator();
    add(m_actToggleTheme, tr("Theme"), ToolbarIconKind::Theme);
    m_toolbar->addSeparator();
    add(m_actAbout, tr("About"), ToolbarIconKind::About);

    m_toolbar->setVisible(QSettings().value(toolbarVisibleKey, true).toBool());
    connect(m_toolbar, &QToolBar::visibilityChanged, this, [this](bool visible) {
        // The toolbar also comes and goes with the window; that isn't the user's wish.
        QSettings settings;
        if (isVisible() && settings.value(toolbarVisibleKey, true).toBool() != visible) {
            settings.setValue(toolbarVisibleKey, visible);
        }
        updateMinimumWidth();
    });
}

void MainWindow::connectTheme()
{
    const ThemeManager* theme = &ThemeManager::instance();
    updateStatusBarStyle();
    // A letter that reaches out of its line would stay behind when the message goes.
    connect(statusBar(), &QStatusBar::messageChanged, statusBar(), qOverload<>(&QWidget::update));
    connect(theme, &ThemeManager::changed, this, &MainWindow::updateStatusBarStyle);
    refreshToolbarIcons();
    connect(theme, &ThemeManager::changed, this, &MainWindow::refreshToolbarIcons);
    connect(theme, &ThemeManager::changed, this, &MainWindow::onThemeChanged);
}

void MainWindow::onThemeChanged()
{
    const ThemeManager& theme = ThemeManager::instance();
    m_themeActions.value(theme.mode())->setChecked(true);
    refreshBanner();
    if (std::abs(theme.fontScale() - m_lastFontScale) > 1e-6) {
        m_lastFontScale = theme.fontScale();
        const int percent = qRound(m_lastFontScale * 100 / 1.25);
        showStatus(tr("Text size %1%").arg(percent), 3000);
    }
}

void MainWindow::updateStatusBarStyle()
{
    statusBar()->setStyleSheet(u"QStatusBar { background: palette(midlight); border-top: 1px solid "
                               u"palette(mid); }"_s);
}

void MainWindow::refreshToolbarIcons()
{
    const QPalette palette = QGuiApplication::palette();
    const QColor normal = palette.color(QPalette::Active, QPalette::ButtonText);
    const QColor disabled = palette.color(QPalette::Disabled, QPalette::ButtonText);
    m_toolbar->setIconSize({toolbarIconSize, toolbarIconSize});
    QFont toolbarFont = QApplication::font(); // the window's own may still be the former one
    toolbarFont.setPointSizeF(std::max(toolbarFont.pointSizeF() * 0.62, 6.5));
    m_toolbar->setFont(toolbarFont);
    const auto children = m_toolbar->findChildren<QWidget*>();
    for (QWidget* child : children) {
        child->setFont(toolbarFont); // a new font of the application comes before the toolbar's
    }
    m_toolbar->setMaximumHeight(QFontMetrics(toolbarFont).lineSpacing() + 39);
    m_toolbar->setStyleSheet(
        u"QToolBar QToolButton {  border-width: %1px; border-style: solid;  border-top-color: "
        u"palette(light); border-left-color: palette(light);  border-bottom-color: palette(dark); "
        u"border-right-color: palette(dark);  border-radius: 2px; padding: %2px %3px; background: "
        u"palette(button); }QToolBar QToolButton:hover { background: palette(midlight); }QToolBar "
        u"QToolButton:pressed {  border-top-color: palette(dark); border-left-color: "
        u"palette(dark);  border-bottom-color: palette(light); border-right-color: "
        u"palette(light);  background: palette(midlight); }QToolBar QToolButton:disabled { "
        u"border-color: palette(mid); background: transparent; }"_s.arg(1)
            .arg(3)
            .arg(4));
    updateMinimumWidth();
    QTimer::singleShot(0, this, &MainWindow::updateMinimumWidth);
    for (const auto& [action, kind] : std::as_const(m_toolbarEntries)) {
        action->setIcon(
            makeToolbarIcon(kind, normal, disabled, toolbarIconSize, devicePixelRatio()));
    }
}

void MainWindow::updateMinimumWidth()
{
    for (int i = 0; i < m_tabs->count(); ++i) {
        m_tabs->widget(i)->layout()->activate(); // a page that isn't in front doesn't by itself
    }
    m_tabs->updateGeometry();
    int width = centralWidget()->minimumSizeHint().width();
    if (m_toolbar->isVisible()) {
        m_toolbar->layout()->activate();
        m_toolbar->updateGeometry();
        width = std::max(width, m_toolbar->sizeHint().width());
    }
    // What only the former minimum asked for is given back.
    const bool isForced = m_chosenWidth < minimumWidth() && this->width() == minimumWidth();
    if (!isForced) {
        m_chosenWidth = this->width();
    }
    setMinimumWidth(width);
    if (isForced && !isMaximized() && !isFullScreen()) {
        resize(std::max(width, m_chosenWidth), height());
    }
    if (m_chosenWidth < width) {
        keepOnScreen();
    }
}

void MainWindow::keepOnScreen()
{
    if (isMaximized() || isFullScreen()) {
        return;
    }
    const QRect room = screen()->availableGeometry();
    QSize frame = frameGeometry().size() - size();
    if (frame.isNull()) { // not known before the window is shown
        const int border = style()->pixelMetric(QStyle::PM_MdiSubWindowFrameWidth, nullptr, this);
        const int title = style()->pixelMetric(QStyle::PM_TitleBarHeight, nullptr, this);
        frame = {2 * border, title + border};
    }
    resize(size().boundedTo(room.size() - frame));
    if (isVisible()) {
        const QPoint last = room.topLeft() + QPoint(room.width() - width() - frame.width(),
                                                    room.height() - height() - frame.height());
        move(std::max(room.left(), std::min(x(), last.x())),
             std::max(room.top(), std::min(y(), last.y())));
    }
}

void MainWindow::onRevertAll()
{
    const qsizetype pending = m_openEditor->commit() ? pendingCount() : 0;
    if (pending == 0) {
        return;
    }
    const TreeGuard guard(m_model);
    const bool confirmed =
        askQuestion(this, tr("Revert all changes"),
                    tr("Discard all %n unsaved change(s)?", nullptr, int(pending)),
                    QMessageBox::Yes | QMessageBox::No, QMessageBox::No) == QMessageBox::Yes;
    if (confirmed && guard.isSameTree()) {
        m_advancedPage->revertAll();
    }
}

void MainWindow::onAbout()
{
    AboutDialog(m_store.loaded ? m_store.path : QString(), recordedVersion(), this).exec();
}

QString MainWindow::recordedVersion() const
{
    if (!m_store.loaded) {
        return {};
    }
    const auto valueOf = [this](const QString& key) {
        const XsdtNode* node = m_store.document.root.childByKey(key);
        const bool isValue = node && node->kind == XsdtNode::Kind::Value;
        return isValue ? displayValue(*node, node->value, shortLimit) : QString();
    };
    const QString version = valueOf(u"PixInsight"_s);
    const QString last = valueOf(u"LastVersion"_s);
    if (version.isEmpty() || last.isEmpty()) {
        return version + last;
    }
    return version + u" ["_s + last + u']';
}

bool MainWindow::event(QEvent* event)
{
    if (event->type() == QEvent::StatusTip && !m_said.isEmpty() &&
        statusBar()->currentMessage() == m_said) {
        return true; // the mouse on a button doesn't cut short what was said
    }
    const bool handled = QMainWindow::event(event);
    if (changesPixelRatio(*event)) {
        refreshToolbarIcons();
    }
    return handled;
}

void MainWindow::showEvent(QShowEvent* event)
{
    if (!event->spontaneous()) {
        keepOnScreen();
    }
    QMainWindow::showEvent(event);
    QTimer::singleShot(0, this, &MainWindow::updateMinimumWidth);
}

} // namespace kse
