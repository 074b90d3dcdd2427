// SPDX-License-Identifier: MIT
#include "views/rows/ValueEditor.h"

#include "document/XsdtNode.h"
#include "schema/SettingsSchema.h"
#include "views/rows/NumberEditor.h"
#include "views/rows/TextEditor.h"
#include "widgets/ColorButton.h"
#include "widgets/PlainText.h"
#include "widgets/Spoken.h"
#include "widgets/WheelGuard.h"

#include <QCheckBox>
#include <QComboBox>
#include <QHBoxLayout>
#include <QKeyEvent>
#include <QLineEdit>
#include <QLocale>
#include <QSignalBlocker>

using namespace Qt::StringLiterals;

namespace kse {

namespace {

class BooleanEditor : public ValueEditor
{
public:
    BooleanEditor(const QString& name, QWidget* parent)
        : ValueEditor(parent)
    {
        setControl(m_box, u"checkBox"_s, name);
        addStretch();
        // Not `clicked`, which comes from the mouse and keyboard alone, and not from voice control.
        connect(m_box, &QCheckBox::toggled, this,
                [this](bool checked) { emit entered(checked ? u"true"_s : u"false"_s); });
    }

protected:
    bool showValue(const XsdtNode& node) override
    {
        m_box->setChecked(node.value == "true"_L1);
        return m_box->isChecked() || node.value == "false"_L1;
    }

private:
    QCheckBox* m_box = new QCheckBox(this);
};

class ChoiceEditor : public ValueEditor
{
public:
    ChoiceEditor(const VariableInfo& info, const QString& name, QWidget* parent)
        : ValueEditor(parent)
    {
        setControl(m_box, u"comboBox"_s, name);
        setSpokenLabel(m_box, name);
        WheelGuard::install(m_box);
        for (const VariableChoice& choice : info.choices) {
            m_box->addItem(choice.text, choice.value);
        }
        connect(m_box, &QComboBox::activated, this, [this](int item) {
            // The marked item stands for the stored value.
            if (!m_box->itemData(item, markerRole).isValid()) {
                emit entered(QString::number(m_box->itemData(item).toLongLong()));
            }
        });
    }

protected:
    bool showValue(const XsdtNode& node) override
    {
        // Made again each time: texts that are no numbers all read as 0.
        if (const int marker = m_box->findData(1, markerRole); marker >= 0) {
            m_box->removeItem(marker);
        }
        bool isNumber = false;
        const qint64 number = node.value.toLongLong(&isNumber);
        int item = m_box->findData(number);
        if (item < 0) {
            item = m_box->count();
            m_box->addItem(tr("Other (%1)").arg(abbreviated(node.value, titleLimit)), number);
            m_box->setItemData(item, 1, markerRole);
        }
        m_box->setCurrentIndex(item);
        return isNumber;
    }

private:
    /// Holds 1 in the item for a value that is no choice.
    static constexpr int markerRole = Qt::UserRole + 1;

    QComboBox* m_box = new QComboBox(this);
};

class ColorEditor : public ValueEditor
{
public:
    ColorEditor(const QString& name, QWidget* parent)
        : ValueEditor(parent)
    {
        setControl(m_button, u"colorButton"_s, name);
        addStretch();
        connect(m_button, &ColorButton::colorPicked, this,
                [this](quint32 argb) { emit entered(QString::number(argb)); });
    }

    QString unspokenText() const override { return m_button->text(); }

protected:
    bool showValue(const XsdtNode& node) override
    {
        bool isNumber = false;
        m_button->setArgb(node.value.toUInt(&isNumber));
        return isNumber;
    }

private:
    ColorButton* m_button = new ColorButton(this);
};

} // namespace

ValueEditor* ValueEditor::create(const VariableInfo& info, const QString& name, QWidget* parent)
{
    switch (info.kind) {
    case VariableKind::Boolean:
        return new BooleanEditor(name, parent);
    case VariableKind::Choice:
        return new ChoiceEditor(info, name, parent);
    case VariableKind::Integer:
    case VariableKind::Unsigned:
        return createNumberEditor(info, name, parent);
    case VariableKind::Color:
        return new ColorEditor(name, parent);
    default:
        return createTextEditor(info, name, parent);
    }
}

ValueEditor::ValueEditor(QWidget* parent)
    : QWidget(parent)
{
    auto* layout = new QHBoxLayout(this);
    layout->setContentsMargins({});
}

void ValueEditor::setControl(QWidget* control, const QString& objectName, const QString& name)
{
    control->setObjectName(objectName);
    control->setAccessibleName(name);
    layout()->addWidget(control);
    m_control = control;
}

void ValueEditor::takeUnfocused(const QLineEdit& edit, const std::function<void()>& take)
{
    // A turn later: a replaced text comes as a deletion and an insertion.
    connect(
        &edit, &QLineEdit::textChanged, this,
        [this, take] {
            if (window()->focusWidget() != m_control) {
                take();
            }
        },
        Qt::QueuedConnection);
}

QString ValueEditor::rangeFault(const QString& name, double number, double min, double max)
{
    if (!(number < min || number > max)) {
        return {};
    }
    // With all digits: shown as 1, 1.0000001 would seem to be within 0 to 1.
    const auto shown = [](double value) {
        return QString::number(value, 'g', QLocale::FloatingPointShortest);
    };
    return tr("%1: %2 is outside the allowed range %3 to %4")
        .arg(name, shown(number), shown(min), shown(max));
}

void ValueEditor::addStretch()
{
    static_cast<QHBoxLayout*>(layout())->addStretch();
}

void ValueEditor::setValue(const XsdtNode& node)
{
    const QSignalBlocker blocker(m_control);
    m_control->setToolTip({});
    m_storedTextHint = showValue(node)
                           ? QString()
                           : tr("Stored text: %1").arg(firstCharacters(node.value, hintLimit));
}

bool ValueEditor::eventFilter(QObject* watched, QEvent* event)
{
    if (event->type() == QEvent::KeyPress &&
        static_cast<QKeyEvent*>(event)->matches(QKeySequence::Cancel)) {
        emit cancelled();
        return true;
    }
    return QWidget::eventFilter(watched, event);
}

} // namespace kse
