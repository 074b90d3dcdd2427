// SPDX-License-Identifier: MIT
#pragma once

#include <QWidget>

class QCheckBox;
class QLineEdit;

namespace kse {

class SettingsFilterProxy;
class SettingsModel;
class SettingsTree;
struct XsdtNode;

/// The page with the tree of all settings, which can be filtered and edited in place. Shows the
/// document of the model, and is read-only while the model is.
class AllSettingsView : public QWidget
{
    Q_OBJECT

public:
    /// `model` isn't owned and must outlive the page.
    explicit AllSettingsView(SettingsModel* model, QWidget* parent = nullptr);

    /// Clears the filter, then selects `node` and scrolls to it. For a node deeper than the tree
    /// shows, selects its nearest ancestor instead. Null does nothing.
    void reveal(const XsdtNode* node);

    void expandAll();

    /// Collapses all groups but the preferences and the groups above them.
    void resetExpansion();

    /// Takes back all pending changes. Keeps expansion, current cell and scroll position.
    void revertAll();

signals:
    /// A remark on an edit, for the status bar.
    void message(const QString& text);
    void deleteRequested(kse::XsdtNode* node);
    void restoreRequested(kse::XsdtNode* node);

private slots:
    void onFilterChanged(const QString& text);
    void onChangedOnlyToggled(bool changedOnly);
    void onEditedRowHidden(const QString& key);
    void onDeleteKey();
    void onContextMenuRequested(const QPoint& pos);

private:
    void createFilter();
    void createTree();
    void createLayout();
    QModelIndex indexFor(const XsdtNode* node) const;
    QList<const XsdtNode*> expandedGroups() const;
    int shownValues() const;

    SettingsModel* m_model = nullptr;
    SettingsFilterProxy* m_proxy = nullptr;
    QLineEdit* m_treeFilter = nullptr;
    QCheckBox* m_changedOnly = nullptr;
    SettingsTree* m_tree = nullptr;
};

} // namespace kse
