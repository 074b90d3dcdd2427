// SPDX-License-Identifier: MIT
#include "views/compare/CompareView.h"

#include "document/Fail.h"
#include "document/InheritedAnswer.h"
#include "schema/DeletePolicy.h"
#include "session/PixInsightEnv.h"
#include "session/SettingsStore.h"
#include "views/compare/CompareFileBox.h"
#include "views/compare/CompareRow.h"
#include "views/model/SettingsModel.h"
#include "widgets/Announcement.h"
#include "widgets/MessageBox.h"
#include "widgets/Named.h"
#include "widgets/SteadyButton.h"
#include "widgets/TabOrder.h"
#include "widgets/WrappedLabel.h"
#include "widgets/WrappingRow.h"

#include <QCheckBox>
#include <QClipboard>
#include <QEvent>
#include <QFileDialog>
#include <QFileInfo>
#include <QGuiApplication>
#include <QHBoxLayout>
#include <QLabel>
#include <QLineEdit>
#include <QMenu>
#include <QStyle>
#include <QVBoxLayout>

#include <algorithm>
#include <array>
#include <optional>
#include <utility>

using namespace Qt::StringLiterals;

namespace kse {

namespace {

QString copyAllText(const QString& count)
{
    return CompareView::tr("Use the other file's value for all shown (%1)").arg(count);
}

/// Whether the path or a value contains `text`, ignoring case.
bool matches(const CompareEntry& entry, const QString& text)
{
    const auto valueHolds = [&text](const XsdtNode* node) {
        return node && node->value.contains(text, Qt::CaseInsensitive);
    };
    return text.isEmpty() || entry.path.contains(text, Qt::CaseInsensitive) ||
           valueHolds(entry.thisNode) || valueHolds(entry.otherNode);
}

} // namespace

CompareView::CompareView(SettingsModel* model, QWidget* parent)
    : QWidget(parent)
    , m_model(model)
{
    createInputs();
    createTree();
    createLayout();
    connectWidgets();
    refresh();
}

CompareView::~CompareView()
{
    clearEntries(); // the tree, a child, would outlive the entries that its rows refer to
}

void CompareView::createInputs()
{
    m_fileCombo = named(u"fileCombo"_s, new CompareFileBox(this));

    const auto createCheckBox = [this](const QString& name, const QString& text, bool on) {
        auto* box = named(name, new QCheckBox(text, this));
        box->setChecked(on);
        return box;
    };
    m_showDifferent = createCheckBox(u"showDifferent"_s, tr("Different"), true);
    m_showOnlyThis = createCheckBox(u"showOnlyThis"_s, tr("Only in this file"), false);
    m_showOnlyOther = createCheckBox(u"showOnlyOther"_s, tr("Only in the other file"), false);
    m_hideNoise = createCheckBox(u"hideNoise"_s,
                                 tr("Hide statistics, window state and generated lists"), true);
    m_hideNoise->setToolTip(
        tr("Statistics, window geometry and layout, histories and the featured scripts list "
           "differ between any two files and rarely matter."));
    m_filterEdit = named(u"filterEdit"_s, new QLineEdit(this));
    m_filterEdit->setAccessibleName(tr("Search in the differences"));
    m_filterEdit->setPlaceholderText(tr("Search"));
    m_filterEdit->setClearButtonEnabled(true);
    fitFilter();
}

/// Keeps room for a word and the clear button when the check boxes beside it grow with the font.
void CompareView::fitFilter()
{
    m_filterEdit->setMinimumWidth(10 * fontMetrics().averageCharWidth() +
                                  2 * style()->pixelMetric(QStyle::PM_SmallIconSize));
}

void CompareView::createTree()
{
    m_summaryLabel = new WrappedLabel({}, Qt::PlainText, u"summaryLabel"_s, this);
    m_tree = named(u"tree"_s, new CompareTree(this));
    m_copySelectedButton =
        named(u"copySelectedButton"_s,
              new QPushButton(tr("Use the other file's value for selected"), this));
    m_copyAllButton = named(u"copyAllButton"_s, new SteadyButton({copyAllText(u"88888"_s)}, this));
}

void CompareView::createLayout()
{
    auto* fileLabel = new QLabel(tr("Compare with:"), this);
    fileLabel->setBuddy(m_fileCombo);
    auto* fileRow = new QHBoxLayout;
    fileRow->addWidget(fileLabel);
    fileRow->addWidget(m_fileCombo, 1);
    auto* filterRow = new WrappingRow;
    for (QCheckBox* box : {m_showDifferent, m_showOnlyThis, m_showOnlyOther, m_hideNoise}) {
        filterRow->addWidget(box);
    }
    filterRow->addWidget(m_filterEdit);
    auto* buttons = new WrappingRow(Qt::AlignTrailing);
    buttons->addWidget(m_copySelectedButton);
    buttons->addWidget(m_copyAllButton);

    auto* layout = new QVBoxLayout(this);
    layout->setContentsMargins(0, 6, 0, 0);
    layout->addLayout(fileRow);
    layout->addLayout(filterRow);
    layout->addWidget(m_summaryLabel);
    layout->addWidget(m_tree, 1);
    layout->addLayout(buttons);
}

void CompareView::connectWidgets()
{
    connect(m_fileCombo, &QComboBox::activated, this, &CompareView::onFileActivated);
    const QList<QCheckBox*> boxes{m_showDifferent, m_showOnlyThis, m_showOnlyOther, m_hideNoise};
    for (const QCheckBox* box : boxes) {
        connect(box, &QCheckBox::toggled, this, [this] { populate(); });
    }
    connect(m_filterEdit, &QLineEdit::textChanged, this, [this] { populate(); });
    announceHits(
        m_filterEdit, [this] { return m_summaryLabel->text(); }, boxes);
    reportExpansion(m_tree);
    connect(m_tree, &QTreeWidget::itemSelectionChanged, this, &CompareView::updateButtons);
    connect(m_tree, &QTreeWidget::customContextMenuRequested, this, &CompareView::onContextMenu);
    connect(m_tree, &QTreeWidget::itemDoubleClicked, this, &CompareView::onDoubleClicked);
    connect(m_copySelectedButton, &QPushButton::clicked, this,
            [this] { copyEntries(m_tree->selectedEntries()); });
    connect(m_copyAllButton, &QPushButton::clicked, this, &CompareView::onCopyAll);

    m_refreshTimer.setSingleShot(true);
    connect(&m_refreshTimer, &QTimer::timeout, this, [this] { refresh(m_tree->state()); });
    connect(m_model, &SettingsModel::edited, this, [this] { m_refreshTimer.start(0); });
}

void CompareView::setDocument(XsdtDocument* document, const QString& path)
{
    clearEntries();
    m_document = document;
    m_thisPath = path;
    if (m_document && PixInsightEnv::isSameFile(m_otherPath, path)) {
        forgetOther();
    }
    m_fileCombo->setFiles(m_thisPath, m_otherPath);
    refresh();
}

void CompareView::setReadOnly(bool readOnly)
{
    m_readOnly = readOnly;
    updateButtons();
}

void CompareView::changeEvent(QEvent* event)
{
    if (event->type() == QEvent::FontChange) {
        fitFilter();
    }
    QWidget::changeEvent(event);
}

bool CompareView::compareWith(const QString& path, QString* error)
{
    clearEntries();
    QString reason;
    QByteArray bytes;
    if (PixInsightEnv::isSameFile(path, m_thisPath)) {
        reason = tr("That is the file being edited.");
    } else if (SettingsStore::readFile(path, bytes, &reason)) {
        if (parseSettings(m_other, bytes, path, &reason)) {
            m_otherPath = path;
            m_fileCombo->setFiles(m_thisPath, m_otherPath);
        } else {
            m_otherPath.clear();
        }
    }
    refresh();
    return reason.isEmpty() || fail(error, reason);
}

void CompareView::setStateFilters(bool different, bool onlyThis, bool onlyOther)
{
    m_showDifferent->setChecked(different);
    m_showOnlyThis->setChecked(onlyThis);
    m_showOnlyOther->setChecked(onlyOther);
}

void CompareView::clearEntries()
{
    m_tree->removeRows(); // before the entries, which they refer to
    m_shown.clear();
    m_copyableRows = 0;
    m_entries.clear();
    m_isNoise.clear();
    ++m_comparison;
}

void CompareView::forgetOther()
{
    (void)m_other.parse({}); // fails, and leaves an empty document
    m_otherPath.clear();
}

void CompareView::refresh(const CompareTreeState& state)
{
    m_refreshTimer.stop();
    clearEntries();
    if (m_document && !m_otherPath.isEmpty()) {
        m_entries = compareDocuments(*m_document, m_other);
        findNoise();
        populate(state);
        return;
    }
    m_summaryLabel->setText(
        m_document ? tr("Pick another settings file to see how it differs from this one.")
                   : QString());
    updateButtons();
}

void CompareView::findNoise()
{
    // Patterns have fewer keys, so none tells nodes apart whose first keys are the same.
    constexpr quint16 levels = 16;
    const DeletePolicy* policy = m_model->policy();
    const auto own = [policy](const XsdtNode& node) {
        return node.depth > levels ? std::nullopt : std::optional(policy->isCompareNoise(&node));
    };
    InheritedAnswer isNoise;
    m_isNoise.reserve(size_t(m_entries.size()));
    for (const CompareEntry& entry : std::as_const(m_entries)) {
        m_isNoise.push_back(policy && isNoise.of(*entry.node(), own));
    }
}

void CompareView::populate(const CompareTreeState& state)
{
    if (!m_document || m_otherPath.isEmpty()) {
        return; // there is nothing to show
    }
    const std::array isShown{m_showDifferent->isChecked(), m_showOnlyThis->isChecked(),
                             m_showOnlyOther->isChecked()}; // by `CompareState`, as `counts`
    const QString text = m_filterEdit->text().trimmed();
    std::array<int, 3> counts = {};
    int hidden = 0;
    m_shown.clear();
    for (int i = 0; i < m_entries.size(); ++i) {
        if (m_hideNoise->isChecked() && m_isNoise[size_t(i)]) {
            ++hidden;
            continue;
        }
        const CompareEntry& entry = m_entries.at(i);
        const auto place = static_cast<size_t>(entry.state);
        ++counts[place];
        if (isShown[place] && matches(entry, text)) {
            m_shown.append(i);
        }
    }
    addRows(state);
    const auto [different, onlyThis, onlyOther] = counts;
    QString summary = tr("%1 different, %2 only in this file, %3 only in the other file")
                          .arg(different)
                          .arg(onlyThis)
                          .arg(onlyOther);
    if (hidden > 0) {
        summary +=
            tr(" (%1 more hidden as statistics, window state or generated lists)").arg(hidden);
    }
    m_summaryLabel->setText(summary);
    updateButtons();
}

void CompareView::addRows(const CompareTreeState& state)
{
    m_copyableRows = 0;
    QList<CompareRow*> rows;
    rows.reserve(m_shown.size());
    for (const int index : std::as_const(m_shown)) {
        const CompareEntry& entry = m_entries.at(index);
        const bool copyable = canCopy(entry);
        m_copyableRows += copyable ? 1 : 0;
        rows.append(new CompareRow(entry, index, copyable));
    }
    m_tree->setRows(rows, state);
}

void CompareView::updateButtons()
{
    const QList<int> selected = m_tree->selectedEntries();
    const bool selectionCopyable = std::any_of(selected.cbegin(), selected.cend(),
                                               [this](int i) { return canCopy(m_entries.at(i)); });
    setEnabledOrPass(*m_copySelectedButton, !m_readOnly && selectionCopyable, *m_tree);
    setEnabledOrPass(*m_copyAllButton, !m_readOnly && m_copyableRows > 0, *m_tree);
    m_copyAllButton->setText(m_copyableRows > 0 ? copyAllText(QString::number(m_copyableRows))
                                                : tr("Use the other file's value for all shown"));
}

void CompareView::onFileActivated(int index)
{
    QString path = m_fileCombo->itemData(index).toString();
    if (path.isEmpty()) {
        clearEntries();
        forgetOther();
        refresh();
    } else if (m_fileCombo->isBrowse(index)) {
        const QString folder = m_thisPath.isEmpty() ? QString() : QFileInfo(m_thisPath).path();
        path = QFileDialog::getOpenFileName(
            window(), tr("Compare with"), folder,
            tr("PixInsight settings (*.settings *.bak-*);;All files (*)"));
    }
    QString error;
    if (!path.isEmpty() && !compareWith(path, &error)) {
        emit message(error);
    }
    m_fileCombo->setFiles(m_thisPath, m_otherPath);
}

void CompareView::onContextMenu(const QPoint& pos)
{
    const int index = CompareTree::entryIndex(m_tree->itemAt(pos));
    if (index < 0) {
        return;
    }
    const CompareEntry entry = m_entries.at(index);
    QMenu menu(window());
    QAction* use = menu.addAction(tr("Use the other file's value"));
    use->setEnabled(!m_readOnly && canCopy(entry));
    QAction* show = menu.addAction(tr("Show in All settings"));
    show->setEnabled(entry.thisNode);
    QAction* copyPath = menu.addAction(tr("Copy setting path"));

    // While the menu is open, the file may be loaded again or edited.
    const quint64 comparison = m_comparison;
    const QAction* chosen = menu.exec(m_tree->viewport()->mapToGlobal(pos));
    if (!chosen || m_comparison != comparison) {
        return;
    }
    if (chosen == use) {
        copyEntries({index});
    } else if (chosen == show) {
        emit revealRequested(entry.thisNode);
    } else if (chosen == copyPath) {
        QGuiApplication::clipboard()->setText(entry.node()->path());
    }
}

void CompareView::onDoubleClicked(QTreeWidgetItem* item)
{
    const int index = CompareTree::entryIndex(item);
    if (index >= 0 && m_entries.at(index).thisNode) {
        emit revealRequested(m_entries.at(index).thisNode);
    }
}

void CompareView::onCopyAll()
{
    const QString question =
        tr("Copy %n value(s) from %1 into this file?\n\nThey become pending changes: you can "
           "review, revert and save them as usual.",
           nullptr, m_copyableRows)
            .arg(QFileInfo(m_otherPath).fileName());
    const quint64 comparison = m_comparison;
    if (askQuestion(this, tr("Copy values"), question, QMessageBox::Yes | QMessageBox::No,
                    QMessageBox::Yes) == QMessageBox::Yes &&
        m_comparison == comparison) {
        copyEntries(m_shown);
    }
}

void CompareView::copyEntries(const QList<int>& indices)
{
    int copied = 0;
    int refused = 0;
    {
        const SettingsModel::Batch batch(*m_model);
        for (const int index : indices) {
            const CompareEntry& entry = m_entries.at(index);
            const bool done =
                canCopy(entry) && m_model->setValue(entry.thisNode, entry.otherNode->value);
            ++(done ? copied : refused);
        }
    }
    if (refused > 0) {
        emit message(tr("Copied %1 value(s); %2 could not be copied (protected type, not "
                        "editable, or refused).")
                         .arg(copied)
                         .arg(refused));
    } else if (copied > 0) {
        emit message(
            tr("Copied %n value(s) into this file. Review and save when ready.", nullptr, copied));
    }
}

/// Whether the value of the other file can be copied into this one.
bool CompareView::canCopy(const CompareEntry& entry) const
{
    const DeletePolicy* policy = m_model->policy();
    return entry.state == CompareState::Different && entry.thisNode->isEditableType() &&
           !entry.thisNode->isInsideDeletion() &&
           !(policy && policy->isCompareNoCopy(entry.thisNode));
}

} // namespace kse
