// SPDX-License-Identifier: MIT
#pragma once

#include <QList>
#include <QWidget>

#include <functional>

class QLabel;
class QPushButton;
class QTreeWidget;
class QTreeWidgetItem;

namespace kse {

class CleanupEntry;
class CleanupRow;
class SettingsModel;
struct CleanupOffer;
struct XsdtDocument;
struct XsdtNode;

/// The Cleanup page, for removing data in bulk: what PixInsight recreates, and saved settings of
/// tools and scripts, each with its size. The model queues the ticked entries for deletion.
class CleanupView : public QWidget
{
    Q_OBJECT

public:
    /// `model` isn't owned and must outlive the page; its policy says what is offered.
    explicit CleanupView(SettingsModel* model, QWidget* parent = nullptr);

    /// Lists what `document` holds, or nothing for null. Sizes are not updated later. Keeps node
    /// pointers: pass null before the tree is replaced.
    void setDocument(const XsdtDocument* document);

    /// While set, which is while PixInsight runs, nothing on the page changes the document.
    void setReadOnly(bool readOnly);

    /// Whether to ask before saved settings are queued. On at the start.
    void setConfirmWarn(bool confirm) { m_confirmWarn = confirm; }

    /// Ticks every entry; with `skipWarn`, unticks the saved settings instead.
    void tickAll(bool skipWarn);

    /// Queues the ticked entries for deletion and unticks them. Asks first if saved settings are
    /// among them; on any answer but yes all stays as it was.
    void queueTicked();

signals:
    /// The outcome of queueing or undoing, for the status line.
    void message(const QString& text);

protected:
    void changeEvent(QEvent* event) override;

private slots:
    void refreshStatus();
    void onUndo();
    void onContextMenu(const QPoint& pos);

private:
    void createTree();
    void createStatusRow();
    void createLayout();
    void connectWidgets();
    void updateIndentation();
    void addWholeGroup(const CleanupOffer& offer);
    void addMatches(const CleanupOffer& offer);
    CleanupEntry* addNodeEntry(QTreeWidgetItem* parent, const QString& name, XsdtNode* node);
    CleanupEntry* addEntry(QTreeWidgetItem* parent, const QString& name,
                           const QString& explanation);
    QList<CleanupEntry*> tickedEntries() const;
    void setTicks(const std::function<bool(const CleanupEntry&)>& isTicked);
    bool confirmWarnings(const QList<CleanupEntry*>& entries);

    SettingsModel* m_model = nullptr;
    bool m_readOnly = false;
    bool m_confirmWarn = true;
    QTreeWidgetItem* m_safeRoot = nullptr; ///< Null while the tree is empty, as `m_warnRoot` is.
    QTreeWidgetItem* m_warnRoot = nullptr;
    QList<CleanupEntry*> m_entries; ///< Those that can be ticked for deletion, from top to bottom.
    QList<CleanupRow*> m_rows;      ///< Every row that stands for nodes.
    QTreeWidget* m_tree = nullptr;
    QLabel* m_statusLabel = nullptr;
    QPushButton* m_undoButton = nullptr;
    QPushButton* m_queueButton = nullptr;
};

} // namespace kse
