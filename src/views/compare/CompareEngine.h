// SPDX-License-Identifier: MIT
#pragma once

#include <QList>
#include <QString>

namespace kse {

struct XsdtDocument;
struct XsdtNode;

enum class CompareState { Different = 0, OnlyThis = 1, OnlyOther = 2 };

/// One difference between two documents, which own the nodes.
struct CompareEntry
{
    QString path; ///< The same in both files. A deep one is without its middle.
    CompareState state = CompareState::Different;
    XsdtNode* thisNode = nullptr;  ///< Null if only the other file has it.
    XsdtNode* otherNode = nullptr; ///< Null if only this file has it.

    XsdtNode* node() const { return thisNode ? thisNode : otherNode; }
};

/// The values in which the documents differ, by path, type and text. What is marked for deletion
/// counts as removed. First those of `thisDocument` in its order, then those that only
/// `otherDocument` has, in its order. Of duplicates in the other file the last counts; each one in
/// this file is an entry of its own. Paths are compared whole and as strings, so a key `a/b` equals
/// a group `a` with a child `b`. Below `deepestShownLevel` levels an entry has only both ends of
/// its path.
[[nodiscard]] QList<CompareEntry> compareDocuments(const XsdtDocument& thisDocument,
                                                   const XsdtDocument& otherDocument);

/// The heading under which an entry is listed, and the rest of its path for its own line.
struct GroupedPath
{
    QString group; ///< The first two parts, three in the preferences; "(top level)" for one part.
    QString name;  ///< At least the last part.
};

[[nodiscard]] GroupedPath groupedPath(const QString& path);

} // namespace kse
