// SPDX-License-Identifier: MIT
#pragma once

#include "document/XsdtDocument.h"

namespace kse {

/// The node that `keys` lead to from the root: a value of type `typeCode`, or a group for a null
/// code. Groups on the way are made where they are missing, the node itself always.
inline XsdtNode* addNode(XsdtDocument& document, const QStringList& keys, QChar typeCode = {})
{
    XsdtNode* node = &document.root;
    for (qsizetype i = 0; i < keys.size(); ++i) {
        XsdtNode* next = i + 1 < keys.size() ? node->childByKey(keys[i]) : nullptr;
        if (!next) {
            next = node->append(std::make_unique<XsdtNode>());
            next->key = keys[i];
        }
        node = next;
    }
    node->kind = typeCode.isNull() ? XsdtNode::Kind::Group : XsdtNode::Kind::Value;
    node->typeCode = typeCode;
    return node;
}

inline XsdtNode* addNode(XsdtDocument& document, const QString& path, QChar typeCode = {})
{
    return addNode(document, path.split(u'/'), typeCode);
}

/// Adds a node for each part of `text`, which stand between "; ": "path" is a group, "path:t=value"
/// a value of type t, and " deleted" behind either marks it.
inline void addNodes(XsdtDocument& document, const QString& text)
{
    for (QString part : text.split(QStringLiteral("; "), Qt::SkipEmptyParts)) {
        const QString mark = QStringLiteral(" deleted");
        const bool marked = part.endsWith(mark);
        part.chop(marked ? mark.size() : 0);
        const qsizetype colon = part.indexOf(u':');
        XsdtNode* node = colon < 0 ? addNode(document, part)
                                   : addNode(document, part.left(colon), part.at(colon + 1));
        node->value = node->original = colon < 0 ? QString() : part.mid(colon + 3);
        node->markedForDeletion = marked;
    }
}

/// Name and paths of each of `items`, which have `nodes`: "name path path; name".
template <typename Item>
QString namesAndPaths(const QList<Item>& items, QString Item::*name)
{
    QStringList texts;
    for (const Item& item : items) {
        QString text = item.*name;
        for (const XsdtNode* node : item.nodes) {
            text += u' ' + node->path();
        }
        texts.append(text);
    }
    return texts.join(QStringLiteral("; "));
}

} // namespace kse
