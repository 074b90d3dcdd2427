// SPDX-License-Identifier: MIT
#pragma once

#include "document/TreeWalk.h"
#include "document/XsdtDocument.h"

namespace kse {

/// `content` between the root's tags, as a file holds it.
inline QByteArray fileBytes(const QByteArray& content)
{
    return "<xsdt version=\"1.0\">" + content + "</xsdt>";
}

/// The content of a file of `levels` groups, one in the other, each of which also holds a value.
inline QByteArray deepFile(int levels)
{
    return QByteArray(R"(<i k="level"><v k="value" t="i" v="1"/>)").repeated(levels) +
           QByteArray("</i>").repeated(levels);
}

/// The document of a file with this content between the root's tags. Ends the test program if
/// it doesn't parse.
inline std::unique_ptr<XsdtDocument> documentFrom(const QByteArray& content)
{
    auto document = std::make_unique<XsdtDocument>();
    QString error;
    if (!document->parse(fileBytes(content), &error)) {
        qFatal("%s", qPrintable(error));
    }
    return document;
}

/// What lies below `root`, a line a node, indented by two blanks a level: "key" for a group,
/// "key:t=value" for a value, then " (was original)" for an edit and " deleted" for a mark.
inline QString treeText(const XsdtNode& root)
{
    QString text;
    walkTree(root, [&](const XsdtNode& node) {
        for (const XsdtNode* up = node.parent; up != &root; up = up->parent) {
            text += QStringLiteral("  ");
        }
        text += node.key;
        if (node.kind == XsdtNode::Kind::Value) {
            text += u':' + QString(node.typeCode) + u'=' + node.value;
        }
        if (node.isModified()) {
            text += QStringLiteral(" (was ") + node.original + u')';
        }
        if (node.markedForDeletion) {
            text += QStringLiteral(" deleted");
        }
        text += u'\n';
        return Walk::Into;
    });
    return text;
}

} // namespace kse
