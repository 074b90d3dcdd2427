// SPDX-License-Identifier: MIT
#pragma once

#include "document/XsdtNode.h"

#include <QByteArray>
#include <QList>
#include <QString>

namespace kse {

/// A parsed settings file. It owns its tree: pointers to nodes are invalid after the next `parse`.
struct XsdtDocument
{
    QString head;               ///< The text up to and including the root's start tag, unchanged.
    QString tail;               ///< The text after the root's end tag, unchanged: white space.
    XsdtNode root;              ///< The `xsdt` element: a group with an empty key.
    bool defaultLayout = false; ///< The parsed bytes are exactly what `serialize` would give.

    /// Reads a file's bytes, in the format that `XsdtReader.h` describes. On failure the document
    /// is empty and `error`, unless null, gets the reason, mostly with line and column.
    [[nodiscard]] bool parse(const QByteArray& bytes, QString* error = nullptr);

    /// The file's new bytes, in UTF-8 and compact layout: the current `value` of each value,
    /// without nodes that are marked for deletion.
    [[nodiscard]] QByteArray serialize() const;

    /// Modified values in file order, without those that are marked or lie in a marked group.
    [[nodiscard]] QList<XsdtNode*> editedValues() const;

    /// The topmost marked nodes, in file order.
    [[nodiscard]] QList<XsdtNode*> deletions() const;

    /// Number of `editedValues` plus number of `deletions`. Walks the tree.
    [[nodiscard]] qsizetype pendingCount() const;

    /// Takes back every edit and every mark, also inside marked groups.
    void revertAll();

    /// Makes the pending changes the saved state, after a save has written them. Destroys the
    /// marked nodes. A group that loses all its children stays.
    void commitEdits();
};

} // namespace kse
