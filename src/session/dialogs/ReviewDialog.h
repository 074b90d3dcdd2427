// SPDX-License-Identifier: MIT
#pragma once

#include "views/model/TreeGuard.h"

#include <QDialog>
#include <QList>

class QCheckBox;
class QLabel;
class QLineEdit;
class QPlainTextEdit;
class QPushButton;
class QTreeWidget;
class QTreeWidgetItem;

namespace kse {

class SettingsSchema;
struct NamedNode;
struct XsdtDocument;
struct XsdtNode;

/// Lists what a save would write and lets the user take any of it back, at once and for good.
/// Accepted means: save. If the tree is replaced meanwhile, the dialog rejects itself.
class ReviewDialog : public QDialog
{
    Q_OBJECT

public:
    enum RowKind { EditRow = 0, DeletionRow = 1, RemovedValueRow = 2 };
    /// Of a row's first column: its `XsdtNode*`, null in a row that only tells something, and its
    /// `RowKind`.
    enum Role { NodeRole = Qt::UserRole, KindRole };

    /// `model` shows `document`. `schema`, unless null, tells what editors show for a value. All
    /// must outlive the dialog.
    ReviewDialog(SettingsModel* model, const XsdtDocument* document, QWidget* parent = nullptr,
                 const SettingsSchema* schema = nullptr);

protected:
    void showEvent(QShowEvent* event) override;
    void changeEvent(QEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;

private slots:
    void populate();
    static void populateDeletion(QTreeWidgetItem* row);
    void updateDetail();
    void updateRunning();
    void onRevert();
    void onModelReset();

private:
    void createWidgets();
    void createTree();
    void createLayout();
    void connectWidgets();
    void updateHidden(qsizetype pending);
    void updateDetailHeight();
    QList<NamedNode> filteredByPath(const QList<XsdtNode*>& nodes) const;
    void addDeletions(const QList<XsdtNode*>& nodes);
    void addEdits(const QList<XsdtNode*>& nodes);

    SettingsModel* m_model = nullptr;
    const XsdtDocument* m_document = nullptr;
    const SettingsSchema* m_schema = nullptr;
    TreeGuard m_guard; ///< For the nodes of the rows.

    QLabel* m_running = nullptr; ///< That PixInsight runs; hidden while it doesn't.
    QLabel* m_summary = nullptr;
    QLineEdit* m_filter = nullptr;
    QCheckBox* m_showEdits = nullptr;
    QCheckBox* m_showDeletions = nullptr;
    QTreeWidget* m_tree = nullptr;
    QPlainTextEdit* m_detail = nullptr;
    QLabel* m_remark = nullptr; ///< What the text in `m_detail` doesn't show by itself.
    QLabel* m_hidden = nullptr; ///< How much the filters hide; hidden while they hide nothing.
    QPushButton* m_revert = nullptr;
    QPushButton* m_cancel = nullptr;
    QPushButton* m_save = nullptr;
};

} // namespace kse
