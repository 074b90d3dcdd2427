// SPDX-License-Identifier: MIT
#include "document/Leaves.h"
#include "document/LowerCasePath.h"
#include "document/ShortPath.h"
#include "document/TextOrder.h"
#include "document/XsdtDocument.h"
#include "support/DocumentText.h"
#include "support/TestMain.h"

using namespace Qt::StringLiterals;
using namespace kse;

class TestXsdtDocument : public QObject
{
    Q_OBJECT

private slots:
    /// Of each node its path, its values, how many of those aren't marked, and whether the path
    /// leads to it: that of a key with a slash, or of another node before it, doesn't.
    void describesEachNode()
    {
        const auto document = documentFrom("<i k='@AZ['><i k=''><v k='b' t='s' v=''/><v k='B' "
                                           "t='s' v=''/></i><v k='C/d' t='s' v=''/>"
                                           "</i><i k='@AZ['><v k='c' t='s' v=''/></i><i k=''><i "
                                           "k=''/><v k='\xC3\x89\x5A' t='s' v=''/></i>");
        document->root.children[0]->children[0]->markedForDeletion = true;
        LowerCasePath lower(document->root);
        QString text;
        walkTree(document->root, [&](const XsdtNode& node) {
            text += node.path() + u' ' + QString::number(valuesOf(node).size());
            text += QString::number(unmarkedValues(node).size());
            text += document->root.findByPath(node.path()) == &node ? u" found\n"_s : u"\n"_s;
            return lower.moveTo(node) == node.path().toLower() ? Walk::Into : Walk::Stop;
        });
        QCOMPARE(
            text,
            u"@AZ[ 31 found\n@AZ[/ 22\n@AZ[//b 11\n@AZ[//B 11\n@AZ[/C/d 11\n@AZ[ 11\n@AZ[/c 11\n"
            " 11\n 00\nÉZ 11\n"_s);
    }

    void sortsPathsWithoutCase()
    {
        const QStringList texts =
            u"b/Z a b/z B/z Ab b aB b/[ b/\U00010428 b/\U00010400 b/é"_s.split(u' ');
        QStringList ordered;
        for (const qsizetype place : orderIgnoringCase({texts.begin(), texts.end()})) {
            ordered += texts[place];
        }
        QCOMPARE(ordered.join(u' '), u"a Ab aB b b/[ b/Z b/z B/z b/é b/\U00010428 b/\U00010400"_s);
    }

    void keepsChangesUntilTheyAreSaved()
    {
        const QByteArray content =
            "<i k=\"a\"><v k=\"b\" t=\"s\">1</v><i k=\"c\"><v k=\"d\" t=\"s\" v=\"2\"/></i>"
            "<v k=\"e\" t=\"s\" v=\"3\"/></i><v k=\"f\" t=\"s\" v=\"4\"/>";
        const auto document = documentFrom(content);
        const auto at = [&](QStringView path) {
            return document->root.findByPath(path);
        };
        // Changes three values, marks two nodes, and says what is pending then.
        const auto change = [&](QStringView first, QStringView second) {
            at(u"a/b")->value = at(u"a/c/d")->value = at(u"f")->value = u"<"_s;
            at(first)->markedForDeletion = at(second)->markedForDeletion = true;
            QString text = QString::number(document->pendingCount());
            for (const XsdtNode* node : document->editedValues() + document->deletions()) {
                text += u' ' + node->key;
            }
            return text;
        };
        QCOMPARE(change(u"a", u"a/c"), u"2 f a"_s);
        QVERIFY(at(u"a")->isInsideDeletion() && at(u"a/c/d")->isInsideDeletion());
        QVERIFY(!at(u"f")->isInsideDeletion());
        document->revertAll();
        QCOMPARE(document->serialize(), fileBytes(content));

        const qint64 size = at(u"a")->serializedSize();
        QCOMPARE(change(u"a/c", u"f"), u"3 b c f"_s);
        QCOMPARE(at(u"a")->serializedSize(), size + 6); // also what is marked
        const QByteArray saved = fileBytes("<i k=\"a\"><v k=\"b\" t=\"s\">&lt;</v>"
                                           "<v k=\"e\" t=\"s\" v=\"3\"/></i>");
        QCOMPARE(document->serialize(), saved);
        document->commitEdits();
        QCOMPARE(treeText(document->root), u"a\n  b:s=<\n  e:s=3\n"_s);
        QCOMPARE(at(u"a/e")->rowHint, 1U);
        QCOMPARE(document->serialize(), saved);
    }

    void handlesManyLevels()
    {
        constexpr int levels = 300'000;
        const QByteArray content = QByteArray("<i k=\"g\">").repeated(levels) +
                                   "<v k=\"vw\" t=\"s\" v=\"1\"/>" +
                                   QByteArray("</i>").repeated(levels);
        const auto document = documentFrom(content);
        QVERIFY(document->defaultLayout && document->serialize() == fileBytes(content));
        QCOMPARE(document->root.children.front()->serializedSize(), content.size());
        XsdtNode* const deepest = valuesOf(document->root).constFirst();
        QCOMPARE(shortPath(*deepest), u'…' + deepest->path().right(shortPathLength));
        deepest->parent->markedForDeletion = true;
        QCOMPARE(document->pendingCount(), 1);
        document->commitEdits();
        QCOMPARE(document->root.valueCount(), 0);
    }
};

KSE_GUILESS_TEST_MAIN(TestXsdtDocument)
#include "TestXsdtDocument.moc"
