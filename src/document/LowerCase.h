// SPDX-License-Identifier: MIT
#pragma once

#include <QString>

namespace kse {

/// `text.toLower()`, which takes several times as long for ASCII.
inline QString lowerCase(const QString& text)
{
    QString lower(text.size(), Qt::Uninitialized);
    QChar* to = lower.data();
    for (const QChar c : text) {
        if (c.unicode() >= 128) {
            return text.toLower();
        }
        const bool isUpper = c >= u'A' && c <= u'Z';
        *to++ = isUpper ? QChar(c.unicode() + (u'a' - u'A')) : c;
    }
    return lower;
}

} // namespace kse
