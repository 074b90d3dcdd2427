// SPDX-License-Identifier: MIT
#pragma once

#include <QList>
#include <QSet>
#include <QString>
#include <QStringList>

namespace kse {

class SettingsSchema;
struct XsdtDocument;
struct XsdtNode;

/// One value of the file with the texts to search, already in lower case.
struct SearchIndexEntry
{
    XsdtNode* node = nullptr;
    QString label;            ///< From the schema, in its own case.
    QString haystack;         ///< Path, one blank, label; lower case. Of a deep path only the end.
    qsizetype pathLength = 0; ///< Of `haystack`.
    QString description;      ///< Lower case.
};

/// What to search for, and where.
struct SearchQuery
{
    QStringList terms; ///< Lower case; every one has to match. See `searchTerms`.
    bool names = true;
    bool values = true;
    bool descriptions = true;
    bool changedOnly = false;
    bool includeProtected = false;
    const QSet<XsdtNode*>* restriction = nullptr; ///< Unless null, only these nodes.
};

/// The words of `text` in lower case. A phrase in double quotes counts as one word.
[[nodiscard]] QStringList searchTerms(const QString& text);

/// An entry for every value of `document`, of any type, in file order. Edits leave the index valid,
/// because it holds no values; it is invalid once the tree is replaced. Deeper than
/// `deepestShownLevel` levels, an entry holds only the last `shortPathLength` characters of its
/// path, by which it is also sorted, and a label made from its key without the schema.
[[nodiscard]] QList<SearchIndexEntry> buildSearchIndex(const XsdtDocument& document,
                                                       const SettingsSchema& schema);

/// The places in `index` of the entries that match: best first, then by path, then in file order.
/// Values and marks are read from the nodes as they are now.
[[nodiscard]] QList<qsizetype> search(const QList<SearchIndexEntry>& index,
                                      const SearchQuery& query);

} // namespace kse
