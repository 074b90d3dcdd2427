// SPDX-License-Identifier: MIT
#include "app/MainWindow.h"

#include "app/OpenEditor.h"
#include "session/PixInsightEnv.h"
#include "views/model/SettingsModel.h"
#include "widgets/PlainText.h"

#include <QAccessible>
#include <QAction>
#include <QComboBox>
#include <QDir>
#include <QLabel>
#include <QPushButton>
#include <QTextDocumentFragment>

namespace kse {

void MainWindow::pollEnvironment()
{
    const bool wasRunning = m_running;
    const bool wasStale = m_staleOnDisk;
    m_running = !PixInsightEnv::runningProcessIds().isEmpty();
    m_staleOnDisk = m_store.isChangedOnDisk();
    if (m_running && !wasRunning) {
        // The model refuses edits from here on: what was typed before must be in it by now.
        m_openEditor->commit();
    }
    if (wasRunning && !m_running && m_staleOnDisk && pendingCount() == 0) {
        // PixInsight has just written its settings, and nobody has anything to lose.
        openFile(m_store.path);
    }
    m_model->setReadOnly(m_running);
    if (m_running != wasRunning) {
        setPagesReadOnly();
    }
    // An unchanged list is left alone, so that an open drop-down isn't disturbed.
    if (PixInsightEnv::findSettingsFiles() != m_knownFiles) {
        rebuildFileBox();
    } else if (m_staleOnDisk || wasStale) {
        refreshFileBoxItem(); // it may be missing
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
    m_bannerReload->setVisible(offersReload);
    // Not each time that a number in it rises.
    const bool isNews =
        m_bannerLabel->isHidden() || m_bannerLabel->palette().color(QPalette::Window) != colour;
    m_bannerLabel->setVisible(!text.isEmpty());
    if (!text.isEmpty()) {
        if (isNews) {
            announce(QTextDocumentFragment::fromHtml(text).toPlainText());
        }
        m_bannerLabel->setText(text);
        QPalette palette = m_bannerLabel->palette();
        palette.setBrush(QPalette::Window, colour);
        m_bannerLabel->setPalette(palette);
    }
    refreshActions(pending);
    setWindowTitle(
        tr("Kestrane Settings Editor%1")
            .arg(pending > 0 ? tr(" - %n unsaved change(s)", nullptr, int(pending)) : QString()));
}

/// Has a screen reader say what shows where the focus isn't.
// NOLINTNEXTLINE(readability-convert-member-functions-to-static): with Qt 6.8 the window speaks.
void MainWindow::announce(const QString& text)
{
#if QT_VERSION >= QT_VERSION_CHECK(6, 8, 0)
    QAccessibleAnnouncementEvent event(this, text);
    QAccessible::updateAccessibility(&event);
#else
    Q_UNUSED(text) // Qt only reports that the label or the status bar has another text
#endif
}

void MainWindow::refreshActions(qsizetype pending)
{
    const bool loaded = m_store.loaded;
    m_actReload->setEnabled(loaded);
    m_actSave->setEnabled(loaded && pending > 0 && !m_running && !m_staleOnDisk);
    m_actRestore->setEnabled(loaded && !m_running);
    m_actBackups->setEnabled(loaded);
    m_actRevert->setEnabled(pending > 0);
}

} // namespace kse
