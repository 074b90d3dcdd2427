// SPDX-License-Identifier: MIT
// An input is a type code, then the text that a user enters, both in UTF-8; or, after a byte FF,
// both in UTF-16, which may hold halves of surrogate pairs.
#include "FuzzInput.h"
#include "document/XsdtValueType.h"

#include <cmath>
#include <cstdlib>
#include <limits>

using namespace kse;
using namespace Qt::StringLiterals;

namespace {

QString textOf(const std::uint8_t* data, std::size_t size)
{
    const QByteArrayList input = parts(data, size, 2);
    if (!input[0].isEmpty()) {
        return QString::fromUtf8(input[0]);
    }
    QString text;
    for (qsizetype i = 0; i + 1 < input[1].size(); i += 2) {
        text += QChar(static_cast<uchar>(input[1][i]), static_cast<uchar>(input[1][i + 1]));
    }
    return text;
}

/// What another reader of numbers makes of `stored`, and of the `input` it came from.
void requireSameNumber(QChar code, const QString& input, const QString& stored)
{
    const QByteArray written = stored.toLatin1();
    // Qt takes the minus sign of typographers too.
    const QByteArray entered = input.trimmed().replace(QChar(0x2212), u'-').toLatin1();
    if (code == u'i' || code == u'u') {
        const long long number = std::strtoll(written.constData(), nullptr, 10);
        require(QByteArray::number(number) == written, "a whole number in decimal");
        require(code == u'u' ? number >= 0 && number <= std::numeric_limits<quint32>::max()
                             : number == static_cast<qint32>(number),
                "a whole number in range");
        require(number == std::strtoll(entered.constData(), nullptr, 10), "the number entered");
    } else if (code == u'F') {
        const double number = std::strtod(written.constData(), nullptr);
        require(std::isfinite(number), "a finite number");
        require(number == std::strtod(entered.constData(), nullptr), "the number entered");
    } else if (code == u'f') {
        const float number = std::strtof(written.constData(), nullptr);
        const double source = std::strtod(entered.constData(), nullptr);
        require(std::isfinite(number), "a finite number");
        require(number == static_cast<float>(source), "the single nearest to the number entered");
    }
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    const QString text = textOf(data, size);
    if (text.isEmpty()) {
        return 0;
    }
    const QChar code = text.front();
    const QString input = text.mid(1);
    require(!typeName(code).isEmpty(), "each code has a name");
    QString stored = u"before"_s;
    QString error;
    if (!validateValue(code, input, stored, &error)) {
        require(!error.isEmpty() && stored == u"before"_s, "a refusal leaves the text alone");
        return 0;
    }
    require(error.isEmpty(), "no message for what is accepted");
    require(code == u's' ? stored == input : !stored.isEmpty(), "text");
    require(code != u'b' || stored == u"true"_s || stored == u"false"_s, "true or false");
    requireSameNumber(code, input, stored);
    QString again;
    require(validateValue(code, stored, again) && again == stored, "accepted again");
    return 0;
}
