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
/// Pending changes are kept here and nowhere else: an edit is a `value` that differs from
/// `original`, a deletion is `markedForDeletion` on the topmost node to be removed. A node's
/// address is stable until its document is parsed again or, for a marked node, until
/// `XsdtDocument::commitEdits`. The order of the fields keeps a node within 120 bytes. The use of
/// stack doesn't grow with the depth of the file. Nodes are made and destroyed on one thread only.
struct XsdtNode
{
    enum class Kind : qint32 { Group = 0, Value = 1 };

    Kind kind = Kind::Group;
    quint32 rowHint = 0;            ///< Probable index among the siblings; see `rowInParent`.
    QString key;                    ///< Entities decoded; may be empty, may repeat among siblings.
    QString value;                  ///< The current text, entities decoded.
    QString original;               ///< The text as loaded or as last committed.
    QChar typeCode;                 ///< One of `XsdtValueType` or any other; null in a group.
    bool textForm = false;          ///< The file has the value as element text.
    bool selfClosing = false;       ///< The file has the element as `<.../>`.
    bool markedForDeletion = false; ///< The next save removes this node and all below it.
    quint16 depth = 0;          ///< Levels above it, at most 65535; 0 in the root. Set by `append`.
    XsdtNode* parent = nullptr; ///< Null in the root.
    std::vector<std::unique_ptr<XsdtNode>> children; ///< In file order; empty in a value.

    XsdtNode() = default;
    ~XsdtNode();
    XsdtNode(const XsdtNode&) = delete;
    XsdtNode& operator=(const XsdtNode&) = delete;

    /// Nodes are allocated from pages that many nodes share. That is quicker than the system's
    /// allocator, and destroying a large tree frees pages instead of single nodes.
    static void* operator new(std::size_t size);
    static void operator delete(void* node) noexcept;

    /// Appends `child`, which must not have children yet, and returns it.
    XsdtNode* append(std::unique_ptr<XsdtNode> child);

    /// The keys from below the root to this node, joined with "/" and not escaped. The path of the
    /// root is empty. An ancestor whose own path is empty adds no separator.
    [[nodiscard]] QString path() const;

    /// First child in file order whose key is exactly `searched`, or null.
    [[nodiscard]] XsdtNode* childByKey(QStringView searched) const;

    /// The node at `path`, relative to this one, or null. Empty parts are ignored, so an empty
    /// path gives this node. Of siblings with the same key the first is taken.
    [[nodiscard]] XsdtNode* findByPath(QStringView path) const;

    /// Whether this is a value that differs from its `original`.
    [[nodiscard]] bool isModified() const;

    /// Whether this is a value whose type can be edited; see `isEditableCode`.
    [[nodiscard]] bool isEditableType() const;

    /// Whether this node or an ancestor is marked for deletion.
    [[nodiscard]] bool isInsideDeletion() const;

    /// Index among the parent's children; 0 without a parent. Takes constant time for nodes that
    /// `append` added.
    [[nodiscard]] qsizetype rowInParent() const;

    /// Number of values below this node, marked ones included; 1 for a value.
    [[nodiscard]] qsizetype valueCount() const;

    /// Number of bytes of this node in a file, in UTF-8, marked descendants included.
    [[nodiscard]] qint64 serializedSize() const;
};

} // namespace kse
