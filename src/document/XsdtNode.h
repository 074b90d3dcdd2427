// SPDX-License-Identifier: MIT
#pragma once

#include <QChar>
#include <QString>

#include <cstddef>
#include <memory>
#include <vector>

namespace kse {

/// One element of a settings file: a group (`<i>`) or a value (`<v>`).
///
/// Pending work lives here and nowhere else: an edit is a `value` that differs from `original`,
/// a deletion is `markedForDeletion` on the topmost node to go. A node's address is stable until
/// its document is parsed again or, for what is marked, until `XsdtDocument::commitEdits`.
/// The order of the fields keeps a node within 120 bytes. No function here uses stack in proportion
/// to the depth of the file. Nodes are made and destroyed on one thread alone.
struct XsdtNode
{
    enum class Kind : qint32 { Group = 0, Value = 1 };

    Kind kind = Kind::Group;
    quint32 rowHint = 0;      ///< Where the node was put among its siblings; see `rowInParent`.
    QString key;              ///< Entities decoded; may be empty, may repeat among siblings.
    QString value;            ///< The current text, entities decoded.
    QString original;         ///< The text as loaded or as last committed.
    QChar typeCode;           ///< One of `XsdtValueType` or any other; null in a group.
    bool textForm = false;    ///< The file held the value as element text.
    bool selfClosing = false; ///< The element stood in the file as `<.../>`.
    bool markedForDeletion = false; ///< This node and all beneath it go at the next save.
    quint16 depth = 0; ///< Levels above it, 65535 for all beyond: 0 in the root. Set by `append`.
    XsdtNode* parent = nullptr;                      ///< Null in the root.
    std::vector<std::unique_ptr<XsdtNode>> children; ///< In file order; empty in a value.

    XsdtNode() = default;
    ~XsdtNode();
    XsdtNode(const XsdtNode&) = delete;
    XsdtNode& operator=(const XsdtNode&) = delete;

    /// From pages that many nodes share: quicker than the system's allocator, and the end of a
    /// large tree gives back pages rather than pieces.
    static void* operator new(std::size_t size);
    static void operator delete(void* node) noexcept;

    /// Appends `child`, which has no children yet, and returns it.
    XsdtNode* append(std::unique_ptr<XsdtNode> child);

    /// Keys from below the root to this node, joined with "/" and never escaped. The root's is
    /// empty, and an ancestor whose own path is empty adds no separator.
    [[nodiscard]] QString path() const;

    /// First child in file order whose key is exactly `searched`, or null.
    [[nodiscard]] XsdtNode* childByKey(QStringView searched) const;

    /// The node at `path`, relative to this one, or null. Empty parts are dropped, so an empty
    /// path is this node. Takes the first of duplicate siblings at each step.
    [[nodiscard]] XsdtNode* findByPath(QStringView path) const;

    /// Whether this is a value that differs from its `original`.
    [[nodiscard]] bool isModified() const;

    /// Whether this is a value whose type can be edited (b, i, u, F, f or s).
    [[nodiscard]] bool isEditableType() const;

    /// Whether this node or an ancestor is marked for deletion.
    [[nodiscard]] bool isInsideDeletion() const;

    /// Index among the parent's children; 0 without a parent. Constant time for
    /// what `append` has put there.
    [[nodiscard]] qsizetype rowInParent() const;

    /// Values at or beneath this node, marked ones included: 1 for a value.
    [[nodiscard]] qsizetype valueCount() const;

    /// Bytes that the writer gives this node in UTF-8, marked descendants included.
    [[nodiscard]] qint64 serializedSize() const;
};

} // namespace kse
