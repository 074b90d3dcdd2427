// SPDX-License-Identifier: MIT
#pragma once

#include "document/XsdtDocument.h"

#include <QStringList>

namespace kse {

/// The node that `keys` lead to from the root: a value of type `typeCode`, or a group for a null
/// code. Groups on the way are made where they are missing, the node itself always.
inline XsdtNode* addNode(XsdtDocument& document, const QStringList& keys, QChar typeCode = {})
{
    XsdtNode* node = &document.root;
    for (qsizetype i = 0; i < keys.size(); ++i) {
        const bool last = i + 1 == keys.size();
        XsdtNode* known = last ? nullptr : node->childByKey(keys[i]);
        if (!known) {
            auto made = std::make_unique<XsdtNode>();
            made->key = keys[i];
            if (last && !typeCode.isNull()) {
                made->kind = XsdtNode::Kind::Value;
                made->typeCode = typeCode;
            }
            known = node->append(std::move(made));
        }
        node = known;
    }
    return node;
}

inline XsdtNode* addNode(XsdtDocument& document, const QString& path, QChar typeCode = {})
{
    return addNode(document, path.split(u'/'), typeCode);
}

} // namespace kse
