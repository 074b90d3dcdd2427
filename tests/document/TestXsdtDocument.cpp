// SPDX-License-Identifier: MIT
#include "document/XsdtDocument.h"
#include "support/DocumentText.h"
#include "support/TestMain.h"

#include <QTest>

using namespace kse;

class TestXsdtDocument : public QObject
{
    Q_OBJECT

private slots:
    void findsNodesByPath();
    void buildsPaths();
    void knowsRowsAndCounts();
    void countsEditsOutsideDeletions();
    void revertsEverything();
    void commitsEditsAndDeletions();
    void handlesAMillionLevels();
    void handlesAMillionChildren();
};

void TestXsdtDocument::findsNodesByPath()
{
    const auto document = documentFrom(
        "<i k='a'><v k='b' t='s' v='first'/><v k='b' t='s' v='second'/><v k='c' t='s' v='third'/>"
        "</i><i k='a'><v k='x' t='s' v='unreachable'/></i><v k='slash/ed' t='s' v='x'/>");
    const auto valueAt = [&](QStringView path) {
        const XsdtNode* node = document->root.findByPath(path);
        return node ? node->value : QStringLiteral("nothing");
    };
    QCOMPARE(valueAt(u"a/b"), QStringLiteral("first"));
    QCOMPARE(valueAt(u"/a//c/"), QStringLiteral("third"));
    for (const QStringView path : {u"A/b", u"a/b/c", u"a/x", u"slash/ed"}) {
        QCOMPARE(valueAt(path), QStringLiteral("nothing"));
    }
    QCOMPARE(document->root.findByPath(u"//"), &document->root);
}

void TestXsdtDocument::buildsPaths()
{
    const auto document = documentFrom("<i k='a'><i k=''><v k='b' t='s' v=''/></i></i>"
                                       "<i k=''><i k=''/><v k='c/d' t='s' v=''/></i>");
    QStringList paths(document->root.path());
    walkTree(document->root, [&](const XsdtNode& node) {
        paths += node.path();
        return Walk::Into;
    });
    QCOMPARE(paths,
             QStringList({QString(), QStringLiteral("a"), QStringLiteral("a/"),
                          QStringLiteral("a//b"), QString(), QString(), QStringLiteral("c/d")}));
}

void TestXsdtDocument::knowsRowsAndCounts()
{
    const auto document = documentFrom("<i k='a'/><i k='b'><v k='X' t='s' v=''/>"
                                       "<v k='X' t='s' v=''/></i>");
    const XsdtNode& group = *document->root.children[1];
    QCOMPARE(document->root.rowInParent(), 0);
    QCOMPARE(group.rowInParent(), 1);
    QCOMPARE(group.childByKey(u"X"), group.children[0].get());
    QCOMPARE(group.children[1]->rowInParent(), 1);
    QCOMPARE(group.valueCount(), 2);
    QCOMPARE(group.children[0]->valueCount(), 1);
    QCOMPARE(document->root.children[0]->valueCount(), 0);
    // A wrong hint costs time, not the answer.
    group.children[1]->rowHint = 7;
    QCOMPARE(group.children[1]->rowInParent(), 1);
}

void TestXsdtDocument::countsEditsOutsideDeletions()
{
    const auto document = documentFrom("<i k='a'><v k='b' t='s' v='1'/><i k='c'>"
                                       "<v k='d' t='s' v='2'/></i></i><v k='e' t='s' v='3'/>");
    XsdtNode* a = document->root.findByPath(u"a");
    XsdtNode* b = a->findByPath(u"b");
    XsdtNode* c = a->findByPath(u"c");
    XsdtNode* d = a->findByPath(u"c/d");
    XsdtNode* e = document->root.findByPath(u"e");
    for (XsdtNode* value : {e, d, b}) {
        value->value = QStringLiteral("new");
    }
    QCOMPARE(document->editedValues(), QList<XsdtNode*>({b, d, e}));
    b->value = QStringLiteral("1");
    QCOMPARE(document->pendingCount(), 2);
    c->markedForDeletion = true;
    QCOMPARE(document->editedValues(), QList<XsdtNode*>({e}));
    QCOMPARE(document->deletions(), QList<XsdtNode*>({c}));
    a->markedForDeletion = true;
    QCOMPARE(document->deletions(), QList<XsdtNode*>({a}));
    QCOMPARE(document->pendingCount(), 2);
    QVERIFY(d->isInsideDeletion() && a->isInsideDeletion() && !e->isInsideDeletion());
    a->markedForDeletion = false;
    QCOMPARE(document->deletions(), QList<XsdtNode*>({c}));
}

void TestXsdtDocument::revertsEverything()
{
    const auto document = documentFrom("<i k='a'><i k='b'><v k='c' t='s' v='1'/></i></i>");
    const QString before = treeText(document->root);
    XsdtNode* c = document->root.findByPath(u"a/b/c");
    c->value = QStringLiteral("2");
    c->parent->markedForDeletion = c->parent->parent->markedForDeletion = true;
    document->revertAll();
    QCOMPARE(document->pendingCount(), 0);
    QCOMPARE(treeText(document->root), before);
}

void TestXsdtDocument::commitsEditsAndDeletions()
{
    const auto document = documentFrom(
        "<v k='gone' t='s' v=''/><i k='a'><i k='emptied'><i k='gone'><v k='x' t='s' v=''/></i></i>"
        "<v k='b' t='s' v='1'/><v k='gone' t='s' v=''/><v k='c' t='s' v='3'/></i>");
    XsdtNode* const a = document->root.findByPath(u"a");
    XsdtNode* const c = a->findByPath(u"c");
    a->findByPath(u"b")->value = QStringLiteral("2");
    walkTree(document->root, [](XsdtNode& node) {
        node.markedForDeletion = node.key == u"gone";
        return Walk::Into;
    });
    document->commitEdits();
    QCOMPARE(treeText(document->root), QStringLiteral("a\n  emptied\n  b:s=2\n  c:s=3\n"));
    QCOMPARE(document->pendingCount(), 0);
    QCOMPARE(document->root.findByPath(u"a/c"), c);
    QCOMPARE(a->rowHint, 0U);
    QCOMPARE(c->rowHint, 2U);
    QVERIFY(!document->root.findByPath(u"a/emptied")->selfClosing);
}

void TestXsdtDocument::handlesAMillionLevels()
{
    constexpr int levels = 1'000'000;
    const QByteArray content = QByteArray("<i k=\"g\">").repeated(levels) +
                               "<v k=\"v\" t=\"s\" v=\"1\"/>" + QByteArray("</i>").repeated(levels);
    const auto document = documentFrom(content);
    QVERIFY(document->defaultLayout);
    QCOMPARE(document->serialize(), fileBytes(content));
    QCOMPARE(document->root.children.front()->serializedSize(), content.size());
    QCOMPARE(document->root.valueCount(), 1);
    XsdtNode* deepest = nullptr;
    walkTree(document->root, [&](XsdtNode& node) {
        deepest = &node;
        return Walk::Into;
    });
    const QString path = deepest->path();
    QCOMPARE(path.size(), 2 * levels + 1);
    QCOMPARE(document->root.findByPath(path), deepest);
    QVERIFY(!deepest->isInsideDeletion());
    deepest->value = QStringLiteral("2");
    deepest->parent->markedForDeletion = true;
    QCOMPARE(document->pendingCount(), 1);
    document->commitEdits();
    QCOMPARE(document->root.valueCount(), 0);
}

void TestXsdtDocument::handlesAMillionChildren()
{
    const QByteArray content = QByteArray("<v k=\"v\" t=\"s\">1</v>").repeated(1'000'000);
    const auto document = documentFrom("<i k=\"g\">" + content + "</i>");
    QVERIFY(document->defaultLayout);
    XsdtNode& group = *document->root.children.front();
    qsizetype wrongRows = 0;
    for (std::size_t i = 0; i < group.children.size(); ++i) {
        wrongRows += group.children[i]->rowInParent() != qsizetype(i);
        group.children[i]->markedForDeletion = i % 2 == 0;
    }
    QCOMPARE(wrongRows, 0);
    QCOMPARE(document->deletions().size(), 500'000);
    document->commitEdits();
    QCOMPARE(group.valueCount(), 500'000);
    QCOMPARE(group.children.back()->rowHint, 499'999U);
}

KSE_GUILESS_TEST_MAIN(TestXsdtDocument)
#include "TestXsdtDocument.moc"
