// SPDX-License-Identifier: MIT
// An input is a settings file, then, after a byte FF, what is done to its tree.
#include "FuzzInput.h"
#include "document/Leaves.h"
#include "document/TreeWalk.h"
#include "document/XsdtDocument.h"

#include <QRegularExpression>

#include <algorithm>

#include <fuzzer/FuzzedDataProvider.h>

using namespace kse;
using namespace Qt::StringLiterals;

namespace {

QList<XsdtNode*> nodesOf(XsdtDocument& document)
{
    QList<XsdtNode*> nodes;
    walkTree(document.root, [&](XsdtNode& node) {
        require(node.parent->children.at(static_cast<std::size_t>(node.rowInParent())).get() ==
                    &node,
                "row in parent");
        nodes.append(&node);
        return Walk::Into;
    });
    return nodes;
}

/// An error lies within the text, and what follows it doesn't count.
void requireError(const QByteArray& bytes, const QString& error)
{
    static const QRegularExpression form(u" \\(line (\\d+), column (\\d+)\\)$"_s);
    const QRegularExpressionMatch match = form.match(error);
    const QString text = QString::fromUtf8(bytes);
    if (!match.hasMatch() || text.startsWith(QChar::ByteOrderMark)) {
        return;
    }
    qsizetype start = 0;
    for (int line = 1; line < match.captured(1).toInt(); ++line) {
        start = text.indexOf(u'\n', start) + 1;
        require(start > 0, "the error's line");
    }
    const qsizetype column = match.captured(2).toInt();
    const qsizetype end = text.indexOf(u'\n', start);
    require(column >= 1 && column <= (end < 0 ? text.size() : end) - start + 1, "its column");
    QString shorter;
    require(!XsdtDocument().parse(text.left(start + column).toUtf8(), &shorter), "cut text");
    require(shorter == error || shorter == u"unterminated <v> element"_s + match.captured(),
            "the error of the text up to it");
}

/// UTF-8 has no form for half a surrogate pair. The first character keeps a leading U+FEFF from
/// being taken for a byte order mark.
QString asWritten(const QString& text)
{
    return QString::fromUtf8((u'|' + text).toUtf8()).mid(1);
}

/// What a save would write reads back as the tree without what is marked.
void requireSaved(XsdtDocument& document)
{
    const QByteArray bytes = document.serialize();
    XsdtDocument again;
    require(again.parse(bytes), "what was serialised parses");
    require(again.defaultLayout != document.head.startsWith(QChar::ByteOrderMark), "layout");
    const QList<XsdtNode*> read = nodesOf(again);
    qsizetype place = 0;
    for (const XsdtNode* node : nodesOf(document)) {
        if (!node->isInsideDeletion()) {
            require(place < read.size(), "no node too few");
            const XsdtNode& twin = *read[place++];
            require(twin.kind == node->kind && twin.textForm == node->textForm, "kind and form");
            require(twin.key == asWritten(node->key), "key");
            require(twin.typeCode.isNull() || twin.typeCode == asWritten(node->typeCode)[0],
                    "type");
            require(twin.value == asWritten(node->value) && twin.original == twin.value, "value");
        }
    }
    require(place == read.size(), "no node too many");
}

void requirePending(XsdtDocument& document, const QList<XsdtNode*>& nodes)
{
    QList<XsdtNode*> edited;
    QList<XsdtNode*> deleted;
    for (XsdtNode* node : nodes) {
        if (node->markedForDeletion && !node->parent->isInsideDeletion()) {
            deleted.append(node);
        } else if (node->isModified() && !node->isInsideDeletion()) {
            edited.append(node);
        }
    }
    require(document.editedValues() == edited, "edited values");
    require(document.deletions() == deleted, "deletions");
    require(document.pendingCount() == edited.size() + deleted.size(), "pending count");
    require(document.root.valueCount() == valuesOf(document.root).size(), "values");
}

void change(XsdtDocument& document, FuzzedDataProvider& provider)
{
    const QByteArray before = document.serialize();
    QList<XsdtNode*> nodes = nodesOf(document);
    for (int i = 0; i < 50 && !nodes.isEmpty() && provider.remaining_bytes() > 0; ++i) {
        XsdtNode& node = *nodes[provider.ConsumeIntegralInRange<qsizetype>(0, nodes.size() - 1)];
        if (provider.ConsumeBool() || node.kind == XsdtNode::Kind::Group) {
            node.markedForDeletion = provider.ConsumeBool();
        } else {
            node.value = QString::fromStdString(provider.ConsumeRandomLengthString(64)) +
                         QChar(provider.ConsumeIntegral<quint16>());
        }
        if (provider.ConsumeIntegralInRange(0, 9) == 9) {
            document.revertAll();
            require(document.serialize() == before, "reverted");
        }
    }
    requirePending(document, nodes);
    requireSaved(document);
    const QByteArray saved = document.serialize();
    document.commitEdits();
    require(document.serialize() == saved && document.pendingCount() == 0, "committed");
    requireSaved(document);
    qint64 size = (document.head + document.tail).toUtf8().size() + 7;
    for (const auto& child : document.root.children) {
        size += child->serializedSize();
    }
    require(size == saved.size(), "serialised size");
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    const QByteArrayList input = parts(data, size, 2);
    XsdtDocument document;
    QString error;
    if (!document.parse(input[0], &error)) {
        require(document.root.children.empty() && document.head.isEmpty(), "nothing is left");
        requireError(input[0], error);
        return 0;
    }
    require(document.defaultLayout == (document.serialize() == input[0]), "default layout");
    requireSaved(document);
    if (nodesOf(document).size() < 2000) { // each looks at those above it
        FuzzedDataProvider provider(reinterpret_cast<const std::uint8_t*>(input[1].constData()),
                                    static_cast<std::size_t>(input[1].size()));
        change(document, provider);
    }
    return 0;
}
