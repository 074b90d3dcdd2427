// SPDX-License-Identifier: MIT
#include "views/SearchIndex.h"

#include "document/TreeWalk.h"
#include "document/XsdtDocument.h"
#include "document/XsdtValueType.h"
#include "schema/SettingsSchema.h"
#include "views/LowerCasePath.h"
#include "views/TextOrder.h"

#include <QRegularExpression>
#include <QStringBuilder>
#include <QStringMatcher>

#include <algorithm>
#include <vector>

using namespace Qt::StringLiterals;

namespace kse {

namespace {

/// One word to look for. The matchers are made once, not for every text.
struct Term
{
    explicit Term(const QString& word)
        : text(word)
        , exact(word)
        , anyCase(word, Qt::CaseInsensitive)
    {
    }

    QString text;
    QStringMatcher exact;
    QStringMatcher anyCase;
};

struct Hit
{
    qsizetype place; ///< In the index.
    int score;
};

int nameScore(const SearchIndexEntry& entry, const Term& term)
{
    const QString key = entry.node->key.toLower();
    if (key == term.text) {
        return 10;
    }
    if (key.startsWith(term.text)) {
        return 6;
    }
    if (term.exact.indexIn(key) >= 0) {
        return 4;
    }
    return term.anyCase.indexIn(entry.label) >= 0 ? 3 : 2;
}

/// What `term` earns in `entry`; 0 if it doesn't match.
int termScore(const SearchIndexEntry& entry, const Term& term, const SearchQuery& query)
{
    if (query.names && term.exact.indexIn(entry.haystack) >= 0) {
        return nameScore(entry, term);
    }
    if (query.descriptions && term.exact.indexIn(entry.description) >= 0) {
        return 1;
    }
    const XsdtNode& node = *entry.node;
    return query.values && node.typeCode != XsdtValueType::Block &&
                   term.anyCase.indexIn(node.value) >= 0
               ? 1
               : 0;
}

bool isWanted(XsdtNode* node, const SearchQuery& query)
{
    if (query.restriction ? !query.restriction->contains(node)
                          : !query.includeProtected && !node->isEditableType()) {
        return false;
    }
    return !query.changedOnly || node->isModified() || node->isInsideDeletion();
}

/// The sum over all terms; -1 if one of them doesn't match.
int score(const SearchIndexEntry& entry, const std::vector<Term>& terms, const SearchQuery& query)
{
    int sum = 0;
    for (const Term& term : terms) {
        const int points = termScore(entry, term, query);
        if (points == 0) {
            return -1;
        }
        sum += points;
    }
    return sum;
}

bool isAscii(const QString& text)
{
    // Without an early exit, so that the compiler takes many at once.
    char16_t bits = 0;
    for (const QChar unit : text) {
        bits |= unit.unicode();
    }
    return bits < 0x80;
}

/// Puts `hits`, which are in file order, by path.
std::vector<Hit> orderedByPath(const QList<SearchIndexEntry>& index, const std::vector<Hit>& hits)
{
    QList<QStringView> paths;
    paths.reserve(static_cast<qsizetype>(hits.size()));
    QStringList built; // keeps alive what the views point to
    for (const Hit& hit : hits) {
        const SearchIndexEntry& entry = index[hit.place];
        // Lower case is as good as the path itself, and its end is known, where all is ASCII.
        if (isAscii(entry.haystack)) {
            paths.append(QStringView(entry.haystack).chopped(entry.label.size() + 1));
        } else {
            built.append(entry.node->path());
            paths.append(built.constLast());
        }
    }
    std::vector<Hit> ordered;
    ordered.reserve(hits.size());
    for (const qsizetype place : orderIgnoringCase(paths)) {
        ordered.push_back(hits[static_cast<size_t>(place)]);
    }
    return ordered;
}

} // namespace

QStringList searchTerms(const QString& text)
{
    static const QRegularExpression word(u"\"([^\"]+)\"|(\\S+)"_s);
    QStringList terms;
    for (const QRegularExpressionMatch& match : word.globalMatch(text)) {
        const QString phrase = match.captured(1);
        terms.append((phrase.isEmpty() ? match.captured(2) : phrase).toLower());
    }
    return terms;
}

QList<SearchIndexEntry> buildSearchIndex(const XsdtDocument& document, const SettingsSchema& schema)
{
    QList<SearchIndexEntry> index;
    LowerCasePath path(document.root);
    walkTree(const_cast<XsdtNode&>(document.root), [&](XsdtNode& node) {
        const QString& here = path.moveTo(node);
        if (node.kind == XsdtNode::Kind::Value) {
            const VariableInfo info = schema.describe(node);
            index.append({&node, info.label, here % u' ' % info.label.toLower(),
                          info.description.toLower()});
        }
        return Walk::Into;
    });
    return index;
}

QList<qsizetype> search(const QList<SearchIndexEntry>& index, const SearchQuery& query)
{
    const std::vector<Term> terms(query.terms.begin(), query.terms.end());
    std::vector<Hit> hits;
    for (qsizetype i = 0; i < index.size(); ++i) {
        if (isWanted(index[i].node, query)) {
            const int points = score(index[i], terms, query);
            if (points >= 0) {
                hits.push_back({i, points});
            }
        }
    }
    hits = orderedByPath(index, hits);
    std::stable_sort(hits.begin(), hits.end(),
                     [](const Hit& a, const Hit& b) { return a.score > b.score; });

    QList<qsizetype> results;
    results.reserve(static_cast<qsizetype>(hits.size()));
    for (const Hit& hit : hits) {
        results.append(hit.place);
    }
    return results;
}

} // namespace kse
