// SPDX-License-Identifier: MIT
#include "app/MainWindow.h"

#include "app/OpenEditor.h"
#include "app/Screenshots.h"
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
#include "widgets/FileBox.h"
#include "widgets/MessageBox.h"
#include "widgets/PlainText.h"

#include <QAbstractButton>
#include <QComboBox>
#include <QDir>
#include <QFile>
#include <QFileDialog>
#include <QFileInfo>
#include <QFrame>
#include <QHBoxLayout>
#include <QLabel>
#include <QPushButton>
#include <QShortcut>
#include <QStandardPaths>
#include <QStatusBar>
#include <QTimer>
#include <QVBoxLayout>

#include <cstdio>

using namespace Qt::StringLiterals;

namespace kse {

namespace {

constexpr int pollInterval = 3000;

/// The resource at `path`; empty if it can't be opened, which reads as an empty table.
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

    m_pollTimer = new QTimer(this);
    connect(m_pollTimer, &QTimer::timeout, this, &MainWindow::pollEnvironment);
    m_pollTimer->start(pollInterval);

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
    pollEnvironment();
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
    createKeys();
    connectPages();

    auto* central = new QWidget;
    auto* layout = new QVBoxLayout(central);
    layout->setContentsMargins(8, 8, 8, 8);
    layout->addWidget(createFileRow());
    layout->addLayout(createBannerRow());
    layout->addWidget(m_tabs, 1);
    auto* line = new QFrame;
    line->setFrameShape(QFrame::HLine);
    line->setFrameShadow(QFrame::Sunken);
    layout->addWidget(line);
    m_adBanner =
        new AdBanner(QStandardPaths::writableLocation(QStandardPaths::CacheLocation) + u"/ads"_s);
    m_adBanner->setObjectName("adBanner"_L1);
    layout->addWidget(m_adBanner);
    setCentralWidget(central);

    createActions();
    createMenus();
    createToolBar();
    connectTheme();
}

QWidget* MainWindow::createFileRow()
{
    auto* row = new QWidget;
    auto* layout = new QHBoxLayout(row);
    layout->setContentsMargins(0, 0, 0, 0);
    m_fileBox = new FileBox;
    m_fileBox->setObjectName("fileBox"_L1);
    m_fileBox->setSizeAdjustPolicy(QComboBox::AdjustToMinimumContentsLengthWithIcon);
    connect(m_fileBox, &QComboBox::activated, this, &MainWindow::onFileActivated);
    auto* label = new QLabel(tr("File:"));
    label->setBuddy(m_fileBox);
    auto* browse = new QPushButton(tr("Browse..."));
    browse->setObjectName("browse"_L1);
    connect(browse, &QPushButton::clicked, this, &MainWindow::onOpen);
    layout->addWidget(label);
    layout->addWidget(m_fileBox, 1);
    layout->addWidget(browse);
    return row;
}

QLayout* MainWindow::createBannerRow()
{
    auto* layout = new QHBoxLayout; // no widget: hidden, it must leave no gap
    m_bannerLabel = new QLabel;
    m_bannerLabel->setObjectName("bannerLabel"_L1);
    m_bannerLabel->setWordWrap(true);
    m_bannerLabel->setMargin(8);
    m_bannerLabel->setAutoFillBackground(true);
    m_bannerReload = new QPushButton(tr("Reload"));
    m_bannerReload->setObjectName("bannerReload"_L1);
    connect(m_bannerReload, &QPushButton::clicked, this, &MainWindow::onReload);
    layout->addWidget(m_bannerLabel, 1);
    layout->addWidget(m_bannerReload);
    return layout;
}

void MainWindow::startBanner(bool allowNetwork, int delayMs)
{
    m_adBanner->start(allowNetwork, delayMs);
}

void MainWindow::renderScreenshots(const QString& dir, const QString& searchText)
{
    Screenshots(this, m_store, m_schema, dir).render(searchText);
}

void MainWindow::attachViews()
{
    XsdtDocument* document = m_store.loaded ? &m_store.document : nullptr;
    m_model->setDocument(document);
    setPagesReadOnly(); // first: what is built now is built by it
    forEachPage([document](auto* page) { page->setDocument(document); });
    m_compareView->setDocument(document, document ? m_store.path : QString());
    m_advancedPage->resetExpansion();
    rebuildFileBox();
}

void MainWindow::detachViews()
{
    forEachPage([](auto* page) { page->setDocument(nullptr); });
    m_compareView->setDocument(nullptr, QString());
    m_model->setDocument(nullptr);
}

void MainWindow::setPagesReadOnly()
{
    forEachPage([this](auto* page) { page->setReadOnly(m_running); });
    m_compareView->setReadOnly(m_running);
}

bool MainWindow::openFile(const QString& asked)
{
    m_openEditor->commit();
    const QString path = PixInsightEnv::spelledAsOnDisk(asked);
    QString error;
    const bool opened = replaceTree([&] {
        const WaitCursor wait;
        return m_store.load(path, &error);
    });
    if (!opened) {
        m_staleOnDisk = m_staleOnDisk && m_store.loaded;
        refreshBanner(); // first: the box may stand for long
        reportUnopened(path, error);
        return false;
    }
    m_staleOnDisk = false;
    showStatus(tr("Loaded %1").arg(QDir::toNativeSeparators(path)), 5000);
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
    if (path.isEmpty() || (m_store.loaded && QFileInfo(path) == QFileInfo(m_store.path))) {
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
    m_knownFiles = PixInsightEnv::findSettingsFiles();
    const QString current = m_store.loaded ? m_store.path : QString();
    const QSignalBlocker blocker(m_fileBox);
    m_fileBox->clear();
    int selected = -1;
    for (const QString& path : std::as_const(m_knownFiles)) {
        m_fileBox->addItem(PixInsightEnv::describeFile(path), path);
        if (!current.isEmpty() && QFileInfo(path) == QFileInfo(current)) {
            selected = m_fileBox->count() - 1;
        }
    }
    if (!current.isEmpty() && selected < 0) {
        m_fileBox->addItem(PixInsightEnv::describeFile(current), current);
        selected = m_fileBox->count() - 1;
    }
    QString placeholder = tr("Choose a settings file");
    if (m_fileBox->count() == 0) {
        placeholder = tr("No settings file found - use Browse...");
        m_fileBox->addItem(placeholder, QString());
    }
    m_fileBox->setPlaceholderText(placeholder); // for what is selected then: nothing
    m_fileBox->setCurrentIndex(selected);
}

void MainWindow::refreshFileBoxItem()
{
    // While the user is asked about another file, that one is chosen already.
    const QString path = m_fileBox->currentData().toString();
    if (m_store.loaded && QFileInfo(path) == QFileInfo(m_store.path)) {
        m_fileBox->setItemText(m_fileBox->currentIndex(), PixInsightEnv::describeFile(path));
    }
}

void MainWindow::onEdited()
{
    refreshBanner();
}

qsizetype MainWindow::pendingCount() const
{
    return m_store.loaded ? m_store.document.pendingCount() : 0;
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
    m_said = shown;
    statusBar()->showMessage(shown, milliseconds);
    announce(shown);
}

} // namespace kse
