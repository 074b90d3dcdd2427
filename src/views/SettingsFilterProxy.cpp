// SPDX-License-Identifier: MIT
#include "views/SettingsFilterProxy.h"

#include "document/TreeWalk.h"
#include "views/SettingsModel.h"

#include <algorithm>
#include <vector>

namespace kse {

namespace {

XsdtNode* nodeOf(const QModelIndex& index)
{
    return index.data(SettingsModel::NodeRole).value<XsdtNode*>();
}

} // namespace

SettingsFilterProxy::SettingsFilterProxy(QObject* parent)
    : QSortFilterProxyModel(parent)
{
    setRecursiveFilteringEnabled(true);
}

void SettingsFilterProxy::setFilterText(const QString& text)
{
    const QString trimmed = text.trimmed();
    if (trimmed != m_filterText) {
        m_filterText = trimmed;
        refilter();
    }
}

void SettingsFilterProxy::setChangedOnly(bool changedOnly)
{
    if (changedOnly != m_changedOnly) {
        m_changedOnly = changedOnly;
        refilter();
    }
}

void SettingsFilterProxy::setSourceModel(QAbstractItemModel* model)
{
    if (sourceModel()) {
        sourceModel()->disconnect(this);
    }
    m_isStale = true;
    if (model) {
        // Before the base class connects itself: it must find `m_accepted` up to date.
        const auto markStale = [this] {
            m_isStale = true;
        };
        connect(model, &QAbstractItemModel::modelReset, this, markStale);
        connect(model, &QAbstractItemModel::layoutChanged, this, markStale);
        connect(model, &QAbstractItemModel::dataChanged, this,
                [this](const QModelIndex& first, const QModelIndex& last) {
                    // Rows that change together do so in looks only: what is pending changes
                    // row by row, or together with the layout.
                    if (first.row() == last.row() && isFiltering() && !m_isStale) {
                        updateAccepted(*nodeOf(first));
                    }
                });
    }
    QSortFilterProxyModel::setSourceModel(model);
}

Qt::ItemFlags SettingsFilterProxy::flags(const QModelIndex& index) const
{
    Qt::ItemFlags flags = QSortFilterProxyModel::flags(index);
    const XsdtNode* node = nodeOf(index);
    if (node && node->kind == XsdtNode::Kind::Value) {
        // Otherwise a view that expands everything remembers each value as expanded.
        flags |= Qt::ItemNeverHasChildren;
    }
    return flags;
}

bool SettingsFilterProxy::filterAcceptsRow(int sourceRow, const QModelIndex& sourceParent) const
{
    const XsdtNode* node = nodeOf(sourceModel()->index(sourceRow, 0, sourceParent));
    if (!node || !isFiltering()) {
        return true;
    }
    if (m_isStale) {
        const XsdtNode* root = node;
        while (root->parent) {
            root = root->parent;
        }
        collectAccepted(*root);
        m_isStale = false;
    }
    return m_accepted.contains(node);
}

bool SettingsFilterProxy::passes(const XsdtNode& node, bool pathMatches) const
{
    if (m_changedOnly && !node.isModified() && !node.markedForDeletion) {
        return false;
    }
    return pathMatches ||
           (node.isEditableType() && node.value.contains(m_filterText, Qt::CaseInsensitive));
}

void SettingsFilterProxy::collectAccepted(const XsdtNode& root) const
{
    struct Level
    {
        const XsdtNode* group;
        qsizetype pathLength;
        bool pathMatches;
    };
    std::vector<Level> levels{{&root, 0, m_filterText.isEmpty()}};
    QString path;
    m_accepted.clear();
    walkTree(root, [&](const XsdtNode& node) {
        while (levels.back().group != node.parent) {
            levels.pop_back();
        }
        const auto [group, pathLength, groupMatches] = levels.back();
        path.truncate(pathLength);
        if (!path.isEmpty()) {
            path += u'/';
        }
        path += node.key;
        // What the group's path lacks can only be found where the new part takes part in it.
        const qsizetype from = qMax<qsizetype>(0, pathLength + 1 - m_filterText.size());
        const bool pathMatches =
            groupMatches || QStringView(path).mid(from).contains(m_filterText, Qt::CaseInsensitive);
        if (passes(node, pathMatches)) {
            for (const XsdtNode* up = &node; up->parent && !m_accepted.contains(up);
                 up = up->parent) {
                m_accepted.insert(up);
            }
        }
        if (node.children.empty() || levels.size() == SettingsModel::maximumDepth) {
            return Walk::Over;
        }
        levels.push_back({&node, path.size(), pathMatches});
        return Walk::Into;
    });
}

void SettingsFilterProxy::updateAccepted(const XsdtNode& changed)
{
    for (const XsdtNode* node = &changed; node->parent; node = node->parent) {
        const bool accepted =
            passes(*node, node->path().contains(m_filterText, Qt::CaseInsensitive)) ||
            std::any_of(node->children.begin(), node->children.end(),
                        [this](const auto& child) { return m_accepted.contains(child.get()); });
        if (accepted == m_accepted.contains(node)) {
            return;
        }
        if (accepted) {
            m_accepted.insert(node);
        } else {
            m_accepted.remove(node);
        }
    }
}

void SettingsFilterProxy::refilter()
{
    m_isStale = true;
    // Not invalidateFilter(): it takes rows out and puts them in one run at a time, in quadratic
    // time under a view that shows them.
    invalidate();
}

} // namespace kse
