// SPDX-License-Identifier: MIT
#pragma once

#include <QList>
#include <QWidget>

class QLabel;
class QPushButton;
class QTreeWidget;
class QTreeWidgetItem;

namespace kse {

class CleanupEntry;
class CleanupRow;
class SettingsModel;
struct CleanupGroup;
struct NamedNode;
struct XsdtDocument;
struct XsdtNode;

/// The page on which data is removed in bulk: what PixInsight recreates, and saved settings of
/// tools and scripts, each with its size. What is ticked is queued for deletion through the model.
class CleanupView : public QWidget
{
    Q_OBJECT

public:
    /// `model` isn't owned and must outlive the page; its policy says what is offered.
    explicit CleanupView(SettingsModel* model, QWidget* parent = nullptr);

    /// Builds the list anew for `document`, or empties it for null. Sizes are those of now.
    /// Pass null before the tree is replaced.
    void setDocument(XsdtDocument* document);

    void setReadOnly(bool readOnly);

    /// Whether deleting saved settings is asked about first. On at the start.
    void setConfirmWarn(bool confirm) { m_confirmWarn = confirm; }

    /// Ticks all there is; with `skipWarn` without the saved settings, which are then unticked.
    void tickAll(bool skipWarn);

    /// Queues what is ticked for deletion, after a question if saved settings are among it, and
    /// unticks it.
    void queueTicked();

signals:
    /// What came of queueing, for the status line.
    void message(const QString& text);

private:
    void createWidgets();
    void createLayout();
    void undoTicked();
    bool undo(const QList<XsdtNode*>& nodes);
    void showRowMenu(const QPoint& pos);
    void refreshStatus();
    void addWholeGroup(const CleanupGroup& group);
    void addMatches(const CleanupGroup& group);
    void addWarnEntries();
    CleanupEntry* addEntry(QTreeWidgetItem* parent, const NamedNode& named, bool isWarn);
    QList<CleanupEntry*> tickedEntries() const;
    void untick(const QList<CleanupEntry*>& entries);
    bool confirmWarnings(const QList<CleanupEntry*>& entries);

    SettingsModel* m_model = nullptr;
    XsdtDocument* m_document = nullptr;
    bool m_readOnly = false;
    bool m_confirmWarn = true;
    QTreeWidgetItem* m_safeRoot = nullptr; ///< Null while the tree is empty, as `m_warnRoot` is.
    QTreeWidgetItem* m_warnRoot = nullptr;
    QList<CleanupEntry*> m_entries; ///< With boxes of their own, from top to bottom.
    QList<CleanupRow*> m_rows;      ///< All that stand for nodes.
    QTreeWidget* m_tree = nullptr;
    QLabel* m_statusLabel = nullptr;
    QPushButton* m_undoButton = nullptr;
    QPushButton* m_queueButton = nullptr;
};

} // namespace kse
