// SPDX-License-Identifier: MIT
#include "views/health/HealthView.h"

#include "document/XsdtNode.h"
#include "views/health/GroupLine.h"
#include "views/model/SettingsModel.h"
#include "views/rows/ConfirmDeletion.h"
#include "views/rows/SettingRow.h"
#include "views/rows/SettingRowSet.h"
#include "widgets/Named.h"
#include "widgets/PlainText.h"
#include "widgets/WidgetColumn.h"
#include "widgets/WrappedLabel.h"

#include <QFrame>
#include <QHBoxLayout>
#include <QLabel>
#include <QPushButton>

#include <algorithm>
#include <utility>

using namespace Qt::StringLiterals;

namespace kse {

namespace {

constexpr qsizetype cardStep = 200; // more at once would be felt as a wait
constexpr qsizetype nodeLimit = 12;
constexpr qsizetype detailLimit = 10'000;

QFrame* createStripe(Severity severity, QWidget* parent)
{
    auto* stripe = named(u"stripe"_s, new QFrame(parent));
    stripe->setFixedWidth(6);
    stripe->setAutoFillBackground(true);
    const QList<QColor> colors{{60, 140, 230}, {226, 150, 0}, {214, 60, 60}}; // by `Severity`
    QPalette palette;
    palette.setColor(QPalette::All, QPalette::Window, colors.at(static_cast<int>(severity)));
    stripe->setPalette(palette);
    return stripe;
}

/// For a screen reader, which goes from control to control and may not read the title.
QString remarkOn(const Finding& finding)
{
    return HealthView::tr("%1: %2").arg(HealthChecker::severityName(finding.severity),
                                        withoutMiddle(finding.title, lineLimit));
}

} // namespace

HealthView::HealthView(SettingsModel* model, const SettingsSchema* schema, QWidget* parent)
    : QWidget(parent)
    , m_model(model)
    , m_schema(schema)
    , m_rowSet(new SettingRowSet(model, schema, this))
{
    createWidgets();
    connectWidgets();
}

void HealthView::createWidgets()
{
    QLabel* purpose = new WrappedLabel(
        tr("Looks through the file for things that are probably wrong: folders and files that do "
           "not exist here, numbers outside their documented range, keys that appear twice, "
           "modules whose file is missing. Nothing is changed by the check; fix a setting right "
           "in the list."),
        Qt::PlainText, u"purposeLabel"_s, this);
    m_summaryLabel = new WrappedLabel({}, Qt::PlainText, u"summaryLabel"_s, this);
    m_rerunButton = named(u"rerunButton"_s, new QPushButton(tr("Run the check again"), this));
    m_cards = new WidgetColumn(10, this);
    m_cards->setAccessibleName(tr("Findings"));
    m_cards->widget()->setObjectName(u"cardsContainer"_s);

    auto* top = new QHBoxLayout;
    top->addWidget(m_summaryLabel, 1);
    top->addWidget(m_rerunButton);
    auto* layout = new QVBoxLayout(this);
    layout->setContentsMargins(0, 6, 0, 0);
    layout->addWidget(purpose);
    layout->addLayout(top);
    layout->addWidget(m_cards, 1);
}

void HealthView::connectWidgets()
{
    connect(m_rerunButton, &QPushButton::clicked, this, &HealthView::run);
    connect(m_cards, &WidgetColumn::moreRequested, this, &HealthView::addCards);
    connect(m_model, &SettingsModel::edited, this, &HealthView::onEdited);
    connect(m_model, &SettingsModel::edited, this, &HealthView::refreshGroupLines);
    connect(m_rowSet, &SettingRowSet::message, this, &HealthView::message);
    connect(m_rowSet, &SettingRowSet::deleteRequested, this, &HealthView::onDeleteRequested);
    connect(m_rowSet, &SettingRowSet::restoreRequested, this, &HealthView::restoreRequested);
    connect(m_rowSet, &SettingRowSet::revealRequested, this, &HealthView::revealRequested);
}

void HealthView::setDocument(const XsdtDocument* document)
{
    removeCards();
    m_document = document;
    m_hasRun = false;
    m_summaryLabel->clear();
    emit summaryChanged(0, 0);
    if (document && isVisible()) {
        run();
    }
}

void HealthView::setReadOnly(bool readOnly)
{
    m_rowSet->setReadOnly(readOnly);
    refreshGroupLines();
}

void HealthView::run()
{
    removeCards();
    m_hasRun = m_document;
    if (!m_document) {
        return;
    }
    m_findings = HealthChecker::run(*m_document, *m_schema, m_env);
    addCards();
    updateSummary();
}

void HealthView::showEvent(QShowEvent* event)
{
    QWidget::showEvent(event);
    if (!m_hasRun && m_document) {
        run();
    }
}

void HealthView::onEdited()
{
    if (m_hasRun && !m_findings.isEmpty() && !m_stale) {
        m_stale = true;
        m_summaryLabel->setText(m_summaryLabel->text() +
                                tr("   (You changed settings: run the check again to re-check.)"));
    }
}

void HealthView::removeCards()
{
    m_cards->clear();
    m_rowSet->clear();
    m_groupLines.clear();
    m_findings.clear();
    m_stale = false;
}

/// Adds the next cards, and the button at their end if there are still more.
void HealthView::addCards()
{
    const qsizetype total = m_findings.size();
    const qsizetype first = m_cards->count();
    const qsizetype shown = qMin(total, first + cardStep);
    m_cards->setMoreText(shown < total ? tr("Show more findings (%1 more)").arg(total - shown)
                                       : QString());
    m_cards->append(shown - first,
                    [this, first](qsizetype i) { return buildCard(m_findings[first + i]); });
}

void HealthView::updateSummary()
{
    const auto count = [this](Severity severity) {
        return static_cast<int>(
            std::count_if(m_findings.cbegin(), m_findings.cend(),
                          [severity](const Finding& f) { return f.severity == severity; }));
    };
    const int problems = count(Severity::Problem);
    const int warnings = count(Severity::Warning);
    m_summaryLabel->setText(m_findings.isEmpty() ? tr("No problems found.")
                                                 : tr("%1 problem(s), %2 warning(s), %3 note(s)")
                                                       .arg(problems)
                                                       .arg(warnings)
                                                       .arg(count(Severity::Note)));
    emit summaryChanged(problems, warnings);
}

QWidget* HealthView::buildCard(const Finding& finding)
{
    auto* card = named(u"card"_s, new QFrame(m_cards->widget()));
    auto* layout = new QHBoxLayout(card);
    layout->setContentsMargins({});
    layout->setSpacing(0);
    layout->addWidget(createStripe(finding.severity, card));
    auto* column = new QVBoxLayout;
    column->setSpacing(4);
    column->setContentsMargins(12, 6, 6, 6);
    layout->addLayout(column, 1);

    const QString severity = HealthChecker::severityName(finding.severity).toHtmlEscaped();
    const QString title = asMarkup(withoutMiddle(finding.title, lineLimit));
    column->addWidget(new WrappedLabel(u"<b>%1:</b> %2"_s.arg(severity, title), Qt::RichText,
                                       u"titleLabel"_s, card));
    column->addWidget(new WrappedLabel(withoutMiddle(finding.detail, detailLimit), Qt::PlainText,
                                       u"detailLabel"_s, card));
    addNodes(finding, column, card);
    if (finding.action == FindingAction::OpenUnusedModules) {
        auto* open = named(u"openUnusedButton"_s, new QPushButton(tr("Open Unused modules"), card));
        open->setAccessibleDescription(remarkOn(finding));
        connect(open, &QPushButton::clicked, this, &HealthView::openUnusedModules);
        column->addWidget(open, 0, Qt::AlignLeft);
    }
    return card;
}

void HealthView::addNodes(const Finding& finding, QVBoxLayout* layout, QWidget* card)
{
    const qsizetype count = finding.nodes.size();
    for (qsizetype i = 0; i < qMin(nodeLimit, count); ++i) {
        XsdtNode* node = finding.nodes[i];
        if (node->kind == XsdtNode::Kind::Group) {
            layout->addWidget(createGroupLine(finding, i, card));
            continue;
        }
        SettingRow* row = m_rowSet->add(node, card);
        row->setShowPath(true);
        row->setRemark(remarkOn(finding));
        layout->addWidget(row);
    }
    if (count > nodeLimit) {
        layout->addWidget(new WrappedLabel(tr("...and %1 more.").arg(count - nodeLimit),
                                           Qt::PlainText, u"moreLabel"_s, card));
    }
}

/// For the node `i` of `finding`: a group has no editor, but can be shown in the tree or deleted.
QWidget* HealthView::createGroupLine(const Finding& finding, qsizetype i, QWidget* card)
{
    auto* line =
        named(u"groupLine"_s, new GroupLine(finding.nodes[i], *m_model, i + 1, finding.nodes.size(),
                                            remarkOn(finding), card));
    line->refresh(m_rowSet->isReadOnly());
    connect(line, &GroupLine::deleteRequested, this, &HealthView::onDeleteRequested);
    connect(line, &GroupLine::restoreRequested, this, &HealthView::restoreRequested);
    connect(line, &GroupLine::revealRequested, this, &HealthView::revealRequested);
    m_groupLines.append(line);
    return line;
}

void HealthView::refreshGroupLines()
{
    for (GroupLine* line : std::as_const(m_groupLines)) {
        line->refresh(m_rowSet->isReadOnly());
    }
}

/// Asks first if all other copies of the key are queued already: each copy looks as if it could go.
void HealthView::onDeleteRequested(XsdtNode* node)
{
    const auto& siblings = node->parent->children;
    qsizetype queued = 0;
    const bool isLast = std::none_of(siblings.begin(), siblings.end(), [&](const auto& sibling) {
        const bool isCopy = sibling->key == node->key && sibling.get() != node;
        queued += isCopy ? 1 : 0;
        return isCopy && !sibling->markedForDeletion;
    });
    if (isLast && queued > 0) {
        const QString text = tr("Every other copy of %1 is queued for deletion. If this one goes "
                                "too, nothing is left of it.")
                                 .arg(withoutMiddle(node->path(), sentenceLimit));
        if (!confirmDeletion(this, *m_model, tr("Delete the last copy?"), text)) {
            return;
        }
    }
    emit deleteRequested(node);
}

} // namespace kse
