// SPDX-License-Identifier: MIT
#include "views/rows/SettingRow.h"

#include "document/XsdtNode.h"
#include "document/XsdtValueType.h"
#include "views/model/NodeLooks.h"
#include "views/model/SettingsModel.h"
#include "views/rows/ValueEditor.h"
#include "widgets/Named.h"
#include "widgets/PlainText.h"
#include "widgets/Spoken.h"
#include "widgets/TabOrder.h"
#include "widgets/WrappedLabel.h"

#include <QApplication>
#include <QContextMenuEvent>
#include <QHBoxLayout>
#include <QLabel>
#include <QPainter>
#include <QPointer>
#include <QToolButton>

using namespace Qt::StringLiterals;

namespace kse {

namespace {

/// Mixes `parts` quarters of `a` with `b`.
QColor mixed(const QColor& a, const QColor& b, int parts)
{
    const auto mix = [parts](int x, int y) {
        return (parts * x + (4 - parts) * y) / 4;
    };
    return {mix(a.red(), b.red()), mix(a.green(), b.green()), mix(a.blue(), b.blue())};
}

void setTextColor(QWidget* widget, const QColor& color)
{
    QPalette palette; // sets only this role; the others follow the theme
    palette.setColor(QPalette::All, QPalette::WindowText, color);
    widget->setPalette(palette);
}

} // namespace

SettingRow::SettingRow(XsdtNode* node, const VariableInfo& info, SettingsModel* model,
                       QWidget* parent)
    : QWidget(parent)
    , m_node(node)
    , m_info(info)
    , m_model(model)
    , m_guard(model)
    , m_protectedType(!node->isEditableType())
{
    m_info.label = shownName(info.label, node->key);
    createLabels();
    createEditor();
    createRevertButton();
    createLayout();
    setAccessibleName(abbreviated(m_info.label, lineLimit));
    setToolTip(asToolTip(withoutMiddle(node->path(), lineLimit) +
                         (info.documented ? QString() : tr("\n(not documented by PixInsight)"))));
    setMayBeTabStop(*this); // while no control in it can be used
    updateFonts();
    updateColors();
    refresh();
}

void SettingRow::createLabels()
{
    const QString name = asCaption(abbreviated(m_info.label, lineLimit)); // it has a buddy
    m_nameLabel = new WrappedLabel(name, Qt::PlainText, u"nameLabel"_s, this);
    m_nameLabel->setAlignment(Qt::AlignLeading | Qt::AlignTop);
    m_pathLabel = new WrappedLabel({}, Qt::PlainText, u"pathLabel"_s, this);
    m_pathLabel->hide();
    m_descriptionLabel =
        new WrappedLabel(m_info.description, Qt::PlainText, u"descriptionLabel"_s, this);
    m_descriptionLabel->setVisible(!m_info.description.isEmpty());
}

void SettingRow::createEditor()
{
    m_editor = ValueEditor::create(m_info, abbreviated(m_info.label, lineLimit), this);
    m_editor->setObjectName(u"editorHost"_s);
    m_editor->setMinimumWidth(240);
    m_editor->setMaximumWidth(460);
    m_editor->control()->installEventFilter(this);
    m_nameLabel->setBuddy(m_editor->control());
    connect(m_editor, &ValueEditor::entered, this, &SettingRow::commit);
    connect(m_editor, &ValueEditor::cancelled, this, &SettingRow::refresh);
}

void SettingRow::createRevertButton()
{
    m_revertButton = named(u"revertButton"_s, new QToolButton(this));
    m_revertButton->setText(u"\u21BA"_s);
    m_revertButton->setAutoRaise(true);
    m_revertButton->setAccessibleName(tr("Revert %1").arg(abbreviated(m_info.label, lineLimit)));
    connect(m_revertButton, &QToolButton::clicked, this, &SettingRow::revert);
}

void SettingRow::createLayout()
{
    m_texts = new QVBoxLayout;
    m_texts->setSpacing(2);
    m_texts->addWidget(m_nameLabel);
    m_texts->addWidget(m_pathLabel);
    m_texts->addWidget(m_descriptionLabel);
    auto* layout = new QHBoxLayout(this);
    layout->setContentsMargins(10, 6, 10, 6);
    layout->setSpacing(12);
    layout->addLayout(m_texts, 3);
    layout->addWidget(m_editor, 2, Qt::AlignTop);
    layout->addWidget(m_revertButton, 0, Qt::AlignTop);
}

void SettingRow::setReadOnly(bool readOnly)
{
    m_rowReadOnly = readOnly;
    refresh();
}

void SettingRow::setShowPath(bool showPath)
{
    QStringList groups = m_node->path().split(u'/');
    groups.removeLast();
    m_pathLabel->setText(withoutMiddle(groups.join(u" \u203A "_s), lineLimit));
    m_pathLabel->setVisible(showPath && !m_pathLabel->text().isEmpty());
    refreshDescription(m_node->isModified());
}

void SettingRow::setRemark(const QString& remark)
{
    m_remark = remark;
    refreshDescription(m_node->isModified());
}

bool SettingRow::matches(const XsdtNode& node, const VariableInfo& info, const QString& text)
{
    const auto holds = [&text](const QString& whole) {
        return whole.contains(text, Qt::CaseInsensitive);
    };
    return holds(shownName(info.label, node.key)) || holds(node.key) || holds(info.description) ||
           (node.typeCode == XsdtValueType::String && holds(node.value));
}

void SettingRow::commit(const QString& text)
{
    if (!m_guard.isSameTree()) {
        return;
    }
    const QPointer<SettingRow> self(this); // a page may drop the row on a change
    if (m_model->isReadOnly()) {           // PixInsight started while a dialog of the row was open
        emit rejected(SettingsModel::readOnlyReason());
    } else if (const QString fault = m_editor->faultOf(text); !fault.isEmpty()) {
        emit rejected(fault);
    } else {
        m_model->setValue(m_node, text);
    }
    if (self) {
        refresh();
    }
}

void SettingRow::revert()
{
    if (!m_guard.isSameTree()) {
        return;
    }
    const QPointer<SettingRow> self(this);
    if (m_revertButton->hasFocus()) { // about to be disabled; Qt would focus the next row
        m_editor->control()->setFocus();
    }
    m_model->revertValue(m_node);
    if (self) {
        refresh();
    }
}

void SettingRow::refresh()
{
    if (!m_guard.isSameTree()) {
        return;
    }
    m_editor->setValue(*m_node);
    const bool isChanged = m_node->isModified();
    QFont font = m_nameLabel->font();
    font.setWeight(isChanged ? QFont::Bold : QFont::Normal);
    font.setStrikeOut(m_node->isInsideDeletion());
    m_nameLabel->setFont(font);
    QPalette palette; // sets no role
    if (isChanged) {
        palette.setColor(QPalette::Window, QColor(255, 190, 0, 55));
    }
    setPalette(palette);
    setAutoFillBackground(isChanged);
    refreshRevertButton(isChanged);
    refreshEditor();
    refreshDescription(isChanged);
}

void SettingRow::refreshRevertButton(bool isChanged)
{
    m_revertButton->setEnabled(isChanged && !m_rowReadOnly && !m_node->isInsideDeletion());
    m_revertButton->setToolTip(
        isChanged ? asToolTip(tr("Revert to the value on disk: %1")
                                  .arg(firstCharacters(m_node->original, hintLimit)))
                  : tr("Unchanged"));
}

void SettingRow::refreshEditor()
{
    const bool isLocked = m_model->isLocked(m_node);
    const bool isEditable = !m_rowReadOnly && !m_info.readOnly && !m_protectedType &&
                            !m_node->isInsideDeletion() && !isLocked;
    // Without an enabled control the row takes the focus itself, so that the keyboard reaches its
    // menu.
    setFocusPolicy(isEditable || m_revertButton->isEnabled() ? Qt::NoFocus : Qt::TabFocus);
    if (!isEditable && m_editor->isAncestorOf(window()->focusWidget())) {
        setFocus();
    }
    m_editor->setEnabled(isEditable);
    if (m_info.readOnly) {
        m_editor->setToolTip(tr("Documented by PixInsight as read-only or write-only."));
    } else if (m_protectedType) {
        m_editor->setToolTip(tr("Protected value type: shown for reference only."));
    } else if (isLocked) {
        m_editor->setToolTip(tr("Module registry and version records are locked against editing."));
    }
    if (const QString hint = m_editor->storedTextHint(); !hint.isEmpty()) {
        const QString text = isEditable ? hint : hint + u'\n' + m_editor->toolTip();
        m_editor->control()->setToolTip(asToolTip(text.trimmed()));
    }
}

/// Describes to a screen reader what is shown beside the editor.
void SettingRow::refreshDescription(bool isChanged)
{
    QStringList parts{m_remark};
    const QString unspoken = m_editor->unspokenText();
    if (!m_editor->isEnabled() || !unspoken.isEmpty()) { // else read out with the editor
        parts << displayValue(*m_node, unspoken.isEmpty() ? m_node->value : unspoken, shortLimit);
    }
    if (m_editor->isEnabled()) {
        parts << m_editor->storedTextHint();
    }
    if (isChanged) {
        parts << tr("Changed; on disk: %1").arg(firstCharacters(m_node->original, hintLimit));
    }
    if (m_node->isInsideDeletion()) {
        parts << tr("Marked for deletion");
    }
    if (!m_editor->isEnabled()) {
        parts << m_editor->toolTip();
    }
    if (!m_pathLabel->isHidden()) {
        parts << m_pathLabel->text();
    }
    parts << m_info.description;
    parts.removeAll(QString());
    for (QWidget* widget : {static_cast<QWidget*>(this), m_editor->control()}) {
        setSpokenDescription(widget, parts.join(u'\n'));
    }
}

void SettingRow::updateFonts()
{
    // From the row's own font, which is never set and so follows a new text size.
    QFont name = font();
    name.setWeight(m_nameLabel->font().weight());
    name.setStrikeOut(m_nameLabel->font().strikeOut());
    m_nameLabel->setFont(name);
    QFont secondary = font();
    secondary.setPointSizeF(0.9 * QApplication::font().pointSizeF());
    m_pathLabel->setFont(secondary);
    m_descriptionLabel->setFont(secondary);
    // Aligns the first line of the name with the text of the editor.
    const int spare = m_editor->sizeHint().height() - QFontMetrics(name).height();
    m_texts->setContentsMargins(0, qMax(0, spare / 2), 0, 0);
}

void SettingRow::updateColors()
{
    // The application's palette: the row's own has another background while it is changed.
    const QPalette palette = QApplication::palette();
    const QColor text = palette.color(QPalette::Active, QPalette::WindowText);
    const QColor window = palette.color(QPalette::Active, QPalette::Window);
    setTextColor(m_descriptionLabel, mixed(text, window, 3));
    setTextColor(m_pathLabel, mixed(text, window, 2));
    // The outline of editors comes from the window colour, which would be the row's amber.
    QPalette editors;
    for (const auto group : {QPalette::Active, QPalette::Inactive, QPalette::Disabled}) {
        editors.setBrush(group, QPalette::Window, palette.brush(group, QPalette::Window));
    }
    m_editor->setPalette(editors);
    m_revertButton->setPalette(editors);
}

void SettingRow::paintEvent(QPaintEvent* event)
{
    QWidget::paintEvent(event);
    QColor line = palette().color(QPalette::WindowText);
    line.setAlpha(30);
    QPainter painter(this);
    painter.fillRect(0, height() - 1, width(), 1, line); // a line is drawn pixel by pixel
    if (hasFocus()) { // the style's own frame would tint the amber of a changed row
        painter.setPen(palette().color(QPalette::Highlight));
        painter.drawRect(rect().adjusted(0, 0, -1, -1));
    }
}

bool SettingRow::eventFilter(QObject* watched, QEvent* event)
{
    // The menu key opens the row's menu; the editor's own menu opens with the mouse only.
    if (event->type() == QEvent::ContextMenu) {
        const auto* request = static_cast<QContextMenuEvent*>(event);
        if (request->reason() == QContextMenuEvent::Keyboard) {
            emit menuRequested(m_node, request->globalPos());
            return true;
        }
    }
    return QWidget::eventFilter(watched, event);
}

void SettingRow::contextMenuEvent(QContextMenuEvent* event)
{
    emit menuRequested(m_node, event->globalPos());
    event->accept();
}

void SettingRow::changeEvent(QEvent* event)
{
    QWidget::changeEvent(event);
    const QEvent::Type type = event->type();
    if (type == QEvent::ApplicationFontChange || type == QEvent::FontChange) {
        updateFonts();
    } else if (type == QEvent::ApplicationPaletteChange || type == QEvent::PaletteChange) {
        updateColors();
    }
}

} // namespace kse
