// SPDX-License-Identifier: MIT
#include "app/MainWindow.h"

#include "app/BannerRow.h"
#include "app/MainMenuBar.h"
#include "app/MainToolBar.h"
#include "app/OpenEditor.h"
#include "app/OpenFileBox.h"
#include "app/ThemeManager.h"
#include "session/PixInsightEnv.h"
#include "views/model/SettingsModel.h"
#include "widgets/Announcement.h"
#include "widgets/MessageBox.h"
#include "widgets/PixelRatio.h"
#include "widgets/PlainText.h"

#include <QDir>
#include <QEvent>
#include <QLayout>
#include <QStatusBar>
#include <QTabWidget>
#include <QTimer>

#include <cmath>
#include <cstdio>

using namespace Qt::StringLiterals;

namespace kse {

void MainWindow::pollEnvironment()
{
    const bool wasRunning = m_running;
    const bool wasStale = m_staleOnDisk;
    m_running = !PixInsightEnv::runningProcessIds().isEmpty();
    if (!m_running) { // until then nobody can save, and PixInsight may be writing
        m_staleOnDisk = m_store.isChangedOnDisk();
    }
    if (m_running && !wasRunning) {
        // The model refuses edits from here on: what was typed before must be in it by now.
        m_openEditor->commit();
    }
    if (wasRunning && !m_running && m_staleOnDisk && pendingCount() == 0) {
        // PixInsight has just written its settings, and there are no pending changes to lose.
        openFile(m_store.path);
    }
    m_model->setReadOnly(m_running);
    if (m_running != wasRunning) {
        setPagesReadOnly();
    }
    // An unchanged list is left alone, so that an open drop-down isn't disturbed.
    if (m_fileBox->isOutdated()) {
        rebuildFileBox();
    } else if (m_staleOnDisk || wasStale || m_running) {
        m_fileBox->refreshItem(openPath()); // it may be missing
    }
    if (m_running != wasRunning || m_staleOnDisk != wasStale) {
        refreshBanner(); // which walks over the whole tree
    }
}

void MainWindow::refreshBanner()
{
    const qsizetype pending = pendingCount();
    m_fileBox->setToolTip(m_store.loaded ? asToolTip(QDir::toNativeSeparators(m_store.path))
                                         : tr("No settings file loaded."));
    QString text;
    QColor colour;
    bool offersReload = false;
    if (m_running) {
        text = tr("<b>PixInsight is running - view only.</b> It keeps its settings in memory and "
                  "overwrites this file, so edits made now would be lost. Close PixInsight to "
                  "edit.");
        colour = QColor(255, 190, 0, 90);
    } else if (m_staleOnDisk) {
        text = pending > 0
                   ? tr("<b>The file changed on disk since it was loaded.</b> Saving is blocked. "
                        "Reload to continue (your %1 unsaved change(s) will be discarded).")
                         .arg(pending)
                   : tr("<b>The file changed on disk since it was loaded.</b>");
        colour = QColor(255, 120, 0, 90);
        offersReload = true;
    } else if (m_store.loaded && !m_store.document.defaultLayout) {
        text = tr("This file uses a non-default layout (for example indented XML). Values are "
                  "unaffected; saving will rewrite it in PixInsight's compact layout.");
        colour = QColor(80, 160, 255, 70);
    }
    m_banner->showText(text, colour, offersReload);
    refreshActions(pending);
    setWindowTitle(
        tr("Kestrane Settings Editor%1")
            .arg(pending > 0 ? tr(" - %n unsaved change(s)", nullptr, int(pending)) : QString()));
}

void MainWindow::refreshActions(qsizetype pending)
{
    const bool loaded = m_store.loaded;
    const MainCommands& commands = m_menuBar->commands();
    commands.reload->setEnabled(loaded);
    commands.save->setEnabled(loaded && pending > 0 && !m_running && !m_staleOnDisk);
    commands.restore->setEnabled(loaded && !m_running);
    commands.backups->setEnabled(loaded);
    commands.revert->setEnabled(pending > 0);
}

void MainWindow::report(QMessageBox::Icon icon, const QString& title, const QString& text,
                        const QString& informativeText)
{
    if (m_messages == Messages::Boxes) {
        showMessage(this, icon, title, text, informativeText);
        return;
    }
    const QString line = title + u": "_s + text +
                         (informativeText.isEmpty() ? QString() : u' ' + informativeText) + u'\n';
    std::fputs(line.toLocal8Bit().constData(), stderr);
}

void MainWindow::showRejection(const QString& reason)
{
    m_openEditor->noteRejection();
    showStatus(tr("Not accepted - %1").arg(reason), 8000);
}

void MainWindow::showStatus(const QString& text, int milliseconds)
{
    const QString shown = withoutMiddle(text, lineLimit);
    m_said = inOwnDirection(shown);
    statusBar()->showMessage(m_said, milliseconds);
    announce(statusBar(), shown);
}

void MainWindow::connectTheme()
{
    const ThemeManager* theme = &ThemeManager::instance();
    updateStatusBarStyle();
    connect(theme, &ThemeManager::changed, this, &MainWindow::updateStatusBarStyle);
    // A letter that reaches out of its line would stay behind when the message goes.
    connect(statusBar(), &QStatusBar::messageChanged, statusBar(), qOverload<>(&QWidget::update));
    m_toolbar->refresh();
    connect(theme, &ThemeManager::changed, this, &MainWindow::refreshToolbarIcons);
    connect(theme, &ThemeManager::changed, this, &MainWindow::onThemeChanged);
}

void MainWindow::onThemeChanged()
{
    const ThemeManager& theme = ThemeManager::instance();
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
    m_toolbar->refresh();
    updateMinimumWidth();
    QTimer::singleShot(0, this, &MainWindow::updateMinimumWidth);
}

void MainWindow::updateMinimumWidth()
{
    updateHeights();
    m_tabs->updateGeometry();
    if (m_toolbar->isVisible()) {
        m_toolbar->layout()->activate();
        m_toolbar->updateGeometry();
    }
    fitMinimumWidth(leastWidth());
}

int MainWindow::leastWidth() const
{
    return std::max(centralWidget()->minimumSizeHint().width(),
                    m_toolbar->isVisible() ? m_toolbar->sizeHint().width() : 0);
}

/// Leaves the banner and each page the height that their rows need at the present width. Qt's own
/// minimum is that of rows and texts that don't wrap.
void MainWindow::updateHeights()
{
    m_banner->keepHeight();
    const int width = m_tabs->currentWidget()->width();
    for (int i = 0; i < m_tabs->count(); ++i) {
        QWidget* page = m_tabs->widget(i);
        page->layout()->activate(); // a page that isn't in front doesn't by itself
        // Before the window is shown, no page has its width.
        const int wrapped = isVisible() ? page->layout()->totalMinimumHeightForWidth(width) : 0;
        const int least = std::max(page->minimumSizeHint().height(), wrapped);
        if (least != page->minimumHeight()) {
            page->setMinimumHeight(least);
            m_tabs->updateGeometry(); // a hidden page doesn't tell them
        }
    }
}

bool MainWindow::event(QEvent* event)
{
    if (event->type() == QEvent::StatusTip && !m_said.isEmpty() &&
        statusBar()->currentMessage() == m_said) {
        return true; // the mouse on a button doesn't cut short what was said
    }
    const bool handled = FittedWindow::event(event);
    if (changesPixelRatio(*event)) {
        refreshToolbarIcons();
    }
    if (isVisible() &&
        (event->type() == QEvent::Resize || event->type() == QEvent::LayoutRequest)) {
        updateHeights();
        fitSize(leastWidth()); // with a scroll bar or without
    }
    if (event->type() == QEvent::Show) {
        QTimer::singleShot(0, this, &MainWindow::updateMinimumWidth);
    }
    return handled;
}

} // namespace kse
