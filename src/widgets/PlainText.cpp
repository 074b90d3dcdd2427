// SPDX-License-Identifier: MIT
#include "widgets/PlainText.h"

#include <QCoreApplication>
#include <QGuiApplication>
#include <QTextDocument>

using namespace Qt::StringLiterals;

namespace kse {

QString firstCharacters(const QString& text, qsizetype length)
{
    if (length >= text.size()) {
        return text;
    }
    const bool splitsPair =
        length > 0 && text.at(length - 1).isHighSurrogate() && text.at(length).isLowSurrogate();
    return text.left(splitsPair ? length - 1 : length);
}

QString abbreviated(const QString& text, qsizetype limit)
{
    if (text.size() <= limit) {
        return text;
    }
    const QString start = firstCharacters(text, limit);
    const QString count = QString::number(text.size() - start.size());
    return start + QCoreApplication::translate("PlainText", "… (%1 more characters)").arg(count);
}

QString withoutMiddle(const QString& text, qsizetype limit)
{
    if (text.size() <= limit) {
        return text;
    }
    qsizetype end = text.size() - limit / 2;
    if (text.at(end).isLowSurrogate()) {
        ++end;
    }
    return firstCharacters(text, limit / 2) + QChar(0x2026) + text.mid(end);
}

QString asMarkup(const QString& text)
{
    return u"<span style=\"white-space:pre-wrap\">"_s + text.toHtmlEscaped() + u"</span>"_s;
}

QString asToolTip(const QString& text)
{
    const QString shown = abbreviated(text, popupLimit);
    return Qt::mightBeRichText(shown) ? asMarkup(shown) : shown;
}

QString inOwnDirection(const QString& text)
{
    constexpr QChar embedding(0x202A);
    constexpr QChar endOfEmbedding(0x202C);
    const bool isMarked =
        QGuiApplication::isRightToLeft() && !text.isEmpty() && !text.isRightToLeft();
    return isMarked ? embedding + text + endOfEmbedding : text;
}

QString asCaption(const QString& text)
{
    return QString(text).replace(u'&', u"&&"_s);
}

QString shownName(const QString& name, const QString& key)
{
    for (const QString& text : {name, key}) {
        if (!text.trimmed().isEmpty()) {
            return text;
        }
    }
    return QCoreApplication::translate("PlainText", "(no name)");
}

} // namespace kse
