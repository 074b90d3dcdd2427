// SPDX-License-Identifier: MIT
#include "views/SettingRow.h"

#include "document/XsdtNode.h"
#include "document/XsdtValueType.h"
#include "views/ColorButton.h"
#include "views/FileTextEdit.h"
#include "views/PlainText.h"
#include "views/SettingsModel.h"
#include "views/WheelGuard.h"
#include "views/WrappedLabel.h"

#include <QApplication>
#include <QCheckBox>
#include <QComboBox>
#include <QContextMenuEvent>
#include <QDoubleSpinBox>
#include <QFileDialog>
#include <QHBoxLayout>
#include <QKeyEvent>
#include <QLabel>
#include <QLineEdit>
#include <QLocale>
#include <QPainter>
#include <QPointer>
#include <QSignalBlocker>
#include <QSpinBox>
#include <QToolButton>

#include <cmath>
#include <limits>

using namespace Qt::StringLiterals;

namespace kse {

namespace {

constexpr int markerRole = Qt::UserRole + 1; // 1 in the combo box item for a value without a name
constexpr double intMin = std::numeric_limits<int>::min();
constexpr double intMax = std::numeric_limits<int>::max();
constexpr qsizetype labelLimit = 1000;

/// A spin box that takes no group separators: Qt leaves them out of the number, so that a decimal
/// comma or point of another country would multiply the value in silence.
template <typename Box>
class UngroupedSpinBox : public Box
{
public:
    using Box::Box;

    QValidator::State validate(QString& text, int& position) const override
    {
        return text.contains(this->locale().groupSeparator()) ? QValidator::Invalid
                                                              : Box::validate(text, position);
    }
};

QLabel* createLabel(const QString& text, const QString& name, QWidget* parent)
{
    auto* label = new WrappedLabel(text, Qt::PlainText, parent);
    label->setObjectName(name);
    return label;
}

/// `parts` quarters of `a` and the rest of `b`.
QColor mixed(const QColor& a, const QColor& b, int parts)
{
    const auto mix = [parts](int x, int y) {
        return (parts * x + (4 - parts) * y) / 4;
    };
    return {mix(a.red(), b.red()), mix(a.green(), b.green()), mix(a.blue(), b.blue())};
}

void setTextColor(QWidget* widget, const QColor& color)
{
    QPalette palette; // sets this role alone; the others go on following the theme
    palette.setColor(QPalette::All, QPalette::WindowText, color);
    widget->setPalette(palette);
}

/// Like the spin boxes themselves, 0 for what is no number that they can show.
double finiteNumber(const QString& text)
{
    const double number = text.toDouble();
    return std::isfinite(number) ? number : 0;
}

} // namespace

SettingRow::SettingRow(XsdtNode* node, const VariableInfo& info, SettingsModel* model,
                       QWidget* parent)
    : QWidget(parent)
    , m_node(node)
    , m_info(info)
    , m_model(model)
    , m_generation(model->generation())
    , m_protectedType(!node->isEditableType())
{
    m_info.label = shownName(info.label, node->key);
    createLabels();
    createEditor();
    createRevertButton();
    layOut();
    setAccessibleName(abbreviated(m_info.label, labelLimit));
    setToolTip(asToolTip(withoutMiddle(node->path(), labelLimit) +
                         (info.documented ? QString() : tr("\n(not documented by PixInsight)"))));
    updateFonts();
    updateColors();
    refresh();
}

void SettingRow::createLabels()
{
    const QString name = asCaption(abbreviated(m_info.label, labelLimit)); // it has a buddy
    m_nameLabel = createLabel(name, u"nameLabel"_s, this);
    m_nameLabel->setAlignment(Qt::AlignLeading | Qt::AlignTop);
    m_pathLabel = createLabel({}, u"pathLabel"_s, this);
    m_pathLabel->hide();
    m_descriptionLabel = createLabel(m_info.description, u"descriptionLabel"_s, this);
    m_descriptionLabel->setVisible(!m_info.description.isEmpty());
}

void SettingRow::createEditor()
{
    m_editorHost = new QWidget(this);
    m_editorHost->setObjectName(u"editorHost"_s);
    m_editorHost->setMinimumWidth(240);
    m_editorHost->setMaximumWidth(460);
    auto* layout = new QHBoxLayout(m_editorHost);
    layout->setContentsMargins({});

    const bool fitsSpinBox = m_info.hasRange && m_info.min >= 0 && m_info.max <= intMax;
    switch (m_info.kind) {
    case VariableKind::Boolean:
        createCheckBox();
        layout->addStretch();
        break;
    case VariableKind::Choice:
        createComboBox();
        break;
    case VariableKind::Integer:
        createSpinBox();
        break;
    case VariableKind::Unsigned:
        if (fitsSpinBox) {
            createSpinBox();
        } else {
            createDoubleSpinBox();
        }
        break;
    case VariableKind::Real:
    case VariableKind::Text:
        createLineEdit();
        break;
    case VariableKind::FilePath:
    case VariableKind::Directory:
        createLineEdit();
        createBrowseButton();
        break;
    case VariableKind::Color:
        createColorButton();
        layout->addStretch();
        break;
    }
}

void SettingRow::addEditor(QWidget* editor, const QString& name)
{
    editor->setObjectName(name);
    editor->setAccessibleName(abbreviated(m_info.label, labelLimit));
    editor->installEventFilter(this);
    m_nameLabel->setBuddy(editor);
    m_editorHost->layout()->addWidget(editor);
}

void SettingRow::addSpinBox(QAbstractSpinBox* box, const QString& name)
{
    addEditor(box, name);
    WheelGuard::install(box);
    box->setKeyboardTracking(false);
    box->setLocale(QLocale::c()); // as the file, and a minus sign that every keyboard has
    // What a box shows for want of the stored text is no change to it when it is typed.
    connect(box->findChild<QLineEdit*>(), &QLineEdit::textEdited, this,
            [this, box] { m_isTyped = box->hasAcceptableInput(); });
    connect(box, &QAbstractSpinBox::editingFinished, this, [this, box] {
        if (m_isTyped && !isOutdated() && !editorShowsValue()) {
            commit(box->text());
        }
    });
}

void SettingRow::createCheckBox()
{
    m_checkBox = new QCheckBox(m_editorHost);
    addEditor(m_checkBox, u"checkBox"_s);
    connect(m_checkBox, &QCheckBox::clicked, this,
            [this](bool checked) { commit(checked ? u"true"_s : u"false"_s); });
}

void SettingRow::createComboBox()
{
    m_comboBox = new QComboBox(m_editorHost);
    addEditor(m_comboBox, u"comboBox"_s);
    WheelGuard::install(m_comboBox);
    for (const VariableChoice& choice : m_info.choices) {
        m_comboBox->addItem(choice.text, choice.value);
    }
    connect(m_comboBox, &QComboBox::activated, this, [this](int item) {
        if (!m_comboBox->itemData(item, markerRole).isValid()) { // that one stands for the value
            commit(QString::number(m_comboBox->itemData(item).toLongLong()));
        }
    });
}

void SettingRow::createSpinBox()
{
    m_spinBox = new UngroupedSpinBox<QSpinBox>(m_editorHost);
    addSpinBox(m_spinBox, u"spinBox"_s);
    connect(m_spinBox, &QSpinBox::valueChanged, this,
            [this](int number) { commit(QString::number(number)); });
}

void SettingRow::createDoubleSpinBox()
{
    m_doubleSpinBox = new UngroupedSpinBox<QDoubleSpinBox>(m_editorHost);
    addSpinBox(m_doubleSpinBox, u"doubleSpinBox"_s);
    m_doubleSpinBox->setDecimals(0);
    connect(m_doubleSpinBox, &QDoubleSpinBox::valueChanged, this,
            [this](double number) { commit(QString::number(number, 'f', 0)); });
}

void SettingRow::createLineEdit()
{
    m_lineEdit = new QLineEdit(m_editorHost);
    addEditor(m_lineEdit, u"lineEdit"_s);
    connect(m_lineEdit, &QLineEdit::editingFinished, this, &SettingRow::commitLine);
}

void SettingRow::createBrowseButton()
{
    m_browseButton = new QToolButton(m_editorHost);
    m_browseButton->setObjectName(u"browseButton"_s);
    m_browseButton->setText(u"\u2026"_s);
    m_browseButton->setToolTip(m_info.kind == VariableKind::Directory ? tr("Choose a folder")
                                                                      : tr("Choose a file"));
    m_browseButton->setAccessibleName(tr("Browse for %1").arg(m_lineEdit->accessibleName()));
    m_editorHost->layout()->addWidget(m_browseButton);
    connect(m_browseButton, &QToolButton::clicked, this, &SettingRow::browse);
}

void SettingRow::createColorButton()
{
    m_colorButton = new ColorButton(m_editorHost);
    addEditor(m_colorButton, u"colorButton"_s);
    connect(m_colorButton, &ColorButton::colorPicked, this,
            [this](quint32 argb) { commit(QString::number(argb)); });
}

void SettingRow::createRevertButton()
{
    m_revertButton = new QToolButton(this);
    m_revertButton->setObjectName(u"revertButton"_s);
    m_revertButton->setText(u"\u21BA"_s);
    m_revertButton->setAutoRaise(true);
    m_revertButton->setAccessibleName(tr("Revert %1").arg(abbreviated(m_info.label, labelLimit)));
    connect(m_revertButton, &QToolButton::clicked, this, &SettingRow::revert);
}

void SettingRow::layOut()
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
    layout->addWidget(m_editorHost, 2, Qt::AlignTop);
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
    m_pathLabel->setText(withoutMiddle(groups.join(u" \u203A "_s), labelLimit));
    m_pathLabel->setVisible(showPath && !m_pathLabel->text().isEmpty());
    refreshDescription(m_node->isModified());
}

bool SettingRow::matches(const QString& text) const
{
    const auto holds = [&text](const QString& whole) {
        return whole.contains(text, Qt::CaseInsensitive);
    };
    return text.isEmpty() || holds(m_info.label) || holds(m_node->key) ||
           holds(m_info.description) ||
           (m_node->typeCode == XsdtValueType::String && holds(m_node->value));
}

/// A dialog of the row, or its own deferred deletion, may outlive the node.
bool SettingRow::isOutdated() const
{
    return m_model->generation() != m_generation;
}

QString SettingRow::rangeFault(const QString& text) const
{
    bool isNumber = false;
    const double number = text.trimmed().toDouble(&isNumber);
    if (m_info.kind != VariableKind::Real || !m_info.hasRange || !isNumber ||
        !(number < m_info.min || number > m_info.max)) {
        return {};
    }
    // With all digits: 1.0000001 isn't 1, which would be within 0 to 1.
    const auto shown = [](double value) {
        return QString::number(value, 'g', QLocale::FloatingPointShortest);
    };
    return tr("%1: %2 is outside the allowed range %3 to %4")
        .arg(abbreviated(m_info.label, 200), shown(number), shown(m_info.min), shown(m_info.max));
}

void SettingRow::commit(const QString& text)
{
    if (isOutdated()) {
        return;
    }
    const QPointer<SettingRow> self(this); // a page may drop the row on a change
    if (m_model->isReadOnly()) {           // PixInsight started beneath a dialog of the row
        emit rejected(tr("PixInsight is running; nothing can be changed."));
    } else if (const QString fault = rangeFault(text); !fault.isEmpty()) {
        emit rejected(fault);
    } else {
        m_model->setValue(m_node, text);
    }
    if (self) {
        refresh();
    }
}

void SettingRow::commitLine()
{
    if (!isOutdated() && !m_lineEdit->isReadOnly() && m_lineEdit->text() != m_node->value) {
        commit(m_lineEdit->text());
    }
}

void SettingRow::browse()
{
    const QPointer<SettingRow> self(this);
    // In a window's title "[*]" is a placeholder.
    const QString caption = abbreviated(m_info.label, 200).replace("[*]"_L1, "[*][*]"_L1);
    const QString path = m_info.kind == VariableKind::Directory
                             ? QFileDialog::getExistingDirectory(window(), caption, m_node->value,
                                                                 QFileDialog::ShowDirsOnly)
                             : QFileDialog::getOpenFileName(window(), caption, m_node->value);
    if (self && !path.isEmpty()) {
        commit(path);
    }
}

void SettingRow::revert()
{
    if (isOutdated()) {
        return;
    }
    const QPointer<SettingRow> self(this);
    if (m_revertButton->hasFocus()) { // about to be disabled; Qt would give it to the next row
        m_nameLabel->buddy()->setFocus();
    }
    m_model->revertValue(m_node);
    if (self) {
        refresh();
    }
}

void SettingRow::refresh()
{
    refreshEditor();
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
    refreshEditorHost();
    refreshDescription(isChanged);
}

/// Whether the editor shows what is stored, and not something else for a text that it can't show.
bool SettingRow::editorShowsValue() const
{
    const QString& text = m_node->value;
    bool isNumber = true;
    if (m_checkBox) {
        return text == "true"_L1 || text == "false"_L1;
    }
    if (m_doubleSpinBox) {
        return text.toDouble(&isNumber) == m_doubleSpinBox->value() && isNumber;
    }
    if (m_comboBox) {
        (void)text.toLongLong(&isNumber);
    } else if (m_spinBox) {
        (void)text.toInt(&isNumber);
    } else if (m_colorButton) {
        (void)text.toUInt(&isNumber);
    }
    return isNumber;
}

QString SettingRow::storedTextHint() const
{
    return editorShowsValue() ? QString()
                              : tr("Stored text: %1").arg(firstCharacters(m_node->value, 80));
}

void SettingRow::refreshEditor()
{
    m_isTyped = false;
    if (m_checkBox) {
        const QSignalBlocker blocker(m_checkBox);
        m_checkBox->setChecked(m_node->value == "true"_L1);
    } else if (m_comboBox) {
        refreshComboBox();
    } else if (m_spinBox) {
        refreshSpinBox();
    } else if (m_doubleSpinBox) {
        refreshDoubleSpinBox();
    } else if (m_lineEdit) {
        refreshLineEdit();
    } else if (m_colorButton) {
        const QSignalBlocker blocker(m_colorButton);
        m_colorButton->setArgb(m_node->value.toUInt());
    }
}

void SettingRow::refreshComboBox()
{
    const QSignalBlocker blocker(m_comboBox);
    // Always afresh: two texts that are no numbers read as the same number.
    if (const int marker = m_comboBox->findData(1, markerRole); marker >= 0) {
        m_comboBox->removeItem(marker);
    }
    const qint64 number = m_node->value.toLongLong();
    int item = m_comboBox->findData(number);
    if (item < 0) {
        item = m_comboBox->count();
        m_comboBox->addItem(tr("Other (%1)").arg(abbreviated(m_node->value, 100)), number);
        m_comboBox->setItemData(item, 1, markerRole);
    }
    m_comboBox->setCurrentIndex(item);
}

void SettingRow::refreshSpinBox()
{
    const QSignalBlocker blocker(m_spinBox);
    const int number = m_node->value.toInt();
    const double min = m_info.hasRange ? qBound(intMin, m_info.min, intMax) : intMin;
    const double max = m_info.hasRange ? qBound(intMin, m_info.max, intMax) : intMax;
    m_spinBox->setRange(qMin(static_cast<int>(min), number), qMax(static_cast<int>(max), number));
    m_spinBox->setValue(number);
}

void SettingRow::refreshDoubleSpinBox()
{
    const QSignalBlocker blocker(m_doubleSpinBox);
    const double number = finiteNumber(m_node->value);
    const double min = m_info.hasRange ? m_info.min : 0;
    const double max = m_info.hasRange ? m_info.max : std::numeric_limits<quint32>::max();
    m_doubleSpinBox->setRange(qMin(min, number), qMax(max, number));
    m_doubleSpinBox->setValue(number);
}

void SettingRow::refreshLineEdit()
{
    const QSignalBlocker blocker(m_lineEdit);
    if (m_protectedType) {
        showFileText(*m_lineEdit, displayValue(*m_node, m_node->value, m_node->value.size()));
        m_lineEdit->setReadOnly(true);
    } else {
        showFileText(*m_lineEdit, m_node->value);
    }
    m_lineEdit->setCursorPosition(0);
}

void SettingRow::refreshRevertButton(bool isChanged)
{
    m_revertButton->setEnabled(isChanged && !m_rowReadOnly && !m_node->isInsideDeletion());
    m_revertButton->setToolTip(
        isChanged
            ? asToolTip(
                  tr("Revert to the value on disk: %1").arg(firstCharacters(m_node->original, 80)))
            : tr("Unchanged"));
}

void SettingRow::refreshEditorHost()
{
    const bool isLocked = m_model->isLocked(m_node);
    const bool isEditable = !m_rowReadOnly && !m_info.readOnly && !m_protectedType &&
                            !m_node->isInsideDeletion() && !isLocked;
    // A row without a control in use takes the focus itself, so that the keyboard reaches its menu.
    setFocusPolicy(isEditable || m_revertButton->isEnabled() ? Qt::NoFocus : Qt::TabFocus);
    if (!isEditable && m_editorHost->isAncestorOf(window()->focusWidget())) {
        setFocus();
    }
    m_editorHost->setEnabled(isEditable);
    if (m_info.readOnly) {
        m_editorHost->setToolTip(tr("Documented by PixInsight as read-only or write-only."));
    } else if (m_protectedType) {
        m_editorHost->setToolTip(tr("Protected value type: shown for reference only."));
    } else if (isLocked) {
        m_editorHost->setToolTip(
            tr("Module registry and version records are locked against editing."));
    }
    if (!m_lineEdit) { // which has a tool tip of its own
        QStringList lines{storedTextHint()};
        if (!isEditable && !lines.first().isEmpty()) {
            lines << m_editorHost->toolTip();
        }
        m_nameLabel->buddy()->setToolTip(asToolTip(lines.join(u'\n').trimmed()));
    }
}

/// Has a screen reader tell what is seen beside the editor, and how.
void SettingRow::refreshDescription(bool isChanged)
{
    QStringList parts;
    if (!m_editorHost->isEnabled() || m_colorButton) { // otherwise the editor itself tells
        parts << displayValue(*m_node, m_colorButton ? m_colorButton->text() : m_node->value, 200);
    }
    if (m_editorHost->isEnabled()) {
        parts << storedTextHint();
    }
    if (isChanged) {
        parts << tr("Changed; on disk: %1").arg(firstCharacters(m_node->original, 80));
    }
    if (m_node->isInsideDeletion()) {
        parts << tr("Marked for deletion");
    }
    if (!m_editorHost->isEnabled()) {
        parts << m_editorHost->toolTip();
    }
    if (!m_pathLabel->isHidden()) {
        parts << m_pathLabel->text();
    }
    parts << m_info.description;
    parts.removeAll(QString());
    const QString text = parts.join(u'\n');
    setAccessibleDescription(text);
    m_nameLabel->buddy()->setAccessibleDescription(text);
}

void SettingRow::updateFonts()
{
    // From the row's own font, which nothing here sets, so that a new text size comes through.
    QFont name = font();
    name.setWeight(m_nameLabel->font().weight());
    name.setStrikeOut(m_nameLabel->font().strikeOut());
    m_nameLabel->setFont(name);
    QFont secondary = font();
    secondary.setPointSizeF(0.9 * QApplication::font().pointSizeF());
    m_pathLabel->setFont(secondary);
    m_descriptionLabel->setFont(secondary);
    // The name's first line stands on that of the editor.
    const int spare = m_editorHost->sizeHint().height() - QFontMetrics(name).height();
    m_texts->setContentsMargins(0, qMax(0, spare / 2), 0, 0);
}

void SettingRow::updateColors()
{
    // The application's palette, since the row's own has another background while it is changed.
    const QPalette palette = QApplication::palette();
    const QColor text = palette.color(QPalette::Active, QPalette::WindowText);
    const QColor window = palette.color(QPalette::Active, QPalette::Window);
    setTextColor(m_descriptionLabel, mixed(text, window, 3));
    setTextColor(m_pathLabel, mixed(text, window, 2));
    // Editors take their outline from the window's colour, which is the row's amber otherwise.
    QPalette editors;
    for (const auto group : {QPalette::Active, QPalette::Inactive, QPalette::Disabled}) {
        editors.setBrush(group, QPalette::Window, palette.brush(group, QPalette::Window));
    }
    m_editorHost->setPalette(editors);
    m_revertButton->setPalette(editors);
}

void SettingRow::paintEvent(QPaintEvent* event)
{
    QWidget::paintEvent(event);
    QColor line = palette().color(QPalette::WindowText);
    line.setAlpha(30);
    QPainter painter(this);
    painter.setPen(line);
    painter.drawLine(rect().bottomLeft(), rect().bottomRight());
    if (hasFocus()) { // the style's own frame would tint the amber of a changed row
        painter.setPen(palette().color(QPalette::Highlight));
        painter.drawRect(rect().adjusted(0, 0, -1, -1));
    }
}

bool SettingRow::eventFilter(QObject* watched, QEvent* event)
{
    if (event->type() == QEvent::KeyPress && (m_lineEdit || m_spinBox || m_doubleSpinBox) &&
        static_cast<QKeyEvent*>(event)->matches(QKeySequence::Cancel) && !isOutdated()) {
        refresh(); // what was typed goes
        return true;
    }
    // The menu key on an editor asks for the row's menu; its own opens with the mouse.
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
    switch (event->type()) {
    case QEvent::ApplicationFontChange:
    case QEvent::FontChange:
        updateFonts();
        break;
    case QEvent::ApplicationPaletteChange:
    case QEvent::PaletteChange:
        updateColors();
        break;
    default:
        break;
    }
}

} // namespace kse
