// SPDX-License-Identifier: MIT
#include "views/tree/AllSettingsView.h"

#include "document/TreeWalk.h"
#include "document/XsdtDocument.h"
#include "views/model/SettingsFilterProxy.h"
#include "views/model/SettingsModel.h"
#include "views/model/TreeGuard.h"
#include "views/model/TreePosition.h"
#include "views/model/ValueDelegate.h"
#include "views/rows/DeletionEntry.h"
#include "views/tree/SettingsTree.h"
#include "widgets/Announcement.h"
#include "widgets/Named.h"

#include <QCheckBox>
#include <QClipboard>
#include <QGuiApplication>
#include <QHeaderView>
#include <QLineEdit>
#include <QMenu>
#include <QShortcut>
#include <QVBoxLayout>

#include <utility>

using namespace Qt::StringLiterals;

namespace kse {

AllSettingsView::AllSettingsView(SettingsModel* model, QWidget* parent)
    : QWidget(parent)
    , m_model(model)
    , m_proxy(new SettingsFilterProxy(this))
{
    m_proxy->setSourceModel(m_model);
    createFilter();
    createTree();
    createLayout();
}

void AllSettingsView::createLayout()
{
    auto* layout = new QVBoxLayout(this);
    layout->setContentsMargins(0, 6, 0, 0);
    auto* filterRow = new QHBoxLayout;
    filterRow->addWidget(m_treeFilter, 1);
    filterRow->addWidget(m_changedOnly);
    layout->addLayout(filterRow);
    layout->addWidget(m_tree, 1);
}

void AllSettingsView::createFilter()
{
    m_treeFilter = named(u"treeFilter"_s, new QLineEdit(this));
    m_treeFilter->setAccessibleName(tr("Filter"));
    m_treeFilter->setClearButtonEnabled(true);
    m_treeFilter->setPlaceholderText(
        tr("Filter this tree by name or value (Ctrl+F searches everything)"));
    connect(m_treeFilter, &QLineEdit::textChanged, this, &AllSettingsView::onFilterChanged);
    m_changedOnly = named(u"changedOnly"_s, new QCheckBox(tr("Changed only"), this));
    connect(m_changedOnly, &QCheckBox::toggled, this, &AllSettingsView::onChangedOnlyToggled);
    const auto hits = [this] {
        return tr("%n result(s)", nullptr, shownValues());
    };
    announceHits(m_treeFilter, hits, {m_changedOnly});
}

void AllSettingsView::createTree()
{
    m_tree = named(u"tree"_s, new SettingsTree(this));
    m_tree->setAccessibleName(tr("All settings"));
    m_tree->setModel(m_proxy);
    reportExpansion(m_tree);
    auto* delegate = new ValueDelegate(m_tree);
    m_tree->setItemDelegateForColumn(SettingsModel::ValueColumn, delegate);
    connect(delegate, &ValueDelegate::editedRowHidden, this, &AllSettingsView::onEditedRowHidden);
    m_tree->setUniformRowHeights(true);
    m_tree->setTextElideMode(Qt::ElideMiddle); // paths often differ only at their ends
    m_tree->setAlternatingRowColors(true);
    m_tree->setContextMenuPolicy(Qt::CustomContextMenu);
    m_tree->setEditTriggers(QAbstractItemView::DoubleClicked | QAbstractItemView::SelectedClicked |
                            QAbstractItemView::EditKeyPressed);
    m_tree->header()->setStretchLastSection(false);
    m_tree->header()->setSectionResizeMode(SettingsModel::SettingColumn, QHeaderView::Interactive);
    m_tree->header()->setSectionResizeMode(SettingsModel::ValueColumn, QHeaderView::Stretch);
    m_tree->header()->setSectionResizeMode(SettingsModel::TypeColumn,
                                           QHeaderView::ResizeToContents);
    m_tree->header()->resizeSection(SettingsModel::SettingColumn, 380);
    connect(m_tree, &QTreeView::customContextMenuRequested, this,
            &AllSettingsView::onContextMenuRequested);
    auto* deleteKey = new QShortcut(QKeySequence::Delete, m_tree);
    deleteKey->setContext(Qt::WidgetShortcut);
    connect(deleteKey, &QShortcut::activated, this, &AllSettingsView::onDeleteKey);
}

QModelIndex AllSettingsView::indexFor(const XsdtNode* node) const
{
    return m_proxy->mapFromSource(m_model->indexForNode(node));
}

void AllSettingsView::reveal(const XsdtNode* node)
{
    if (!node) {
        return;
    }
    m_treeFilter->clear();
    m_changedOnly->setChecked(false);
    QModelIndex index;
    for (; node->parent && !index.isValid(); node = node->parent) {
        index = indexFor(node);
    }
    if (!index.isValid()) {
        return;
    }
    for (QModelIndex above = index.parent(); above.isValid(); above = above.parent()) {
        m_tree->expand(above);
    }
    m_tree->setCurrentIndex(index);
    m_tree->scrollTo(index, QAbstractItemView::PositionAtCenter);
    m_tree->setFocus(); // so that a key edits or deletes it
}

void AllSettingsView::expandAll()
{
    m_tree->expandAll();
}

void AllSettingsView::resetExpansion()
{
    m_tree->collapseAll();
    if (!m_model->document()) {
        return;
    }
    QModelIndex index = indexFor(m_model->document()->root.findByPath(u"Global/Preferences"));
    for (; index.isValid(); index = index.parent()) {
        m_tree->expand(index);
    }
}

void AllSettingsView::revertAll()
{
    const TreePosition position(*m_tree, *m_proxy);
    const bool isFiltering = !m_proxy->filterText().isEmpty() || m_proxy->isChangedOnly();
    const QList<const XsdtNode*> expanded =
        isFiltering ? QList<const XsdtNode*>() : expandedGroups();
    m_model->revertAll();
    for (const XsdtNode* group : expanded) {
        m_tree->expand(indexFor(group));
    }
    if (isFiltering) {
        m_tree->expandAll();
    }
    position.restore();
}

/// The expanded groups, also those inside collapsed ones.
QList<const XsdtNode*> AllSettingsView::expandedGroups() const
{
    QList<const XsdtNode*> groups;
    walkTree(std::as_const(m_model->document()->root), [&](const XsdtNode& node) {
        if (!node.children.empty() && m_tree->isExpanded(indexFor(&node))) {
            groups.append(&node);
        }
        return Walk::Into;
    });
    return groups;
}

void AllSettingsView::onFilterChanged(const QString& text)
{
    const TreePosition position(*m_tree, *m_proxy);
    m_proxy->setFilterText(text);
    if (text.trimmed().isEmpty()) {
        resetExpansion();
    } else {
        m_tree->expandAll();
    }
    position.restore();
}

int AllSettingsView::shownValues() const
{
    int count = 0;
    if (m_model->document()) {
        walkTree(std::as_const(m_model->document()->root), [&](const XsdtNode& node) {
            count += node.kind == XsdtNode::Kind::Value && indexFor(&node).isValid() ? 1 : 0;
            return Walk::Into;
        });
    }
    return count;
}

void AllSettingsView::onChangedOnlyToggled(bool changedOnly)
{
    const TreePosition position(*m_tree, *m_proxy);
    m_proxy->setChangedOnly(changedOnly);
    if (changedOnly) {
        m_tree->expandAll();
    }
    position.restore();
}

void AllSettingsView::onEditedRowHidden(const QString& key)
{
    emit message(tr("%1 doesn't match the filter any more, so it isn't shown.").arg(key));
}

void AllSettingsView::onDeleteKey()
{
    const QModelIndex index = m_tree->currentIndex();
    XsdtNode* node = SettingsModel::nodeOf(index);
    if (node && m_tree->selectionModel()->isSelected(index)) {
        emit deleteRequested(node);
    }
}

void AllSettingsView::onContextMenuRequested(const QPoint& pos)
{
    XsdtNode* node = SettingsModel::nodeOf(m_tree->indexAt(pos));
    if (!node) {
        return;
    }
    QMenu menu(this);
    menu.setToolTipsVisible(true);
    QAction* revert = menu.addAction(tr("Revert this value"));
    revert->setEnabled(node->isModified() && !m_model->isReadOnly());
    QAction* copyPath = menu.addAction(tr("Copy setting path"));
    QAction* copyValue = menu.addAction(tr("Copy value"));
    copyValue->setEnabled(node->kind == XsdtNode::Kind::Value);
    menu.addSeparator();
    const DeletionEntry deletion(menu, *m_model, node, m_model->isReadOnly(),
                                 {tr("Inside an entry marked for deletion"),
                                  tr("Delete this entry"), tr("Delete this entry...")});

    const TreeGuard guard(m_model);
    const QAction* chosen = menu.exec(m_tree->viewport()->mapToGlobal(pos));
    if (!chosen || !guard.isSameTree()) {
        return;
    }
    if (chosen == revert && !m_model->isReadOnly()) { // PixInsight may have started meanwhile
        m_model->revertValue(node);
    } else if (chosen == copyPath) {
        QGuiApplication::clipboard()->setText(node->path());
    } else if (chosen == copyValue) {
        QGuiApplication::clipboard()->setText(node->value);
    } else if (deletion.is(chosen)) {
        deletion.carryOut(
            this, [this](XsdtNode* target) { emit deleteRequested(target); },
            [this](XsdtNode* target) { emit restoreRequested(target); });
    }
}

} // namespace kse
