// SPDX-License-Identifier: MIT
#include "views/cleanup/UnusedModulesView.h"

#include "document/XsdtDocument.h"
#include "views/cleanup/FormatBytes.h"
#include "views/cleanup/UnusedModuleCard.h"
#include "views/model/SettingsModel.h"
#include "views/rows/ConfirmDeletion.h"
#include "views/rows/SettingRowSet.h"
#include "widgets/Named.h"
#include "widgets/PlainText.h"
#include "widgets/TabOrder.h"
#include "widgets/WidgetColumn.h"
#include "widgets/WrappedLabel.h"
#include "widgets/WrappingRow.h"

#include <QPushButton>
#include <QVBoxLayout>

#include <utility>

using namespace Qt::StringLiterals;

namespace kse {

UnusedModulesView::UnusedModulesView(SettingsModel* model, const SettingsSchema* schema,
                                     QWidget* parent)
    : QWidget(parent)
    , m_model(model)
    , m_rowSet(new SettingRowSet(model, schema, this))
{
    createWidgets();
    connectWidgets();
    updateSummary();
}

void UnusedModulesView::createWidgets()
{
    auto* note = new WrappedLabel(
        tr("Modules that still have saved data but are <b>not in PixInsight's current module "
           "list</b>: uninstalled, renamed or replaced. Expand one to see its entries and values. "
           "The list is what PixInsight last recorded, so a module that failed to load or was "
           "disabled for a while would appear here too. Nothing is removed until you save."),
        Qt::RichText, u"intro"_s);
    m_summary = new WrappedLabel({}, Qt::PlainText, u"summary"_s);

    m_column = named(u"column"_s, new WidgetColumn(2));
    m_column->setAccessibleName(tr("Unused modules"));
    m_column->widget()->setObjectName(u"listWidget"_s);

    auto* layout = new QVBoxLayout(this);
    layout->setContentsMargins(0, 6, 0, 0);
    layout->addWidget(note);
    layout->addWidget(m_summary);
    layout->addWidget(m_column, 1);
    layout->addWidget(createButtonRow());
}

QWidget* UnusedModulesView::createButtonRow()
{
    auto* row = new QWidget;
    m_tickAllButton = named(u"tickAllButton"_s, new QPushButton(tr("Tick all"), row));
    m_undoButton = named(u"undoButton"_s, new QPushButton(tr("Undo queued deletion"), row));
    m_undoButton->setToolTip(tr("Tick a queued module again to undo its deletion."));
    m_queueButton =
        named(u"queueButton"_s, new QPushButton(tr("Queue ticked modules for deletion"), row));

    auto* layout = new WrappingRow(Qt::AlignTrailing);
    row->setLayout(layout);
    layout->addWidget(m_tickAllButton);
    layout->addItem(new QSpacerItem(0, 0, QSizePolicy::Expanding));
    layout->addWidget(m_undoButton);
    layout->addWidget(m_queueButton);
    return row;
}

void UnusedModulesView::connectWidgets()
{
    connect(m_tickAllButton, &QPushButton::clicked, this, &UnusedModulesView::onTickAll);
    connect(m_undoButton, &QPushButton::clicked, this, &UnusedModulesView::onUndo);
    connect(m_queueButton, &QPushButton::clicked, this, &UnusedModulesView::onQueue);
    connect(m_rowSet, &SettingRowSet::message, this, &UnusedModulesView::message);
    connect(m_rowSet, &SettingRowSet::deleteRequested, this, &UnusedModulesView::deleteRequested);
    connect(m_rowSet, &SettingRowSet::restoreRequested, this, &UnusedModulesView::restoreRequested);
    connect(m_rowSet, &SettingRowSet::revealRequested, this, &UnusedModulesView::revealRequested);
    connect(m_model, &SettingsModel::edited, this, [this](const XsdtNode* changed) {
        m_contents.forget(changed);
        updateSummary();
    });
}

void UnusedModulesView::setDocument(const XsdtDocument* document)
{
    m_document = document;
    refresh();
}

void UnusedModulesView::refresh()
{
    m_rowSet->clear();
    m_contents.forget(nullptr);
    for (UnusedModuleCard* card : std::exchange(m_cards, {})) {
        card->disconnect(this); // it is deleted later
    }
    m_column->clear();
    m_modules = m_document ? ModuleCatalog::unusedModules(*m_document) : QList<ModuleInfo>();
    m_ticked.assign(size_t(m_modules.size()), false);
    updateSummary();
    m_column->append(m_modules.size(), [this](qsizetype i) { return createCard(i); });
}

UnusedModuleCard* UnusedModulesView::createCard(qsizetype i)
{
    const ModuleInfo& module = m_modules.at(i);
    auto* card = new UnusedModuleCard(module, m_rowSet, m_column->widget());
    card->setTicked(m_ticked[size_t(i)]);
    card->refresh(m_contents.of(module));
    connect(card, &UnusedModuleCard::toggled, this, [this, card, i] {
        m_ticked[size_t(i)] = card->isTicked();
        updateSummary();
    });
    m_cards.append(card);
    return card;
}

void UnusedModulesView::setReadOnly(bool readOnly)
{
    m_rowSet->setReadOnly(readOnly);
    updateSummary();
}

QStringList UnusedModulesView::moduleNames() const
{
    QStringList names;
    for (const ModuleInfo& module : m_modules) {
        names.append(module.name);
    }
    return names;
}

void UnusedModulesView::expandCard(const QString& name)
{
    const qsizetype index = moduleNames().indexOf(name);
    if (index >= 0) {
        m_column->complete();
        m_cards.at(index)->expand();
    }
}

void UnusedModulesView::updateSummary()
{
    int queued = 0;
    int ticked = 0;
    qint64 tickedBytes = 0;
    for (qsizetype i = 0; i < m_modules.size(); ++i) {
        const ModuleContent content = m_contents.of(m_modules.at(i));
        queued += content.queuedGroups > 0 ? 1 : 0;
        if (m_ticked[size_t(i)]) {
            ++ticked;
            tickedBytes += content.bytes;
        }
        if (i < m_cards.size()) {
            m_cards.at(i)->refresh(content);
        }
    }
    const bool canQueue = !m_rowSet->isReadOnly() && ticked > 0;
    setEnabledOrPass(*m_queueButton, canQueue, *m_column);
    setEnabledOrPass(*m_undoButton, canQueue, *m_column);
    m_tickAllButton->setEnabled(!m_modules.isEmpty());
    if (!m_document) {
        m_summary->clear();
    } else if (m_modules.isEmpty()) {
        m_summary->setText(
            tr("No unused module data: every module with saved data is in the module list."));
    } else if (ticked == 0) {
        m_summary->setText(tr("%1 unused module(s); %2 queued for deletion")
                               .arg(QString::number(m_modules.size()), QString::number(queued)));
    } else {
        m_summary->setText(tr("%1 unused module(s); %2 ticked (about %3); %4 queued for deletion")
                               .arg(QString::number(m_modules.size()), QString::number(ticked),
                                    formatBytes(tickedBytes), QString::number(queued)));
    }
}

QList<ModuleInfo> UnusedModulesView::tickedModules() const
{
    QList<ModuleInfo> modules;
    for (qsizetype i = 0; i < m_modules.size(); ++i) {
        if (m_ticked[size_t(i)]) {
            modules.append(m_modules.at(i));
        }
    }
    return modules;
}

void UnusedModulesView::setTicks(bool ticked)
{
    m_ticked.assign(m_ticked.size(), ticked);
    for (UnusedModuleCard* card : std::as_const(m_cards)) {
        card->setTicked(ticked);
    }
}

/// Unticks the modules and returns their nodes.
QList<XsdtNode*> UnusedModulesView::takeTicked()
{
    QList<XsdtNode*> nodes;
    for (const ModuleInfo& module : tickedModules()) {
        nodes += module.nodes;
    }
    setTicks(false);
    return nodes;
}

void UnusedModulesView::onTickAll()
{
    setTicks(true);
    updateSummary();
}

void UnusedModulesView::onQueue()
{
    QStringList names;
    for (const ModuleInfo& module : tickedModules()) {
        names.append(abbreviated(module.name, lineLimit));
    }
    const int modules = static_cast<int>(names.size());
    const QString text = tr("This removes the saved data of %n module(s) that are not in the "
                            "module list.",
                            nullptr, modules);
    if (modules == 0 ||
        !confirmDeletion(this, *m_model, tr("Delete unused module data?"), text, names)) {
        return;
    }
    if (m_rowSet->isReadOnly()) { // PixInsight was started while the box was open
        emit message(SettingsModel::readOnlyReason());
        return;
    }
    const QList<XsdtNode*> nodes = takeTicked();
    QStringList refused;
    for (const XsdtNode* node : m_model->markAllForDeletion(nodes)) {
        refused.append(node->path());
    }
    updateSummary();
    if (refused.isEmpty()) {
        emit message(
            tr("Queued %1 entries of %n module(s) for deletion. Save to apply.", nullptr, modules)
                .arg(nodes.size()));
    } else {
        emit message(tr("Queued %1 entries; %2 protected entries were left alone (%3).")
                         .arg(QString::number(nodes.size() - refused.size()),
                              QString::number(refused.size()),
                              abbreviated(refused.join(u", "_s), lineLimit)));
    }
}

void UnusedModulesView::onUndo()
{
    const bool isAnyMarked = m_model->undoDeletions(takeTicked());
    updateSummary();
    if (!isAnyMarked) {
        emit message(tr("No ticked module is queued for deletion. To undo a part of a module, use "
                        "that entry's right-click menu."));
    }
}

} // namespace kse
