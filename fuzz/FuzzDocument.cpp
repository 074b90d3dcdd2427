// SPDX-License-Identifier: MIT
// An input is a settings file, then, after a byte FF, what is done to its tree.
#include "FuzzInput.h"
#include "document/TreeWalk.h"
#include "document/XsdtDocument.h"

#include <QRegularExpression>

#include <fuzzer/FuzzedDataProvider.h>

using namespace kse;
using namespace Qt::StringLiterals;

namespace {

/// An error lies within the text, and what follows it doesn't count.
void requireError(const QByteArray& bytes, const QString& error)
{
    static const QRegularExpression form(u" \\(line (\\d+), column (\\d+)\\)$"_s);
    const QRegularExpressionMatch match = form.match(error);
    if (!match.hasMatch()) {
        return;
    }
    QStringList lines = QString::fromUtf8(bytes).split(u'\n');
    const qsizetype line = match.captured(1).toInt();
    const qsizetype column = match.captured(2).toInt();
    require(line >= 1 && line <= lines.size(), "the error's line");
    require(column >= 1 && column <= lines[line - 1].size() + 1, "its column");
    lines.resize(line);
    lines.last().truncate(column);
    QString shorter;
    require(!XsdtDocument().parse("\xEF\xBB\xBF" + lines.join(u'\n').toUtf8(), &shorter), "cut");
    require(shorter == error || shorter == u"unterminated <v> element"_s + match.captured(),
            "the error of the text up to it");
}

/// What is saved of a tree. UTF-8 has no form for half a surrogate pair.
QByteArray treeText(const XsdtNode& root)
{
    QString text;
    walkTree(root, [&](const XsdtNode& node) {
        text += QString::number(node.depth) + node.key + u'\n' + node.typeCode + node.value + u'\n';
        return Walk::Into;
    });
    return text.toUtf8();
}

/// What a save writes parses, and is written again to the byte, but for a byte order mark, which
/// isn't read. `document` then has that tree.
void requireSave(XsdtDocument& document)
{
    const QByteArray bytes = document.serialize();
    document.commitEdits();
    require(document.pendingCount() == 0 && document.serialize() == bytes, "committed");
    XsdtDocument again;
    require(again.parse(bytes) && again.defaultLayout == (again.serialize() == bytes), "parses");
    require(again.defaultLayout != document.head.startsWith(QChar::ByteOrderMark), "layout");
    require(treeText(again.root) == treeText(document.root), "the tree that was written");
    qint64 size = (document.head + document.tail).toUtf8().size() + 7;
    for (const auto& child : document.root.children) {
        size += child->serializedSize();
    }
    require(size == bytes.size(), "serialised size");
}

void change(XsdtDocument& document, FuzzedDataProvider& provider)
{
    const QByteArray before = document.serialize();
    QList<XsdtNode*> nodes;
    walkTree(document.root, [&](XsdtNode& node) {
        nodes.append(&node);
        return nodes.size() < 2000 ? Walk::Into : Walk::Stop;
    });
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
    qsizetype pending = 0;
    for (const XsdtNode* node : std::as_const(nodes)) {
        pending += node->isInsideDeletion() ? int(!node->parent->isInsideDeletion())
                                            : int(node->isModified());
    }
    require(document.pendingCount() == pending, "edits and topmost marks are pending");
    require(document.editedValues().size() + document.deletions().size() == pending, "changes");
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    const auto [file, changes] = parts(data, size);
    XsdtDocument document;
    QString error;
    if (!document.parse(file, &error)) {
        require(document.root.children.empty() && document.head.isEmpty(), "nothing is left");
        requireError(file, error);
        return 0;
    }
    require(document.defaultLayout == (document.serialize() == file), "default layout");
    requireSave(document);
    FuzzedDataProvider provider(reinterpret_cast<const std::uint8_t*>(changes.constData()),
                                static_cast<std::size_t>(changes.size()));
    change(document, provider);
    requireSave(document);
    return 0;
}
