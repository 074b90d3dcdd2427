// SPDX-License-Identifier: MIT
#include "views/cleanup/UnusedModulesView.h"

#include "document/Leaves.h"
#include "document/NamedNode.h"
#include "document/TreeWalk.h"
#include "document/XsdtDocument.h"
#include "views/cleanup/FormatBytes.h"
#include "views/model/SettingsModel.h"
#include "views/rows/ConfirmDeletion.h"
#include "views/rows/SettingRow.h"
#include "views/rows/SettingRowSet.h"
#include "widgets/CollapsibleSection.h"
#include "widgets/PlainText.h"
#include "widgets/TabOrder.h"
#include "widgets/WidgetColumn.h"
#include "widgets/WrappingRow.h"

#include <QCheckBox>
#include <QLabel>
#include <QPushButton>
#include <QSignalBlocker>
#include <QVBoxLayout>

#include <algorithm>
#include <utility>

using namespace Qt::StringLiterals;

namespace kse {

namespace {

constexpr int rowLimit = 400; // of a card

qsizetype countMarked(const ModuleInfo& module)
{
    return std::count_if(module.nodes.begin(), module.nodes.end(),
                         [](const XsdtNode* node) { return node->isInsideDeletion(); });
}

/// The box of a card, as high as the card's title, so that both stand on one line.
class Tick : public QCheckBox
{
public:
    using QCheckBox::QCheckBox;

    const CollapsibleSection* section = nullptr; ///< Of the card, made after this.

    QSize sizeHint() const override
    {
        return {QCheckBox::sizeHint().width(), section->titleHeight()};
    }
};

/// Without a signal: whoever changes many ticks brings the summary up to date once.
void setTicked(QCheckBox& tick, bool ticked)
{
    const QSignalBlocker blocker(&tick);
    tick.setChecked(ticked);
}

} // namespace

UnusedModulesView::UnusedModulesView(SettingsModel* model, const SettingsSchema* schema,
                                     QWidget* parent)
    : QWidget(parent)
    , m_model(model)
    , m_rows(new SettingRowSet(model, schema, this))
{
    createUi();
    connectModel();
    updateSummary();
}

void UnusedModulesView::createUi()
{
    auto* note = new QLabel(
        tr("Modules that still have saved data but are <b>not in PixInsight's current module "
           "list</b>: uninstalled, renamed or replaced. Expand one to see its entries and values. "
           "The list is what PixInsight last recorded, so a module that failed to load or was "
           "disabled for a while would appear here too. Nothing is removed until you save."));
    note->setWordWrap(true);
    m_summary = new QLabel;
    m_summary->setObjectName(u"summary"_s);
    m_summary->setTextFormat(Qt::PlainText);
    m_summary->setWordWrap(true);

    m_column = new WidgetColumn(2);
    m_column->setObjectName(u"column"_s);
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
    const auto createButton = [row](const QString& name, const QString& text) {
        auto* button = new QPushButton(text, row);
        button->setObjectName(name);
        return button;
    };
    m_tickAllButton = createButton(u"tickAllButton"_s, tr("Tick all"));
    m_undoButton = createButton(u"undoButton"_s, tr("Undo queued deletion"));
    m_undoButton->setToolTip(tr("Tick a queued module again to undo its deletion."));
    m_queueButton = createButton(u"queueButton"_s, tr("Queue ticked modules for deletion"));
    connect(m_tickAllButton, &QPushButton::clicked, this, &UnusedModulesView::tickAll);
    connect(m_undoButton, &QPushButton::clicked, this, &UnusedModulesView::undoTicked);
    connect(m_queueButton, &QPushButton::clicked, this, &UnusedModulesView::queueTicked);

    auto* layout = new WrappingRow(Qt::AlignTrailing);
    row->setLayout(layout);
    layout->addWidget(m_tickAllButton);
    layout->addItem(new QSpacerItem(0, 0, QSizePolicy::Expanding));
    layout->addWidget(m_undoButton);
    layout->addWidget(m_queueButton);
    return row;
}

void UnusedModulesView::connectModel()
{
    connect(m_rows, &SettingRowSet::message, this, &UnusedModulesView::message);
    connect(m_rows, &SettingRowSet::deleteRequested, this, &UnusedModulesView::deleteRequested);
    connect(m_rows, &SettingRowSet::restoreRequested, this, &UnusedModulesView::restoreRequested);
    connect(m_rows, &SettingRowSet::revealRequested, this, &UnusedModulesView::revealRequested);
    connect(m_model, &SettingsModel::dataChanged, this, &UnusedModulesView::forgetContents);
    // Much has changed; `dataChanged` for each group follows, but has nothing left to do then.
    connect(m_model, &SettingsModel::layoutChanged, this, [this] { m_contents.clear(); });
    connect(m_model, &SettingsModel::edited, this, [this] {
        // `dataChanged` can't name what lies deeper than the model shows.
        m_contents.removeIf([](const auto& content) { return content->isDeep; });
        updateSummary();
    });
    connect(m_model, &SettingsModel::modelReset, this, [this] {
        m_contents.clear();
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
    m_rows->clear();
    m_contents.clear();
    m_cards.clear();
    m_column->clear();
    m_column->widget()->hide(); // in sight, each new card would lay out all
    if (m_document) {
        const QList<ModuleInfo> modules = ModuleCatalog::unusedModules(*m_document);
        m_cards.reserve(modules.size());
        QList<QWidget*> rows;
        for (const ModuleInfo& module : modules) {
            rows.append(addCard(module));
        }
        m_column->append(rows);
    }
    m_column->widget()->show();
    updateSummary();
}

QWidget* UnusedModulesView::addCard(const ModuleInfo& module)
{
    auto* row = new QWidget(m_column->widget());
    auto* tick = new Tick(row);
    auto* section = new CollapsibleSection(module.name, false, row);
    tick->section = section;
    const Card card{module, tick, section};
    card.tick->setObjectName(u"tick"_s);
    card.tick->setAccessibleName(abbreviated(module.name, lineLimit));
    card.tick->setToolTip(tr("Tick to include in the bulk actions below."));
    connect(card.tick, &QCheckBox::toggled, this, &UnusedModulesView::updateSummary);
    const qsizetype index = m_cards.size();
    card.section->setLazyBuilder([this, index] { buildCard(m_cards.at(index)); });

    auto* layout = new QHBoxLayout(row);
    layout->setContentsMargins(4, 2, 4, 2);
    layout->addWidget(card.tick, 0, Qt::AlignTop);
    layout->addWidget(card.section, 1);
    m_cards.append(card);
    return row;
}

void UnusedModulesView::buildCard(const Card& card)
{
    QBoxLayout* layout = card.section->bodyLayout();
    int shown = 0;
    qsizetype total = 0;
    for (const auto& [path, node] : sortedByPath(card.module.nodes)) {
        const QList<XsdtNode*> values = valuesOf(*node);
        total += values.size();
        addNote(card,
                tr("%1  (%n value(s))", nullptr, static_cast<int>(values.size()))
                    .arg(withoutMiddle(path, lineLimit)),
                node);
        for (XsdtNode* value : values) {
            if (shown == rowLimit) {
                break;
            }
            layout->addWidget(m_rows->add(value, layout->parentWidget()));
            ++shown;
        }
    }
    if (shown < total) {
        addNote(card,
                tr("...and %1 more values. Use \"Show in All settings\" from the right-click "
                   "menu to see the rest.")
                    .arg(total - shown),
                nullptr);
    }
}

/// A line between the rows of `card`: the title of the group `node`, with a menu, or for null the
/// closing remark.
void UnusedModulesView::addNote(const Card& card, const QString& text, XsdtNode* node)
{
    QBoxLayout* layout = card.section->bodyLayout();
    auto* label = new QLabel(text, layout->parentWidget());
    label->setObjectName(node ? u"groupLabel"_s : u"moreLabel"_s);
    label->setTextFormat(Qt::PlainText);
    label->setWordWrap(true);
    label->setMinimumWidth(1); // one long word must not widen the page
    layout->addWidget(label);
    if (!node) {
        label->setContentsMargins(4, 4, 0, 4);
        return;
    }
    label->setContentsMargins(4, 8, 0, 2);
    QFont font; // sets the weight alone; the size goes on following the application's
    font.setWeight(QFont::Bold);
    label->setFont(font);
    // So that the keyboard reaches the menu, and the path can be copied.
    label->setTextInteractionFlags(Qt::TextSelectableByKeyboard | Qt::TextSelectableByMouse);
    label->setFocusPolicy(Qt::StrongFocus);
    label->setContextMenuPolicy(Qt::CustomContextMenu);
    connect(label, &QWidget::customContextMenuRequested, this,
            [this, label, node](QPoint pos) { m_rows->showMenu(node, label->mapToGlobal(pos)); });
}

void UnusedModulesView::setReadOnly(bool readOnly)
{
    m_rows->setReadOnly(readOnly);
    updateSummary();
}

QStringList UnusedModulesView::moduleNames() const
{
    QStringList names;
    for (const Card& card : m_cards) {
        names.append(card.module.name);
    }
    return names;
}

void UnusedModulesView::expandCard(const QString& name)
{
    for (const Card& card : m_cards) {
        if (card.module.name == name) {
            card.section->setExpanded(true);
            return;
        }
    }
}

void UnusedModulesView::updateSummary()
{
    int queued = 0;
    int ticked = 0;
    qint64 tickedBytes = 0;
    for (const Card& card : std::as_const(m_cards)) {
        const Content content = contentOf(card.module);
        const qsizetype marked = countMarked(card.module);
        updateCard(card, content, marked);
        queued += marked > 0 ? 1 : 0;
        if (card.tick->isChecked()) {
            ++ticked;
            tickedBytes += content.bytes;
        }
    }
    const bool canQueue = !m_rows->isReadOnly() && ticked > 0;
    setEnabledOrPass(*m_queueButton, canQueue, *m_column);
    setEnabledOrPass(*m_undoButton, canQueue, *m_column);
    m_tickAllButton->setEnabled(!m_cards.isEmpty());
    if (!m_document) {
        m_summary->clear();
    } else if (m_cards.isEmpty()) {
        m_summary->setText(
            tr("No unused module data: every module with saved data is in the module list."));
    } else if (ticked == 0) {
        m_summary->setText(tr("%1 unused module(s); %2 queued for deletion")
                               .arg(QString::number(m_cards.size()), QString::number(queued)));
    } else {
        m_summary->setText(tr("%1 unused module(s); %2 ticked (about %3); %4 queued for deletion")
                               .arg(QString::number(m_cards.size()), QString::number(ticked),
                                    formatBytes(tickedBytes), QString::number(queued)));
    }
}

void UnusedModulesView::updateCard(const Card& card, const Content& content, qsizetype marked)
{
    QString title = tr("%1  -  %n value(s), %2", nullptr, static_cast<int>(content.values))
                        .arg(abbreviated(card.module.name, titleLimit), formatBytes(content.bytes));
    const bool isWhole = marked == card.module.nodes.size();
    if (marked > 0) {
        title += isWhole ? tr("   [queued for deletion]") : tr("   [partly queued for deletion]");
    }
    card.section->setTitle(title);
    using Deletion = CollapsibleSection::Deletion;
    card.section->setDeletion(isWhole                             ? Deletion::Whole
                              : marked > 0 || content.holdsQueued ? Deletion::Within
                                                                  : Deletion::None);
    card.tick->setEnabled(!m_rows->isReadOnly());
}

/// Of all its groups, each of which is looked through once until it changes. Values and bytes are
/// those of `moduleValueCount` and `moduleDataSize`.
UnusedModulesView::Content UnusedModulesView::contentOf(const ModuleInfo& module)
{
    Content sum;
    sum.values = module.registryNode ? 1 : 0;
    for (const XsdtNode* node : module.nodes) {
        auto content = m_contents.constFind(node);
        if (content == m_contents.cend()) {
            content = m_contents.insert(node, contentOf(*node));
        }
        sum.values += content->values;
        sum.bytes += content->bytes;
        sum.holdsQueued = sum.holdsQueued || content->holdsQueued;
    }
    return sum;
}

UnusedModulesView::Content UnusedModulesView::contentOf(const XsdtNode& group)
{
    Content content;
    content.bytes = group.serializedSize();
    walkTree(group, [&content](const XsdtNode& node) {
        content.values += node.kind == XsdtNode::Kind::Value ? 1 : 0;
        content.holdsQueued = content.holdsQueued || node.markedForDeletion;
        content.isDeep = content.isDeep || node.depth > SettingsModel::maximumDepth;
        return Walk::Into;
    });
    return content;
}

void UnusedModulesView::forgetContents(const QModelIndex& topLeft)
{
    const XsdtNode* node = m_model->nodeForIndex(topLeft.parent());
    for (; node && !m_contents.isEmpty(); node = node->parent) {
        m_contents.remove(node);
    }
}

QList<UnusedModulesView::Card> UnusedModulesView::tickedCards() const
{
    QList<Card> cards;
    std::copy_if(m_cards.begin(), m_cards.end(), std::back_inserter(cards),
                 [](const Card& card) { return card.tick->isChecked(); });
    return cards;
}

void UnusedModulesView::tickAll()
{
    for (const Card& card : std::as_const(m_cards)) {
        setTicked(*card.tick, true);
    }
    updateSummary();
}

void UnusedModulesView::queueTicked()
{
    const QList<Card> cards = tickedCards();
    if (cards.isEmpty() || !confirmQueueing(cards)) {
        return;
    }
    int queued = 0;
    QStringList refused;
    {
        const SettingsModel::Batch batch(*m_model);
        for (const Card& card : cards) {
            for (XsdtNode* node : card.module.nodes) {
                if (m_model->markForDeletion(node)) {
                    ++queued;
                } else {
                    refused.append(node->path());
                }
            }
            setTicked(*card.tick, false);
        }
    }
    updateSummary();
    if (refused.isEmpty()) {
        emit message(tr("Queued %1 entries of %n module(s) for deletion. Save to apply.", nullptr,
                        static_cast<int>(cards.size()))
                         .arg(queued));
    } else {
        emit message(tr("Queued %1 entries; %2 protected entries were left alone (%3).")
                         .arg(QString::number(queued), QString::number(refused.size()),
                              abbreviated(refused.join(", "_L1), lineLimit)));
    }
}

/// False also if the cards are gone, or nothing can be changed any more, when the box closes.
bool UnusedModulesView::confirmQueueing(const QList<Card>& cards)
{
    QStringList names;
    for (const Card& card : cards) {
        names.append(abbreviated(card.module.name, lineLimit));
    }
    const QString text = tr("This removes the saved data of %n module(s) that are not in the "
                            "module list.",
                            nullptr, static_cast<int>(cards.size()));
    if (!confirmDeletion(this, *m_model, tr("Delete unused module data?"), text, names)) {
        return false;
    }
    if (m_rows->isReadOnly()) { // started beneath the box
        emit message(SettingsModel::readOnlyReason());
        return false;
    }
    return true;
}

void UnusedModulesView::undoTicked()
{
    bool isAnyMarked = false;
    {
        const SettingsModel::Batch batch(*m_model);
        for (const Card& card : tickedCards()) {
            for (XsdtNode* node : card.module.nodes) {
                isAnyMarked = isAnyMarked || node->markedForDeletion;
                m_model->undoDeletion(node);
            }
            setTicked(*card.tick, false);
        }
    }
    updateSummary();
    if (!isAnyMarked) {
        emit message(tr("No ticked module is queued for deletion. What is queued within one is "
                        "undone from its own right-click menu."));
    }
}

} // namespace kse
