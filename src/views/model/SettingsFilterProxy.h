// SPDX-License-Identifier: MIT
#pragma once

#include <QSortFilterProxyModel>

#include <unordered_map>
#include <vector>

namespace kse {

struct XsdtNode;

/// Filters the settings tree for rows whose path or value contains a text, for changed rows, or
/// for both. The ancestors of an accepted row are shown too, its children only if they pass.
///
/// A change of the filter is one change of layout. Views keep their expanded, current and selected
/// rows as far as these stay visible, but not their scroll position; see `TreePosition`.
class SettingsFilterProxy : public QSortFilterProxyModel
{
    Q_OBJECT

public:
    explicit SettingsFilterProxy(QObject* parent = nullptr);

    /// `text` is trimmed, and found in any case. An empty text accepts everything.
    void setFilterText(const QString& text);
    QString filterText() const { return m_filterText; }

    /// Accept only modified values and nodes that are marked for deletion themselves.
    void setChangedOnly(bool changedOnly);
    bool isChangedOnly() const { return m_changedOnly; }

    /// Call it once, with a `SettingsModel`.
    void setSourceModel(QAbstractItemModel* model) override;
    Qt::ItemFlags flags(const QModelIndex& index) const override;

protected:
    /// Also true for the ancestors of rows that pass: the base class looks through everything
    /// below a refused row, so it must not refuse one that has to be shown.
    bool filterAcceptsRow(int sourceRow, const QModelIndex& sourceParent) const override;

private:
    bool isFiltering() const { return m_changedOnly || !m_filterText.isEmpty(); }
    bool passes(const XsdtNode& node, bool pathMatches) const;
    void collectAccepted(const XsdtNode& root) const;
    void updateAccepted(const XsdtNode& changed);
    bool setAccepted(const XsdtNode& node, bool accepted) const;
    void refilter();

    QString m_filterText;
    bool m_changedOnly = false;
    /// For each group, which rows pass or contain one that passes. A group without any may be
    /// missing.
    mutable std::unordered_map<const XsdtNode*, std::vector<bool>> m_accepted;
    mutable bool m_isStale = true; ///< `m_accepted` must be collected again.
};

} // namespace kse
