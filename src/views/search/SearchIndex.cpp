// SPDX-License-Identifier: MIT
#include "views/search/SearchIndex.h"

#include "document/Depth.h"
#include "document/InheritedAnswer.h"
#include "document/LowerCase.h"
#include "document/ShortPath.h"
#include "document/TextOrder.h"
#include "document/TreeWalk.h"
#include "document/XsdtDocument.h"
#include "document/XsdtValueType.h"
#include "schema/PrettyName.h"
#include "schema/SettingsSchema.h"

#include <QHash>
#include <QMap>
#include <QRegularExpression>
#include <QStringMatcher>

#include <algorithm>
#include <functional>
#include <map>
#include <optional>
#include <utility>
#include <vector>

using namespace Qt::StringLiterals;

namespace kse {

namespace {

/// One word to search for. Its matchers are created once, not for every text.
struct Term
{
    Term(const QString& word, int times)
        : count(times)
        , text(word)
        , exact(word)
        , anyCase(word, Qt::CaseInsensitive)
    {
    }

    int count; ///< How often the query contains it; each counts.
    QString text;
    QStringMatcher exact;
    QStringMatcher anyCase;
};

struct Hit
{
    qsizetype place; ///< In the index.
    int score;
};

/// Computes how well an entry matches a query.
class Scorer
{
public:
    explicit Scorer(const SearchQuery& query)
        : m_query(query)
    {
        // A pasted text may have thousands of words, but few different ones.
        QMap<QString, int> counts;
        for (const QString& word : query.terms) {
            ++counts[word];
        }
        for (auto word = counts.cbegin(); word != counts.cend(); ++word) {
            m_terms.emplace_back(word.key(), word.value());
        }
    }

    /// The sum over all terms; -1 if one of them doesn't match.
    int score(const SearchIndexEntry& entry)
    {
        int sum = 0;
        for (const Term& term : m_terms) {
            const int points = termScore(entry, term);
            if (points == 0) {
                return -1;
            }
            sum += term.count * points;
        }
        return sum;
    }

private:
    int termScore(const SearchIndexEntry& entry, const Term& term)
    {
        if (m_query.names && term.exact.indexIn(entry.haystack) >= 0) {
            return nameScore(entry, term);
        }
        const XsdtNode& node = *entry.node;
        const bool elsewhere =
            (m_query.descriptions && term.exact.indexIn(entry.description) >= 0) ||
            (m_query.values && node.typeCode != XsdtValueType::Block &&
             term.anyCase.indexIn(node.value) >= 0);
        return elsewhere ? 1 : 0;
    }

    static int nameScore(const SearchIndexEntry& entry, const Term& term)
    {
        const QString key = lowerCase(entry.node->key);
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

    const SearchQuery& m_query;
    std::vector<Term> m_terms;
};

bool isWanted(XsdtNode* node, const SearchQuery& query, InheritedAnswer& isDeleted)
{
    if (query.restriction ? !query.restriction->contains(node)
                          : !query.includeProtected && !node->isEditableType()) {
        return false;
    }
    const auto own = [](const XsdtNode& one) {
        return one.markedForDeletion || !one.parent ? std::optional(one.markedForDeletion)
                                                    : std::nullopt;
    };
    return !query.changedOnly || node->isModified() || isDeleted.of(*node, own);
}

/// The places in `hits`, which are in file order, sorted by path.
QList<qsizetype> orderByPath(const QList<SearchIndexEntry>& index, const std::vector<Hit>& hits)
{
    QList<QStringView> paths;
    paths.reserve(static_cast<qsizetype>(hits.size()));
    for (const Hit& hit : hits) {
        const SearchIndexEntry& entry = index[hit.place];
        paths.append(QStringView(entry.haystack).first(entry.pathLength));
    }
    return orderIgnoringCase(paths);
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
    index.reserve(document.root.valueCount());
    QHash<QString, QString> labels; // of keys, most of which repeat
    const XsdtNode* group = nullptr;
    bool isDescribed = false; // something in `group` may be
    LowerCasePath path(document.root);
    walkTree(const_cast<XsdtNode&>(document.root), [&](XsdtNode& node) {
        QStringView here = path.moveTo(node);
        if (node.kind != XsdtNode::Kind::Value) {
            return Walk::Into;
        }
        if (node.parent != group) {
            group = node.parent;
            isDescribed = node.depth <= deepestShownLevel && schema.mayDescribeIn(*group);
        }
        SearchIndexEntry entry;
        entry.node = &node;
        if (isDescribed) {
            const VariableInfo info = schema.describe(node);
            entry.label = info.label;
            entry.description = lowerCase(info.description);
        } else {
            QString& label = labels[node.key];
            if (label.isNull()) {
                label = prettyName(node.key);
            }
            entry.label = label;
        }
        if (node.depth > deepestShownLevel) {
            here = here.last(std::min(here.size(), shortPathLength));
        }
        entry.pathLength = here.size();
        entry.haystack.reserve(here.size() + 1 + entry.label.size());
        entry.haystack += here;
        entry.haystack += u' ';
        entry.haystack += lowerCase(entry.label);
        index.append(std::move(entry));
        return Walk::Over;
    });
    return index;
}

QList<qsizetype> search(const QList<SearchIndexEntry>& index, const SearchQuery& query)
{
    Scorer scorer(query);
    InheritedAnswer isDeleted;
    std::vector<Hit> hits;
    for (qsizetype i = 0; i < index.size(); ++i) {
        if (isWanted(index[i].node, query, isDeleted)) {
            const int score = scorer.score(index[i]);
            if (score >= 0) {
                hits.push_back({i, score});
            }
        }
    }

    std::map<int, QList<qsizetype>, std::greater<>> placesByScore;
    for (const qsizetype i : orderByPath(index, hits)) {
        const Hit& hit = hits[static_cast<size_t>(i)];
        placesByScore[hit.score].append(hit.place);
    }
    QList<qsizetype> places;
    for (const auto& [score, equals] : placesByScore) {
        places.append(equals);
    }
    return places;
}

} // namespace kse
