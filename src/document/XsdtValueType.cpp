// SPDX-License-Identifier: MIT
#include "document/XsdtValueType.h"

#include "document/Fail.h"

#include <QLocale>

#include <cmath>
#include <limits>

using namespace Qt::StringLiterals;

namespace kse {

namespace {

/// The locale of C without group separators: somebody who types "1,000" with a decimal comma must
/// not get a thousand.
const QLocale& numberLocale()
{
    static const QLocale locale = [] {
        QLocale c = QLocale::c();
        c.setNumberOptions(c.numberOptions() | QLocale::RejectGroupSeparator);
        return c;
    }();
    return locale;
}

bool normaliseBoolean(const QString& text, QString& normalised)
{
    const QString lower = text.toLower();
    const bool isTrue = lower == "true"_L1 || lower == "1"_L1;
    if (!isTrue && lower != "false"_L1 && lower != "0"_L1) {
        return false;
    }
    normalised = isTrue ? u"true"_s : u"false"_s;
    return true;
}

/// Takes whole numbers in the range of `Number`. "-0" isn't a number of an unsigned type.
template <typename Number>
bool normaliseWhole(const QString& text, QString& normalised)
{
    using Limits = std::numeric_limits<Number>;
    bool ok = false;
    const qlonglong number = numberLocale().toLongLong(text, &ok);
    if (!ok || number < Limits::min() || number > Limits::max() ||
        (!Limits::is_signed && text.startsWith(u'-'))) {
        return false;
    }
    normalised = QString::number(number);
    return true;
}

bool normaliseReal(const QString& text, QString& normalised)
{
    bool ok = false;
    const double number = numberLocale().toDouble(text, &ok);
    if (!ok || !std::isfinite(number)) {
        return false;
    }
    normalised = QString::number(number, 'g', QLocale::FloatingPointShortest);
    return true;
}

bool normaliseRealSingle(const QString& text, QString& normalised)
{
    // The largest single, rounded up to nine digits: that is how it is stored, so it must pass.
    constexpr double largestStored = 3.40282347e+38;
    bool ok = false;
    const double number = numberLocale().toDouble(text, &ok);
    // The negation refuses NaN too.
    if (!ok || !(std::abs(number) <= largestStored)) {
        return false;
    }
    // The shortest text of the single, not of the double that it widens to: 0.1 stays "0.1".
    const auto single = static_cast<float>(number);
    QString shortest;
    for (int precision = 1; precision <= std::numeric_limits<float>::max_digits10; ++precision) {
        shortest = QString::number(double(single), 'g', precision);
        // Qt 6.8 reads texts above the largest single as that number, but they would be refused.
        if (shortest.toFloat() == single && std::abs(shortest.toDouble()) <= largestStored) {
            break;
        }
    }
    normalised = shortest;
    return true;
}

bool normaliseString(const QString& text, QString& normalised)
{
    normalised = text;
    return true;
}

struct TypeRow
{
    QChar code;
    const char* name;
    bool (*normalise)(const QString& text, QString& normalised); ///< Null if it can't be edited.
    const char* refusal;
};

constexpr TypeRow types[] = {
    {XsdtValueType::Boolean, "Boolean", normaliseBoolean, "Expected true or false."},
    {XsdtValueType::Integer, "Integer", normaliseWhole<qint32>,
     "Expected an integer between -2147483648 and 2147483647."},
    {XsdtValueType::Unsigned, "Unsigned", normaliseWhole<quint32>,
     "Expected an integer between 0 and 4294967295."},
    {XsdtValueType::Real, "Real", normaliseReal, "Expected a real number."},
    {XsdtValueType::RealSingle, "Real (single)", normaliseRealSingle,
     "Expected a real number in single-precision range."},
    {XsdtValueType::String, "String", normaliseString, ""},
    {XsdtValueType::Time, "Time", nullptr, ""},
    {XsdtValueType::Block, "Block", nullptr, ""},
};

const TypeRow* rowOf(QChar code)
{
    for (const TypeRow& row : types) {
        if (row.code == code) {
            return &row;
        }
    }
    return nullptr;
}

} // namespace

bool isEditableCode(QChar code)
{
    const TypeRow* row = rowOf(code);
    return row && row->normalise;
}

QString typeName(QChar code)
{
    const TypeRow* row = rowOf(code);
    return row ? QString::fromLatin1(row->name) : u"Unknown (%1)"_s.arg(code);
}

bool validateValue(QChar code, const QString& input, QString& normalised, QString* error)
{
    if (!isEditableCode(code)) {
        return fail(error, u"This value type is protected and cannot be edited."_s);
    }
    const TypeRow* row = rowOf(code);
    const bool isString = code == XsdtValueType::String;
    return row->normalise(isString ? input : input.trimmed(), normalised) ||
           fail(error, QString::fromLatin1(row->refusal));
}

} // namespace kse
