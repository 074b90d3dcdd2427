// SPDX-License-Identifier: MIT
#include "session/dialogs/ReviewDialog.h"

#include "document/NamedNode.h"
#include "document/TreeWalk.h"
#include "document/XsdtDocument.h"
#include "document/XsdtValueType.h"
#include "schema/SettingsSchema.h"
#include "session/dialogs/ChangeRemark.h"
#include "views/model/NodeLooks.h"
#include "views/model/SettingsModel.h"
#include "widgets/Announcement.h"
#include "widgets/CopyKey.h"
#include "widgets/Named.h"
#include "widgets/PlainText.h"
#include "widgets/WrappedLabel.h"

#include <QCheckBox>
#include <QEvent>
#include <QHBoxLayout>
#include <QHeaderView>
#include <QKeyEvent>
#include <QLabel>
#include <QLineEdit>
#include <QPlainTextEdit>
#include <QPushButton>
#include <QScreen>
#include <QShowEvent>
#include <QSignalBlocker>
#include <QTextOption>
#include <QTreeWidget>
#include <QVBoxLayout>

#include <algorithm>

using namespace Qt::StringLiterals;

namespace kse {

namespace {

enum Column { ChangeColumn, SettingColumn, BeforeColumn, AfterColumn };

constexpr qsizetype toolTipLimit = 500;
constexpr qsizetype detailLimit = 100'000;  // each text; Qt lays out a longer line too slowly
constexpr qsizetype wordWrapLimit = 10'000; // and needs quadratic time to look for its words
constexpr qsizetype removedRowLimit = 300;

// A path in one line, short enough to be laid out at every repaint.
QString rowPath(const QString& path)
{
    return withoutMiddle(path, lineLimit).replace(u'\n', QChar(0x23CE));
}

QString rowValue(const XsdtNode& node, const QString& text)
{
    return displayValue(node, text, reviewedValueLimit);
}

QString rowToolTip(const QString& text)
{
    return asToolTip(firstCharacters(text, toolTipLimit));
}

QTreeWidgetItem* createRow(const QStringList& texts, ReviewDialog::RowKind kind, XsdtNode* node)
{
    auto* row = new QTreeWidgetItem(texts);
    row->setData(ChangeColumn, ReviewDialog::KindRole, kind);
    row->setData(ChangeColumn, ReviewDialog::NodeRole, QVariant::fromValue(node));
    row->setToolTip(SettingColumn, asToolTip(texts.at(SettingColumn))); // the column may cut it
    return row;
}

// The full text of a cell: a value as it is in the file or will be, any other text as shown.
QVariant wholeText(const QModelIndex& index)
{
    const QModelIndex first = index.siblingAtColumn(ChangeColumn);
    const int kind = first.data(ReviewDialog::KindRole).toInt();
    const auto* node = first.data(ReviewDialog::NodeRole).value<XsdtNode*>();
    if (!node && kind == ReviewDialog::RemovedValueRow) { // a row inside the deleted value
        node = first.parent().data(ReviewDialog::NodeRole).value<XsdtNode*>();
    }
    if (node && index.column() == SettingColumn) {
        return node->path();
    }
    if (node && index.column() == BeforeColumn && kind != ReviewDialog::DeletionRow) {
        return kind == ReviewDialog::EditRow ? node->original : node->value;
    }
    if (node && index.column() == AfterColumn && kind == ReviewDialog::EditRow) {
        return node->value;
    }
    return index.data();
}

// A row that tells something about the list and stands for no change.
QTreeWidgetItem* createNote(const QString& text)
{
    auto* row = new QTreeWidgetItem(QStringList{QString(), text});
    row->setFlags(Qt::ItemIsEnabled);
    return row;
}

bool passesFilter(const NamedNode& pending, const QString& filter)
{
    const auto holdsFilter = [&filter](const QString& text) {
        return text.contains(filter, Qt::CaseInsensitive);
    };
    const XsdtNode& node = *pending.node;
    return filter.isEmpty() || holdsFilter(pending.name) ||
           (node.kind == XsdtNode::Kind::Value && node.typeCode != XsdtValueType::Block &&
            (holdsFilter(node.value) || holdsFilter(node.original)));
}

} // namespace

ReviewDialog::ReviewDialog(SettingsModel* model, const XsdtDocument* document, QWidget* parent,
                           const SettingsSchema* schema)
    : QDialog(parent)
    , m_model(model)
    , m_document(document)
    , m_schema(schema)
    , m_guard(model)
{
    setWindowTitle(tr("Review changes"));
    createWidgets();
    createTree();
    createLayout();
    connectWidgets();
    updateDetailHeight();
    updateRunning();
    populate();
    resize(980, 640);
    m_tree->setFocus();
}

void ReviewDialog::createWidgets()
{
    m_running = new WrappedLabel(tr("<b>PixInsight is running.</b> It would overwrite the file, so "
                                    "nothing can be saved. Close PixInsight first."),
                                 Qt::RichText, u"running"_s, this);
    m_running->setMargin(8);
    m_running->setAutoFillBackground(true);
    QPalette amber = m_running->palette();
    amber.setBrush(QPalette::Window, QColor(255, 190, 0, 90));
    m_running->setPalette(amber);
    m_summary = new WrappedLabel({}, Qt::PlainText, u"summary"_s, this);
    m_filter = named(u"filter"_s, new QLineEdit(this));
    m_filter->setPlaceholderText(tr("Filter by setting name or value"));
    m_filter->setAccessibleName(m_filter->placeholderText());
    m_filter->setClearButtonEnabled(true);
    m_showEdits = named(u"showEdits"_s, new QCheckBox(tr("Edits"), this));
    m_showEdits->setChecked(true);
    m_showDeletions = named(u"showDeletions"_s, new QCheckBox(tr("Deletions"), this));
    m_showDeletions->setChecked(true);
    m_detail = named(u"detail"_s, new QPlainTextEdit(this));
    m_detail->setReadOnly(true);
    m_detail->setPlaceholderText(inOwnDirection(tr("Select a change to see its full text.")));
    m_detail->setAccessibleName(tr("Full text of the selected change"));
    m_remark = new WrappedLabel({}, Qt::PlainText, u"remark"_s, this);
    m_hidden = new WrappedLabel({}, Qt::PlainText, u"hidden"_s, this);
    m_revert = named(u"revert"_s, new QPushButton(tr("Revert selected"), this));
    m_revert->setToolTip(tr("Take the selected changes back: edits return to their saved value, "
                            "deletions are undone."));
    m_cancel = named(u"cancel"_s, new QPushButton(tr("Cancel"), this));
    m_save = named(u"save"_s, new QPushButton(tr("Save"), this));
    m_save->setDefault(true);
}

void ReviewDialog::createTree()
{
    m_tree = named(u"tree"_s, new QTreeWidget(this));
    m_tree->setAccessibleName(tr("Pending changes"));
    m_tree->setHeaderLabels({tr("Change"), tr("Setting"), tr("Before"), tr("After")});
    m_tree->setSelectionMode(QAbstractItemView::ExtendedSelection);
    m_tree->setAlternatingRowColors(true);
    m_tree->setUniformRowHeights(true);
    m_tree->setTextElideMode(Qt::ElideMiddle); // what differs is often the end of a path
    copyWholeTexts(m_tree, wholeText);
    setTabOrder(m_showDeletions, m_tree);
    QHeaderView* header = m_tree->header();
    header->setStretchLastSection(false);
    header->setSectionResizeMode(ChangeColumn, QHeaderView::ResizeToContents);
    header->setSectionResizeMode(BeforeColumn, QHeaderView::Stretch);
    header->setSectionResizeMode(AfterColumn, QHeaderView::Stretch);
    header->resizeSection(SettingColumn, 360);
}

void ReviewDialog::createLayout()
{
    auto* filters = new QHBoxLayout;
    filters->addWidget(m_filter, 1);
    filters->addWidget(m_showEdits);
    filters->addWidget(m_showDeletions);
    auto* promise = new QLabel(tr("Saving makes a timestamped backup of the current file first, "
                                  "checks the result, and replaces the file in one step."),
                               this);
    promise->setWordWrap(true);
    auto* buttons = new QHBoxLayout;
    buttons->addWidget(m_revert);
    buttons->addStretch();
    buttons->addWidget(m_cancel);
    buttons->addWidget(m_save);

    auto* layout = new QVBoxLayout(this);
    layout->addWidget(m_running);
    layout->addWidget(m_summary);
    layout->addLayout(filters);
    for (QWidget* list : {static_cast<QWidget*>(m_tree), static_cast<QWidget*>(m_detail)}) {
        list->setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Ignored);
    }
    layout->addWidget(m_tree, 5); // with large text, the pane below gets fewer lines
    layout->addWidget(m_detail, 2);
    layout->addWidget(m_remark);
    layout->addWidget(promise);
    layout->addWidget(m_hidden);
    layout->addLayout(buttons);
}

void ReviewDialog::connectWidgets()
{
    connect(m_filter, &QLineEdit::textChanged, this, &ReviewDialog::populate);
    const auto hits = [this] {
        return (m_hidden->isHidden() ? m_summary : m_hidden)->text();
    };
    announceHits(m_filter, hits, {m_showEdits, m_showDeletions});
    reportExpansion(m_tree);
    connect(m_showEdits, &QCheckBox::toggled, this, &ReviewDialog::populate);
    connect(m_showDeletions, &QCheckBox::toggled, this, &ReviewDialog::populate);
    connect(m_tree, &QTreeWidget::itemSelectionChanged, this, &ReviewDialog::updateDetail);
    connect(m_tree, &QTreeWidget::itemExpanded, this, &ReviewDialog::populateDeletion);
    connect(m_revert, &QPushButton::clicked, this, &ReviewDialog::onRevert);
    connect(m_cancel, &QPushButton::clicked, this, &ReviewDialog::reject);
    connect(m_save, &QPushButton::clicked, this, &ReviewDialog::accept);
    connect(m_model, &SettingsModel::layoutChanged, this, &ReviewDialog::updateRunning);
    connect(m_model, &SettingsModel::modelReset, this, &ReviewDialog::onModelReset);
}

void ReviewDialog::showEvent(QShowEvent* event)
{
    if (!event->spontaneous()) {
        const QSize frame(16, 40); // about: it is known only after the dialog is shown
        resize(size().boundedTo(screen()->availableGeometry().size() - frame));
    }
    QDialog::showEvent(event);
}

void ReviewDialog::changeEvent(QEvent* event)
{
    QDialog::changeEvent(event);
    if (event->type() == QEvent::FontChange && m_detail) {
        updateDetailHeight();
    }
}

void ReviewDialog::keyPressEvent(QKeyEvent* event)
{
    // Return ends the typing of a filter and presses a button; to save is decided in the list.
    const bool isReturn = event->key() == Qt::Key_Return || event->key() == Qt::Key_Enter;
    const QWidget* focus = focusWidget();
    if (isReturn && focus == m_filter) {
        m_tree->setFocus();
    } else if (!isReturn || focus == m_tree || qobject_cast<const QPushButton*>(focus)) {
        QDialog::keyPressEvent(event);
    }
}

void ReviewDialog::updateDetailHeight()
{
    m_detail->setMaximumHeight(fontMetrics().lineSpacing() * 11 / 2);
    // Its line is kept free, so that the list doesn't move from one selected row to the next.
    m_remark->setMinimumHeight(fontMetrics().height());
}

void ReviewDialog::populate()
{
    qsizetype pending = 0;
    {
        const QSignalBlocker blocker(m_tree);
        m_tree->clear();
        const QList<XsdtNode*> deletions = m_document->deletions();
        const QList<XsdtNode*> edits = m_document->editedValues();
        pending = deletions.size() + edits.size();
        qsizetype removedValues = 0;
        for (const XsdtNode* node : deletions) {
            removedValues += node->valueCount();
        }
        m_summary->setText(pending == 0
                               ? tr("There are no changes to save.")
                               : tr("%1 edit(s) and %2 deletion(s) (%3 values removed) will be "
                                    "written to the settings file.")
                                     .arg(edits.size())
                                     .arg(deletions.size())
                                     .arg(removedValues));
        if (m_showDeletions->isChecked()) {
            addDeletions(deletions);
        }
        if (m_showEdits->isChecked()) {
            addEdits(edits);
        }
        updateHidden(pending);
        if (m_tree->topLevelItemCount() == 0 && pending > 0) {
            m_tree->addTopLevelItem(createNote(tr("Nothing matches the filters.")));
        }
    }
    m_save->setEnabled(pending > 0);
    updateDetail();
}

void ReviewDialog::updateHidden(qsizetype pending)
{
    const int hidden = int(pending) - m_tree->topLevelItemCount();
    m_hidden->setText(tr("The filters hide %n change(s). Save writes them too.", nullptr, hidden));
    m_hidden->setVisible(hidden > 0);
}

void ReviewDialog::updateRunning()
{
    m_running->setVisible(m_model->isReadOnly());
}

QList<NamedNode> ReviewDialog::filteredByPath(const QList<XsdtNode*>& nodes) const
{
    const QString filter = m_filter->text().trimmed();
    QList<NamedNode> result;
    for (XsdtNode* node : nodes) {
        const NamedNode pending{node->path(), node};
        if (passesFilter(pending, filter)) {
            result.append(pending);
        }
    }
    return sortedByName(result);
}

void ReviewDialog::addDeletions(const QList<XsdtNode*>& nodes)
{
    QFont bold;
    bold.setBold(true); // and nothing else, so that the rest follows the tree's font
    QList<QTreeWidgetItem*> rows;
    for (const NamedNode& pending : filteredByPath(nodes)) {
        const int values = static_cast<int>(pending.node->valueCount());
        QTreeWidgetItem* row = createRow({tr("Delete"), rowPath(pending.name),
                                          tr("%n value(s)", nullptr, values), tr("(removed)")},
                                         DeletionRow, pending.node);
        row->setChildIndicatorPolicy(QTreeWidgetItem::ShowIndicator);
        row->setFont(ChangeColumn, bold);
        row->setForeground(ChangeColumn, QColor(214, 60, 60));
        rows.append(row);
    }
    m_tree->addTopLevelItems(rows);
}

void ReviewDialog::addEdits(const QList<XsdtNode*>& nodes)
{
    QList<QTreeWidgetItem*> rows;
    for (const NamedNode& pending : filteredByPath(nodes)) {
        const XsdtNode& node = *pending.node;
        QTreeWidgetItem* row =
            createRow({tr("Edit"), rowPath(pending.name), rowValue(node, node.original),
                       rowValue(node, node.value)},
                      EditRow, pending.node);
        row->setToolTip(BeforeColumn, rowToolTip(node.original));
        row->setToolTip(AfterColumn, rowToolTip(node.value));
        rows.append(row);
    }
    m_tree->addTopLevelItems(rows);
}

void ReviewDialog::populateDeletion(QTreeWidgetItem* row)
{
    auto* deleted = row->data(ChangeColumn, NodeRole).value<XsdtNode*>();
    const int kind = row->data(ChangeColumn, KindRole).toInt();
    if (!deleted || kind != DeletionRow || row->childCount() > 0) {
        return;
    }
    QList<QTreeWidgetItem*> rows;
    const auto addValue = [&rows](const XsdtNode& value, const QString& name, XsdtNode* node) {
        rows.append(
            createRow({QString(), rowPath(name), rowValue(value, value.value), tr("(removed)")},
                      RemovedValueRow, node));
    };
    if (deleted->kind == XsdtNode::Kind::Value) {
        addValue(*deleted, deleted->key, nullptr);
    } else {
        // An empty path adds no separator to the paths inside.
        const QString path = deleted->path();
        const qsizetype prefix = path.isEmpty() ? 0 : path.size() + 1;
        qsizetype values = 0;
        walkTree(*deleted, [&](XsdtNode& node) {
            if (node.kind == XsdtNode::Kind::Value && ++values <= removedRowLimit) {
                addValue(node, node.path().mid(prefix), &node);
                rows.last()->setToolTip(BeforeColumn, rowToolTip(node.value));
            }
            return Walk::Into;
        });
        if (values > removedRowLimit) {
            rows.append(createNote(tr("...and %1 more values").arg(values - removedRowLimit)));
        }
    }
    row->addChildren(rows);
}

void ReviewDialog::updateDetail()
{
    const QModelIndexList selected = m_tree->selectionModel()->selectedRows();
    m_revert->setEnabled(!selected.isEmpty());
    m_detail->clear();
    m_remark->clear();
    if (selected.size() > 1) {
        m_detail->setPlainText(tr("%1 changes selected.").arg(selected.size()));
        return;
    }
    const auto* node =
        selected.isEmpty() ? nullptr : selected.first().data(NodeRole).value<XsdtNode*>();
    if (!node) {
        return;
    }
    const QString value = abbreviated(node->value, detailLimit);
    QString text;
    const int kind = selected.first().data(KindRole).toInt();
    switch (kind) {
    case EditRow:
        text = tr("Before: %1\nAfter:  %2").arg(abbreviated(node->original, detailLimit), value);
        break;
    case DeletionRow:
        text = tr("The whole entry is removed (%n value(s)). Expand the row to see them.", nullptr,
                  static_cast<int>(node->valueCount()));
        break;
    case RemovedValueRow:
        text = tr("Removed value: %1").arg(value);
        break;
    }
    text.prepend(withoutMiddle(node->path(), detailLimit) + u'\n');
    m_detail->setWordWrapMode(text.size() > wordWrapLimit
                                  ? QTextOption::WrapAnywhere
                                  : QTextOption::WrapAtWordBoundaryOrAnywhere);
    m_detail->setPlainText(text);
    if (node->kind == XsdtNode::Kind::Value && kind != DeletionRow) {
        const VariableInfo info = m_schema ? m_schema->describe(*node) : VariableInfo();
        m_remark->setText(kind == EditRow ? editRemark(*node, info) : removalRemark(*node, info));
    }
}

void ReviewDialog::onRevert()
{
    int firstRow = -1;
    {
        const SettingsModel::Batch batch(*m_model);
        const QModelIndexList selected = m_tree->selectionModel()->selectedRows();
        for (const QModelIndex& row : selected) {
            auto* node = row.data(NodeRole).value<XsdtNode*>();
            if (row.parent().isValid() || !node) {
                continue;
            }
            firstRow = firstRow < 0 ? row.row() : std::min(firstRow, row.row());
            row.data(KindRole).toInt() == DeletionRow ? m_model->undoDeletion(node)
                                                      : m_model->revertValue(node);
        }
    }
    if (firstRow < 0) {
        return;
    }
    // The button is about to be disabled and would lose the focus. The list keeps its place.
    m_tree->setFocus();
    populate();
    const int lastRow = m_tree->topLevelItemCount() - 1;
    m_tree->setCurrentItem(m_tree->topLevelItem(std::min(firstRow, lastRow)), ChangeColumn,
                           QItemSelectionModel::NoUpdate);
}

void ReviewDialog::onModelReset()
{
    if (m_guard.isSameTree()) {
        populate();
        return;
    }
    const QSignalBlocker blocker(m_tree);
    m_tree->clear();
    reject();
}

} // namespace kse
