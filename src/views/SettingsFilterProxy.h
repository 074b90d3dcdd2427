// SPDX-License-Identifier: MIT
#pragma once

#include <QSortFilterProxyModel>

namespace kse {

/// Narrows the settings tree to the rows whose path or value holds a text, to changed rows, or
/// both. The ancestors of an accepted row stay; its children are shown only by their own test.
/// A change of the filter resets the proxy: whoever shows it finds selection and scroll position
/// again by node.
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

protected:
    bool filterAcceptsRow(int sourceRow, const QModelIndex& sourceParent) const override;

private:
    QString m_filterText;
    bool m_changedOnly = false;
};

} // namespace kse
