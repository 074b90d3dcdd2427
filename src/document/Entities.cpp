// SPDX-License-Identifier: MIT
#include "document/Entities.h"

#include <algorithm>
#include <cctype>
#include <utility>

using namespace Qt::StringLiterals;

namespace kse {

namespace {

/// The code point that `digits` give; 0 if one isn't a digit or the number is too large. No
/// reference may name 0 itself.
char32_t codePoint(QStringView digits, int base)
{
    // Qt also takes blanks, signs and prefixes.
    const bool areDigits = std::all_of(digits.begin(), digits.end(), [](QChar digit) {
        return digit.unicode() < 0x80 && std::isxdigit(digit.unicode());
    });
    const char32_t number = digits.toUInt(nullptr, base);
    return areDigits && number <= QChar::LastValidCodePoint ? number : 0;
}

/// The code point for the reference `name`, without & and ;. 0 if there is none.
char32_t referredTo(QStringView name)
{
    static constexpr std::pair<QStringView, char32_t> named[] = {
        {u"amp", U'&'}, {u"lt", U'<'}, {u"gt", U'>'}, {u"quot", U'"'}, {u"apos", U'\''}};
    for (const auto& [entity, character] : named) {
        if (name == entity) {
            return character;
        }
    }
    if (name.startsWith(u"#x")) {
        return codePoint(name.mid(2), 16);
    }
    return name.startsWith(u'#') ? codePoint(name.mid(1), 10) : 0;
}

} // namespace

bool decodeEntities(QStringView input, QString& output, QString& reason)
{
    constexpr qsizetype longestReference = 12; // from & to ;
    output.resize(input.size());               // no character is longer than its reference
    QChar* to = output.data();
    const QChar* const end = input.cend();
    for (const QChar* at = input.cbegin(); at != end;) {
        if (*at != u'&') {
            *to++ = *at++;
            continue;
        }
        const QStringView reach(at + 1, std::min<qsizetype>(end - at - 1, longestReference));
        const qsizetype length = reach.indexOf(u';');
        if (length < 0) {
            reason = u"malformed entity reference"_s;
            return false;
        }
        const QStringView name = reach.left(length);
        const char32_t character = referredTo(name);
        if (character == 0) {
            reason = name.startsWith(u'#') ? u"invalid character reference"_s
                                           : u"unknown entity &%1;"_s.arg(name);
            return false;
        }
        // QString::fromUcs4 would take U+FEFF for a byte order mark and drop it.
        for (const char16_t unit : QChar::fromUcs4(character)) {
            *to++ = unit;
        }
        at += length + 2;
    }
    output.truncate(to - output.constData());
    return true;
}

} // namespace kse
