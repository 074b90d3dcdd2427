// SPDX-License-Identifier: MIT
#include "views/cleanup/CleanupView.h"

#include "document/NamedNode.h"
#include "document/XsdtDocument.h"
#include "schema/DeletePolicy.h"
#include "views/cleanup/CleanupRow.h"
#include "views/cleanup/FormatBytes.h"
#include "views/model/SettingsModel.h"
#include "views/rows/ConfirmDeletion.h"
#include "widgets/PlainText.h"
#include "widgets/TabOrder.h"
#include "widgets/WrappingRow.h"

#include <QAccessible>
#include <QHeaderView>
#include <QLabel>
#include <QMenu>
#include <QPushButton>
#include <QSignalBlocker>
#include <QTreeWidget>
#include <QVBoxLayout>

#include <algorithm>

using namespace Qt::StringLiterals;

namespace kse {

namespace {

void addNoteIfEmpty(QTreeWidgetItem* root, const QString& note)
{
    if (root->childCount() == 0) {
        auto* row = new QTreeWidgetItem(root, {note});
        row->setFlags(Qt::ItemIsEnabled);
    }
}

/// A short name for the entry that holds a window's position.
QString displayName(const XsdtNode& node)
{
    QStringList parts = node.path().split(u'/', Qt::SkipEmptyParts);
    parts.removeAll("ModuleData"_L1);
    parts.removeAll("Interfaces"_L1);
    if (!parts.isEmpty() && parts.last() == "Geometry"_L1) {
        parts.removeLast();
    }
    return parts.join(u" › "_s);
}

} // namespace

CleanupView::CleanupView(SettingsModel* model, QWidget* parent)
    : QWidget(parent)
    , m_model(model)
{
    createWidgets();
    createLayout();
    connect(m_undoButton, &QPushButton::clicked, this, &CleanupView::undoTicked);
    connect(m_queueButton, &QPushButton::clicked, this, &CleanupView::queueTicked);
    connect(m_tree, &QTreeWidget::itemChanged, this, &CleanupView::refreshStatus);
    connect(m_tree, &QTreeWidget::customContextMenuRequested, this, &CleanupView::showRowMenu);
    connect(m_model, &SettingsModel::edited, this, &CleanupView::refreshStatus);
    refreshStatus();
}

void CleanupView::createWidgets()
{
    m_tree = new QTreeWidget(this);
    m_tree->setObjectName("tree"_L1);
    m_tree->setAccessibleName(tr("Entries that can be removed"));
    m_tree->setColumnCount(CleanupRow::ColumnCount);
    m_tree->setHeaderLabels({tr("Entry"), tr("Values"), tr("Size"), tr("Status")});
    m_tree->setRootIsDecorated(true);
    m_tree->setAlternatingRowColors(true);
    m_tree->setUniformRowHeights(true);
    m_tree->setTextElideMode(Qt::ElideMiddle); // what differs is often the end of a path
    m_tree->setContextMenuPolicy(Qt::CustomContextMenu);
    QHeaderView* header = m_tree->header();
    header->setStretchLastSection(false);
    header->setSectionResizeMode(QHeaderView::ResizeToContents);
    header->setSectionResizeMode(CleanupRow::EntryColumn, QHeaderView::Stretch);
    for (const int column : {CleanupRow::ValuesColumn, CleanupRow::SizeColumn}) {
        m_tree->headerItem()->setTextAlignment(column, Qt::AlignRight | Qt::AlignVCenter);
    }

    m_statusLabel = new QLabel(this);
    m_statusLabel->setObjectName("statusLabel"_L1);
    m_statusLabel->setTextFormat(Qt::PlainText);
    m_undoButton = new QPushButton(tr("Undo queued deletion"), this);
    m_undoButton->setObjectName("undoButton"_L1);
    m_undoButton->setToolTip(
        tr("Tick a queued entry again to undo its deletion, or use its right-click menu."));
    m_queueButton = new QPushButton(tr("Queue for deletion"), this);
    m_queueButton->setObjectName("queueButton"_L1);
}

void CleanupView::createLayout()
{
    auto* intro =
        new QLabel(tr("Tick what you want to remove and press <b>Queue for deletion</b>. Nothing "
                      "is removed until you save, and queued entries can be undone here or with "
                      "<i>Edit &gt; Revert all changes</i>."),
                   this);
    intro->setWordWrap(true);
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

void CleanupView::setDocument(XsdtDocument* document)
{
    const QSignalBlocker blocker(m_tree);
    m_entries.clear();
    m_rows.clear();
    m_tree->clear();
    m_safeRoot = nullptr;
    m_warnRoot = nullptr;
    m_document = document;
    const DeletePolicy* policy = m_model->policy();
    if (!m_document || !policy) {
        refreshStatus();
        return;
    }
    // Filled before they come into the tree, which otherwise takes every row by itself.
    m_safeRoot = new CleanupParent(*m_model, tr("Safe to clean - PixInsight recreates these"));
    for (const CleanupGroup& group : policy->cleanupGroups()) {
        group.each ? addMatches(group) : addWholeGroup(group);
    }
    addNoteIfEmpty(m_safeRoot, tr("Nothing to clean in this file."));
    m_warnRoot = new CleanupParent(
        *m_model, tr("Saved tool and script settings - deleting loses your configuration"));
    addWarnEntries();
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

void CleanupView::addWholeGroup(const CleanupGroup& group)
{
    auto entry = std::make_unique<CleanupEntry>(*m_model, group.title);
    QStringList found;
    for (const QString& path : group.paths) {
        XsdtNode* node = m_document->root.findByPath(path);
        if (!node || m_model->deletionDecision(node).level != DeleteLevel::Safe) {
            continue;
        }
        const qsizetype values = node->valueCount();
        const qint64 size = node->serializedSize();
        auto* detail = new CleanupRow(*m_model, node->path());
        detail->setFlags(Qt::ItemIsEnabled);
        detail->addNode(node, values, size);
        entry->addChild(detail);
        m_rows.append(detail);
        entry->addNode(node, values, size);
        found.append(path);
    }
    if (found.isEmpty()) {
        return;
    }
    entry->setToolTip(CleanupRow::EntryColumn,
                      asToolTip(group.description + u'\n' + found.join(", "_L1)));
    m_entries.append(entry.get());
    m_rows.append(entry.get());
    m_safeRoot->addChild(entry.release());
}

void CleanupView::addMatches(const CleanupGroup& group)
{
    QList<NamedNode> matches;
    for (const QString& pattern : group.paths) {
        const QList<XsdtNode*> nodes = DeletePolicy::matchPattern(*m_document, pattern);
        for (XsdtNode* node : nodes) {
            if (m_model->deletionDecision(node).level == DeleteLevel::Safe) {
                matches.append({displayName(*node), node});
            }
        }
    }
    if (matches.isEmpty()) {
        return;
    }
    auto* parent = new CleanupParent(
        *m_model, tr("%1 (%2)").arg(group.title, QString::number(matches.size())));
    m_safeRoot->addChild(parent);
    m_rows.append(parent);
    for (const NamedNode& match : sortedByName(matches)) {
        const CleanupEntry* entry = addEntry(parent, match, false);
        parent->addNode(match.node, entry->values(), entry->size());
    }
    parent->setToolTip(CleanupRow::EntryColumn, asToolTip(group.description));
}

void CleanupView::addWarnEntries()
{
    for (const NamedNode& node : sortedByPath(m_model->policy()->warnCandidates(*m_document))) {
        addEntry(m_warnRoot, node, true);
    }
}

CleanupEntry* CleanupView::addEntry(QTreeWidgetItem* parent, const NamedNode& named, bool isWarn)
{
    XsdtNode* node = named.node;
    auto* entry = new CleanupEntry(*m_model, named.name);
    parent->addChild(entry);
    entry->isWarn = isWarn;
    entry->addNode(node, node->valueCount(), node->serializedSize());
    entry->setToolTip(CleanupRow::EntryColumn, asToolTip(m_model->deletionDecision(node).reason));
    m_entries.append(entry);
    m_rows.append(entry);
    return entry;
}

void CleanupView::setReadOnly(bool readOnly)
{
    if (readOnly != m_readOnly) { // the poll calls this every few seconds
        m_readOnly = readOnly;
        refreshStatus();
    }
}

void CleanupView::refreshStatus()
{
    // The view would look for each changed row by itself, in quadratic time.
    const QSignalBlocker quiet(m_tree->model());
    for (CleanupRow* row : std::as_const(m_rows)) {
        row->refresh();
    }
    const auto queuedEntries = std::count_if(m_entries.cbegin(), m_entries.cend(),
                                             [](const CleanupEntry* e) { return e->queued() > 0; });
    for (QTreeWidgetItem* root : {m_safeRoot, m_warnRoot}) {
        if (root) {
            root->setDisabled(m_readOnly); // and with it what lies beneath
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
    {
        const QSignalBlocker quiet(m_tree->model());
        for (CleanupEntry* entry : std::as_const(m_entries)) {
            const bool skip = skipWarn && entry->isWarn;
            entry->setCheckState(CleanupRow::EntryColumn, skip ? Qt::Unchecked : Qt::Checked);
        }
    }
    refreshStatus();
}

void CleanupView::untick(const QList<CleanupEntry*>& entries)
{
    {
        const QSignalBlocker quiet(m_tree->model());
        for (CleanupEntry* entry : entries) {
            entry->setCheckState(CleanupRow::EntryColumn, Qt::Unchecked);
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
    int queued = 0;
    QStringList refusals;
    {
        const SettingsModel::Batch batch(*m_model);
        for (const CleanupEntry* entry : ticked) {
            for (XsdtNode* node : entry->nodes()) {
                QString reason;
                if (m_model->markForDeletion(node, &reason)) {
                    ++queued;
                } else {
                    refusals.append(reason);
                }
            }
        }
    }
    untick(ticked);
    emit message(refusals.isEmpty() ? tr("Queued for deletion: %1. Save to apply.").arg(queued)
                                    : tr("Some entries were refused: %1").arg(refusals.first()));
}

void CleanupView::undoTicked()
{
    const QList<CleanupEntry*> ticked = tickedEntries();
    QList<XsdtNode*> nodes;
    bool isAnyQueued = false;
    for (const CleanupEntry* entry : ticked) {
        nodes += entry->nodes();
        isAnyQueued = isAnyQueued || entry->queued() > 0;
    }
    if (!undo(nodes)) {
        emit message(isAnyQueued ? tr("What is ticked lies inside a group that is queued for "
                                      "deletion. Undo the deletion of that group.")
                                 : tr("Nothing that is ticked is queued for deletion."));
    }
    untick(ticked);
}

/// Whether any of `nodes` was queued itself.
bool CleanupView::undo(const QList<XsdtNode*>& nodes)
{
    const SettingsModel::Batch batch(*m_model);
    bool isAnyMarked = false;
    for (XsdtNode* node : nodes) {
        isAnyMarked = isAnyMarked || node->markedForDeletion;
        m_model->undoDeletion(node);
    }
    return isAnyMarked;
}

void CleanupView::showRowMenu(const QPoint& pos)
{
    const auto* row = dynamic_cast<const CleanupRow*>(m_tree->itemAt(pos)); // null for a note
    if (!row || row->nodes().isEmpty()) {
        return;
    }
    const QList<XsdtNode*> nodes = row->nodes(); // the row may die beneath the menu
    const bool isMarked = std::any_of(nodes.cbegin(), nodes.cend(),
                                      [](const XsdtNode* n) { return n->markedForDeletion; });
    QMenu menu(window());
    QAction* action =
        menu.addAction(row->queued() > 0 && !isMarked ? tr("Inside a group marked for deletion")
                                                      : tr("Undo deletion"));
    action->setEnabled(isMarked && !m_readOnly);
    const quint64 generation = m_model->generation();
    const QAction* chosen = menu.exec(m_tree->viewport()->mapToGlobal(pos));
    if (chosen == action && m_model->generation() == generation && !m_readOnly) {
        undo(nodes);
    }
}

} // namespace kse
