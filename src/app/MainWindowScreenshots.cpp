// SPDX-License-Identifier: MIT
#include "app/MainWindow.h"

#include "app/AboutDialog.h"
#include "schema/ModuleCatalog.h"
#include "session/BackupsDialog.h"
#include "session/PixInsightEnv.h"
#include "session/ReviewDialog.h"
#include "views/AllSettingsView.h"
#include "views/CleanupView.h"
#include "views/CompareView.h"
#include "views/HealthView.h"
#include "views/PreferencesView.h"
#include "views/SearchView.h"
#include "views/SettingsModel.h"
#include "views/UnusedModulesView.h"

#include <QCheckBox>
#include <QCoreApplication>
#include <QDir>
#include <QFileInfo>
#include <QTabWidget>
#include <QTreeWidget>

#include <algorithm>

using namespace Qt::StringLiterals;

namespace kse {

void MainWindow::renderScreenshots(const QString& dir, const QString& searchText)
{
    QDir().mkpath(dir);
    resize(1200, 820);
    show();
    QCoreApplication::processEvents();

    grabPreferences(dir, searchText);
    grabSearch(dir);

    m_unusedModulesView->refresh();
    m_tabs->setCurrentWidget(m_unusedModulesView);
    if (const QStringList names = m_unusedModulesView->moduleNames(); !names.isEmpty()) {
        m_unusedModulesView->expandCard(names.first());
    }
    grabTo(*this, dir, u"unused-modules.png"_s);

    grabCleanup(dir);
    grabComparison(dir);

    m_healthView->run();
    m_tabs->setCurrentWidget(m_healthView);
    grabTo(*this, dir, u"health.png"_s);

    m_model->setReadOnly(false);
    grabDialogs(dir);

    m_tabs->setCurrentWidget(m_advancedPage);
    auto* changedOnly = m_advancedPage->findChild<QCheckBox*>(u"changedOnly"_s);
    changedOnly->setChecked(true);
    grabTo(*this, dir, u"advanced-changed.png"_s);
    changedOnly->setChecked(false);
    m_model->revertAll();
    m_advancedPage->resetExpansion();
    grabTo(*this, dir, u"advanced.png"_s);
}

void MainWindow::grabPreferences(const QString& dir, const QString& searchText)
{
    constexpr int mostPages = 12;
    if (!searchText.isEmpty()) {
        m_preferencesView->setSearchText(searchText);
    }
    m_tabs->setCurrentIndex(0);
    for (int page = 0; page < std::min(mostPages, m_preferencesView->pageCount()); ++page) {
        if (m_preferencesView->selectPage(page)) {
            grabTo(*this, dir, u"prefs-%1.png"_s.arg(page, 2, 10, QChar(u'0')));
        }
    }
    m_preferencesView->setSearchText(QString());
}

void MainWindow::grabSearch(const QString& dir)
{
    m_tabs->setCurrentWidget(m_searchView);
    m_searchView->setQuery(u"thread"_s);
    grabTo(*this, dir, u"search.png"_s);
    m_searchView->setQuery(u"font"_s);
    grabTo(*this, dir, u"search-font.png"_s);
    m_searchView->setQuery(QString());

    QList<XsdtNode*> leaves;
    const auto modules = ModuleCatalog::searchModules(m_store.document, u"Ostrand"_s);
    for (const ModuleInfo& info : modules) {
        leaves += ModuleCatalog::moduleLeaves(info);
    }
    m_searchView->showRestricted(
        leaves, tr("Module search for \"Ostrand\" (%1 value(s))").arg(leaves.size()));
    grabTo(*this, dir, u"module-search.png"_s);
    m_searchView->clearRestriction();
}

void MainWindow::grabCleanup(const QString& dir)
{
    XsdtDocument* document = m_store.loaded ? &m_store.document : nullptr;
    m_tabs->setCurrentWidget(m_cleanupView);
    m_cleanupView->setDocument(document);
    grabTo(*this, dir, u"cleanup.png"_s);
    m_cleanupView->setConfirmWarn(false);
    m_cleanupView->setDocument(document);
    m_cleanupView->tickAll(false);
    m_cleanupView->queueTicked();
    grabTo(*this, dir, u"cleanup-queued.png"_s);
    m_model->revertAll();
}

void MainWindow::grabComparison(const QString& dir)
{
    QString other;
    const QStringList files = PixInsightEnv::findSettingsFiles();
    for (const QString& file : files) {
        if (QFileInfo(file) != QFileInfo(m_store.path)) {
            other = file;
        }
    }
    if (other.isEmpty() || !m_compareView->compareWith(other, nullptr)) {
        return;
    }
    m_tabs->setCurrentWidget(m_compareView);
    grabTo(*this, dir, u"compare.png"_s);
    m_compareView->setStateFilters(true, true, true);
    grabTo(*this, dir, u"compare-all.png"_s);
}

void MainWindow::grabDialogs(const QString& dir)
{
    const XsdtNode& root = m_store.document.root;
    if (const XsdtNode* node = root.findByPath(u"Global/Preferences/MainWindow/AnimateCombo")) {
        const QString flipped = node->value == "true"_L1 ? u"false"_s : u"true"_s;
        m_model->setData(m_model->indexForNode(node, SettingsModel::ValueColumn), flipped);
    }
    if (XsdtNode* node = root.findByPath(u"Global/Statistics")) {
        (void)m_model->markForDeletion(node); // a picture without a deletion is still a picture
    }
    {
        ReviewDialog review(m_model, &m_store.document, this, &m_schema);
        review.show();
        auto* list = review.findChild<QTreeWidget*>();
        if (QTreeWidgetItem* first = list->topLevelItem(0)) {
            first->setExpanded(true); // a deletion lists its values then
        }
        list->setCurrentItem(list->topLevelItem(list->topLevelItemCount() - 1)); // the edit
        grabTo(review, dir, u"review.png"_s);
    }
    m_model->revertAll();
    {
        BackupsDialog backups(m_store.path, this);
        backups.show();
        grabTo(backups, dir, u"backups.png"_s);
    }
    AboutDialog about(m_store.path, u"PixInsight Core (recorded in the open file)"_s, this);
    about.show();
    grabTo(about, dir, u"about.png"_s);
}

void MainWindow::grabTo(QWidget& widget, const QString& dir, const QString& name)
{
    // What is new is shown by a first round of events, and laid out by what that posts.
    QCoreApplication::processEvents();
    QCoreApplication::processEvents();
    widget.grab().save(dir + u'/' + name);
}

} // namespace kse
