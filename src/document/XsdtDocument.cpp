// SPDX-License-Identifier: MIT
#include "document/XsdtDocument.h"

#include "document/TreeWalk.h"
#include "document/XsdtReader.h"
#include "document/XsdtWriter.h"

#include <algorithm>

namespace kse {

namespace {

/// The topmost marked nodes if `marked`, else the modified values outside of them, in file order.
QList<XsdtNode*> pendingNodes(const XsdtNode& root, bool marked)
{
    QList<XsdtNode*> pending;
    walkTree(const_cast<XsdtNode&>(root), [&](XsdtNode& node) {
        if (marked ? node.markedForDeletion : !node.markedForDeletion && node.isModified()) {
            pending.append(&node);
        }
        return node.markedForDeletion ? Walk::Over : Walk::Into;
    });
    return pending;
}

void removeMarkedChildren(XsdtNode& group)
{
    auto& children = group.children;
    const auto gone = std::remove_if(children.begin(), children.end(),
                                     [](const auto& child) { return child->markedForDeletion; });
    children.erase(gone, children.end());
    quint32 row = 0;
    for (const auto& child : children) {
        child->rowHint = row++;
    }
}

} // namespace

bool XsdtDocument::parse(const QByteArray& bytes, QString* error)
{
    const auto clear = [this] {
        root.children.clear();
        root.markedForDeletion = false;
        head.clear();
        tail.clear();
        defaultLayout = false;
    };
    clear();
    // The decoded text is a temporary: it is freed before the layout check needs memory.
    if (!readXsdt(QString::fromUtf8(bytes), *this, error)) {
        clear();
        return false;
    }
    defaultLayout = writeXsdt(*this) == bytes;
    return true;
}

QByteArray XsdtDocument::serialize() const
{
    return writeXsdt(*this);
}

QList<XsdtNode*> XsdtDocument::editedValues() const
{
    return pendingNodes(root, false);
}

QList<XsdtNode*> XsdtDocument::deletions() const
{
    return pendingNodes(root, true);
}

qsizetype XsdtDocument::pendingCount() const
{
    qsizetype count = 0;
    walkTree(root, [&](const XsdtNode& node) {
        count += node.markedForDeletion || node.isModified() ? 1 : 0;
        return node.markedForDeletion ? Walk::Over : Walk::Into;
    });
    return count;
}

void XsdtDocument::revertAll()
{
    root.markedForDeletion = false;
    walkTree(root, [](XsdtNode& node) {
        node.markedForDeletion = false;
        node.value = node.original;
        return Walk::Into;
    });
}

void XsdtDocument::commitEdits()
{
    removeMarkedChildren(root);
    walkTree(root, [](XsdtNode& node) {
        node.original = node.value;
        removeMarkedChildren(node);
        return Walk::Into;
    });
}

} // namespace kse
