// SPDX-License-Identifier: MIT
#include "document/Leaves.h"
#include "document/LowerCasePath.h"
#include "document/ShortPath.h"
#include "document/TextOrder.h"
#include "document/XsdtDocument.h"
#include "support/DocumentText.h"
#include "support/TestMain.h"

#include <QTest>

#include <algorithm>

using namespace Qt::StringLiterals;
using namespace kse;

class TestXsdtDocument : public QObject
{
    Q_OBJECT

private slots:
    void findsNodesByPath()
    {
        const auto document = documentFrom(
            "<i k='a'><v k='b' t='s' v='1'/><v k='b' t='s' v='2'/><v k='c' t='s' v='3'/></i>"
            "<i k='a'><v k='x' t='s' v='unreachable'/></i><v k='slash/ed' t='s' v='x'/>");
        QString found;
        for (const QStringView path : {u"a/b", u"/a//c/", u"A/b", u"a/b/c", u"a/x", u"slash/ed"}) {
            const XsdtNode* node = document->root.findByPath(path);
            found += node ? node->value : u"-"_s;
        }
        QCOMPARE(found, u"13----"_s);
        QCOMPARE(document->root.findByPath(u"//"), &document->root);
    }

    /// Of each node its path, its values, and how many of those aren't marked.
    void describesEachNode()
    {
        const auto document = documentFrom(
            "<i k='@AZ['><i k=''><v k='b' t='s' v=''/></i><v k='C/d' t='s' v=''/></i><i k=''>"
            "<i k=''/><v k='\xC3\x89\x5A' t='s' v=''/></i>");
        document->root.findByPath(u"@AZ[")->children.front()->markedForDeletion = true;
        LowerCasePath lower(document->root);
        QString text;
        walkTree(document->root, [&](const XsdtNode& node) {
            text += node.path() + u' ' + QString::number(valuesOf(node).size()) + u' ' +
                    QString::number(unmarkedValues(node).size()) + u'\n';
            return lower.moveTo(node) == node.path().toLower() ? Walk::Into : Walk::Stop;
        });
        QCOMPARE(text, u"@AZ[ 2 1\n@AZ[/ 1 1\n@AZ[//b 1 1\n@AZ[/C/d 1 1\n 1 1\n 0 0\nÉZ 1 1\n"_s);
    }

    void sortsPathsWithoutCase()
    {
        const QStringList texts =
            u"b/Z a b/z B/z Ab b aB b/[ b/\U00010428 b/\U00010400 b/é"_s.split(u' ');
        QStringList sorted = texts;
        std::stable_sort(sorted.begin(), sorted.end(), [](const QString& a, const QString& b) {
            return a.compare(b, Qt::CaseInsensitive) < 0;
        });
        QStringList ordered;
        for (const qsizetype place : orderIgnoringCase({texts.begin(), texts.end()})) {
            ordered += texts[place];
        }
        QCOMPARE(ordered, sorted);
    }

    void countsRevertsAndCommits()
    {
        const QByteArray content = "<i k='a'><v k='b' t='s' v='1'/><i k='c'><v k='d' t='s' v='2'/>"
                                   "</i><v k='e' t='s' v='3'/></i><v k='f' t='s' v='4'/>";
        const auto document = documentFrom(content);
        XsdtNode& a = *document->root.children[0];
        XsdtNode& b = *a.children[0];
        XsdtNode& c = *a.children[1];
        XsdtNode& d = *c.children[0];
        XsdtNode& f = *document->root.children[1];
        const auto change = [&] {
            b.value = d.value = f.value = u"new"_s;
            a.markedForDeletion = c.markedForDeletion = true;
        };
        change();
        QCOMPARE(document->editedValues(), QList<XsdtNode*>({&f}));
        QCOMPARE(document->deletions(), QList<XsdtNode*>({&a}));
        QCOMPARE(document->pendingCount(), 2);
        QVERIFY(d.isInsideDeletion() && a.isInsideDeletion() && !f.isInsideDeletion());
        document->revertAll();
        QCOMPARE(treeText(document->root), treeText(documentFrom(content)->root));

        change();
        a.markedForDeletion = false;
        document->root.children.back()->markedForDeletion = true;
        QCOMPARE(document->editedValues(), QList<XsdtNode*>({&b}));
        QCOMPARE(document->deletions(), QList<XsdtNode*>({&c, &f}));
        document->commitEdits();
        QCOMPARE(treeText(document->root), u"a\n  b:s=new\n  e:s=3\n"_s);
        QCOMPARE(a.children[1]->rowHint, 1U);
    }

    void handlesAMillionLevels()
    {
        constexpr int levels = 1'000'000;
        const QByteArray content = QByteArray("<i k=\"g\">").repeated(levels) +
                                   "<v k=\"vw\" t=\"s\" v=\"1\"/>" +
                                   QByteArray("</i>").repeated(levels);
        const auto document = documentFrom(content);
        QVERIFY(document->defaultLayout && document->serialize() == fileBytes(content));
        QCOMPARE(document->root.children.front()->serializedSize(), content.size());
        XsdtNode* const deepest = valuesOf(document->root).constFirst();
        QCOMPARE(document->root.findByPath(deepest->path()), deepest);
        QCOMPARE(shortPath(*deepest), u'…' + deepest->path().right(shortPathLength));
        deepest->parent->markedForDeletion = true;
        QCOMPARE(document->pendingCount(), 1);
        document->commitEdits();
        QCOMPARE(document->root.valueCount(), 0);
    }

    void handlesAMillionChildren()
    {
        const auto document = documentFrom(
            "<i k='g'>" + QByteArray("<v k='v' t='s'>1</v>").repeated(1'000'000) + "</i>");
        XsdtNode& group = *document->root.children.front();
        for (const auto& child : group.children) {
            child->markedForDeletion = child->rowInParent() % 2 == 0;
        }
        document->commitEdits();
        QCOMPARE(group.valueCount(), 500'000);
        QCOMPARE(group.children.back()->rowHint, 499'999U);
    }
};

KSE_GUILESS_TEST_MAIN(TestXsdtDocument)
#include "TestXsdtDocument.moc"
