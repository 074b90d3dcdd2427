// SPDX-License-Identifier: MIT
// An input is a settings file, then, after a byte FF, what is done to its tree.
#include "FuzzInput.h"
#include "PlainDocument.h"
#include "document/TreeWalk.h"
#include "document/XsdtDocument.h"

#include <algorithm>

#include <fuzzer/FuzzedDataProvider.h>

using namespace kse;

namespace {

using Nodes = std::vector<XsdtNode*>;

/// Returns the nodes in file order, as the rows of `plain` are.
Nodes requireSameTree(XsdtDocument& document, const PlainDocument& plain)
{
    require(document.head == plain.head && document.tail == plain.tail, "head and tail");
    Nodes nodes;
    walkTree(document.root, [&](XsdtNode& node) {
        require(nodes.size() < plain.rows.size(), "no node too many");
        const PlainRow& row = plain.rows[nodes.size()];
        require(node.kind == (row.isValue ? XsdtNode::Kind::Value : XsdtNode::Kind::Group), "kind");
        require(node.key == row.key, "key");
        require(node.typeCode == row.type, "type");
        require(node.value == row.value && node.original == row.original, "value");
        require(node.textForm == row.textForm && node.selfClosing == row.selfClosing, "form");
        require(node.markedForDeletion == row.marked, "mark");
        require(node.parent ==
                    (row.parent < 0 ? &document.root : nodes[static_cast<std::size_t>(row.parent)]),
                "parent");
        nodes.push_back(&node);
        return Walk::Into;
    });
    require(nodes.size() == plain.rows.size(), "no node too few");
    return nodes;
}

bool areNodes(const QList<XsdtNode*>& found, const std::vector<std::size_t>& places,
              const Nodes& nodes)
{
    return std::equal(
        found.begin(), found.end(), places.begin(), places.end(),
        [&](const XsdtNode* node, std::size_t place) { return node == nodes[place]; });
}

void requirePending(const XsdtDocument& document, const PlainDocument& plain, const Nodes& nodes)
{
    const auto edited = plain.editedValues();
    const auto deleted = plain.deletions();
    require(areNodes(document.editedValues(), edited, nodes), "edited values");
    require(areNodes(document.deletions(), deleted, nodes), "deletions");
    require(document.pendingCount() == static_cast<qsizetype>(edited.size() + deleted.size()),
            "pending count");
}

/// UTF-8 has no form for half a surrogate pair. The first character keeps a leading U+FEFF from
/// being taken for a byte order mark.
QString asWritten(const QString& text)
{
    return QString::fromUtf8((u'|' + text).toUtf8()).mid(1);
}

/// What a save would write is the tree without what is marked, and reads back as that.
void requireSaved(const XsdtDocument& document, const PlainDocument& plain)
{
    const QByteArray bytes = document.serialize();
    require(bytes == plain.bytes(), "serialised bytes");
    PlainDocument saved = plain;
    saved.commitEdits();
    for (PlainRow& row : saved.rows) {
        row.key = asWritten(row.key);
        row.type = row.isValue ? asWritten(row.type).at(0) : QChar();
        row.value = row.original = asWritten(row.value);
    }
    const bool startsWithMark = saved.head.startsWith(QChar::ByteOrderMark);
    saved.head.remove(0, startsWithMark ? 1 : 0);
    XsdtDocument again;
    require(again.parse(bytes), "what was serialised parses");
    requireSameTree(again, saved);
    require(again.defaultLayout == !startsWithMark, "what was serialised has the default layout");
}

XsdtNode* plainFind(const PlainDocument& plain, const Nodes& nodes, XsdtNode& root,
                    const QString& path)
{
    int place = -1;
    for (const QString& key : path.split(u'/', Qt::SkipEmptyParts)) {
        const auto isIt = [&](const PlainRow& row) {
            return row.parent == place && row.key == key;
        };
        const auto found = std::find_if(plain.rows.begin(), plain.rows.end(), isIt);
        if (found == plain.rows.end()) {
            return nullptr;
        }
        place = static_cast<int>(found - plain.rows.begin());
    }
    return place < 0 ? &root : nodes[static_cast<std::size_t>(place)];
}

void requireQuestions(XsdtDocument& document, const PlainDocument& plain, const Nodes& nodes)
{
    std::vector<QString> paths;
    qint64 size = 0;
    qsizetype values = 0;
    const std::vector<bool> covered = plain.covered();
    for (std::size_t i = 0; i < nodes.size(); ++i) {
        const PlainRow& row = plain.rows[i];
        const XsdtNode& node = *nodes[i];
        const QString parent =
            row.parent < 0 ? QString() : paths[static_cast<std::size_t>(row.parent)];
        paths.push_back(parent.isEmpty() ? row.key : parent + u'/' + row.key);
        require(node.path() == paths.back(), "path");
        require(document.root.findByPath(paths.back()) ==
                    plainFind(plain, nodes, document.root, paths.back()),
                "found by path");
        require(node.isInsideDeletion() == covered[i], "inside a deletion");
        require(node.parent->children[static_cast<std::size_t>(node.rowInParent())].get() == &node,
                "row in parent");
        size += row.parent < 0 ? node.serializedSize() : 0;
        values += row.isValue ? 1 : 0;
    }
    require(document.root.valueCount() == values, "value count");
    PlainDocument unmarked = plain;
    for (PlainRow& row : unmarked.rows) {
        row.marked = false;
    }
    const qsizetype around =
        (plain.head + plain.tail).toUtf8().size() + QByteArrayLiteral("</xsdt>").size();
    require(size + around == unmarked.bytes().size(), "serialised size");
}

enum class Command { Edit, EditUnit, Undo, Mark, Unmark, RevertAll, Commit, Save, kMaxValue };

void change(Command command, FuzzedDataProvider& provider, XsdtNode& node, PlainRow& row)
{
    if (command == Command::Mark || command == Command::Unmark) {
        node.markedForDeletion = row.marked = command == Command::Mark;
    } else if (row.isValue && command == Command::Edit) {
        node.value = row.value = QString::fromStdString(provider.ConsumeRandomLengthString(64));
    } else if (row.isValue && command == Command::EditUnit) {
        node.value = row.value += QChar(provider.ConsumeIntegral<quint16>());
    } else if (row.isValue && command == Command::Undo) {
        node.value = row.value = row.original;
    }
}

void runCommands(FuzzedDataProvider& provider, XsdtDocument& document, PlainDocument& plain,
                 Nodes nodes)
{
    auto rest = std::min<std::size_t>(100, 200000 / (nodes.size() + 1));
    for (; rest > 0 && provider.remaining_bytes() > 0; --rest) {
        const auto command = provider.ConsumeEnum<Command>();
        if (command == Command::RevertAll) {
            document.revertAll();
            plain.revertAll();
            requireSameTree(document, plain);
        } else if (command == Command::Commit) {
            document.commitEdits();
            plain.commitEdits();
            nodes = requireSameTree(document, plain);
        } else if (command == Command::Save) {
            requireSaved(document, plain);
        } else if (!nodes.empty()) {
            const auto place = provider.ConsumeIntegralInRange<std::size_t>(0, nodes.size() - 1);
            change(command, provider, *nodes[place], plain.rows[place]);
        }
        requirePending(document, plain, nodes);
    }
    if (nodes.size() <= 100) {
        requireQuestions(document, plain, nodes);
    }
    requireSaved(document, plain);
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    const QByteArrayList input = parts(data, size, 2);
    XsdtDocument document;
    PlainDocument plain;
    QString error;
    QString plainError;
    const bool parsed = document.parse(input[0], &error);
    require(parsed == plain.read(input[0], plainError), "parses or not");
    require(error == plainError, "message");
    if (!parsed) {
        require(!document.parse(input[0]) && document.root.children.empty() &&
                    !document.defaultLayout,
                "nothing is left of what doesn't parse");
        return 0;
    }
    const Nodes nodes = requireSameTree(document, plain);
    require(document.defaultLayout == (plain.bytes() == input[0]), "default layout");
    requireSaved(document, plain);
    FuzzedDataProvider provider(reinterpret_cast<const std::uint8_t*>(input[1].constData()),
                                static_cast<std::size_t>(input[1].size()));
    runCommands(provider, document, plain, nodes);
    return 0;
}
