// SPDX-License-Identifier: MIT
#include "views/health/DuplicateKeys.h"

#include "document/TreeWalk.h"
#include "document/XsdtDocument.h"

#include <QHash>

#include <algorithm>
#include <vector>

namespace kse {

namespace {

/// Almost no group has duplicates, and sorted hashes rule them out without a table of the keys.
/// `hashes` is used for its memory alone.
bool mayHaveDuplicates(const XsdtNode& group, std::vector<size_t>& hashes)
{
    hashes.clear();
    for (const auto& child : group.children) {
        if (!child->markedForDeletion) {
            hashes.push_back(qHash(child->key));
        }
    }
    std::sort(hashes.begin(), hashes.end());
    return std::adjacent_find(hashes.begin(), hashes.end()) != hashes.end();
}

void appendDuplicates(const XsdtNode& group, QList<QList<XsdtNode*>>& found)
{
    QHash<QStringView, QList<XsdtNode*>> byKey;
    for (const auto& child : group.children) {
        if (!child->markedForDeletion) {
            byKey[child->key].append(child.get());
        }
    }
    for (const auto& child : group.children) {
        if (!child->markedForDeletion && byKey.value(child->key).size() > 1) {
            found.append(byKey.take(child->key)); // so that each key comes once
        }
    }
}

} // namespace

QList<QList<XsdtNode*>> duplicateKeys(const XsdtDocument& document)
{
    QList<QList<XsdtNode*>> found;
    std::vector<size_t> hashes;
    const auto lookIn = [&](const XsdtNode& group) {
        if (mayHaveDuplicates(group, hashes)) {
            appendDuplicates(group, found);
        }
    };
    lookIn(document.root);
    walkTree(document.root, [&](const XsdtNode& node) {
        if (node.markedForDeletion) {
            return Walk::Over;
        }
        lookIn(node);
        return Walk::Into;
    });
    return found;
}

} // namespace kse
