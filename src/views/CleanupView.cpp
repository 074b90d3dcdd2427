// SPDX-License-Identifier: MIT
#include "views/CleanupView.h"

#include "document/XsdtDocument.h"
#include "schema/DeletePolicy.h"
#include "views/FormatBytes.h"
#include "views/PlainText.h"
#include "views/SettingsModel.h"
#include "views/TabOrder.h"
#include "views/TextOrder.h"

#include <QAccessible>
#include <QHBoxLayout>
#include <QHeaderView>
#include <QLabel>
#include <QPushButton>
#include <QSignalBlocker>
#include <QTreeWidget>
#include <QVBoxLayout>

#include <algorithm>

using namespace Qt::StringLiterals;

namespace kse {

namespace {

enum Column { EntryColumn, ValuesColumn, SizeColumn, StatusColumn, ColumnCount };

// Qt lays out a million characters for seconds, however narrow the column.
constexpr qsizetype nameLimit = 1000;

/// A row whose box ticks all beneath it, and tells of that once: told row by row, the status of
/// all rows would be looked up for each of them.
class ParentRow : public QTreeWidgetItem
{
public:
    ParentRow() { setFlags(Qt::ItemIsEnabled | Qt::ItemIsUserCheckable | Qt::ItemIsAutoTristate); }

    void setData(int column, int role, const QVariant& value) override
    {
        if (role != Qt::CheckStateRole || !treeWidget()) {
            QTreeWidgetItem::setData(column, role, value);
            return;
        }
        {
            const QSignalBlocker quiet(treeWidget()->model());
            QTreeWidgetItem::setData(column, role, value);
        }
        emitDataChanged();
    }
};

void setNumbers(QTreeWidgetItem& row, qsizetype values, qint64 size)
{
    row.setText(ValuesColumn, QString::number(values));
    row.setText(SizeColumn, formatBytes(size));
    row.setTextAlignment(ValuesColumn, Qt::AlignRight | Qt::AlignVCenter);
    row.setTextAlignment(SizeColumn, Qt::AlignRight | Qt::AlignVCenter);
}

ParentRow* makeRoot(const QString& title)
{
    auto* root = new ParentRow;
    root->setText(EntryColumn, title);
    QFont bold;
    bold.setWeight(QFont::Bold);
    root->setFont(EntryColumn, bold);
    return root;
}

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

/// Nodes with their names, in the order of these.
struct NamedNodes
{
    QStringList names;
    QList<XsdtNode*> nodes;

    void append(const QString& name, XsdtNode* node)
    {
        names.append(name);
        nodes.append(node);
    }

    template <typename Visitor>
    void visitSorted(Visitor&& visit) const
    {
        const QList<qsizetype> order =
            orderIgnoringCase(QList<QStringView>(names.begin(), names.end()));
        for (const qsizetype place : order) {
            visit(names[place], nodes[place]);
        }
    }
};

} // namespace

/// A row with a box of its own.
class CleanupView::Entry : public QTreeWidgetItem
{
public:
    explicit Entry(const QString& name)
        : QTreeWidgetItem({withoutMiddle(name, nameLimit)})
    {
        setFlags(Qt::ItemIsEnabled | Qt::ItemIsSelectable | Qt::ItemIsUserCheckable);
        setCheckState(EntryColumn, Qt::Unchecked);
    }

    void addNode(XsdtNode* node, qsizetype valueCount, qint64 serializedSize)
    {
        nodes.append(node);
        values += valueCount;
        size += serializedSize;
        setNumbers(*this, values, size);
    }

    QString status(qsizetype queued) const
    {
        if (queued == 0) {
            return {};
        }
        return queued == nodes.size()
                   ? CleanupView::tr("Queued for deletion")
                   : CleanupView::tr("Partly queued (%1 of %2)").arg(queued).arg(nodes.size());
    }

    QList<XsdtNode*> nodes; ///< What it deletes.
    qsizetype values = 0;
    qint64 size = 0; ///< In bytes, when the list was built.
    bool isWarn = false;
};

CleanupView::CleanupView(SettingsModel* model, QWidget* parent)
    : QWidget(parent)
    , m_model(model)
{
    createWidgets();
    createLayout();
    connect(m_undoButton, &QPushButton::clicked, this, &CleanupView::undoTicked);
    connect(m_queueButton, &QPushButton::clicked, this, &CleanupView::queueTicked);
    connect(m_tree, &QTreeWidget::itemChanged, this, &CleanupView::refreshStatus);
    connect(m_model, &SettingsModel::edited, this, &CleanupView::refreshStatus);
    refreshStatus();
}

void CleanupView::createWidgets()
{
    m_tree = new QTreeWidget(this);
    m_tree->setObjectName("tree"_L1);
    m_tree->setAccessibleName(tr("Entries that can be removed"));
    m_tree->setColumnCount(ColumnCount);
    m_tree->setHeaderLabels({tr("Entry"), tr("Values"), tr("Size"), tr("Status")});
    m_tree->setRootIsDecorated(true);
    m_tree->setAlternatingRowColors(true);
    m_tree->setUniformRowHeights(true);
    m_tree->setTextElideMode(Qt::ElideMiddle); // what differs is often the end of a path
    QHeaderView* header = m_tree->header();
    header->setStretchLastSection(false);
    header->setSectionResizeMode(QHeaderView::ResizeToContents);
    header->setSectionResizeMode(EntryColumn, QHeaderView::Stretch);
    for (const int column : {ValuesColumn, SizeColumn}) {
        m_tree->headerItem()->setTextAlignment(column, Qt::AlignRight | Qt::AlignVCenter);
    }

    m_statusLabel = new QLabel(this);
    m_statusLabel->setObjectName("statusLabel"_L1);
    m_statusLabel->setTextFormat(Qt::PlainText);
    m_undoButton = new QPushButton(tr("Undo queued deletion"), this);
    m_undoButton->setObjectName("undoButton"_L1);
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
    auto* bottom = new QHBoxLayout;
    bottom->addWidget(m_statusLabel, 1);
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
    m_safeRoot = makeRoot(tr("Safe to clean - PixInsight recreates these"));
    for (const CleanupGroup& group : policy->cleanupGroups()) {
        group.each ? addMatches(group) : addWholeGroup(group);
    }
    addNoteIfEmpty(m_safeRoot, tr("Nothing to clean in this file."));
    m_warnRoot = makeRoot(tr("Saved tool and script settings - deleting loses your configuration"));
    addWarnEntries();
    addNoteIfEmpty(m_warnRoot, tr("No tool settings found."));
    m_tree->addTopLevelItems({m_safeRoot, m_warnRoot});
    for (QTreeWidgetItem* root : {m_safeRoot, m_warnRoot}) {
        root->setFirstColumnSpanned(true);
        root->setExpanded(true);
    }
    refreshStatus();
}

void CleanupView::addWholeGroup(const CleanupGroup& group)
{
    auto entry = std::make_unique<Entry>(group.title);
    QStringList found;
    for (const QString& path : group.paths) {
        XsdtNode* node = m_document->root.findByPath(path);
        if (!node || m_model->deletionDecision(node).level != DeleteLevel::Safe) {
            continue;
        }
        const qsizetype values = node->valueCount();
        const qint64 size = node->serializedSize();
        auto* detail = new QTreeWidgetItem(entry.get(), {withoutMiddle(node->path(), nameLimit)});
        detail->setFlags(Qt::ItemIsEnabled);
        setNumbers(*detail, values, size);
        entry->addNode(node, values, size);
        found.append(path);
    }
    if (found.isEmpty()) {
        return;
    }
    entry->setToolTip(EntryColumn, asToolTip(group.description + u'\n' + found.join(", "_L1)));
    m_entries.append(entry.get());
    m_safeRoot->addChild(entry.release());
}

void CleanupView::addMatches(const CleanupGroup& group)
{
    NamedNodes matches;
    for (const QString& pattern : group.paths) {
        const QList<XsdtNode*> nodes = DeletePolicy::matchPattern(*m_document, pattern);
        for (XsdtNode* node : nodes) {
            if (m_model->deletionDecision(node).level == DeleteLevel::Safe) {
                matches.append(displayName(*node), node);
            }
        }
    }
    if (matches.nodes.isEmpty()) {
        return;
    }
    auto* parent = new ParentRow;
    m_safeRoot->addChild(parent);
    qsizetype values = 0;
    qint64 size = 0;
    matches.visitSorted([&](const QString& name, XsdtNode* node) {
        const Entry* entry = addEntry(parent, name, node, false);
        values += entry->values;
        size += entry->size;
    });
    parent->setText(EntryColumn,
                    tr("%1 (%2)").arg(group.title, QString::number(matches.nodes.size())));
    setNumbers(*parent, values, size);
    parent->setToolTip(EntryColumn, asToolTip(group.description));
}

void CleanupView::addWarnEntries()
{
    NamedNodes candidates;
    const QList<XsdtNode*> nodes = m_model->policy()->warnCandidates(*m_document);
    for (XsdtNode* node : nodes) {
        candidates.append(node->path(), node);
    }
    candidates.visitSorted(
        [this](const QString& path, XsdtNode* node) { addEntry(m_warnRoot, path, node, true); });
}

CleanupView::Entry* CleanupView::addEntry(QTreeWidgetItem* parent, const QString& name,
                                          XsdtNode* node, bool isWarn)
{
    auto* entry = new Entry(name);
    parent->addChild(entry);
    entry->isWarn = isWarn;
    entry->addNode(node, node->valueCount(), node->serializedSize());
    entry->setToolTip(EntryColumn, asToolTip(m_model->deletionDecision(node).reason));
    m_entries.append(entry);
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
    int queuedEntries = 0;
    for (Entry* entry : std::as_const(m_entries)) {
        const auto queued = std::count_if(entry->nodes.cbegin(), entry->nodes.cend(),
                                          [](const XsdtNode* n) { return n->isInsideDeletion(); });
        entry->setText(StatusColumn, entry->status(queued));
        queuedEntries += queued > 0 ? 1 : 0;
    }
    for (QTreeWidgetItem* root : {m_safeRoot, m_warnRoot}) {
        if (root) {
            root->setDisabled(m_readOnly); // and with it what lies beneath
        }
    }
    m_tree->resizeColumnToContents(StatusColumn);
    m_tree->viewport()->update();
    QAccessibleTableModelChangeEvent change(m_tree, QAccessibleTableModelChangeEvent::DataChanged);
    QAccessible::updateAccessibility(&change);

    const QList<Entry*> ticked = tickedEntries();
    qint64 size = 0;
    for (const Entry* entry : ticked) {
        size += entry->size;
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

QList<CleanupView::Entry*> CleanupView::tickedEntries() const
{
    QList<Entry*> ticked;
    std::copy_if(m_entries.cbegin(), m_entries.cend(), std::back_inserter(ticked),
                 [](const Entry* e) { return e->checkState(EntryColumn) == Qt::Checked; });
    return ticked;
}

void CleanupView::tickAll(bool skipWarn)
{
    {
        const QSignalBlocker quiet(m_tree->model());
        for (Entry* entry : std::as_const(m_entries)) {
            const bool skip = skipWarn && entry->isWarn;
            entry->setCheckState(EntryColumn, skip ? Qt::Unchecked : Qt::Checked);
        }
    }
    refreshStatus();
}

void CleanupView::untick(const QList<Entry*>& entries)
{
    {
        const QSignalBlocker quiet(m_tree->model());
        for (Entry* entry : entries) {
            entry->setCheckState(EntryColumn, Qt::Unchecked);
        }
    }
    refreshStatus();
}

bool CleanupView::confirmWarnings()
{
    QStringList names;
    const QList<Entry*> ticked = tickedEntries();
    for (const Entry* entry : ticked) {
        if (entry->isWarn) {
            names.append(entry->text(EntryColumn));
        }
    }
    if (names.isEmpty() || !m_confirmWarn) {
        return true;
    }
    PlainMessageBox box(QMessageBox::Warning, tr("Delete saved settings?"),
                        tr("This removes the saved configuration of %n tool(s) or script(s). They "
                           "will start from their defaults.",
                           nullptr, int(names.size())),
                        QMessageBox::Yes | QMessageBox::Cancel, this);
    box.setPlainInformativeText(
        tr("Nothing is removed until you save, and you can undo it before then."));
    box.setReachableDetails(names.join(u'\n'));
    box.setDefaultButton(QMessageBox::Cancel);
    return box.exec() == QMessageBox::Yes;
}

void CleanupView::queueTicked()
{
    if (!confirmWarnings()) {
        return;
    }
    // Only now: beneath the question the list may have been built anew, for another tree. Then
    // nothing is ticked.
    const QList<Entry*> ticked = tickedEntries();
    if (ticked.isEmpty()) {
        return;
    }
    int queued = 0;
    QStringList refusals;
    {
        const SettingsModel::Batch batch(*m_model);
        for (const Entry* entry : ticked) {
            for (XsdtNode* node : entry->nodes) {
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
    const QList<Entry*> ticked = tickedEntries();
    {
        const SettingsModel::Batch batch(*m_model);
        for (const Entry* entry : ticked) {
            for (XsdtNode* node : entry->nodes) {
                m_model->undoDeletion(node);
            }
        }
    }
    untick(ticked);
}

} // namespace kse
