// SPDX-License-Identifier: MIT
#include "schema/PrettyName.h"

#include <QStringList>

namespace kse {

namespace {

/// Whether the upper-case character at `i`, which is above 0, begins a word.
bool beginsWord(const QString& key, qsizetype i)
{
    const QChar previous = key[i - 1];
    if (previous.isLower() || previous.isDigit()) {
        return true;
    }
    if (!previous.isUpper() || i + 1 == key.size() || !key[i + 1].isLower()) {
        return false;
    }
    // In a plural acronym ("URLs") the s doesn't make the last letter begin a word.
    const bool plural = key[i + 1] == u's' && (i + 2 == key.size() || key[i + 2].isUpper());
    return !plural;
}

QString splitWords(const QString& key)
{
    QString spaced;
    spaced.reserve(key.size() + 8);
    for (qsizetype i = 0; i < key.size(); ++i) {
        const QChar c = key[i];
        if (i > 0 &&
            ((c.isUpper() && beginsWord(key, i)) || (c.isDigit() && key[i - 1].isLetter()))) {
            spaced.append(u' ');
        }
        spaced.append(c == u'_' ? QChar(u' ') : c);
    }
    return spaced;
}

bool isAcronym(const QString& word)
{
    return word.size() >= 2 && word[0].isUpper() && word[1].isUpper();
}

} // namespace

QString prettyName(const QString& key)
{
    QStringList words = splitWords(key).split(u' ', Qt::SkipEmptyParts);
    bool first = true;
    for (QString& word : words) {
        if (!isAcronym(word)) {
            word = first ? word.at(0).toUpper() + word.mid(1).toLower() : word.toLower();
        }
        first = false;
    }
    return words.join(u' ');
}

} // namespace kse
