// SPDX-License-Identifier: MIT
#pragma once

#include "document/Leaves.h"
#include "document/XsdtDocument.h"
#include "views/compare/CompareEngine.h"
#include "views/search/SearchIndex.h"

#include <QHash>
#include <QSet>

#include <algorithm>
#include <array>

// The obvious ways to compare and to search: what the product's quick ones have to agree with, and
// what benchmarks measure them against.

namespace kse {

inline bool operator==(const CompareEntry& a, const CompareEntry& b)
{
    return a.path == b.path && a.state == b.state && a.thisNode == b.thisNode &&
           a.otherNode == b.otherNode;
}

inline QList<CompareEntry> plainCompare(const XsdtDocument& thisDocument,
                                        const XsdtDocument& otherDocument)
{
    const QList<XsdtNode*> values = unmarkedValues(thisDocument.root);
    const QList<XsdtNode*> others = unmarkedValues(otherDocument.root);
    QHash<QString, XsdtNode*> otherByPath;
    for (XsdtNode* other : others) {
        otherByPath.insert(other->path(), other);
    }
    QSet<QString> paths;
    for (const XsdtNode* node : values) {
        paths.insert(node->path());
    }
    QList<CompareEntry> entries;
    for (XsdtNode* node : values) {
        const QString path = node->path();
        XsdtNode* other = otherByPath.value(path);
        if (!other) {
            entries.append({path, CompareState::OnlyThis, node, nullptr});
        } else if (node->typeCode != other->typeCode || node->value != other->value) {
            entries.append({path, CompareState::Different, node, other});
        }
    }
    for (XsdtNode* other : others) {
        const QString path = other->path();
        if (!paths.contains(path)) {
            entries.append({path, CompareState::OnlyOther, nullptr, other});
        }
    }
    return entries;
}

/// What `term` earns in `entry`; 0 if nothing.
inline int plainScore(const SearchIndexEntry& entry, const QString& term, const SearchQuery& query)
{
    const XsdtNode& node = *entry.node;
    if (query.names && entry.haystack.contains(term)) {
        const QString key = node.key.toLower();
        const std::array<bool, 4> tests = {key == term, key.startsWith(term), key.contains(term),
                                           entry.label.contains(term, Qt::CaseInsensitive)};
        constexpr std::array points = {10, 6, 4, 3, 2};
        return points[static_cast<size_t>(std::find(tests.begin(), tests.end(), true) -
                                          tests.begin())];
    }
    const bool elsewhere =
        (query.descriptions && entry.description.contains(term)) ||
        (query.values && node.typeCode != u'B' && node.value.contains(term, Qt::CaseInsensitive));
    return elsewhere ? 1 : 0;
}

/// A search without filters, with a path built for each comparison.
inline QList<qsizetype> plainSearch(const QList<SearchIndexEntry>& index, const SearchQuery& query)
{
    QList<std::pair<int, qsizetype>> scored;
    for (qsizetype i = 0; i < index.size(); ++i) {
        int sum = 0;
        const bool all = std::all_of(query.terms.begin(), query.terms.end(), [&](const auto& term) {
            const int points = plainScore(index[i], term, query);
            sum += points;
            return points > 0;
        });
        if (all) {
            scored.append({sum, i});
        }
    }
    std::stable_sort(scored.begin(), scored.end(), [&](const auto& a, const auto& b) {
        return a.first != b.first
                   ? a.first > b.first
                   : QString::compare(index[a.second].node->path(), index[b.second].node->path(),
                                      Qt::CaseInsensitive) < 0;
    });
    QList<qsizetype> places;
    for (const auto& [score, place] : scored) {
        places.append(place);
    }
    return places;
}

} // namespace kse
