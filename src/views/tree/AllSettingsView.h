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

/// The page with the tree of all settings, which can be filtered and edited in place. It shows the
/// document that the model holds, and is view-only while the model is.
class AllSettingsView : public QWidget
{
    Q_OBJECT

public:
    /// `model` isn't owned and must outlive the page.
    explicit AllSettingsView(SettingsModel* model, QWidget* parent = nullptr);

    /// Clears the filter, then selects `node` and scrolls to it. What lies deeper than the tree
    /// shows is revealed by the nearest group above it. Null does nothing.
    void reveal(const XsdtNode* node);

    void expandAll();

    /// Collapses all but the groups that lead to the preferences, and those themselves.
    void resetExpansion();

    /// Takes back everything that is pending. What is expanded, current and in sight stays so.
    void revertAll();

signals:
    /// What became of an edit, for the status line.
    void message(const QString& text);
    void deleteRequested(kse::XsdtNode* node);
    void restoreRequested(kse::XsdtNode* node);

private:
    void createFilter();
    void createTree();
    void applyFilter(const QString& text);
    void applyChangedOnly(bool changedOnly);
    void expandPreferences();
    void deleteSelected();
    void showContextMenu(const QPoint& pos);
    QModelIndex indexFor(const XsdtNode* node) const;
    XsdtNode* nodeFor(const QModelIndex& index) const;
    QList<const XsdtNode*> expandedGroups() const;

    SettingsModel* m_model = nullptr;
    SettingsFilterProxy* m_proxy = nullptr;
    QLineEdit* m_treeFilter = nullptr;
    QCheckBox* m_changedOnly = nullptr;
    SettingsTree* m_tree = nullptr;
};

} // namespace kse
