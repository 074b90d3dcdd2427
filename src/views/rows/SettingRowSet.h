// SPDX-License-Identifier: MIT
#pragma once

#include <QMultiHash>
#include <QObject>

class QModelIndex;
class QPoint;
class QWidget;

namespace kse {

class SettingRow;
class SettingsModel;
class SettingsSchema;
struct XsdtNode;

/// The setting rows of one page: makes them, keeps them in step with the model, and shows the
/// context menu for their nodes. Two rows may show one node.
class SettingRowSet : public QObject
{
    Q_OBJECT

public:
    /// Whether the context menu offers to show the node in the tree of all settings.
    enum class Reveal { Offered, NotOffered };

    /// Model and schema stay the caller's; `page` owns this and is the parent of its menus.
    SettingRowSet(SettingsModel* model, const SettingsSchema* schema, QWidget* page,
                  Reveal reveal = Reveal::Offered);

    /// A new row for the value `node`, a child of `parent`, which owns it; the caller puts it into
    /// a layout.
    SettingRow* add(XsdtNode* node, QWidget* parent);

    /// Lets go of every row and node. The widgets stay with their parents.
    void clear();

    bool isEmpty() const { return m_rows.isEmpty(); }

    /// For every row, and for those still to come.
    void setReadOnly(bool readOnly);
    bool isReadOnly() const { return m_readOnly; }

    /// The shared context menu for `node`, whether or not it has a row. A choice that is the
    /// window's to carry out goes out as a signal.
    void showMenu(XsdtNode* node, const QPoint& globalPos);

signals:
    /// A value was turned down by its row; `text` is the reason.
    void message(const QString& text);
    void deleteRequested(kse::XsdtNode* node);
    void restoreRequested(kse::XsdtNode* node);
    void revealRequested(kse::XsdtNode* node);

private:
    void onDataChanged(const QModelIndex& topLeft, const QModelIndex& bottomRight);
    void refreshDeepRows();
    void refreshAll();

    SettingsModel* m_model = nullptr;
    const SettingsSchema* m_schema = nullptr;
    QWidget* m_page = nullptr;
    Reveal m_reveal = Reveal::Offered;
    bool m_readOnly = false;
    QMultiHash<const XsdtNode*, SettingRow*> m_rows;
};

} // namespace kse
