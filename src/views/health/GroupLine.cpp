// SPDX-License-Identifier: MIT
#include "views/health/GroupLine.h"

#include "document/TreeWalk.h"
#include "schema/DeletePolicy.h"
#include "views/model/NodeLooks.h"
#include "views/model/SettingsModel.h"
#include "widgets/Named.h"
#include "widgets/PlainText.h"
#include "widgets/Spoken.h"
#include "widgets/SteadyButton.h"
#include "widgets/TabOrder.h"
#include "widgets/WrappedLabel.h"

#include <QHBoxLayout>
#include <QHelpEvent>
#include <QPainter>
#include <QStyle>
#include <QToolTip>

using namespace Qt::StringLiterals;

namespace kse {

namespace {

constexpr qsizetype previewLimit = 8; // values
constexpr qsizetype previewLength = 60;

QString numberText(qsizetype number)
{
    return GroupLine::tr("%1.").arg(number);
}

QString deletionText(bool isMarked)
{
    return isMarked ? GroupLine::tr("Undo deletion") : GroupLine::tr("Delete this one...");
}

} // namespace

GroupLine::GroupLine(XsdtNode* node, const SettingsModel& model, qsizetype number, qsizetype count,
                     const QString& remark, QWidget* parent)
    : QWidget(parent)
    , m_node(node)
    , m_number(number)
    , m_count(count)
{
    const DeleteDecision decision = model.deletionDecision(node);
    m_isProtected = decision.level == DeleteLevel::Never;
    m_reason = m_isProtected ? tr("Protected: %1").arg(decision.reason) : decision.reason;
    m_name = tr("%1 (%2 of %3)")
                 .arg(withoutMiddle(node->path(), lineLimit), QString::number(number),
                      QString::number(count));
    createWidgets(remark);
    reserveNumber();
}

void GroupLine::createWidgets(const QString& remark)
{
    const QString path = asMarkup(withoutMiddle(m_node->path(), lineLimit));
    const QString values = tr("%n value(s)", nullptr, static_cast<int>(m_node->valueCount()));
    m_label = new WrappedLabel(u"<b>%1</b>  (%2)"_s.arg(path, values.toHtmlEscaped()), Qt::RichText,
                               u"groupLabel"_s, this);
    m_revealButton = named(u"revealButton"_s, new QPushButton(tr("Show in All settings"), this));
    m_revealButton->setAccessibleName(tr("Show %1 in All settings").arg(m_name));
    m_deleteButton =
        named(u"deleteButton"_s, new SteadyButton({deletionText(false), deletionText(true)}, this));
    for (QPushButton* button : {m_revealButton, m_deleteButton}) {
        button->setAccessibleDescription(remark);
    }
    connect(m_revealButton, &QPushButton::clicked, this, [this] { emit revealRequested(m_node); });
    connect(m_deleteButton, &QPushButton::clicked, this, [this] {
        if (m_node->markedForDeletion) {
            emit restoreRequested(m_node);
        } else {
            emit deleteRequested(m_node);
        }
    });

    m_numberSpace = new QSpacerItem(0, 0);
    auto* layout = new QHBoxLayout(this);
    layout->setContentsMargins({});
    layout->addSpacerItem(m_numberSpace);
    layout->addWidget(m_label, 1);
    layout->addWidget(m_revealButton);
    layout->addWidget(m_deleteButton);
}

void GroupLine::refresh(bool readOnly)
{
    const bool isMarked = m_node->markedForDeletion;
    const bool isInside = m_node->isInsideDeletion();
    QFont font; // sets this alone: the rest still follows the application's
    font.setStrikeOut(isInside);
    m_label->setFont(font);
    setSpokenDescription(m_label, stateText());
    m_deleteButton->setText(deletionText(isMarked));
    setSpokenName(m_deleteButton,
                  (isMarked ? tr("Undo deletion of %1") : tr("Delete %1...")).arg(m_name));
    setEnabledOrPass(*m_deleteButton, isMarked || !(isInside || m_isProtected || readOnly),
                     *m_revealButton);
    // Where there is none, Qt shows that of the line.
    m_deleteButton->setToolTip(isInside ? QString() : asToolTip(m_reason));
}

/// The state of the line, for the tool tip and for screen readers.
QString GroupLine::stateText() const
{
    const QString copy = tr("Copy %1 of %2, in the order of the file")
                             .arg(QString::number(m_number), QString::number(m_count));
    if (m_node->markedForDeletion) {
        return copy + u'\n' + tr("Marked for deletion");
    }
    return m_node->isInsideDeletion() ? copy + u'\n' + tr("Inside a group marked for deletion")
                                      : copy;
}

QString GroupLine::firstValues() const
{
    const QString path = m_node->path();
    const qsizetype prefix = path.isEmpty() ? 0 : path.size() + 1;
    QString text;
    qsizetype shown = 0;
    walkTree(std::as_const(*m_node), [&](const XsdtNode& node) {
        if (node.kind == XsdtNode::Kind::Value) {
            text += tr("\n%1 = %2")
                        .arg(withoutMiddle(node.path().mid(prefix), previewLength),
                             displayValue(node, node.value, previewLength));
            ++shown;
        }
        return shown < previewLimit ? Walk::Into : Walk::Stop;
    });
    const qsizetype more = m_node->valueCount() - shown;
    return more > 0 ? text + tr("\n...and %1 more.").arg(more) : text;
}

/// Keeps the width of the largest number free on every line of the card.
void GroupLine::reserveNumber()
{
    m_numberSpace->changeSize(fontMetrics().horizontalAdvance(numberText(m_count) + u' '), 0);
    layout()->invalidate();
}

void GroupLine::changeEvent(QEvent* event)
{
    QWidget::changeEvent(event);
    if (event->type() == QEvent::FontChange) {
        reserveNumber();
    }
}

bool GroupLine::event(QEvent* event)
{
    if (event->type() != QEvent::ToolTip) {
        return QWidget::event(event);
    }
    QToolTip::showText(static_cast<QHelpEvent*>(event)->globalPos(),
                       asToolTip(stateText() + firstValues()), this);
    return true;
}

void GroupLine::paintEvent(QPaintEvent* event)
{
    QWidget::paintEvent(event);
    const QRect place(0, m_label->y(), m_numberSpace->sizeHint().width(), m_label->height());
    QPainter painter(this);
    style()->drawItemText(
        &painter, QStyle::visualRect(layoutDirection(), rect(), place),
        int(Qt::AlignVCenter | QStyle::visualAlignment(layoutDirection(), Qt::AlignLeft)),
        palette(), true, numberText(m_number), QPalette::WindowText);
}

} // namespace kse
