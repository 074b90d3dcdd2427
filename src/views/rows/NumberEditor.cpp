// SPDX-License-Identifier: MIT
#include "views/rows/NumberEditor.h"

#include "document/XsdtNode.h"
#include "schema/SettingsSchema.h"
#include "views/rows/ValueEditor.h"
#include "widgets/WheelGuard.h"

#include <QDoubleSpinBox>
#include <QLineEdit>
#include <QLocale>
#include <QSpinBox>

#include <cmath>
#include <limits>
#include <optional>
#include <type_traits>
#include <utility>

using namespace Qt::StringLiterals;

namespace kse {

namespace {

/// A spin box that refuses group separators. Qt ignores them in a number, so that the decimal comma
/// or point of another country would multiply the value silently.
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

/// False, with 0 in `number`, if `text` is no number that the spin box can show.
bool readNumber(const QString& text, int& number)
{
    bool isNumber = false;
    number = text.toInt(&isNumber);
    return isNumber;
}

bool readNumber(const QString& text, double& number)
{
    bool isNumber = false;
    number = text.toDouble(&isNumber);
    if (!std::isfinite(number)) {
        number = 0;
        return false;
    }
    return isNumber;
}

/// `Box` is `QSpinBox` with int as `Number`, or `QDoubleSpinBox` with double for larger numbers.
template <typename Box, typename Number>
class NumberEditor : public ValueEditor
{
public:
    NumberEditor(Number min, Number max, const QString& objectName, const QString& name,
                 QWidget* parent)
        : ValueEditor(parent)
        , m_min(min)
        , m_max(max)
    {
        setControl(m_box, objectName, name);
        cancelOnEscape();
        WheelGuard::install(m_box);
        m_box->setKeyboardTracking(false);
        m_box->setLocale(QLocale::c()); // as in the file, with a minus sign that every keyboard has
        if constexpr (std::is_same_v<Number, double>) {
            m_box->setDecimals(0);
        }
        connect(m_box, &Box::valueChanged, this, [this] { emit entered(m_box->text()); });
        // If the box can't show the stored text, typing the number that it shows is no change to
        // it.
        const auto* edit = m_box->template findChild<QLineEdit*>();
        connect(edit, &QLineEdit::textChanged, this, [this](const QString& text) {
            m_isTyped = m_box->hasAcceptableInput();
            m_refused = m_isTyped ? std::nullopt : std::optional(text);
        });
        connect(m_box, &Box::editingFinished, this, [this] {
            if (m_refused) { // the box shows its former number again
                emit entered(*std::exchange(m_refused, std::nullopt));
            } else if (m_isTyped && !storedTextHint().isEmpty()) {
                emit entered(m_box->text());
            }
        });
        takeUnfocused(*edit, [this, edit] {
            if (m_box->hasAcceptableInput()) {
                m_box->interpretText();
            } else {
                emit entered(edit->text());
            }
        });
    }

    QString faultOf(const QString& text) const override
    {
        bool isNumber = false;
        const double number = text.toDouble(&isNumber);
        return isNumber ? rangeFault(m_box->accessibleName(), number, double(m_box->minimum()),
                                     double(m_box->maximum()))
                        : QString();
    }

protected:
    bool showValue(const XsdtNode& node) override
    {
        m_isTyped = false;
        m_refused.reset();
        Number number = 0;
        const bool isNumber = readNumber(node.value, number);
        m_box->setRange(qMin(m_min, number), qMax(m_max, number));
        m_box->setValue(number);
        return isNumber && m_box->value() == number;
    }

private:
    Box* m_box = new UngroupedSpinBox<Box>(this);
    Number m_min = 0;
    Number m_max = 0;
    bool m_isTyped = false;           ///< The box holds a number typed since the last `showValue`.
    std::optional<QString> m_refused; ///< Or a text that the box won't take.
};

} // namespace

ValueEditor* createNumberEditor(const VariableInfo& info, const QString& name, QWidget* parent)
{
    constexpr int intMin = std::numeric_limits<int>::min();
    constexpr int intMax = std::numeric_limits<int>::max();
    if (info.kind == VariableKind::Unsigned &&
        !(info.hasRange && info.min >= 0 && info.max <= intMax)) {
        const double max = info.hasRange ? info.max : std::numeric_limits<quint32>::max();
        return new NumberEditor<QDoubleSpinBox, double>(info.hasRange ? info.min : 0, max,
                                                        u"doubleSpinBox"_s, name, parent);
    }
    const auto bound = [](double end) {
        return static_cast<int>(qBound<double>(intMin, end, intMax));
    };
    return new NumberEditor<QSpinBox, int>(info.hasRange ? bound(info.min) : intMin,
                                           info.hasRange ? bound(info.max) : intMax, u"spinBox"_s,
                                           name, parent);
}

} // namespace kse
