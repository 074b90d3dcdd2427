// SPDX-License-Identifier: MIT
#include "session/dialogs/BackupsDialog.h"

#include "session/PixInsightEnv.h"
#include "widgets/MessageBox.h"
#include "widgets/Named.h"
#include "widgets/WheelGuard.h"
#include "widgets/WrappedLabel.h"

#include <QDateTime>
#include <QDesktopServices>
#include <QDir>
#include <QFileInfo>
#include <QHBoxLayout>
#include <QKeyEvent>
#include <QLabel>
#include <QListWidget>
#include <QLocale>
#include <QPushButton>
#include <QScreen>
#include <QScrollBar>
#include <QSettings>
#include <QSpinBox>
#include <QUrl>
#include <QVBoxLayout>

#include <algorithm>

using namespace Qt::StringLiterals;

namespace kse {

namespace {

constexpr QLatin1String keepKey("Backups/Keep");
constexpr int defaultKeep = 5;
constexpr int sizeRole = Qt::UserRole + 1; // a backup's bytes

// A stored text that isn't a number gives the default: 0 would offer every backup for deletion.
int storedKeep()
{
    bool isNumber = false;
    const int keep = QSettings().value(keepKey, defaultKeep).toInt(&isNumber);
    return isNumber ? keep : defaultKeep;
}

QString formatSize(qint64 bytes)
{
    constexpr qint64 kibibyte = 1024;
    constexpr qint64 mebibyte = 1024 * kibibyte;
    if (bytes < kibibyte) {
        return BackupsDialog::tr("%1 B").arg(bytes);
    }
    if (bytes < mebibyte) {
        return BackupsDialog::tr("%1 KiB").arg(bytes / kibibyte);
    }
    const double mebibytes = static_cast<double>(bytes) / static_cast<double>(mebibyte);
    return BackupsDialog::tr("%1 MiB").arg(mebibytes, 0, 'f', 1);
}

} // namespace

BackupsDialog::BackupsDialog(const QString& settingsPath, QWidget* parent)
    : QDialog(parent)
    , m_settingsPath(settingsPath)
{
    setWindowTitle(tr("Manage backups"));
    createWidgets();
    createLayout();
    connectWidgets();
    refresh();
    fit();
    m_list->setFocus();
}

void BackupsDialog::createWidgets()
{
    m_header = new WrappedLabel({}, Qt::PlainText, u"header"_s, this);
    m_list = named(u"list"_s, new QListWidget(this));
    m_list->setAccessibleName(tr("Backups"));
    m_list->setSelectionMode(QAbstractItemView::ExtendedSelection);
    m_list->setAlternatingRowColors(true);
    m_list->setMinimumHeight(220);
    const QString folder = QDir::toNativeSeparators(QFileInfo(m_settingsPath).absolutePath());
    m_folder = new WrappedLabel(tr("Folder: %1").arg(folder), Qt::PlainText, u"folder"_s, this);
    m_folder->setTextInteractionFlags(Qt::TextSelectableByMouse);
    m_openFolder = named(u"openFolder"_s, new QPushButton(tr("Open folder"), this));
    m_keep = named(u"keep"_s, new QSpinBox(this));
    m_keep->setLocale(QLocale::c());
    m_keep->setRange(0, 999);
    m_keep->setValue(storedKeep());
    WheelGuard::install(m_keep);
    m_deleteOlder = named(u"deleteOlder"_s, new QPushButton(this));
    m_deleteSelected = named(u"deleteSelected"_s, new QPushButton(this));
    m_deleteAll = named(u"deleteAll"_s, new QPushButton(tr("Delete all backups"), this));
    m_close = named(u"close"_s, new QPushButton(tr("Close"), this));
    m_close->setDefault(true);
}

void BackupsDialog::createLayout()
{
    auto* folder = new QHBoxLayout;
    folder->addWidget(m_folder, 1);
    folder->addWidget(m_openFolder);
    auto* keepLabel = new QLabel(tr("Keep the newest"), this);
    keepLabel->setBuddy(m_keep);
    auto* older = new QHBoxLayout;
    older->addWidget(keepLabel);
    older->addWidget(m_keep);
    older->addWidget(new QLabel(tr("backups"), this));
    older->addStretch();
    older->addWidget(m_deleteOlder);
    auto* buttons = new QHBoxLayout;
    buttons->addWidget(m_deleteSelected);
    buttons->addWidget(m_deleteAll);
    buttons->addStretch();
    buttons->addWidget(m_close);

    auto* layout = new QVBoxLayout(this);
    layout->addWidget(m_header);
    layout->addWidget(m_list, 1);
    layout->addLayout(folder);
    layout->addLayout(older);
    layout->addLayout(buttons);
}

void BackupsDialog::connectWidgets()
{
    connect(m_list, &QListWidget::itemSelectionChanged, this,
            &BackupsDialog::updateSelectionButton);
    connect(m_openFolder, &QPushButton::clicked, this, &BackupsDialog::onOpenFolder);
    connect(m_keep, &QSpinBox::valueChanged, this, &BackupsDialog::onKeepChanged);
    connect(m_deleteOlder, &QPushButton::clicked, this, &BackupsDialog::onDeleteOlder);
    connect(m_deleteSelected, &QPushButton::clicked, this, &BackupsDialog::onDeleteSelected);
    connect(m_deleteAll, &QPushButton::clicked, this, &BackupsDialog::onDeleteAll);
    connect(m_close, &QPushButton::clicked, this, &BackupsDialog::accept);
}

void BackupsDialog::fit()
{
    constexpr int startHeight = 460;
    layout()->activate(); // drops the minimum size that larger text needed
    const int frame = 2 * m_list->frameWidth();
    const int others = layout()->minimumSize().height() - m_list->minimumHeight();
    const bool scrolls = m_list->count() * m_list->sizeHintForRow(0) + frame > startHeight - others;
    const int bar = scrolls ? m_list->verticalScrollBar()->sizeHint().width() : 0;
    m_list->setMinimumWidth(std::min(m_list->sizeHintForColumn(0) + frame + bar,
                                     screen()->availableGeometry().width() * 9 / 10));
    layout()->activate();
    resize(640, startHeight);
}

void BackupsDialog::changeEvent(QEvent* event)
{
    QDialog::changeEvent(event);
    if (event->type() == QEvent::FontChange) {
        fit();
    }
}

void BackupsDialog::keyPressEvent(QKeyEvent* event)
{
    // Return completes the number and doesn't close the dialog, so that its effect can be seen.
    const bool isReturn = event->key() == Qt::Key_Return || event->key() == Qt::Key_Enter;
    if (!isReturn || focusWidget() != m_keep) {
        QDialog::keyPressEvent(event);
    }
}

void BackupsDialog::refresh()
{
    const QStringList paths = PixInsightEnv::backupsOf(m_settingsPath);
    m_list->clear();
    qint64 totalBytes = 0;
    for (const QString& path : paths) {
        const QFileInfo file(path);
        totalBytes += file.size();
        const QString time = file.lastModified().toString(u"yyyy-MM-dd HH:mm:ss"_s);
        auto* item = new QListWidgetItem(
            tr("%1    %2    %3")
                .arg(time, formatSize(file.size()).rightJustified(9), file.fileName()),
            m_list);
        item->setData(Qt::UserRole, path);
        item->setData(sizeRole, file.size());
    }
    updateSelectionButton();
    const QString name = QFileInfo(m_settingsPath).fileName();
    m_header->setText(m_list->count() == 0 ? tr("No backups of %1.").arg(name)
                                           : tr("%1 backup(s) of %2, %3 in total (newest first):")
                                                 .arg(QString::number(m_list->count()), name,
                                                      formatSize(totalBytes)));
    updateOlderButton();
    m_deleteAll->setEnabled(m_list->count() > 0);
}

void BackupsDialog::updateOlderButton()
{
    qsizetype older = 0;
    qint64 bytes = 0;
    for (int i = m_keep->value(); i < m_list->count(); ++i) {
        ++older;
        bytes += m_list->item(i)->data(sizeRole).toLongLong();
    }
    m_deleteOlder->setText(older == 0 ? tr("Delete older backups")
                                      : tr("Delete the %1 older backup(s) (%2)")
                                            .arg(QString::number(older), formatSize(bytes)));
    m_deleteOlder->setEnabled(older > 0);
}

void BackupsDialog::updateSelectionButton()
{
    const qsizetype selected = m_list->selectedItems().size();
    m_deleteSelected->setText(selected > 0 ? tr("Delete selected (%1)").arg(selected)
                                           : tr("Delete selected"));
    m_deleteSelected->setEnabled(selected > 0);
}

void BackupsDialog::onOpenFolder()
{
    const QString folder = QFileInfo(m_settingsPath).absolutePath();
    if (!QDesktopServices::openUrl(QUrl::fromLocalFile(folder))) {
        showMessage(this, QMessageBox::Warning, windowTitle(),
                    tr("Cannot open the folder %1.").arg(QDir::toNativeSeparators(folder)));
    }
}

void BackupsDialog::onKeepChanged(int keep)
{
    QSettings().setValue(keepKey, keep);
    updateOlderButton(); // thousands of files aren't listed again for a digit
}

void BackupsDialog::onDeleteSelected()
{
    QStringList paths;
    qint64 totalBytes = 0;
    const QList<QListWidgetItem*> selected = m_list->selectedItems();
    for (const QListWidgetItem* item : selected) {
        paths.append(item->data(Qt::UserRole).toString());
        totalBytes += QFileInfo(paths.last()).size();
    }
    confirmAndRemove(paths, totalBytes, tr("Delete the %1 selected backup(s)").arg(paths.size()));
}

void BackupsDialog::onDeleteOlder()
{
    const int keep = m_keep->value();
    const BackupPruneSet older = PixInsightEnv::backupsOlderThanNewest(m_settingsPath, keep);
    confirmAndRemove(
        older.paths, older.totalBytes,
        tr("Delete the %1 backups older than the newest %2").arg(older.paths.size()).arg(keep));
}

void BackupsDialog::onDeleteAll()
{
    const BackupPruneSet all = PixInsightEnv::backupsOlderThanNewest(m_settingsPath, 0);
    confirmAndRemove(all.paths, all.totalBytes, tr("Delete all %1 backups").arg(all.paths.size()));
}

void BackupsDialog::confirmAndRemove(const QStringList& paths, qint64 totalBytes,
                                     const QString& prompt)
{
    if (paths.isEmpty()) {
        return;
    }
    const QString question =
        tr("%1 (%2)?\n\nThey are moved to the Recycle Bin where the system has "
           "one, otherwise deleted.")
            .arg(prompt, formatSize(totalBytes));
    if (askQuestion(this, tr("Delete backups"), question, QMessageBox::Yes | QMessageBox::No,
                    QMessageBox::No) != QMessageBox::Yes) {
        return;
    }
    const BackupRemoval result = PixInsightEnv::removeBackups(m_settingsPath, paths, true);
    m_list->setFocus(); // a button that gets disabled would pass it on to "Delete all backups"
    refresh();
    QString text = (result.usedTrash ? tr("Moved %1 backup(s) to the Recycle Bin (%2).")
                                     : tr("Deleted %1 backup(s) (%2)."))
                       .arg(QString::number(result.removed), formatSize(result.freedBytes));
    if (result.failed > 0) {
        text += tr(" %1 could not be removed.").arg(result.failed);
    }
    emit message(text);
}

} // namespace kse
