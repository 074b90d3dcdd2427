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

namespace {

/// The pictures, each group of them one function.
struct Screenshots
{
    QWidget& window;
    const SettingsStore& store;
    const SettingsSchema& schema;
    QString dir;
    SettingsModel* model = window.findChild<SettingsModel*>();
    QTabWidget* tabs = window.findChild<QTabWidget*>(u"tabs"_s);

    void grab(QWidget& widget, const QString& name) const
    {
        for (WidgetColumn* column : widget.findChildren<WidgetColumn*>()) {
            column->complete(); // the same picture on a slow computer
        }
        // The first round shows new widgets and posts the events that lay them out.
        QCoreApplication::processEvents();
        QCoreApplication::processEvents();
        widget.grab().save(dir + u'/' + name);
    }

    void grabPreferences(const QString& searchText) const
    {
        constexpr int mostPages = 12;
        auto* view = tabs->findChild<PreferencesView*>();
        view->setSearchText(searchText);
        tabs->setCurrentIndex(0);
        for (int page = 0; page < std::min(mostPages, view->pageCount()); ++page) {
            if (view->selectPage(page)) {
                grab(window, u"prefs-%1.png"_s.arg(page, 2, 10, QChar(u'0')));
            }
        }
        view->setSearchText(QString());
    }

    void grabSearch() const
    {
        auto* view = tabs->findChild<SearchView*>();
        tabs->setCurrentWidget(view);
        view->setQuery(u"thread"_s);
        grab(window, u"search.png"_s);
        view->setQuery(u"font"_s);
        grab(window, u"search-font.png"_s);
        view->setQuery(QString());

        QList<XsdtNode*> leaves;
        const auto modules = ModuleCatalog::searchModules(store.document, u"Ostrand"_s);
        for (const ModuleInfo& info : modules) {
            leaves += ModuleCatalog::moduleLeaves(info);
        }
        view->showRestricted(
            leaves,
            SearchView::tr("Module search for \"Ostrand\" (%1 value(s))").arg(leaves.size()));
        grab(window, u"module-search.png"_s);
        view->clearRestriction();
    }

    void grabUnusedModules() const
    {
        auto* view = tabs->findChild<UnusedModulesView*>();
        view->refresh();
        tabs->setCurrentWidget(view);
        if (const QStringList names = view->moduleNames(); !names.isEmpty()) {
            view->expandCard(names.first());
        }
        grab(window, u"unused-modules.png"_s);
    }

    void grabCleanup() const
    {
        auto* view = tabs->findChild<CleanupView*>();
        tabs->setCurrentWidget(view);
        view->setDocument(model->document());
        grab(window, u"cleanup.png"_s);
        view->setConfirmWarn(false);
        view->setDocument(model->document());
        view->tickAll(false);
        view->queueTicked();
        grab(window, u"cleanup-queued.png"_s);
        model->revertAll();
    }

    void grabComparison() const
    {
        QString other;
        const QStringList files = PixInsightEnv::findSettingsFiles();
        for (const QString& file : files) {
            if (!PixInsightEnv::isSameFile(file, store.path)) {
                other = file;
            }
        }
        auto* view = tabs->findChild<CompareView*>();
        if (other.isEmpty() || !view->compareWith(other, nullptr)) {
            return;
        }
        tabs->setCurrentWidget(view);
        grab(window, u"compare.png"_s);
        view->setStateFilters(true, true, true);
        grab(window, u"compare-all.png"_s);
    }

    void grabHealth() const
    {
        auto* view = tabs->findChild<HealthView*>();
        view->run();
        tabs->setCurrentWidget(view);
        grab(window, u"health.png"_s);
    }

    void grabDialogs() const
    {
        const XsdtNode& root = store.document.root;
        if (const XsdtNode* node = root.findByPath(u"Global/Preferences/MainWindow/AnimateCombo")) {
            const QString flipped = node->value == "true"_L1 ? u"false"_s : u"true"_s;
            model->setData(model->indexForNode(node, SettingsModel::ValueColumn), flipped);
        }
        if (XsdtNode* node = root.findByPath(u"Global/Statistics")) {
            (void)model->markForDeletion(node); // if refused, the picture shows no deletion
        }
        {
            ReviewDialog review(model, &store.document, &window, &schema);
            review.show();
            auto* list = review.findChild<QTreeWidget*>();
            if (QTreeWidgetItem* first = list->topLevelItem(0)) {
                first->setExpanded(true); // lists the values of the deletion
            }
            list->setCurrentItem(list->topLevelItem(list->topLevelItemCount() - 1)); // the edit
            grab(review, u"review.png"_s);
        }
        model->revertAll();
        {
            BackupsDialog backups(store.path, &window);
            backups.show();
            grab(backups, u"backups.png"_s);
        }
        AboutDialog about(store.path, u"PixInsight Core (recorded in the open file)"_s, &window);
        about.show();
        grab(about, u"about.png"_s);
    }

    void grabTree() const
    {
        auto* view = tabs->findChild<AllSettingsView*>();
        auto* changedOnly = view->findChild<QCheckBox*>(u"changedOnly"_s);
        tabs->setCurrentWidget(view);
        changedOnly->setChecked(true);
        grab(window, u"advanced-changed.png"_s);
        changedOnly->setChecked(false);
        model->revertAll();
        view->resetExpansion();
        grab(window, u"advanced.png"_s);
    }
};

} // namespace

void saveScreenshots(QWidget& window, const SettingsStore& store, const SettingsSchema& schema,
                     const QString& dir, const QString& searchText)
{
    QDir().mkpath(dir);
    const QSize size(1200, 820);
    window.resize(size);
    window.show();
    QCoreApplication::processEvents();
    window.resize(size); // when shown, it fits itself to the screen; a picture needn't fit

    const Screenshots shots{window, store, schema, dir};
    shots.grabPreferences(searchText);
    shots.grabSearch();
    shots.grabUnusedModules();
    shots.grabCleanup();
    shots.grabComparison();
    shots.grabHealth();
    shots.model->setReadOnly(false);
    shots.grabDialogs();
    shots.grabTree();
}

} // namespace kse
