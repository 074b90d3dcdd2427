// SPDX-License-Identifier: MIT
#pragma once

#include "document/TreeWalk.h"
#include "document/XsdtDocument.h"

#include <QRandomGenerator>

namespace kse {

/// The bytes of a random part of `document`, with values changed here and there and some nodes that
/// no settings file has. A group keeps about `most` of its children, those in it fewer. Now and
/// then the file isn't in the compact layout.
inline QByteArray smallSettings(XsdtDocument& document, QRandomGenerator& random, int most)
{
    static const QList<QByteArray> strange{
        "<i k=\"a/b\"><v k=\"&amp;x&lt;b&gt;%1\" t=\"s\">1</v><i k=\"a\"/></i>",
        "<i k=\"ModuleData\"><i k=\"Ostrand\"><v k=\"1\" t=\"i\" v=\"x\"/></i></i>",
        "<i k=\"Geometry\"><v k=\"n&#10;l\" t=\"B\" v=\"AAAA\"/></i>",
        "<v k=\"true\" t=\"q\" v=\"\"/><v k=\"true\" t=\"b\" v=\"true\"/>"};
    const auto keepSome = [&random](XsdtNode& node, int kept) {
        const int count = qMax(1, int(node.children.size()));
        for (const auto& child : node.children) {
            child->markedForDeletion = random.bounded(count) >= kept || random.bounded(30) == 0;
        }
    };
    keepSome(document.root, most);
    walkTree(document.root, [&](XsdtNode& node) {
        keepSome(node, qMax(2, most / 3 / node.depth));
        if (node.kind == XsdtNode::Kind::Value && random.bounded(8) == 0) {
            node.value = node.typeCode == u's'   ? node.value + QString(random.bounded(250), u'y')
                         : node.typeCode == u'b' ? QStringLiteral("false")
                                                 : QString::number(random.bounded(9));
        }
        return Walk::Into;
    });
    QByteArray bytes = document.serialize();
    for (int i = random.bounded(5); i > 0; --i) {
        const qsizetype end = bytes.indexOf("</i>", random.bounded(int(bytes.size())));
        if (end >= 0) {
            bytes.insert(end, strange[random.bounded(int(strange.size()))]);
        }
    }
    return random.bounded(4) == 0 ? bytes.replace("<i k=", "\n<i k=") : bytes;
}

} // namespace kse
