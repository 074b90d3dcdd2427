// SPDX-License-Identifier: MIT
#pragma once

#include "schema/SettingsSchema.h"
#include "views/model/TreeGuard.h"

#include <QWidget>

class QLabel;
class QToolButton;
class QVBoxLayout;

namespace kse {

class ValueEditor;
struct XsdtNode;

/// One setting with its name, its description, an editor and a button that reverts it. Reads from
/// the node and writes through the model, but only what the user enters.
class SettingRow : public QWidget
{
    Q_OBJECT

public:
    /// `node` is a value of the document that `model` holds. Once the model holds another document,
    /// the row doesn't touch `node` any more.
    SettingRow(XsdtNode* node, const VariableInfo& info, SettingsModel* model,
               QWidget* parent = nullptr);

    XsdtNode* node() const { return m_node; }

    /// Shows the present state of the node. Writes nothing.
    void refresh();

    /// While set, which is while PixInsight runs, the setting can be read but not changed.
    void setReadOnly(bool readOnly);

    /// Shows a line with the groups above the setting, for lists from all over the tree.
    void setShowPath(bool showPath);

    /// What a screen reader says of the row first, apart from its name.
    void setRemark(const QString& remark);

    /// Whether the label, the key, the description or the value of a string contains `text`,
    /// ignoring case. `info` describes `node`, which needs no row.
    [[nodiscard]] static bool matches(const XsdtNode& node, const VariableInfo& info,
                                      const QString& text);

signals:
    /// The row refused a value before it reached the model.
    void rejected(const QString& reason);
    /// The user asked for the node's context menu.
    void menuRequested(kse::XsdtNode* node, const QPoint& globalPos);

protected:
    void paintEvent(QPaintEvent* event) override;
    void contextMenuEvent(QContextMenuEvent* event) override;
    void changeEvent(QEvent* event) override;
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    void createLabels();
    void createEditor();
    void createRevertButton();
    void createLayout();

    void commit(const QString& text);
    void revert();

    void refreshRevertButton(bool isChanged);
    void refreshEditor();
    void refreshDescription(bool isChanged);
    void updateFonts();
    void updateColors();

    XsdtNode* m_node = nullptr;
    VariableInfo m_info; ///< With a label that is never blank.
    QString m_remark;
    SettingsModel* m_model = nullptr;
    TreeGuard m_guard; ///< The row's dialog and its deferred deletion may outlast the node.
    bool m_rowReadOnly = false;
    bool m_protectedType = false; ///< The node's type can't be edited.

    QVBoxLayout* m_texts = nullptr;
    QLabel* m_nameLabel = nullptr;
    QLabel* m_pathLabel = nullptr;
    QLabel* m_descriptionLabel = nullptr;
    QToolButton* m_revertButton = nullptr;
    ValueEditor* m_editor = nullptr;
};

} // namespace kse
