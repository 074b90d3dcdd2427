// SPDX-License-Identifier: MIT
#include "views/cleanup/CleanupView.h"

#include "document/NamedNode.h"
#include "document/XsdtDocument.h"
#include "schema/DeletePolicy.h"
#include "views/cleanup/CleanupOffer.h"
#include "views/cleanup/CleanupRow.h"
#include "views/cleanup/FormatBytes.h"
#include "views/model/SettingsModel.h"
#include "views/model/TreeGuard.h"
#include "views/rows/ConfirmDeletion.h"
#include "widgets/Announcement.h"
#include "widgets/Named.h"
#include "widgets/PlainText.h"
#include "widgets/TabOrder.h"
#include "widgets/WrappedLabel.h"
#include "widgets/WrappingRow.h"

#include <QAccessible>
#include <QEvent>
#include <QHeaderView>
#include <QLabel>
#include <QMenu>
#include <QPushButton>
#include <QSignalBlocker>
#include <QStyle>
#include <QTreeWidget>
#include <QVBoxLayout>

#include <algorithm>

using namespace Qt::StringLiterals;

namespace kse {

namespace {

QList<XsdtNode*> nodesOf(const QList<CleanupEntry*>& entries)
{
    QList<XsdtNode*> nodes;
    for (const CleanupEntry* entry : entries) {
        nodes += entry->nodes();
    }
    return nodes;
}

void addNoteIfEmpty(QTreeWidgetItem* root, const QString& note)
{
    if (root->childCount() == 0) {
        auto* row = new QTreeWidgetItem(root, {note});
        row->setFlags(Qt::ItemIsEnabled);
    }
}

} // namespace

CleanupView::CleanupView(SettingsModel* model, QWidget* parent)
    : QWidget(parent)
    , m_model(model)
{
    createTree();
    createStatusRow();
    createLayout();
    connectWidgets();
    updateIndentation();
    refreshStatus();
}

void CleanupView::createTree()
{
    m_tree = named(u"tree"_s, new QTreeWidget(this));
    m_tree->setAccessibleName(tr("Entries that can be removed"));
    m_tree->setHeaderLabels({tr("Entry"), tr("Values"), tr("Size"), tr("Status")});
    m_tree->setAlternatingRowColors(true);
    m_tree->setUniformRowHeights(true);
    m_tree->setTextElideMode(Qt::ElideMiddle); // what differs is often the end of a path
    m_tree->setContextMenuPolicy(Qt::CustomContextMenu);
    QHeaderView* header = m_tree->header();
    header->setStretchLastSection(false);
    header->setSectionResizeMode(QHeaderView::ResizeToContents);
    header->setSectionResizeMode(CleanupRow::EntryColumn, QHeaderView::Stretch);
    for (const int column : {CleanupRow::ValuesColumn, CleanupRow::SizeColumn}) {
        m_tree->headerItem()->setTextAlignment(column, Qt::AlignRight | Qt::AlignAbsolute |
                                                           Qt::AlignVCenter);
    }
}

void CleanupView::createStatusRow()
{
    m_statusLabel = named(u"statusLabel"_s, new QLabel(this));
    m_statusLabel->setTextFormat(Qt::PlainText);
    m_undoButton = named(u"undoButton"_s, new QPushButton(tr("Undo queued deletion"), this));
    m_undoButton->setToolTip(
        tr("Tick a queued entry again to undo its deletion, or use its right-click menu."));
    m_queueButton = named(u"queueButton"_s, new QPushButton(tr("Queue for deletion"), this));
}

void CleanupView::createLayout()
{
    auto* intro = new WrappedLabel(
        tr("Tick what you want to remove and press <b>Queue for deletion</b>. Nothing "
           "is removed until you save, and queued entries can be undone here or with "
           "<i>Edit &gt; Revert all changes</i>."),
        Qt::RichText, u"intro"_s);
    m_statusLabel->setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Preferred);
    auto* bottom = new WrappingRow(Qt::AlignTrailing);
    bottom->addWidget(m_statusLabel);
    bottom->addWidget(m_undoButton);
    bottom->addWidget(m_queueButton);
    auto* layout = new QVBoxLayout(this);
    layout->setContentsMargins(0, 6, 0, 0);
    layout->addWidget(intro);
    layout->addWidget(m_tree, 1);
    layout->addLayout(bottom);
}

void CleanupView::connectWidgets()
{
    connect(m_undoButton, &QPushButton::clicked, this, &CleanupView::onUndo);
    connect(m_queueButton, &QPushButton::clicked, this, &CleanupView::queueTicked);
    connect(m_tree, &QTreeWidget::itemChanged, this, &CleanupView::refreshStatus);
    connect(m_tree, &QTreeWidget::itemChanged, this, [this] { // which Qt 6.4 doesn't report
        QAccessible::State checked;
        checked.checked = true;
        reportChange(m_tree, checked);
    });
    reportExpansion(m_tree);
    connect(m_tree, &QTreeWidget::customContextMenuRequested, this, &CleanupView::onContextMenu);
    connect(m_model, &SettingsModel::edited, this, &CleanupView::refreshStatus);
}

void CleanupView::changeEvent(QEvent* event)
{
    QWidget::changeEvent(event);
    if (event->type() == QEvent::FontChange || event->type() == QEvent::StyleChange) {
        updateIndentation();
    }
}

void CleanupView::updateIndentation()
{
    // A level without check boxes, so that its texts are not left of those of the level above.
    const int margin = style()->pixelMetric(QStyle::PM_FocusFrameHMargin, nullptr, m_tree) + 1;
    m_tree->setIndentation(style()->pixelMetric(QStyle::PM_IndicatorWidth, nullptr, m_tree) +
                           2 * margin);
}

void CleanupView::setDocument(const XsdtDocument* document)
{
    const QSignalBlocker blocker(m_tree);
    m_entries.clear();
    m_rows.clear();
    m_tree->clear();
    m_safeRoot = nullptr;
    m_warnRoot = nullptr;
    const DeletePolicy* policy = m_model->policy();
    if (!document || !policy) {
        refreshStatus();
        return;
    }
    // Filled before they join the tree, which would otherwise take in each row separately.
    m_safeRoot = new CleanupParent(*m_model, tr("Safe to clean - PixInsight recreates these"));
    const QList<CleanupOffer> offers = cleanupOffers(*document, *policy);
    for (const CleanupOffer& offer : offers) {
        offer.isEach ? addMatches(offer) : addWholeGroup(offer);
    }
    addNoteIfEmpty(m_safeRoot, tr("Nothing to clean in this file."));
    m_warnRoot = new CleanupParent(
        *m_model, tr("Saved tool and script settings - deleting loses your configuration"));
    for (const auto& [path, node] : sortedByPath(policy->warnCandidates(*document))) {
        addNodeEntry(m_warnRoot, path, node)->isWarn = true;
    }
    addNoteIfEmpty(m_warnRoot, tr("No tool settings found."));
    m_tree->addTopLevelItems({m_safeRoot, m_warnRoot});
    QFont bold;
    bold.setWeight(QFont::Bold);
    for (QTreeWidgetItem* root : {m_safeRoot, m_warnRoot}) {
        root->setFont(CleanupRow::EntryColumn, bold);
        root->setFirstColumnSpanned(true);
        root->setExpanded(true);
    }
    refreshStatus();
}

void CleanupView::addWholeGroup(const CleanupOffer& offer)
{
    CleanupEntry* entry = addEntry(m_safeRoot, offer.title, offer.explanation);
    for (const auto& [path, node] : offer.nodes) {
        auto* detail = new CleanupRow(*m_model, path);
        detail->setFlags(Qt::ItemIsEnabled);
        detail->addNode(node);
        entry->addChild(detail);
        entry->addNodesOf(*detail);
        m_rows.append(detail);
    }
}

void CleanupView::addMatches(const CleanupOffer& offer)
{
    auto* parent = new CleanupParent(
        *m_model, tr("%1 (%2)").arg(offer.title, QString::number(offer.nodes.size())));
    parent->setToolTip(CleanupRow::EntryColumn, asToolTip(offer.explanation));
    m_safeRoot->addChild(parent);
    m_rows.append(parent);
    for (const auto& [name, node] : offer.nodes) {
        parent->addNodesOf(*addNodeEntry(parent, name, node));
    }
}

CleanupEntry* CleanupView::addNodeEntry(QTreeWidgetItem* parent, const QString& name,
                                        XsdtNode* node)
{
    CleanupEntry* entry = addEntry(parent, name, m_model->deletionDecision(node).reason);
    entry->addNode(node);
    return entry;
}

CleanupEntry* CleanupView::addEntry(QTreeWidgetItem* parent, const QString& name,
                                    const QString& explanation)
{
    auto* entry = new CleanupEntry(*m_model, name);
    entry->setToolTip(CleanupRow::EntryColumn, asToolTip(explanation));
    parent->addChild(entry);
    m_entries.append(entry);
    m_rows.append(entry);
    return entry;
}

void CleanupView::setReadOnly(bool readOnly)
{
    m_readOnly = readOnly;
    refreshStatus();
}

void CleanupView::refreshStatus()
{
    // The view would look up each changed row separately, in quadratic time.
    const QSignalBlocker quiet(m_tree->model());
    for (CleanupRow* row : std::as_const(m_rows)) {
        row->refresh();
    }
    const auto queuedEntries = std::count_if(m_entries.cbegin(), m_entries.cend(),
                                             [](const CleanupEntry* e) { return e->queued() > 0; });
    for (QTreeWidgetItem* root : {m_safeRoot, m_warnRoot}) {
        if (root) {
            root->setDisabled(m_readOnly); // and with it all rows below
        }
    }
    m_tree->resizeColumnToContents(CleanupRow::StatusColumn);
    m_tree->viewport()->update();
    QAccessibleTableModelChangeEvent change(m_tree, QAccessibleTableModelChangeEvent::DataChanged);
    QAccessible::updateAccessibility(&change);

    const QList<CleanupEntry*> ticked = tickedEntries();
    qint64 size = 0;
    for (const CleanupEntry* entry : ticked) {
        size += entry->size();
    }
    const bool canQueue = !m_readOnly && !ticked.isEmpty();
    setEnabledOrPass(*m_queueButton, canQueue, *m_tree);
    setEnabledOrPass(*m_undoButton, canQueue, *m_tree);
    if (m_readOnly) {
        m_statusLabel->setText(tr("PixInsight is running: view only."));
    } else if (!ticked.isEmpty()) {
        m_statusLabel->setText(
            tr("Ticked: %1 (about %2)").arg(QString::number(ticked.size()), formatBytes(size)));
    } else {
        m_statusLabel->setText(tr("Queued for deletion: %1").arg(queuedEntries));
    }
}

QList<CleanupEntry*> CleanupView::tickedEntries() const
{
    QList<CleanupEntry*> ticked;
    std::copy_if(m_entries.cbegin(), m_entries.cend(), std::back_inserter(ticked),
                 [](const CleanupEntry* e) {
                     return e->checkState(CleanupRow::EntryColumn) == Qt::Checked;
                 });
    return ticked;
}

void CleanupView::tickAll(bool skipWarn)
{
    setTicks([skipWarn](const CleanupEntry& entry) { return !(skipWarn && entry.isWarn); });
}

void CleanupView::setTicks(const std::function<bool(const CleanupEntry&)>& isTicked)
{
    {
        const QSignalBlocker quiet(m_tree->model());
        for (CleanupEntry* entry : std::as_const(m_entries)) {
            entry->setCheckState(CleanupRow::EntryColumn,
                                 isTicked(*entry) ? Qt::Checked : Qt::Unchecked);
        }
    }
    refreshStatus();
}

/// Asks if saved settings are among `entries`. False also if these are gone when the box closes.
bool CleanupView::confirmWarnings(const QList<CleanupEntry*>& entries)
{
    QStringList names;
    for (const CleanupEntry* entry : entries) {
        if (entry->isWarn) {
            names.append(entry->text(CleanupRow::EntryColumn));
        }
    }
    if (names.isEmpty() || !m_confirmWarn) {
        return true;
    }
    const QString text = tr("This removes the saved configuration of %n tool(s) or script(s). They "
                            "will start from their defaults.",
                            nullptr, static_cast<int>(names.size()));
    return confirmDeletion(this, *m_model, tr("Delete saved settings?"), text, names);
}

void CleanupView::queueTicked()
{
    const QList<CleanupEntry*> ticked = tickedEntries();
    if (ticked.isEmpty() || !confirmWarnings(ticked)) {
        return;
    }
    const QList<XsdtNode*> nodes = nodesOf(ticked);
    QString reason;
    const QList<XsdtNode*> refused = m_model->markAllForDeletion(nodes, &reason);
    setTicks([](const CleanupEntry&) { return false; });
    emit message(refused.isEmpty() ? tr("Queued for deletion: %1. Save to apply.").arg(nodes.size())
                                   : tr("Some entries were refused: %1").arg(reason));
}

void CleanupView::onUndo()
{
    const QList<CleanupEntry*> ticked = tickedEntries();
    const bool isAnyQueued = std::any_of(ticked.cbegin(), ticked.cend(),
                                         [](const CleanupEntry* e) { return e->queued() > 0; });
    if (!m_model->undoDeletions(nodesOf(ticked))) {
        emit message(isAnyQueued ? tr("The ticked entries are inside a group that is queued for "
                                      "deletion. Undo the deletion of that group.")
                                 : tr("None of the ticked entries is queued for deletion."));
    }
    setTicks([](const CleanupEntry&) { return false; });
}

void CleanupView::onContextMenu(const QPoint& pos)
{
    const auto* row = dynamic_cast<const CleanupRow*>(m_tree->itemAt(pos)); // null for a note
    if (!row || row->nodes().isEmpty()) {
        return;
    }
    const QList<XsdtNode*> nodes = row->nodes(); // the row may die while the menu is open
    const bool isMarked = std::any_of(nodes.cbegin(), nodes.cend(),
                                      [](const XsdtNode* n) { return n->markedForDeletion; });
    QMenu menu(window());
    QAction* action =
        menu.addAction(row->queued() > 0 && !isMarked ? tr("Inside a group marked for deletion")
                                                      : tr("Undo deletion"));
    action->setEnabled(isMarked && !m_readOnly);
    const TreeGuard guard(m_model);
    const QAction* chosen = menu.exec(m_tree->viewport()->mapToGlobal(pos));
    if (chosen == action && guard.isSameTree() && !m_readOnly) {
        m_model->undoDeletions(nodes);
    }
}

} // namespace kse
