// SPDX-License-Identifier: MIT
#pragma once

#include "document/XsdtNode.h"

#include <QAbstractItemModel>

namespace kse {

class DeletePolicy;
struct DeleteDecision;
struct XsdtDocument;

/// The tree of a document for Qt's views, and the only writer of its nodes: every view edits,
/// reverts and marks for deletion through it. It keeps no list of changes; the nodes do.
///
/// Qt's views and proxies recurse, so the model ends at 1,000 levels; what lies deeper stays in
/// the document and is saved with it.
class SettingsModel : public QAbstractItemModel
{
    Q_OBJECT

public:
    enum Column { SettingColumn, ValueColumn, TypeColumn, ColumnCount };
    enum Role { NodeRole = Qt::UserRole + 1 }; ///< The `XsdtNode*` of the row.
    static constexpr quint32 maximumDepth = 1000;

    /// While one lives, changes reach the views all at once when the outermost ends: one
    /// `refreshAll` and one `edited`, however many nodes changed. For commands that change many
    /// nodes. Nothing is emitted if nothing changed.
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

    /// Shows `document`, or nothing for null. It stays the caller's; pass null before its tree is
    /// replaced.
    void setDocument(XsdtDocument* document);
    XsdtDocument* document() const { return m_document; }

    /// Not owned. With null nothing can be deleted and nothing is locked.
    void setPolicy(const DeletePolicy* policy) { m_policy = policy; }
    const DeletePolicy* policy() const { return m_policy; }

    /// While set, values can't be edited and nothing can be marked for deletion.
    void setReadOnly(bool readOnly);
    bool isReadOnly() const { return m_readOnly; }

    /// Why a change is refused while read-only, for the user.
    static QString readOnlyReason();

    /// Rises with every `setDocument`, for `TreeGuard`.
    quint64 generation() const { return m_generation; }

    /// Invalid for the root, null and what lies deeper than the model shows.
    QModelIndex indexForNode(const XsdtNode* node, int column = SettingColumn) const;

    /// The document's root for an invalid index; null without a document.
    XsdtNode* nodeForIndex(const QModelIndex& index) const;

    [[nodiscard]] DeleteDecision deletionDecision(const XsdtNode* node) const;

    /// Whether the node's value is locked against editing, as module registry or version record.
    [[nodiscard]] bool isLocked(const XsdtNode* node) const;

    /// Writes `input` to `node`, a value that can be edited now, as `setData` does: the one way for
    /// nodes deeper than the model shows. False if nothing changed; what is turned down goes out
    /// by `editRejected`.
    bool setValue(XsdtNode* node, const QString& input);

    /// Queues `node` for deletion; Warn needs no less than Safe here, since the caller has asked.
    /// True also if it was inside a deletion already. On refusal `reason`, unless null, gets the
    /// sentence for the user and nothing has changed.
    [[nodiscard]] bool markForDeletion(XsdtNode* node, QString* reason = nullptr);

    /// Takes back the mark of `node` itself, also while read-only; nothing if it has none.
    void undoDeletion(XsdtNode* node);

    /// Takes back the edit of `node`; nothing if it is unchanged.
    void revertValue(XsdtNode* node);

    /// Takes back everything that is pending. Resets the model.
    void revertAll();

    /// Has every view read every row anew, without a reset: one `layoutChanged`, then one
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
    /// Some node changed its pending state.
    void edited();
    /// A value was turned down; `reason` is ready for the status line.
    void editRejected(const QString& reason);

private:
    void notifyRow(const XsdtNode& node, int lastColumn);
    void notifySubtree(const XsdtNode& node);
    void notifyBelow(const XsdtNode& node);

    XsdtDocument* m_document = nullptr;
    const DeletePolicy* m_policy = nullptr;
    bool m_readOnly = false;
    quint64 m_generation = 0;
    int m_batchDepth = 0;
    bool m_batchChanged = false;
};

} // namespace kse
