// SPDX-License-Identifier: MIT
#include "views/rows/SettingRowSet.h"

#include "document/XsdtNode.h"
#include "schema/SettingsSchema.h"
#include "views/model/SettingsModel.h"
#include "views/rows/NodeContextMenu.h"
#include "views/rows/SettingRow.h"

#include <QWidget>

namespace kse {

SettingRowSet::SettingRowSet(SettingsModel* model, const SettingsSchema* schema, QWidget* page,
                             Reveal reveal)
    : QObject(page)
    , m_model(model)
    , m_schema(schema)
    , m_page(page)
    , m_reveal(reveal)
{
    connect(model, &SettingsModel::edited, this, &SettingRowSet::refreshWithin);
    connect(model, &SettingsModel::layoutChanged, this, &SettingRowSet::refreshAll);
    connect(model, &SettingsModel::modelReset, this, &SettingRowSet::refreshAll);
}

SettingRow* SettingRowSet::add(XsdtNode* node, QWidget* parent)
{
    auto* row = new SettingRow(node, m_schema->describe(*node), m_model, parent);
    if (m_readOnly) {
        row->setReadOnly(true);
    }
    connect(row, &SettingRow::rejected, this, &SettingRowSet::message);
    connect(row, &SettingRow::menuRequested, this, &SettingRowSet::showMenu);
    m_rows.append(row);
    return row;
}

void SettingRowSet::clear()
{
    // The rows may live until the next turn of the event loop, but their nodes don't.
    for (SettingRow* row : std::as_const(m_rows)) {
        row->disconnect(this);
    }
    m_rows.clear();
}

void SettingRowSet::setReadOnly(bool readOnly)
{
    if (readOnly == m_readOnly) { // a refresh would take what is being typed
        return;
    }
    m_readOnly = readOnly;
    const auto rows = m_rows;
    for (SettingRow* row : rows) {
        row->setReadOnly(readOnly);
    }
}

void SettingRowSet::showMenu(XsdtNode* node, const QPoint& globalPos)
{
    NodeMenuCallbacks callbacks{[this](XsdtNode* target) { emit deleteRequested(target); },
                                [this](XsdtNode* target) { emit restoreRequested(target); },
                                {}};
    if (m_reveal == Reveal::Offered) {
        callbacks.reveal = [this](XsdtNode* target) {
            emit revealRequested(target);
        };
    }
    showNodeContextMenu(m_page, m_model, node, globalPos, m_readOnly, callbacks);
}

/// Refreshes the rows of `changed` and of the nodes below it. After a change of many nodes the
/// layout has changed too, or the model was reset.
void SettingRowSet::refreshWithin(const XsdtNode* changed)
{
    const auto rows = m_rows; // a focus that moves on may create rows
    for (SettingRow* row : rows) {
        const XsdtNode* node = row->node();
        while (node && node != changed) {
            node = node->parent;
        }
        if (node) {
            row->refresh();
        }
    }
}

void SettingRowSet::refreshAll()
{
    const auto rows = m_rows;
    for (SettingRow* row : rows) {
        row->refresh();
    }
}

} // namespace kse
