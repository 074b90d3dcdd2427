// SPDX-License-Identifier: MIT
#include "views/rows/SettingRowSet.h"

#include "document/Depth.h"
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
    connect(model, &SettingsModel::dataChanged, this, &SettingRowSet::onDataChanged);
    connect(model, &SettingsModel::modelReset, this, &SettingRowSet::refreshAll);
    connect(model, &SettingsModel::edited, this, &SettingRowSet::refreshDeepRows);
}

SettingRow* SettingRowSet::add(XsdtNode* node, QWidget* parent)
{
    auto* row = new SettingRow(node, m_schema->describe(*node), m_model, parent);
    if (m_readOnly) {
        row->setReadOnly(true);
    }
    connect(row, &SettingRow::rejected, this, &SettingRowSet::message);
    connect(row, &SettingRow::menuRequested, this, &SettingRowSet::showMenu);
    m_rows.insert(node, row);
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
    NodeMenuCallbacks callbacks;
    callbacks.deleteNode = [this](XsdtNode* target) {
        emit deleteRequested(target);
    };
    callbacks.undoDeletion = [this](XsdtNode* target) {
        emit restoreRequested(target);
    };
    if (m_reveal == Reveal::Offered) {
        callbacks.reveal = [this](XsdtNode* target) {
            emit revealRequested(target);
        };
    }
    showNodeContextMenu(m_page, m_model, node, globalPos, m_readOnly, callbacks);
}

void SettingRowSet::onDataChanged(const QModelIndex& topLeft, const QModelIndex& bottomRight)
{
    if (m_rows.isEmpty()) {
        return;
    }
    const auto rows = m_rows; // a focus that moves on may create rows
    const XsdtNode* parent = m_model->nodeForIndex(topLeft.parent());
    const int first = topLeft.row();
    const int last = bottomRight.row();
    // Loops over the fewer: the rows in this set, or the rows of the model that changed.
    if (last - first >= rows.size()) {
        for (auto row = rows.cbegin(); row != rows.cend(); ++row) {
            const XsdtNode* node = row.key();
            if (node->parent == parent && node->rowInParent() >= first &&
                node->rowInParent() <= last) {
                row.value()->refresh();
            }
        }
        return;
    }
    for (int i = first; i <= last; ++i) {
        const XsdtNode* node = parent->children[static_cast<std::size_t>(i)].get();
        for (auto row = rows.constFind(node); row != rows.cend() && row.key() == node; ++row) {
            row.value()->refresh();
        }
    }
}

/// Nodes deeper than the model shows have no index, so `dataChanged` can't report them.
void SettingRowSet::refreshDeepRows()
{
    const auto rows = m_rows;
    for (auto row = rows.cbegin(); row != rows.cend(); ++row) {
        if (row.key()->depth > deepestShownLevel) {
            row.value()->refresh();
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
