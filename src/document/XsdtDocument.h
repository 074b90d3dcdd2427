// SPDX-License-Identifier: MIT
#pragma once

#include "document/XsdtNode.h"

#include <QByteArray>
#include <QList>
#include <QString>

namespace kse {

/// A parsed settings file. Owns its tree; everyone else's node pointers die at the next `parse`.
struct XsdtDocument
{
    QString head;  ///< From the first character through the `>` of the root's start tag, unchanged.
    QString tail;  ///< What follows the root's end tag, unchanged: white space.
    XsdtNode root; ///< The `xsdt` element: a group with an empty key.
    bool defaultLayout = false; ///< The parsed bytes are exactly what `serialize` would give.

    /// Reads a file's bytes. On failure the document is empty and `error`, unless null, gets the
    /// reason with line and column. The forms that are read are told in `XsdtReader.h`.
    [[nodiscard]] bool parse(const QByteArray& bytes, QString* error = nullptr);

    /// The file's new bytes, in UTF-8 and compact layout: `value` of each value, without what is
    /// marked for deletion.
    [[nodiscard]] QByteArray serialize() const;

    /// Modified values that no mark covers, in file order.
    [[nodiscard]] QList<XsdtNode*> editedValues() const;

    /// The topmost marked nodes, in file order.
    [[nodiscard]] QList<XsdtNode*> deletions() const;

    /// Number of edited values plus number of deletions. Walks the tree.
    [[nodiscard]] qsizetype pendingCount() const;

    /// Takes back every edit and every mark, also those beneath another mark.
    void revertAll();

    /// Makes the pending changes the saved state: for a save that has written them. Destroys the
    /// marked nodes; a group that loses all its children stays.
    void commitEdits();
};

} // namespace kse
