// SPDX-License-Identifier: MIT
#pragma once

#include <QList>
#include <QObject>

class QPoint;
class QWidget;

namespace kse {

class SettingRow;
class SettingsModel;
class SettingsSchema;
struct XsdtNode;

/// The setting rows of one page. Creates them, refreshes them when the model changes, and shows the
/// context menu of their nodes. Two rows may show the same node.
class SettingRowSet : public QObject
{
    Q_OBJECT

public:
    /// Whether the context menu offers to show the node in the tree of all settings.
    enum class Reveal { Offered, NotOffered };

    /// `model` and `schema` aren't owned. `page` owns this and is the parent of the menus.
    SettingRowSet(SettingsModel* model, const SettingsSchema* schema, QWidget* page,
                  Reveal reveal = Reveal::Offered);

    /// A new row for the value `node`. It is owned by `parent`; the caller adds it to a layout.
    SettingRow* add(XsdtNode* node, QWidget* parent);

    /// Forgets all rows and nodes. The widgets stay with their parents.
    void clear();

    /// For all rows, also those added later.
    void setReadOnly(bool readOnly);
    bool isReadOnly() const { return m_readOnly; }

    /// Shows the context menu for `node`, which needs no row. The signals below ask for what the
    /// window has to do.
    void showMenu(XsdtNode* node, const QPoint& globalPos);

signals:
    /// A row refused a value. `text` is the reason.
    void message(const QString& text);
    void deleteRequested(kse::XsdtNode* node);
    void restoreRequested(kse::XsdtNode* node);
    void revealRequested(kse::XsdtNode* node);

private:
    void refreshWithin(const XsdtNode* changed);
    void refreshAll();

    SettingsModel* m_model = nullptr;
    const SettingsSchema* m_schema = nullptr;
    QWidget* m_page = nullptr;
    Reveal m_reveal = Reveal::Offered;
    bool m_readOnly = false;
    QList<SettingRow*> m_rows;
};

} // namespace kse
