// SPDX-License-Identifier: MIT
#include "app/MainWindow.h"

#include "app/OpenEditor.h"
#include "app/UserGuide.h"
#include "schema/ModuleCatalog.h"
#include "views/cleanup/CleanupView.h"
#include "views/cleanup/UnusedModulesView.h"
#include "views/compare/CompareView.h"
#include "views/health/HealthView.h"
#include "views/model/SettingsModel.h"
#include "views/preferences/PreferencesView.h"
#include "views/search/ModuleSearchDialog.h"
#include "views/search/SearchView.h"
#include "views/tree/AllSettingsView.h"
#include "widgets/MessageBox.h"

#include <QAction>
#include <QShortcut>
#include <QTabWidget>

using namespace Qt::StringLiterals;

namespace kse {

void MainWindow::createPages()
{
    m_preferencesView = new PreferencesView(m_model, &m_schema, this);
    m_searchView = new SearchView(m_model, &m_schema, this);
    m_cleanupView = new CleanupView(m_model, this);
    m_unusedModulesView = new UnusedModulesView(m_model, &m_schema, this);
    m_healthView = new HealthView(m_model, &m_schema, this);
    m_compareView = new CompareView(m_model, this);
    m_advancedPage = new AllSettingsView(m_model, this);

    m_tabs = new QTabWidget;
    m_tabs->setObjectName("tabs"_L1);
    const auto add = [this](QWidget* page, const QString& name, const QString& text) {
        page->setObjectName(name);
        m_tabs->addTab(page, text);
    };
    add(m_preferencesView, u"preferencesView"_s, tr("Preferences"));
    add(m_searchView, u"searchView"_s, tr("Search"));
    add(m_cleanupView, u"cleanupView"_s, tr("Cleanup"));
    add(m_unusedModulesView, u"unusedModulesView"_s, tr("Unused modules"));
    add(m_healthView, u"healthView"_s, tr("Health check"));
    add(m_compareView, u"compareView"_s, tr("Compare"));
    add(m_advancedPage, u"advancedPage"_s, tr("All settings (advanced)"));
}

void MainWindow::createKeys()
{
    auto* findKey = new QShortcut(QKeySequence(QKeySequence::Find), this);
    connect(findKey, &QShortcut::activated, this, [this] {
        m_tabs->setCurrentWidget(m_searchView);
        m_searchView->focusQuery();
    });
    // Actions of the window and of no menu. The tabs themselves turn the page only while the focus
    // is in them, and not in one of their list boxes.
    const auto add = [this](const QString& text, const QList<QKeySequence>& keys) {
        auto* action = new QAction(text, this);
        action->setShortcuts(keys);
        addAction(action);
        return action;
    };
    auto previousKeys = QKeySequence::keyBindings(QKeySequence::PreviousChild);
    previousKeys.append(Qt::CTRL | Qt::SHIFT | Qt::Key_Tab); // as Backtab it isn't found under X11
    connect(add(tr("Next page"), QKeySequence::keyBindings(QKeySequence::NextChild)),
            &QAction::triggered, this, [this] { turnPage(1); });
    connect(add(tr("Previous page"), previousKeys), &QAction::triggered, this,
            [this] { turnPage(m_tabs->count() - 1); });
    connect(add(tr("User Guide"), QKeySequence::keyBindings(QKeySequence::HelpContents)),
            &QAction::triggered, this, &showUserGuide);
}

void MainWindow::turnPage(int step)
{
    if (!m_openEditor->commit()) {
        return;
    }
    if (!m_tabs->isAncestorOf(focusWidget())) {
        m_tabs->setFocus(Qt::ShortcutFocusReason);
    }
    m_tabs->setCurrentIndex((m_tabs->currentIndex() + step) % m_tabs->count());
}

void MainWindow::connectPages()
{
    const auto showFor = [this](int milliseconds) {
        return [this, milliseconds](const QString& text) {
            showStatus(text, milliseconds);
        };
    };
    const auto connectDeletion = [this](auto* page) {
        using Page = std::remove_pointer_t<decltype(page)>;
        connect(page, &Page::deleteRequested, this, &MainWindow::deleteNode);
        connect(page, &Page::restoreRequested, m_model, &SettingsModel::undoDeletion);
    };
    connect(m_preferencesView, &PreferencesView::message, this, &MainWindow::showRejection);
    connectDeletion(m_preferencesView);

    connect(m_searchView, &SearchView::message, this, &MainWindow::showRejection);
    connectDeletion(m_searchView);
    connect(m_searchView, &SearchView::revealRequested, this, &MainWindow::revealNode);

    connect(m_cleanupView, &CleanupView::message, this, showFor(8000));

    connect(m_unusedModulesView, &UnusedModulesView::message, this, showFor(10000));
    connectDeletion(m_unusedModulesView);
    connect(m_unusedModulesView, &UnusedModulesView::revealRequested, this,
            &MainWindow::revealNode);

    connect(m_healthView, &HealthView::message, this, &MainWindow::showRejection);
    connectDeletion(m_healthView);
    connect(m_healthView, &HealthView::revealRequested, this, &MainWindow::revealNode);
    connect(m_healthView, &HealthView::openUnusedModules, this, &MainWindow::onUnusedModules);
    connect(m_healthView, &HealthView::summaryChanged, this, [this](int problems, int warnings) {
        const int sum = problems + warnings;
        m_tabs->setTabText(m_tabs->indexOf(m_healthView),
                           sum > 0 ? tr("Health check (%1)").arg(sum) : tr("Health check"));
    });

    connect(m_compareView, &CompareView::message, this, showFor(8000));
    connect(m_compareView, &CompareView::revealRequested, this, &MainWindow::revealNode);

    connect(m_advancedPage, &AllSettingsView::message, this, showFor(8000));
    connectDeletion(m_advancedPage);
}

void MainWindow::revealNode(XsdtNode* node)
{
    if (!node) {
        return;
    }
    m_tabs->setCurrentWidget(m_advancedPage);
    m_advancedPage->reveal(node);
}

bool MainWindow::hasFile(const QString& title)
{
    if (!m_store.loaded) {
        showMessage(this, QMessageBox::Information, title, tr("Open a settings file first."));
    }
    return m_store.loaded;
}

void MainWindow::onHealthCheck()
{
    if (hasFile(tr("Health check"))) {
        m_healthView->run(); // first: shown unchecked, it would run by itself and then again
        m_tabs->setCurrentWidget(m_healthView);
    }
}

void MainWindow::onUnusedModules()
{
    if (hasFile(tr("Unused module data"))) {
        m_unusedModulesView->refresh();
        m_tabs->setCurrentWidget(m_unusedModulesView);
    }
}

void MainWindow::onFindModule()
{
    const QString title = tr("Find module data");
    if (!hasFile(title)) {
        return;
    }
    QStringList names = ModuleCatalog::registeredModules(m_store.document) +
                        ModuleCatalog::modulesWithData(m_store.document);
    names.removeDuplicates();
    names.sort(Qt::CaseInsensitive);
    ModuleSearchDialog dialog(names, this);
    if (dialog.exec() != QDialog::Accepted || !m_store.loaded) {
        return;
    }
    const QString text = dialog.moduleName();
    if (dialog.mode() == ModuleSearchMode::Full) {
        searchEverywhere(text);
        return;
    }
    bool exact = false;
    QList<XsdtNode*> nodes;
    QStringList captions;
    const auto modules = ModuleCatalog::searchModules(m_store.document, text, &exact);
    for (const ModuleInfo& info : modules) {
        nodes += ModuleCatalog::moduleLeaves(info);
        captions.append((info.registered ? tr("%1 (installed)") : tr("%1 (not in the module list)"))
                            .arg(info.name));
    }
    if (nodes.isEmpty()) {
        const QString question =
            tr("Nothing recorded for \"%1\" in the places module names usually go.\n\nRun a full "
               "search instead?")
                .arg(text);
        if (askQuestion(this, title, question, QMessageBox::Yes | QMessageBox::No,
                        QMessageBox::Yes) == QMessageBox::Yes &&
            m_store.loaded) {
            searchEverywhere(text);
        }
        return;
    }
    const int count = int(nodes.size());
    const QString banner =
        exact ? tr("Module search for \"%1\": registry entry, module data, module settings and "
                   "process entries - %2, %n value(s). Type words below to narrow them.",
                   nullptr, count)
              : tr("No module is called exactly \"%1\"; showing modules whose name contains it: %2 "
                   "- %n value(s).",
                   nullptr, count);
    m_tabs->setCurrentWidget(m_searchView);
    m_searchView->showRestricted(nodes, banner.arg(text, captions.join(u", "_s)));
    m_searchView->focusQuery();
}

void MainWindow::searchEverywhere(const QString& text)
{
    m_tabs->setCurrentWidget(m_searchView);
    m_searchView->searchEverywhere(text);
    m_searchView->focusQuery();
}

} // namespace kse
