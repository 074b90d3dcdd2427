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

/// One value of the file with the texts that are searched, ready in lower case.
struct SearchIndexEntry
{
    XsdtNode* node = nullptr;
    QString label;       ///< As the schema gives it, in its own case.
    QString haystack;    ///< Path, one blank, label; lower case. Of a deep path only the end.
    QString description; ///< Lower case.
};

/// What to look for and where.
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

/// The words of `text` in lower case; what stands between two quotes is one.
[[nodiscard]] QStringList searchTerms(const QString& text);

/// Every value of `document` in file order, whatever its type. It rests on the tree and the
/// schema alone, so that an edit leaves it valid; it dies with the tree. Below `deepestWholePath`
/// levels an entry holds the last `shortPathLength` characters of its path, which are also what it
/// is ordered by, and what its key tells without the schema.
[[nodiscard]] QList<SearchIndexEntry> buildSearchIndex(const XsdtDocument& document,
                                                       const SettingsSchema& schema);

/// The entries of `index` that match, by their place in it: best first, then by path, then in file
/// order. Values and marks are read as they are now.
[[nodiscard]] QList<qsizetype> search(const QList<SearchIndexEntry>& index,
                                      const SearchQuery& query);

} // namespace kse
