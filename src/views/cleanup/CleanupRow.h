// SPDX-License-Identifier: MIT
#pragma once

#include <QList>
#include <QTreeWidgetItem>

namespace kse {

class SettingsModel;
struct XsdtNode;

/// A row of the list of what can be removed. It stands for nodes, and once these are all queued
/// for deletion it looks as they do in the tree of all settings. Parents stand for all beneath.
class CleanupRow : public QTreeWidgetItem
{
public:
    enum Column { EntryColumn, ValuesColumn, SizeColumn, StatusColumn, ColumnCount };

    /// The model stays the caller's; `name` loses its middle if it is long.
    CleanupRow(const SettingsModel& model, const QString& name);

    /// One more, with what it holds now.
    void addNode(XsdtNode* node, qsizetype valueCount, qint64 serializedSize);
    const QList<XsdtNode*>& nodes() const { return m_nodes; }
    qsizetype values() const { return m_values; }
    qint64 size() const { return m_size; } ///< In bytes, when the list was built.

    /// How many of the nodes go at the next save; as of the last `refresh`.
    qsizetype queued() const { return m_queued; }

    /// Brings looks and status up to date. Tells no view of it.
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

/// A row whose box ticks all beneath it, and tells of that once: told row by row, the status of
/// all rows would be looked up for each of them.
class CleanupParent : public CleanupRow
{
public:
    CleanupParent(const SettingsModel& model, const QString& title);

    void setData(int column, int role, const QVariant& value) override;
};

/// A row with a box of its own, by which its nodes are deleted.
class CleanupEntry : public CleanupRow
{
public:
    CleanupEntry(const SettingsModel& model, const QString& name);

    bool isWarn = false; ///< What it deletes is lost.
};

} // namespace kse
