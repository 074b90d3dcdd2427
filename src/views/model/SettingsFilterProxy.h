// SPDX-License-Identifier: MIT
#pragma once

#include <QSortFilterProxyModel>

#include <unordered_map>
#include <vector>

namespace kse {

struct XsdtNode;

/// Narrows the settings tree to the rows whose path or value holds a text, to changed rows, or
/// both. The ancestors of an accepted row stay; its children are shown only by their own test.
///
/// A change of the filter is one change of layout: views keep what is expanded, current and
/// selected as far as it stays in sight, but not their scroll position; see `TreePosition`.
class SettingsFilterProxy : public QSortFilterProxyModel
{
    Q_OBJECT

public:
    explicit SettingsFilterProxy(QObject* parent = nullptr);

    /// Trimmed; an empty one accepts everything. Case doesn't matter.
    void setFilterText(const QString& text);
    QString filterText() const { return m_filterText; }

    /// Only modified values and what is itself marked for deletion.
    void setChangedOnly(bool changedOnly);
    bool isChangedOnly() const { return m_changedOnly; }

    void setSourceModel(QAbstractItemModel* model) override;
    Qt::ItemFlags flags(const QModelIndex& index) const override;

protected:
    /// Also true for the ancestors of what passes the test: so the base class, which looks
    /// through everything beneath a refused row, does so only where nothing is shown.
    bool filterAcceptsRow(int sourceRow, const QModelIndex& sourceParent) const override;

private:
    bool isFiltering() const { return m_changedOnly || !m_filterText.isEmpty(); }
    bool passes(const XsdtNode& node, bool pathMatches) const;
    void collectAccepted(const XsdtNode& root) const;
    void updateAccepted(const XsdtNode& changed);
    bool isAccepted(const XsdtNode& node) const;
    bool setAccepted(const XsdtNode& node, bool accepted) const;
    void refilter();

    QString m_filterText;
    bool m_changedOnly = false;
    /// Of each group, the rows that pass or hold what passes; a group without any may lack.
    mutable std::unordered_map<const XsdtNode*, std::vector<bool>> m_accepted;
    mutable bool m_isStale = true; ///< `m_accepted` is to be collected anew.
};

} // namespace kse
