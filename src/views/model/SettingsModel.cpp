// SPDX-License-Identifier: MIT
#include "views/model/SettingsModel.h"

#include "document/Depth.h"
#include "document/Fail.h"
#include "document/TreeWalk.h"
#include "document/XsdtDocument.h"
#include "document/XsdtValueType.h"
#include "schema/DeletePolicy.h"
#include "views/model/NodeLooks.h"
#include "widgets/PlainText.h"

namespace kse {

SettingsModel::Batch::Batch(SettingsModel& model)
    : m_model(model)
{
    ++m_model.m_batchDepth;
}

SettingsModel::Batch::~Batch()
{
    if (--m_model.m_batchDepth == 0 && m_model.m_batchChanged) {
        m_model.m_batchChanged = false;
        m_model.refreshAll();
        emit m_model.edited();
    }
}

SettingsModel::SettingsModel(QObject* parent)
    : QAbstractItemModel(parent)
{
}

void SettingsModel::setDocument(XsdtDocument* document)
{
    beginResetModel();
    m_document = document;
    ++m_generation;
    endResetModel();
}

void SettingsModel::setReadOnly(bool readOnly)
{
    if (readOnly == m_readOnly) {
        return;
    }
    m_readOnly = readOnly;
    refreshAll();
}

QModelIndex SettingsModel::indexForNode(const XsdtNode* node, int column) const
{
    if (!node || !node->parent || node->depth > deepestShownLevel) {
        return {};
    }
    return createIndex(static_cast<int>(node->rowInParent()), column, node);
}

XsdtNode* SettingsModel::nodeForIndex(const QModelIndex& index) const
{
    if (index.isValid()) {
        return static_cast<XsdtNode*>(index.internalPointer());
    }
    return m_document ? &m_document->root : nullptr;
}

XsdtNode* SettingsModel::nodeOf(const QModelIndex& index)
{
    return index.data(NodeRole).value<XsdtNode*>();
}

DeleteDecision SettingsModel::deletionDecision(const XsdtNode* node) const
{
    return m_policy ? m_policy->decide(node) : DeleteDecision();
}

QString SettingsModel::readOnlyReason()
{
    return tr("PixInsight is running; nothing can be changed.");
}

bool SettingsModel::isLocked(const XsdtNode* node) const
{
    return m_policy && m_policy->isEditLocked(node);
}

bool SettingsModel::markForDeletion(XsdtNode* node, QString* reason)
{
    if (!node || !node->parent) {
        return fail(reason, tr("Nothing to delete."));
    }
    if (m_readOnly) {
        return fail(reason, readOnlyReason());
    }
    if (node->isInsideDeletion()) {
        return true;
    }
    const DeleteDecision decision = deletionDecision(node);
    if (decision.level == DeleteLevel::Never) {
        return fail(reason, decision.reason);
    }
    node->markedForDeletion = true;
    notifyChanged(*node);
    return true;
}

QList<XsdtNode*> SettingsModel::markAllForDeletion(const QList<XsdtNode*>& nodes, QString* reason)
{
    const Batch batch(*this);
    QList<XsdtNode*> refused;
    for (XsdtNode* node : nodes) {
        if (!markForDeletion(node, refused.isEmpty() ? reason : nullptr)) {
            refused.append(node);
        }
    }
    return refused;
}

void SettingsModel::undoDeletion(XsdtNode* node)
{
    if (node && node->markedForDeletion) {
        node->markedForDeletion = false;
        notifyChanged(*node);
    }
}

bool SettingsModel::undoDeletions(const QList<XsdtNode*>& nodes)
{
    const Batch batch(*this);
    bool isAnyMarked = false;
    for (XsdtNode* node : nodes) {
        isAnyMarked = isAnyMarked || node->markedForDeletion;
        undoDeletion(node);
    }
    return isAnyMarked;
}

void SettingsModel::revertValue(XsdtNode* node)
{
    if (node && node->isModified()) {
        node->value = node->original;
        notifyChanged(*node, ValueColumn);
    }
}

void SettingsModel::revertAll()
{
    if (!m_document) {
        return;
    }
    beginResetModel();
    m_document->revertAll();
    endResetModel();
    emit edited();
}

void SettingsModel::refreshAll()
{
    if (!m_document) {
        return;
    }
    // Under a filter many rows may appear or disappear. After a new layout, proxies and views read
    // everything once; `dataChanged` they handle row by row, in quadratic time.
    emit layoutAboutToBeChanged();
    emit layoutChanged();
    notifyBelow(m_document->root);
}

QModelIndex SettingsModel::index(int row, int column, const QModelIndex& parent) const
{
    if (row < 0 || row >= rowCount(parent) || column < 0 || column >= ColumnCount) {
        return {};
    }
    return createIndex(row, column, nodeForIndex(parent)->children[std::size_t(row)].get());
}

QModelIndex SettingsModel::parent(const QModelIndex& index) const
{
    if (!index.isValid()) {
        return {};
    }
    const XsdtNode* above = nodeForIndex(index)->parent;
    return above->parent ? createIndex(static_cast<int>(above->rowInParent()), 0, above)
                         : QModelIndex();
}

int SettingsModel::rowCount(const QModelIndex& parent) const
{
    const XsdtNode* node = parent.column() > 0 ? nullptr : nodeForIndex(parent);
    if (!node || node->children.empty() || node->depth >= deepestShownLevel) {
        return 0;
    }
    return static_cast<int>(node->children.size());
}

int SettingsModel::columnCount(const QModelIndex& /*parent*/) const
{
    return ColumnCount;
}

QVariant SettingsModel::data(const QModelIndex& index, int role) const
{
    if (!index.isValid()) {
        return {};
    }
    XsdtNode* node = nodeForIndex(index);
    switch (role) {
    case Qt::DisplayRole:
        return displayText(*node, index.column());
    case Qt::EditRole:
        return editText(*node, index.column());
    case Qt::ToolTipRole:
        return toolTipText(*node, deletionDecision(node));
    case Qt::AccessibleDescriptionRole:
        return stateText(*node).trimmed();
    case Qt::FontRole:
        return rowFont(*node);
    case Qt::BackgroundRole:
        return rowBackground(*node);
    case Qt::ForegroundRole:
        return rowForeground(*node);
    case NodeRole:
        return QVariant::fromValue(node);
    default:
        return {};
    }
}

bool SettingsModel::setData(const QModelIndex& index, const QVariant& value, int role)
{
    return role == Qt::EditRole && index.isValid() && index.column() == ValueColumn &&
           setValue(nodeForIndex(index), value.toString());
}

bool SettingsModel::setValue(XsdtNode* node, const QString& input)
{
    if (m_readOnly || !node->isEditableType() || node->isInsideDeletion()) {
        return false;
    }
    if (isLocked(node)) {
        emit editRejected(tr("%1 is part of the module registry or version records and is locked "
                             "against editing.")
                              .arg(abbreviated(node->key, shortLimit)));
        return false;
    }
    QString text;
    QString error;
    if (!validateValue(node->typeCode, input, text, &error)) {
        emit editRejected(tr("%1: %2").arg(abbreviated(node->key, shortLimit), error));
        return false;
    }
    if (text == node->value) {
        return false;
    }
    node->value = text;
    notifyChanged(*node);
    return true;
}

QVariant SettingsModel::headerData(int section, Qt::Orientation orientation, int role) const
{
    if (orientation != Qt::Horizontal || role != Qt::DisplayRole) {
        return {};
    }
    const QStringList titles{tr("Setting"), tr("Value"), tr("Type")}; // by `Column`
    return titles.value(section);
}

Qt::ItemFlags SettingsModel::flags(const QModelIndex& index) const
{
    if (!index.isValid()) {
        return Qt::NoItemFlags;
    }
    Qt::ItemFlags flags = Qt::ItemIsSelectable | Qt::ItemIsEnabled;
    const XsdtNode* node = nodeForIndex(index);
    if (index.column() == ValueColumn && !m_readOnly && node->isEditableType() &&
        !node->isInsideDeletion() && !isLocked(node)) {
        flags |= Qt::ItemIsEditable;
    }
    return flags;
}

void SettingsModel::notifyChanged(const XsdtNode& node, int lastColumn)
{
    if (m_batchDepth > 0) {
        m_batchChanged = true;
        return;
    }
    if (const QModelIndex row = indexForNode(&node); row.isValid()) {
        emit dataChanged(row, row.siblingAtColumn(lastColumn));
        notifyBelow(node);
    }
    emit edited(&node);
}

void SettingsModel::notifyBelow(const XsdtNode& node)
{
    // Without `NodeRole`, by which the proxy filters: otherwise it would test all ancestors of a
    // group again for each group.
    static const QList<int> roles{Qt::DisplayRole, Qt::EditRole,       Qt::ToolTipRole,
                                  Qt::FontRole,    Qt::BackgroundRole, Qt::ForegroundRole};
    const auto notifyChildren = [this](const XsdtNode& above) {
        const QModelIndex parent = indexForNode(&above);
        const int count = rowCount(parent);
        if (count > 0) {
            emit dataChanged(index(0, 0, parent), index(count - 1, TypeColumn, parent), roles);
        }
        return count > 0 ? Walk::Into : Walk::Over;
    };
    if (notifyChildren(node) == Walk::Into) {
        walkTree(node, notifyChildren);
    }
}

} // namespace kse
