// SPDX-License-Identifier: MIT
#include "app/Screenshots.h"

#include "app/AboutDialog.h"
#include "schema/ModuleCatalog.h"
#include "session/PixInsightEnv.h"
#include "session/SettingsStore.h"
#include "session/dialogs/BackupsDialog.h"
#include "session/dialogs/ReviewDialog.h"
#include "views/cleanup/CleanupView.h"
#include "views/cleanup/UnusedModulesView.h"
#include "views/compare/CompareView.h"
#include "views/health/HealthView.h"
#include "views/model/SettingsModel.h"
#include "views/preferences/PreferencesView.h"
#include "views/search/SearchView.h"
#include "views/tree/AllSettingsView.h"
#include "widgets/WidgetColumn.h"

#include <QCheckBox>
#include <QCoreApplication>
#include <QDir>
#include <QSize>
#include <QTabWidget>
#include <QTreeWidget>

#include <algorithm>

using namespace Qt::StringLiterals;

namespace kse {

Screenshots::Screenshots(QWidget* window, SettingsStore& store, const SettingsSchema& schema,
                         const QString& dir)
    : m_window(window)
    , m_store(store)
    , m_schema(schema)
    , m_dir(dir)
    , m_model(window->findChild<SettingsModel*>())
    , m_tabs(window->findChild<QTabWidget*>(u"tabs"_s))
{
}

void Screenshots::render(const QString& searchText)
{
    QDir().mkpath(m_dir);
    const QSize size(1200, 820);
    m_window->resize(size);
    m_window->show();
    QCoreApplication::processEvents();
    m_window->resize(size); // when shown, it fits itself to the screen; a picture needn't fit

    grabPreferences(searchText);
    grabSearch();
    grabUnusedModules();
    grabCleanup();
    grabComparison();
    grabHealth();
    m_model->setReadOnly(false);
    grabDialogs();
    grabTree();
}

void Screenshots::grabPreferences(const QString& searchText)
{
    constexpr int mostPages = 12;
    auto* view = m_tabs->findChild<PreferencesView*>();
    view->setSearchText(searchText);
    m_tabs->setCurrentIndex(0);
    for (int page = 0; page < std::min(mostPages, view->pageCount()); ++page) {
        if (view->selectPage(page)) {
            grab(*m_window, u"prefs-%1.png"_s.arg(page, 2, 10, QChar(u'0')));
        }
    }
    view->setSearchText(QString());
}

void Screenshots::grabSearch()
{
    auto* view = m_tabs->findChild<SearchView*>();
    m_tabs->setCurrentWidget(view);
    view->setQuery(u"thread"_s);
    grab(*m_window, u"search.png"_s);
    view->setQuery(u"font"_s);
    grab(*m_window, u"search-font.png"_s);
    view->setQuery(QString());

    QList<XsdtNode*> leaves;
    const auto modules = ModuleCatalog::searchModules(m_store.document, u"Ostrand"_s);
    for (const ModuleInfo& info : modules) {
        leaves += ModuleCatalog::moduleLeaves(info);
    }
    view->showRestricted(leaves,
                         tr("Module search for \"Ostrand\" (%1 value(s))").arg(leaves.size()));
    grab(*m_window, u"module-search.png"_s);
    view->clearRestriction();
}

void Screenshots::grabUnusedModules()
{
    auto* view = m_tabs->findChild<UnusedModulesView*>();
    view->refresh();
    m_tabs->setCurrentWidget(view);
    if (const QStringList names = view->moduleNames(); !names.isEmpty()) {
        view->expandCard(names.first());
    }
    grab(*m_window, u"unused-modules.png"_s);
}

void Screenshots::grabCleanup()
{
    auto* view = m_tabs->findChild<CleanupView*>();
    m_tabs->setCurrentWidget(view);
    view->setDocument(m_model->document());
    grab(*m_window, u"cleanup.png"_s);
    view->setConfirmWarn(false);
    view->setDocument(m_model->document());
    view->tickAll(false);
    view->queueTicked();
    grab(*m_window, u"cleanup-queued.png"_s);
    m_model->revertAll();
}

void Screenshots::grabComparison()
{
    QString other;
    const QStringList files = PixInsightEnv::findSettingsFiles();
    for (const QString& file : files) {
        if (!PixInsightEnv::isSameFile(file, m_store.path)) {
            other = file;
        }
    }
    auto* view = m_tabs->findChild<CompareView*>();
    if (other.isEmpty() || !view->compareWith(other, nullptr)) {
        return;
    }
    m_tabs->setCurrentWidget(view);
    grab(*m_window, u"compare.png"_s);
    view->setStateFilters(true, true, true);
    grab(*m_window, u"compare-all.png"_s);
}

void Screenshots::grabHealth()
{
    auto* view = m_tabs->findChild<HealthView*>();
    view->run();
    m_tabs->setCurrentWidget(view);
    grab(*m_window, u"health.png"_s);
}

void Screenshots::grabDialogs()
{
    const XsdtNode& root = m_store.document.root;
    if (const XsdtNode* node = root.findByPath(u"Global/Preferences/MainWindow/AnimateCombo")) {
        const QString flipped = node->value == "true"_L1 ? u"false"_s : u"true"_s;
        m_model->setData(m_model->indexForNode(node, SettingsModel::ValueColumn), flipped);
    }
    if (XsdtNode* node = root.findByPath(u"Global/Statistics")) {
        (void)m_model->markForDeletion(node); // if refused, the picture shows no deletion
    }
    {
        ReviewDialog review(m_model, &m_store.document, m_window, &m_schema);
        review.show();
        auto* list = review.findChild<QTreeWidget*>();
        if (QTreeWidgetItem* first = list->topLevelItem(0)) {
            first->setExpanded(true); // lists the values of the deletion
        }
        list->setCurrentItem(list->topLevelItem(list->topLevelItemCount() - 1)); // the edit
        grab(review, u"review.png"_s);
    }
    m_model->revertAll();
    {
        BackupsDialog backups(m_store.path, m_window);
        backups.show();
        grab(backups, u"backups.png"_s);
    }
    AboutDialog about(m_store.path, u"PixInsight Core (recorded in the open file)"_s, m_window);
    about.show();
    grab(about, u"about.png"_s);
}

void Screenshots::grabTree()
{
    auto* view = m_tabs->findChild<AllSettingsView*>();
    auto* changedOnly = view->findChild<QCheckBox*>(u"changedOnly"_s);
    m_tabs->setCurrentWidget(view);
    changedOnly->setChecked(true);
    grab(*m_window, u"advanced-changed.png"_s);
    changedOnly->setChecked(false);
    m_model->revertAll();
    view->resetExpansion();
    grab(*m_window, u"advanced.png"_s);
}

void Screenshots::grab(QWidget& widget, const QString& name)
{
    for (WidgetColumn* column : widget.findChildren<WidgetColumn*>()) {
        column->complete(); // the same picture on a slow computer
    }
    // The first round shows new widgets and posts the events that lay them out.
    QCoreApplication::processEvents();
    QCoreApplication::processEvents();
    widget.grab().save(m_dir + u'/' + name);
}

} // namespace kse
