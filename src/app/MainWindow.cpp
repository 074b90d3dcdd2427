// SPDX-License-Identifier: MIT
#include "app/MainWindow.h"

#include "app/BannerRow.h"
#include "app/MainMenuBar.h"
#include "app/MainToolBar.h"
#include "app/OpenEditor.h"
#include "app/OpenFileBox.h"
#include "app/Screenshots.h"
#include "app/ThemeManager.h"
#include "app/WaitCursor.h"
#include "promo/AdBanner.h"
#include "session/DurableFile.h"
#include "session/PixInsightEnv.h"
#include "views/cleanup/CleanupView.h"
#include "views/cleanup/UnusedModulesView.h"
#include "views/compare/CompareView.h"
#include "views/health/HealthView.h"
#include "views/model/SettingsModel.h"
#include "views/preferences/PreferencesView.h"
#include "views/search/SearchView.h"
#include "views/tree/AllSettingsView.h"
#include "widgets/MessageBox.h"
#include "widgets/Named.h"

#include <QAbstractButton>
#include <QDir>
#include <QFile>
#include <QFileDialog>
#include <QFileInfo>
#include <QFrame>
#include <QHBoxLayout>
#include <QLabel>
#include <QPushButton>
#include <QStandardPaths>
#include <QTabWidget>
#include <QTimer>
#include <QVBoxLayout>

#include <type_traits>

using namespace Qt::StringLiterals;

namespace kse {

namespace {

constexpr int pollInterval = 3000;

/// The resource at `path`; empty if it can't be opened, which counts as an empty table.
QByteArray readResource(const QString& path)
{
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

} // namespace

MainWindow::MainWindow(Messages messages)
    : m_messages(messages)
    , m_lastFontScale(ThemeManager::instance().fontScale())
{
    loadTables();
    m_store.policy = &m_policy;
    buildUi();

    auto* pollTimer = named(u"pollTimer"_s, new QTimer(this));
    connect(pollTimer, &QTimer::timeout, this, &MainWindow::pollEnvironment);
    pollTimer->start(pollInterval);
    pollEnvironment(); // before the file is opened, which needn't be read twice then

    const QStringList files = PixInsightEnv::findSettingsFiles();
    if (files.isEmpty()) {
        rebuildFileBox();
        refreshBanner();
        showStatus(tr("No PixInsight settings file found in %1. Use Browse to open one.")
                       .arg(PixInsightEnv::settingsFoldersText()),
                   0);
    } else {
        openFile(files.first());
    }
}

MainWindow::~MainWindow()
{
    detachViews(); // the views are destroyed after the tree
}

void MainWindow::loadTables()
{
    const QString overlayPath = u":/schema/overlay.json"_s;
    QString error;
    if (!m_schema.load(readResource(u":/schema/globals.json"_s), readResource(overlayPath),
                       &error)) {
        report(QMessageBox::Warning, tr("Settings schema"),
               tr("The built-in settings descriptions could not be read (%1). Names and "
                  "descriptions will be limited.")
                   .arg(error));
    }
    if (!m_policy.load(readResource(overlayPath), &error)) {
        report(QMessageBox::Warning, tr("Deletion rules"),
               tr("The built-in deletion rules could not be read (%1). Deleting entries is "
                  "disabled.")
                   .arg(error));
    }
}

void MainWindow::buildUi()
{
    resize(1100, 760);
    m_model = new SettingsModel(this);
    m_model->setPolicy(&m_policy);
    connect(m_model, &SettingsModel::edited, this, &MainWindow::onEdited);
    connect(m_model, &SettingsModel::editRejected, this, &MainWindow::showRejection);
    m_openEditor = new OpenEditor(this);

    createPages();
    connectPages();
    createKeys();

    auto* central = new QWidget;
    setContent(central); // while there is nothing to lay out
    auto* layout = new QVBoxLayout(central);
    layout->setContentsMargins(8, 8, 8, 8);
    layout->addWidget(createFileRow());
    m_banner = new BannerRow;
    connect(m_banner, &BannerRow::reloadRequested, this, &MainWindow::onReload);
    layout->addLayout(m_banner);
    layout->addWidget(m_tabs, 1);
    auto* line = new QFrame;
    line->setFrameShape(QFrame::HLine);
    line->setFrameShadow(QFrame::Sunken);
    layout->addWidget(line);
    m_adBanner = named(
        u"adBanner"_s,
        new AdBanner(QStandardPaths::writableLocation(QStandardPaths::CacheLocation) + u"/ads"_s));
    layout->addWidget(m_adBanner);

    m_toolbar = new MainToolBar(tr("Main toolbar"), this);
    addToolBar(m_toolbar);
    m_menuBar = new MainMenuBar(m_toolbar->toggleViewAction(), this);
    setMenuBar(m_menuBar);
    m_toolbar->addCommands(m_menuBar->commands());
    connect(m_toolbar, &QToolBar::visibilityChanged, this, &MainWindow::updateMinimumWidth);
    connectCommands();
    connectTheme();
}

QWidget* MainWindow::createFileRow()
{
    auto* row = new QWidget;
    auto* layout = new QHBoxLayout(row);
    layout->setContentsMargins(0, 0, 0, 0);
    m_fileBox = named(u"fileBox"_s, new OpenFileBox);
    m_fileBox->setSizeAdjustPolicy(QComboBox::AdjustToMinimumContentsLengthWithIcon);
    connect(m_fileBox, &QComboBox::activated, this, &MainWindow::onFileActivated);
    auto* label = new QLabel(tr("File:"));
    label->setBuddy(m_fileBox);
    auto* browse = named(u"browse"_s, new QPushButton(tr("Browse...")));
    connect(browse, &QPushButton::clicked, this, &MainWindow::onOpen);
    layout->addWidget(label);
    layout->addWidget(m_fileBox, 1);
    layout->addWidget(browse);
    return row;
}

void MainWindow::createPages()
{
    m_preferencesView = new PreferencesView(m_model, &m_schema, this);
    m_searchView = new SearchView(m_model, &m_schema, this);
    m_cleanupView = new CleanupView(m_model, this);
    m_unusedModulesView = new UnusedModulesView(m_model, &m_schema, this);
    m_healthView = new HealthView(m_model, &m_schema, this);
    m_compareView = new CompareView(m_model, this);
    m_advancedPage = new AllSettingsView(m_model, this);

    m_tabs = named(u"tabs"_s, new QTabWidget);
    m_tabs->setAccessibleName(tr("Tabs"));
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

void MainWindow::startBanner(bool allowNetwork, int delayMs)
{
    m_adBanner->start(allowNetwork, delayMs);
}

void MainWindow::renderScreenshots(const QString& dir, const QString& searchText)
{
    saveScreenshots(*this, m_store, m_schema, dir, searchText);
}

void MainWindow::attachViews()
{
    XsdtDocument* document = m_store.loaded ? &m_store.document : nullptr;
    m_model->setDocument(document);
    setPagesReadOnly(); // first: the pages create their rows by it
    forEachPage([document](auto* page) { page->setDocument(document); });
    m_compareView->setDocument(document, openPath());
    m_advancedPage->resetExpansion();
    rebuildFileBox();
}

void MainWindow::detachViews()
{
    forEachPage([](auto* page) { page->setDocument(nullptr); });
    m_compareView->setDocument(nullptr, {});
    m_model->setDocument(nullptr);
}

void MainWindow::setPagesReadOnly()
{
    forEachPage([this](auto* page) { page->setReadOnly(m_running); });
    m_compareView->setReadOnly(m_running);
}

bool MainWindow::openFile(const QString& path)
{
    m_openEditor->commit();
    const QString file = PixInsightEnv::spelledAsOnDisk(path);
    QString error;
    const bool opened = replaceTree([&] {
        const WaitCursor wait;
        return m_store.load(file, &error);
    });
    if (!opened) {
        m_staleOnDisk = m_staleOnDisk && m_store.loaded;
        refreshBanner(); // first: the box may stand for long
        reportUnopened(file, error);
        return false;
    }
    m_staleOnDisk = false;
    showStatus(tr("Loaded %1").arg(QDir::toNativeSeparators(file)), 5000);
    refreshBanner();
    return true;
}

void MainWindow::reportUnopened(const QString& path, const QString& error)
{
    const QString title = tr("Cannot open file");
    QString backup;
    {
        const WaitCursor wait;
        backup = newestReadableBackup(path);
    }
    const QString found =
        tr("The newest backup beside it that can be read is %1.").arg(QFileInfo(backup).fileName());
    const bool isGone = m_store.loaded && path == m_store.path && isMissing(path);
    if (backup.isEmpty() || !isGone || m_messages != Messages::Boxes) {
        report(QMessageBox::Critical, title, error,
               backup.isEmpty()
                   ? QString()
                   : found + u' ' + tr("Copying it over the file brings that state back."));
        return;
    }
    PlainMessageBox box(QMessageBox::Critical, title, error, QMessageBox::Ok, this);
    box.setPlainInformativeText(found);
    box.setEscapeButton(QMessageBox::Ok);
    const QAbstractButton* restore = box.addButton(tr("Restore it"), QMessageBox::ActionRole);
    box.exec();
    if (box.clickedButton() == restore && m_store.loaded && m_store.path == path) {
        restoreFrom(backup);
    }
}

bool MainWindow::confirmDiscard(const QString& tail)
{
    const qsizetype pending = pendingCount();
    if (pending == 0) {
        return true;
    }
    const QString text = tr("You have %n unsaved change(s). %1", nullptr, int(pending)).arg(tail);
    return askQuestion(this, tr("Discard changes?"), text,
                       QMessageBox::Discard | QMessageBox::Cancel,
                       QMessageBox::Cancel) == QMessageBox::Discard;
}

void MainWindow::onOpen()
{
    if (!m_openEditor->commit() || !confirmDiscard(tr("Opening another file discards them."))) {
        return;
    }
    const QString folder =
        m_store.loaded ? QFileInfo(m_store.path).path() : PixInsightEnv::settingsFolders().value(0);
    const QString path =
        QFileDialog::getOpenFileName(this, tr("Open PixInsight settings file"), folder,
                                     tr("PixInsight settings (*.settings);;All files (*)"));
    if (!path.isEmpty()) {
        openFile(path);
    }
}

void MainWindow::onReload()
{
    if (!m_store.loaded || !m_openEditor->commit()) {
        return;
    }
    const QString path = m_store.path;
    if (confirmDiscard(tr("Reloading discards them."))) {
        openFile(path);
    }
}

void MainWindow::onFileActivated(int index)
{
    if (!m_openEditor->commit()) {
        rebuildFileBox();
        return;
    }
    const QString path = m_fileBox->itemData(index).toString();
    if (path.isEmpty() || PixInsightEnv::isSameFile(path, openPath())) {
        return;
    }
    if (confirmDiscard(tr("Opening another file discards them."))) {
        openFile(path);
    } else {
        rebuildFileBox();
    }
}

void MainWindow::rebuildFileBox()
{
    m_fileBox->rebuild(openPath());
}

QString MainWindow::openPath() const
{
    return m_store.loaded ? m_store.path : QString();
}

void MainWindow::onEdited()
{
    refreshBanner();
}

qsizetype MainWindow::pendingCount() const
{
    return m_store.loaded ? m_store.document.pendingCount() : 0;
}

} // namespace kse
