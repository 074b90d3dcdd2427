// SPDX-License-Identifier: MIT
#pragma once

#include <QList>
#include <QTreeWidgetItem>

namespace kse {

class SettingsModel;
struct XsdtNode;

/// A row of the cleanup list, which stands for nodes. Once these are all queued for deletion, it
/// looks as they do in the tree of all settings. A parent stands for the nodes of all its rows.
class CleanupRow : public QTreeWidgetItem
{
public:
    enum Column { EntryColumn, ValuesColumn, SizeColumn, StatusColumn };

    /// The model stays the caller's; `name` loses its middle if it is long.
    CleanupRow(const SettingsModel& model, const QString& name);

    /// Adds `node`, with its number of values and its size as they are now.
    void addNode(XsdtNode* node);
    /// Adds the nodes of `row`.
    void addNodesOf(const CleanupRow& row);

    const QList<XsdtNode*>& nodes() const { return m_nodes; }
    qint64 size() const { return m_size; } ///< In bytes, when the nodes were added.

    /// How many of the nodes go at the next save, as of the last `refresh`.
    qsizetype queued() const { return m_queued; }

    /// Brings look and status up to date, without telling the view.
    void refresh();

    QVariant data(int column, int role) const override;

private:
    static bool isLook(int column, int role);
    QString columnText(int column) const;
    QString status() const;

    const SettingsModel& m_model;
    QList<XsdtNode*> m_nodes;
    qsizetype m_values = 0;
    qint64 m_size = 0;
    qsizetype m_queued = 0;
};

/// A row whose check box ticks all rows below it, with a single change signal. With one signal a
/// row, the status of all rows would be refreshed for each of them.
class CleanupParent : public CleanupRow
{
public:
    CleanupParent(const SettingsModel& model, const QString& title);

    void setData(int column, int role, const QVariant& value) override;
};

/// A row that can be ticked for deletion.
class CleanupEntry : public CleanupRow
{
public:
    CleanupEntry(const SettingsModel& model, const QString& name);

    bool isWarn = false; ///< PixInsight can't recreate what it deletes.
};

} // namespace kse
