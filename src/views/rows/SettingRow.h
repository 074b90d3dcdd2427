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

/// One setting with its name, its description, the editor that suits it and an arrow that takes
/// its change back. Writes through the model and reads from the node; what the user doesn't
/// touch is never written.
class SettingRow : public QWidget
{
    Q_OBJECT

public:
    /// Made for a value of the document that `model` holds. Once the model holds the next one,
    /// controls and `refresh` leave `node` alone, which may be gone.
    SettingRow(XsdtNode* node, const VariableInfo& info, SettingsModel* model,
               QWidget* parent = nullptr);

    XsdtNode* node() const { return m_node; }

    /// Brings the row up to date with its node. Writes nothing.
    void refresh();

    /// While PixInsight runs.
    void setReadOnly(bool readOnly);

    /// A line that tells the groups that hold the setting, for lists from all over the tree.
    void setShowPath(bool showPath);

    /// Whether label, key, description or, of a string, the value holds `text`, ignoring case.
    [[nodiscard]] bool matches(const QString& text) const;

signals:
    /// A value was turned down here, before it reached the model.
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
    void layOut();

    void commit(const QString& text);
    void revert();

    void refreshRevertButton(bool isChanged);
    void refreshEditor();
    void refreshDescription(bool isChanged);
    void updateFonts();
    void updateColors();

    XsdtNode* m_node = nullptr;
    VariableInfo m_info; ///< Its label is never blank.
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
