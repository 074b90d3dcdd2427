// SPDX-License-Identifier: MIT
#include "document/XsdtNode.h"

#include "document/TreeWalk.h"
#include "document/XsdtValueType.h"
#include "document/XsdtWriter.h"

#include <QStringTokenizer>

#include <algorithm>
#include <cstdint>
#include <new>

#if defined(__SANITIZE_ADDRESS__)
#define KSE_ADDRESS_SANITIZER
#elif defined(__has_feature)
#if __has_feature(address_sanitizer)
#define KSE_ADDRESS_SANITIZER
#endif
#endif

namespace kse {

namespace {

/// A page of memory for nodes. Each place in it is used once, and the page is freed with its last
/// node. Trees are destroyed as a whole, so few pages outlive most of their nodes.
struct alignas(XsdtNode) NodePage
{
#ifdef KSE_ADDRESS_SANITIZER
    static constexpr std::size_t alignment = 256; // One node a page, to catch a use after free.
#else
    static constexpr std::size_t alignment = 65536;
#endif
    // Leaves the allocator room for its own data before the next page.
    static constexpr std::size_t size = alignment - 64;

    std::size_t used = sizeof(NodePage);
    std::size_t living = 0;
};

NodePage* currentPage = nullptr;

} // namespace

void* XsdtNode::operator new(std::size_t)
{
    if (!currentPage || currentPage->used + sizeof(XsdtNode) > NodePage::size) {
        currentPage =
            new (::operator new(NodePage::size, std::align_val_t(NodePage::alignment))) NodePage;
    }
    void* node = reinterpret_cast<std::byte*>(currentPage) + currentPage->used;
    currentPage->used += sizeof(XsdtNode);
    ++currentPage->living;
    return node;
}

void XsdtNode::operator delete(void* node) noexcept
{
    const auto offset = reinterpret_cast<std::uintptr_t>(node) % NodePage::alignment;
    auto* page = reinterpret_cast<NodePage*>(static_cast<std::byte*>(node) - offset);
    if (--page->living > 0) {
        return;
    }
    if (page == currentPage) {
        currentPage = nullptr;
    }
    ::operator delete(page, std::align_val_t(NodePage::alignment));
}

XsdtNode::~XsdtNode()
{
    // Remove leaves one by one: the default destructor would recurse once a level.
    XsdtNode* node = this;
    while (true) {
        if (node->children.empty()) {
            if (node == this) {
                return;
            }
            node = node->parent;
            node->children.pop_back();
        } else if (node->children.back()->children.empty()) {
            node->children.pop_back();
        } else {
            node = node->children.back().get();
        }
    }
}

XsdtNode* XsdtNode::append(std::unique_ptr<XsdtNode> child)
{
    child->parent = this;
    child->rowHint = static_cast<quint32>(children.size());
    child->depth = static_cast<quint16>(std::min(depth + 1, 0xFFFF));
    children.push_back(std::move(child));
    return children.back().get();
}

QString XsdtNode::path() const
{
    // Empty keys above the topmost key that isn't empty add nothing to the path.
    const XsdtNode* top = nullptr;
    qsizetype size = 0;
    qsizetype sizeFromTop = 0;
    for (const XsdtNode* node = this; node->parent; node = node->parent) {
        size += node->key.size() + 1;
        if (!node->key.isEmpty()) {
            top = node;
            sizeFromTop = size;
        }
    }
    if (!top) {
        return {};
    }
    QString path(sizeFromTop - 1, Qt::Uninitialized);
    QChar* end = path.data() + path.size();
    for (const XsdtNode* node = this;; node = node->parent) {
        end = std::copy_backward(node->key.cbegin(), node->key.cend(), end);
        if (node == top) {
            return path;
        }
        *--end = u'/';
    }
}

XsdtNode* XsdtNode::childByKey(QStringView searched) const
{
    const auto found = std::find_if(children.begin(), children.end(),
                                    [&](const auto& child) { return child->key == searched; });
    return found == children.end() ? nullptr : found->get();
}

XsdtNode* XsdtNode::findByPath(QStringView path) const
{
    auto* node = const_cast<XsdtNode*>(this);
    for (const QStringView part : path.tokenize(u'/', Qt::SkipEmptyParts)) {
        node = node->childByKey(part);
        if (!node) {
            return nullptr;
        }
    }
    return node;
}

bool XsdtNode::isModified() const
{
    return kind == Kind::Value && value != original;
}

bool XsdtNode::isEditableType() const
{
    return kind == Kind::Value && isEditableCode(typeCode);
}

bool XsdtNode::isInsideDeletion() const
{
    for (const XsdtNode* node = this; node; node = node->parent) {
        if (node->markedForDeletion) {
            return true;
        }
    }
    return false;
}

qsizetype XsdtNode::rowInParent() const
{
    if (!parent) {
        return 0;
    }
    const auto& siblings = parent->children;
    if (rowHint < siblings.size() && siblings[rowHint].get() == this) {
        return rowHint;
    }
    const auto found = std::find_if(siblings.begin(), siblings.end(),
                                    [this](const auto& sibling) { return sibling.get() == this; });
    return found == siblings.end() ? 0 : found - siblings.begin();
}

qsizetype XsdtNode::valueCount() const
{
    qsizetype count = kind == Kind::Value ? 1 : 0;
    walkTree(*this, [&](const XsdtNode& node) {
        count += node.kind == Kind::Value ? 1 : 0;
        return Walk::Into;
    });
    return count;
}

qint64 XsdtNode::serializedSize() const
{
    return elementSize(*this);
}

} // namespace kse
