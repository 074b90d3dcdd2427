// SPDX-License-Identifier: MIT
#include "views/cleanup/UnusedModuleCard.h"

#include "document/Leaves.h"
#include "document/NamedNode.h"
#include "document/XsdtNode.h"
#include "views/cleanup/FormatBytes.h"
#include "views/cleanup/ModuleContents.h"
#include "views/rows/SettingRow.h"
#include "views/rows/SettingRowSet.h"
#include "widgets/CollapsibleSection.h"
#include "widgets/Named.h"
#include "widgets/PlainText.h"
#include "widgets/WrappedLabel.h"

#include <QCheckBox>
#include <QHBoxLayout>
#include <QSignalBlocker>

#include <algorithm>

using namespace Qt::StringLiterals;

namespace kse {

namespace {

constexpr int rowLimit = 400;

} // namespace

/// As high as the title of the section, so that both stand on one line.
class UnusedModuleCard::Tick : public QCheckBox
{
public:
    using QCheckBox::QCheckBox;

    const CollapsibleSection* section = nullptr; ///< Created later, to come second in Tab order.

    QSize sizeHint() const override
    {
        return {QCheckBox::sizeHint().width(), section->titleHeight()};
    }
};

UnusedModuleCard::UnusedModuleCard(const ModuleInfo& module, SettingRowSet* rowSet, QWidget* parent)
    : QWidget(parent)
    , m_module(module)
    , m_rowSet(rowSet)
    , m_tick(named(u"tick"_s, new Tick(this)))
    , m_section(named(u"section"_s, new CollapsibleSection(module.name, false, this)))
{
    m_tick->section = m_section;
    m_tick->setAccessibleName(abbreviated(module.name, lineLimit));
    m_tick->setToolTip(tr("Tick to include in the bulk actions below."));
    connect(m_tick, &QCheckBox::toggled, this, &UnusedModuleCard::toggled);
    m_section->setLazyBuilder([this] { createRows(); });

    auto* layout = new QHBoxLayout(this);
    layout->setContentsMargins(4, 2, 4, 2);
    layout->addWidget(m_tick, 0, Qt::AlignTop);
    layout->addWidget(m_section, 1);
}

void UnusedModuleCard::createRows()
{
    // The titles of the groups, each followed by its values, and a remark if there are more.
    QList<XsdtNode*> parts;
    int shown = 0;
    qsizetype total = 0;
    for (const NamedNode& group : sortedByPath(m_module.nodes)) {
        parts.append(group.node);
        const QList<XsdtNode*> values = valuesOf(*group.node);
        total += values.size();
        const qsizetype count = std::min(values.size(), qsizetype(rowLimit - shown));
        parts.append(values.first(count));
        shown += int(count);
    }
    if (shown < total) {
        parts.append(nullptr);
    }
    QWidget* body = m_section->bodyLayout()->parentWidget();
    m_section->bodyLayout()->append(
        parts.size(), [this, parts, more = total - shown, body](qsizetype i) -> QWidget* {
            XsdtNode* node = parts.at(i);
            if (!node) {
                return createLabel(tr("...and %1 more values. Use \"Show in All settings\" from "
                                      "the right-click menu to see the rest.")
                                       .arg(more),
                                   u"moreLabel"_s, {4, 4, 0, 4});
            }
            if (node->kind == XsdtNode::Kind::Group) {
                return createGroupTitle(node);
            }
            return m_rowSet->add(node, body);
        });
}

QWidget* UnusedModuleCard::createGroupTitle(XsdtNode* group)
{
    const auto values = static_cast<int>(valuesOf(*group).size());
    QLabel* label = createLabel(
        tr("%1  (%n value(s))", nullptr, values).arg(withoutMiddle(group->path(), lineLimit)),
        u"groupLabel"_s, {4, 8, 0, 2});
    QFont font; // sets the weight alone: the size still follows the application's
    font.setWeight(QFont::Bold);
    label->setFont(font);
    // Lets the keyboard reach the menu, and the user copy the path.
    label->setTextInteractionFlags(Qt::TextSelectableByKeyboard | Qt::TextSelectableByMouse);
    label->setFocusPolicy(Qt::StrongFocus);
    label->setContextMenuPolicy(Qt::CustomContextMenu);
    connect(label, &QWidget::customContextMenuRequested, this, [this, label, group](QPoint pos) {
        m_rowSet->showMenu(group, label->mapToGlobal(pos));
    });
    return label;
}

QLabel* UnusedModuleCard::createLabel(const QString& text, const QString& objectName,
                                      const QMargins& margins)
{
    QWidget* body = m_section->bodyLayout()->parentWidget();
    auto* label = new WrappedLabel(text, Qt::PlainText, objectName, body);
    label->setContentsMargins(margins);
    return label;
}

bool UnusedModuleCard::isTicked() const
{
    return m_tick->isChecked();
}

void UnusedModuleCard::setTicked(bool ticked)
{
    const QSignalBlocker blocker(this);
    m_tick->setChecked(ticked);
}

void UnusedModuleCard::expand()
{
    m_section->setExpanded(true);
}

void UnusedModuleCard::refresh(const ModuleContent& content)
{
    using Deletion = CollapsibleSection::Deletion;
    QString title = tr("%1  -  %n value(s), %2", nullptr, static_cast<int>(content.values))
                        .arg(abbreviated(m_module.name, titleLimit), formatBytes(content.bytes));
    Deletion deletion = content.holdsQueued ? Deletion::Within : Deletion::None;
    if (content.queuedGroups == m_module.nodes.size()) {
        title += tr("   [queued for deletion]");
        deletion = Deletion::Whole;
    } else if (content.queuedGroups > 0) {
        title += tr("   [partly queued for deletion]");
        deletion = Deletion::Within;
    }
    m_section->setTitle(title);
    m_section->setDeletion(deletion);
    m_tick->setEnabled(!m_rowSet->isReadOnly());
}

} // namespace kse
