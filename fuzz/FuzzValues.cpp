// SPDX-License-Identifier: MIT
// An input is a type code, then the text that a user enters, both in UTF-8; or, after a byte FF,
// both in UTF-16, which may hold halves of surrogate pairs.
#include "FuzzInput.h"
#include "document/XsdtValueType.h"

#include <cstring>

using namespace kse;
using namespace Qt::StringLiterals;

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    const auto [utf8, utf16] = parts(data, size);
    QString text = QString::fromUtf8(utf8);
    if (text.isEmpty()) {
        text.resize(utf16.size() / 2);
        std::memcpy(text.data(), utf16.constData(), static_cast<std::size_t>(text.size()) * 2);
    }
    if (text.isEmpty()) {
        return 0;
    }
    const QChar code = text.front();
    const QString entered = text.mid(1);
    require(!typeName(code).isEmpty(), "each code has a name");
    QString stored = u"before"_s;
    QString error;
    if (!validateValue(code, entered, stored, &error)) {
        require(!error.isEmpty() && stored == u"before"_s, "a refusal leaves the text alone");
        return 0;
    }
    require(error.isEmpty(), "no message for what is accepted");
    QString again;
    require(validateValue(code, stored, again) && again == stored, "accepted again");
    require(code != u's' || stored == entered, "text as it is");
    require(code != u'b' || stored == u"true"_s || stored == u"false"_s, "true or false");
    return 0;
}
