// SPDX-License-Identifier: MIT
#include "views/model/SettingsFilterProxy.h"

#include "document/Depth.h"
#include "document/OpenGroups.h"
#include "document/TreeWalk.h"
#include "views/model/SettingsModel.h"

#include <algorithm>
#include <vector>

namespace kse {

SettingsFilterProxy::SettingsFilterProxy(QObject* parent)
    : QSortFilterProxyModel(parent)
{
    setRecursiveFilteringEnabled(true);
    setFilterRole(SettingsModel::NodeRole);
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
    // Before the base class connects: `m_accepted` must be up to date in its slots.
    const auto markStale = [this] {
        m_isStale = true;
    };
    connect(model, &QAbstractItemModel::modelReset, this, markStale);
    connect(model, &QAbstractItemModel::layoutChanged, this, markStale);
    connect(model, &QAbstractItemModel::dataChanged, this,
            [this](const QModelIndex& first, const QModelIndex& last) {
                // Several rows at once change only in looks: pending changes come row by row, or
                // with a change of layout.
                if (first.row() == last.row() && isFiltering() && !m_isStale) {
                    updateAccepted(*SettingsModel::nodeOf(first));
                }
            });
    QSortFilterProxyModel::setSourceModel(model);
}

Qt::ItemFlags SettingsFilterProxy::flags(const QModelIndex& index) const
{
    Qt::ItemFlags flags = QSortFilterProxyModel::flags(index);
    const XsdtNode* node = SettingsModel::nodeOf(index);
    if (node && node->kind == XsdtNode::Kind::Value) {
        // Otherwise a view that expands everything remembers each value as expanded.
        flags |= Qt::ItemNeverHasChildren;
    }
    return flags;
}

bool SettingsFilterProxy::filterAcceptsRow(int sourceRow, const QModelIndex& sourceParent) const
{
    const XsdtNode* node = SettingsModel::nodeOf(sourceModel()->index(sourceRow, 0, sourceParent));
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
    const auto rows = m_accepted.find(node->parent);
    return rows != m_accepted.end() && rows->second[std::size_t(sourceRow)];
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
    struct Group
    {
        qsizetype pathLength;
        bool pathMatches;
    };
    OpenGroups<Group> groups(root, {0, m_filterText.isEmpty()});
    QString path;
    m_accepted.clear();
    walkTree(root, [&](const XsdtNode& node) {
        const auto [pathLength, groupMatches] = groups.ofParent(node);
        path.truncate(pathLength);
        if (!path.isEmpty()) {
            path += u'/';
        }
        path += node.key;
        // The group's path doesn't match, so a match has to include a part of the key.
        const qsizetype from = qMax<qsizetype>(0, pathLength + 1 - m_filterText.size());
        const bool pathMatches =
            groupMatches || QStringView(path).mid(from).contains(m_filterText, Qt::CaseInsensitive);
        if (passes(node, pathMatches)) {
            for (const XsdtNode* up = &node; up->parent && setAccepted(*up, true);
                 up = up->parent) {
            }
        }
        if (node.children.empty() || node.depth == deepestShownLevel) {
            return Walk::Over;
        }
        groups.enter(node, {path.size(), pathMatches});
        return Walk::Into;
    });
}

bool SettingsFilterProxy::setAccepted(const XsdtNode& node, bool accepted) const
{
    std::vector<bool>& rows = m_accepted[node.parent];
    rows.resize(node.parent->children.size());
    const auto row = rows.begin() + node.rowInParent();
    if (*row == accepted) {
        return false;
    }
    *row = accepted;
    return true;
}

void SettingsFilterProxy::updateAccepted(const XsdtNode& changed)
{
    bool isAncestorNew = false;
    for (const XsdtNode* node = &changed; node->parent; node = node->parent) {
        const auto rows = m_accepted.find(node);
        const bool holdsAccepted =
            rows != m_accepted.end() &&
            std::find(rows->second.begin(), rows->second.end(), true) != rows->second.end();
        const bool accepted =
            holdsAccepted ||
            passes(*node, node->path().contains(m_filterText, Qt::CaseInsensitive));
        if (!setAccepted(*node, accepted)) {
            break;
        }
        isAncestorNew = accepted && node != &changed;
    }
    if (isAncestorNew) {
        // The base class doesn't update what it remembers of hidden groups: it would show the
        // ancestor without the row that it is shown for.
        invalidate();
    }
}

void SettingsFilterProxy::refilter()
{
    m_isStale = true;
    // Not invalidateFilter(): it removes and inserts rows run by run, which takes quadratic time
    // under a view.
    invalidate();
}

} // namespace kse
