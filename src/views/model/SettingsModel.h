// SPDX-License-Identifier: MIT
#pragma once

#include "document/XsdtNode.h"

#include <QAbstractItemModel>

namespace kse {

class DeletePolicy;
struct DeleteDecision;
struct XsdtDocument;

/// The tree of a document for Qt's views, and the only writer of its nodes: every view edits,
/// reverts and marks for deletion through it. Changes are kept on the nodes, not in a list.
///
/// The model ends at `deepestShownLevel`.
class SettingsModel : public QAbstractItemModel
{
    Q_OBJECT

public:
    enum Column { SettingColumn, ValueColumn, TypeColumn, ColumnCount };
    enum Role { NodeRole = Qt::UserRole + 1 }; ///< The `XsdtNode*` of the row.

    /// Collects changes for commands that change many nodes. When the outermost batch ends, the
    /// views get one `refreshAll` and one `edited` for all of them, or nothing if nothing changed.
    class Batch
    {
    public:
        explicit Batch(SettingsModel& model);
        ~Batch();
        Batch(const Batch&) = delete;
        Batch& operator=(const Batch&) = delete;

    private:
        SettingsModel& m_model;
    };

    explicit SettingsModel(QObject* parent = nullptr);

    /// Shows `document`, or nothing for null. The caller keeps it, and passes null before its tree
    /// is replaced.
    void setDocument(XsdtDocument* document);
    XsdtDocument* document() const { return m_document; }

    /// Not owned. With null, nothing can be deleted and nothing is locked.
    void setPolicy(const DeletePolicy* policy) { m_policy = policy; }
    const DeletePolicy* policy() const { return m_policy; }

    /// While set, values can't be edited and nothing can be marked for deletion.
    void setReadOnly(bool readOnly);
    bool isReadOnly() const { return m_readOnly; }

    /// Why a change is refused while read-only, for the user.
    static QString readOnlyReason();

    /// Rises with every `setDocument`, for `TreeGuard`.
    quint64 generation() const { return m_generation; }

    /// Invalid for the root, for null and for nodes deeper than the model shows.
    QModelIndex indexForNode(const XsdtNode* node, int column = SettingColumn) const;

    /// The document's root for an invalid index; null without a document.
    XsdtNode* nodeForIndex(const QModelIndex& index) const;

    /// The node of an index of any view, through its proxies; null for an invalid index.
    static XsdtNode* nodeOf(const QModelIndex& index);

    [[nodiscard]] DeleteDecision deletionDecision(const XsdtNode* node) const;

    /// Whether the node is part of the module registry or a version record, which can't be edited.
    [[nodiscard]] bool isLocked(const XsdtNode* node) const;

    /// Writes `input` to the value `node`, like `setData` but also for nodes deeper than the model
    /// shows. False if nothing changed. Emits `editRejected` if `input` or the node is refused;
    /// nothing if the node can't be edited now.
    bool setValue(XsdtNode* node, const QString& input);

    /// Queues `node` for deletion. Doesn't ask: at level Warn the caller has done so. True also if
    /// the node is inside a deletion already. On refusal nothing changes, and `reason`, unless
    /// null, gets the sentence for the user.
    [[nodiscard]] bool markForDeletion(XsdtNode* node, QString* reason = nullptr);

    /// The same for all `nodes`, in a batch. Returns those refused; `reason` is of the first.
    QList<XsdtNode*> markAllForDeletion(const QList<XsdtNode*>& nodes, QString* reason = nullptr);

    /// Removes the mark of `node` itself, also while read-only. Does nothing without one.
    void undoDeletion(XsdtNode* node);

    /// The same for all `nodes`, in a batch. Returns whether one of them was marked itself.
    bool undoDeletions(const QList<XsdtNode*>& nodes);

    /// Takes back the edit of `node`. Does nothing without one.
    void revertValue(XsdtNode* node);

    /// Takes back all pending changes. Resets the model.
    void revertAll();

    /// Makes the views read all rows again without a reset: one `layoutChanged`, then one
    /// `dataChanged` for each group.
    void refreshAll();

    QModelIndex index(int row, int column, const QModelIndex& parent = {}) const override;
    QModelIndex parent(const QModelIndex& index) const override;
    int rowCount(const QModelIndex& parent = {}) const override;
    int columnCount(const QModelIndex& parent = {}) const override;
    QVariant data(const QModelIndex& index, int role = Qt::DisplayRole) const override;
    bool setData(const QModelIndex& index, const QVariant& value, int role = Qt::EditRole) override;
    QVariant headerData(int section, Qt::Orientation orientation,
                        int role = Qt::DisplayRole) const override;
    Qt::ItemFlags flags(const QModelIndex& index) const override;

signals:
    /// The pending changes have changed: those of `node` or, for null, of any number of nodes.
    void edited(const kse::XsdtNode* node = nullptr);
    /// A value was refused. `reason` is a sentence for the status bar.
    void editRejected(const QString& reason);

private:
    void notifyChanged(const XsdtNode& node, int lastColumn = TypeColumn);
    void notifyBelow(const XsdtNode& node);

    XsdtDocument* m_document = nullptr;
    const DeletePolicy* m_policy = nullptr;
    bool m_readOnly = false;
    quint64 m_generation = 0;
    int m_batchDepth = 0;
    bool m_batchChanged = false;
};

} // namespace kse
