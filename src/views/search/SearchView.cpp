// SPDX-License-Identifier: MIT
#include "views/search/SearchView.h"

#include "document/XsdtNode.h"
#include "views/rows/SettingRow.h"
#include "views/rows/SettingRowSet.h"
#include "widgets/Announcement.h"
#include "widgets/Named.h"
#include "widgets/PlainText.h"
#include "widgets/WidgetColumn.h"
#include "widgets/WrappedLabel.h"
#include "widgets/WrappingRow.h"

#include <QCheckBox>
#include <QHBoxLayout>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QScrollBar>

using namespace Qt::StringLiterals;

namespace kse {

namespace {

constexpr qsizetype rowStep = 100;

} // namespace

SearchView::SearchView(SettingsModel* model, const SettingsSchema* schema, QWidget* parent)
    : QWidget(parent)
    , m_schema(schema)
    , m_limit(rowStep)
    , m_rowSet(new SettingRowSet(model, schema, this))
{
    m_debounce.setSingleShot(true);
    m_debounce.setInterval(200);
    createBanner();
    createQuery();
    m_summaryLabel = new WrappedLabel({}, Qt::PlainText, u"summaryLabel"_s, this);
    m_resultsArea = new WidgetColumn(0, this);
    m_resultsArea->setAccessibleName(tr("Settings found"));
    m_resultsArea->widget()->setObjectName(u"resultsContainer"_s);
    createLayout();
    connectWidgets();
}

void SearchView::createBanner()
{
    m_banner = named(u"banner"_s, new QWidget(this));
    m_bannerLabel = new WrappedLabel({}, Qt::PlainText, u"bannerLabel"_s, m_banner);
    m_bannerLabel->setMargin(6);
    m_bannerLabel->setAutoFillBackground(true);
    QPalette palette; // sets only this role; the others follow the theme
    palette.setColor(QPalette::All, QPalette::Window, QColor(80, 160, 255, 70));
    m_bannerLabel->setPalette(palette);
    auto* clearFilter =
        named(u"clearFilterButton"_s, new QPushButton(tr("Clear filter"), m_banner));
    connect(clearFilter, &QPushButton::clicked, this, &SearchView::clearRestriction);
    auto* layout = new QHBoxLayout(m_banner);
    layout->setContentsMargins({});
    layout->addWidget(m_bannerLabel, 1);
    layout->addWidget(clearFilter);
    m_banner->hide();
}

void SearchView::createQuery()
{
    m_queryEdit = named(u"queryEdit"_s, new QLineEdit(this));
    m_queryEdit->setPlaceholderText(tr("Search all settings: names, values, descriptions  (every "
                                       "word must match; \"quotes\" for a phrase)"));
    m_queryEdit->setAccessibleName(tr("Search all settings"));
    m_queryEdit->setClearButtonEnabled(true);
    m_searchNames = createCheckBox(u"searchNames"_s, tr("Names and paths"), true);
    m_searchValues = createCheckBox(u"searchValues"_s, tr("Values"), true);
    m_searchDescriptions = createCheckBox(u"searchDescriptions"_s, tr("Descriptions"), true);
    m_changedOnly = createCheckBox(u"changedOnly"_s, tr("Changed only"), false);
    m_includeProtected =
        createCheckBox(u"includeProtected"_s, tr("Include protected values"), false);
    m_includeProtected->setToolTip(
        tr("Time and Block values: shown for reference, never editable."));
}

QCheckBox* SearchView::createCheckBox(const QString& name, const QString& text, bool checked)
{
    auto* box = named(name, new QCheckBox(text, this));
    box->setChecked(checked);
    connect(box, &QCheckBox::toggled, this, &SearchView::onQueryChanged);
    return box;
}

void SearchView::createLayout()
{
    auto* boxes = new WrappingRow;
    for (QCheckBox* box :
         {m_searchNames, m_searchValues, m_searchDescriptions, m_changedOnly, m_includeProtected}) {
        boxes->addWidget(box);
    }
    auto* layout = new QVBoxLayout(this);
    layout->setContentsMargins(0, 6, 0, 0);
    layout->addWidget(m_banner);
    layout->addWidget(m_queryEdit);
    layout->addLayout(boxes);
    layout->addWidget(m_summaryLabel);
    layout->addWidget(m_resultsArea, 1);
}

void SearchView::connectWidgets()
{
    connect(m_queryEdit, &QLineEdit::textChanged, this, &SearchView::onQueryChanged);
    announceHits(
        m_queryEdit, [this] { return m_summaryLabel->text(); },
        {m_searchNames, m_searchValues, m_searchDescriptions, m_changedOnly, m_includeProtected});
    connect(&m_debounce, &QTimer::timeout, this, &SearchView::populate);
    connect(m_resultsArea, &WidgetColumn::moreRequested, this, &SearchView::onShowMore);
    connect(m_rowSet, &SettingRowSet::message, this, &SearchView::message);
    connect(m_rowSet, &SettingRowSet::deleteRequested, this, &SearchView::deleteRequested);
    connect(m_rowSet, &SettingRowSet::restoreRequested, this, &SearchView::restoreRequested);
    connect(m_rowSet, &SettingRowSet::revealRequested, this, &SearchView::revealRequested);
}

void SearchView::setDocument(const XsdtDocument* document)
{
    clearRows();
    m_index.clear();
    m_indexBuilt = false;
    dropRestriction();
    m_document = document;
    m_limit = rowStep;
    populate();
}

void SearchView::setReadOnly(bool readOnly)
{
    m_rowSet->setReadOnly(readOnly);
}

void SearchView::setQuery(const QString& text)
{
    m_queryEdit->setText(text);
    populate();
}

void SearchView::searchEverywhere(const QString& text)
{
    dropRestriction();
    for (QCheckBox* scope : {m_searchNames, m_searchValues, m_searchDescriptions}) {
        scope->setChecked(true);
    }
    m_changedOnly->setChecked(false);
    setQuery(text);
}

void SearchView::showRestricted(const QList<XsdtNode*>& nodes, const QString& bannerText)
{
    m_restriction = QSet<XsdtNode*>(nodes.begin(), nodes.end());
    m_restricted = true;
    m_bannerLabel->setText(withoutMiddle(bannerText, popupLimit));
    m_banner->show();
    m_queryEdit->clear();
    m_changedOnly->setChecked(false);
    m_includeProtected->setChecked(false);
    m_queryEdit->setClearButtonEnabled(false); // else it fades out
    m_queryEdit->setClearButtonEnabled(true);
    m_limit = rowStep;
    populate();
    announce(m_queryEdit, m_summaryLabel->text());
}

void SearchView::clearRestriction()
{
    if (m_restricted) {
        dropRestriction();
        populate();
    }
}

void SearchView::dropRestriction()
{
    m_restriction.clear();
    m_restricted = false;
    m_banner->hide();
}

void SearchView::focusQuery()
{
    m_queryEdit->setFocus();
    m_queryEdit->selectAll();
}

void SearchView::onQueryChanged()
{
    m_limit = rowStep;
    m_debounce.start();
}

void SearchView::onShowMore()
{
    m_limit += rowStep;
    addRows();
}

void SearchView::buildIndex()
{
    if (m_document && !m_indexBuilt) {
        m_index = buildSearchIndex(*m_document, *m_schema);
        m_indexBuilt = true;
    }
}

void SearchView::showEvent(QShowEvent* event)
{
    QWidget::showEvent(event);
    QTimer::singleShot(0, this, &SearchView::buildIndex); // before the first letter is typed
}

void SearchView::populate()
{
    m_debounce.stop();
    m_results.clear();
    clearRows();
    if (!m_document) {
        m_summaryLabel->clear();
        return;
    }
    const SearchQuery wanted = query();
    if (wanted.terms.isEmpty() && !wanted.changedOnly && !m_restricted) {
        m_summaryLabel->setText(tr("Type to search the names, values and descriptions of every "
                                   "setting in the file."));
        return;
    }
    buildIndex();
    m_results = search(m_index, wanted);
    m_resultsArea->verticalScrollBar()->setValue(0); // the best come first
    addRows();
}

SearchQuery SearchView::query() const
{
    SearchQuery query;
    query.terms = searchTerms(m_queryEdit->text());
    query.names = m_searchNames->isChecked();
    query.values = m_searchValues->isChecked();
    query.descriptions = m_searchDescriptions->isChecked();
    query.changedOnly = m_changedOnly->isChecked();
    query.includeProtected = m_includeProtected->isChecked();
    query.restriction = m_restricted ? &m_restriction : nullptr;
    return query;
}

void SearchView::clearRows()
{
    m_resultsArea->clear();
    m_rowSet->clear();
}

/// Adds rows for the results up to the limit that have none yet.
void SearchView::addRows()
{
    const qsizetype total = m_results.size();
    const qsizetype first = m_resultsArea->count();
    const qsizetype shown = qMax(first, qMin(total, m_limit)); // a new query may still be waiting
    m_resultsArea->setMoreText(shown < total ? tr("Show more results (%1 more)").arg(total - shown)
                                             : QString());
    m_resultsArea->append(shown - first, [this, first](qsizetype i) {
        XsdtNode* node = m_index[m_results[first + i]].node;
        SettingRow* row = m_rowSet->add(node, m_resultsArea->widget());
        row->setShowPath(true);
        return row;
    });
    if (total == 0) {
        m_summaryLabel->setText(tr("No matching settings."));
    } else if (shown < total) {
        m_summaryLabel->setText(
            tr("%1 results, showing the best %2. Refine the search or show more.")
                .arg(total)
                .arg(shown));
    } else {
        m_summaryLabel->setText(tr("%n result(s)", nullptr, static_cast<int>(total)));
    }
}

} // namespace kse
