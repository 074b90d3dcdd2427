// SPDX-License-Identifier: MIT
#pragma once

#include "document/XsdtDocument.h"

namespace kse {

/// `content` between the root's tags, as a file holds it.
inline QByteArray fileBytes(const QByteArray& content)
{
    return "<xsdt version=\"1.0\">" + content + "</xsdt>";
}

/// The content of a file of `levels` groups, one in the other, each of which also holds a value.
inline QByteArray deepFile(int levels)
{
    return QByteArray(R"(<i k="level"><v k="value" t="i" v="1"/>)").repeated(levels) +
           QByteArray("</i>").repeated(levels);
}

/// The document of a file with this content between the root's tags. Ends the test program if
/// it doesn't parse.
inline std::unique_ptr<XsdtDocument> documentFrom(const QByteArray& content)
{
    auto document = std::make_unique<XsdtDocument>();
    if (!document->parse(fileBytes(content))) {
        qFatal("It doesn't parse: %s", content.constData());
    }
    return document;
}

} // namespace kse
