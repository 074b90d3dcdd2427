// SPDX-License-Identifier: MIT
#include "document/Leaves.h"
#include "document/LowerCase.h"
#include "document/ShortPath.h"
#include "document/TextOrder.h"
#include "document/TreeWalk.h"
#include "document/XsdtDocument.h"
#include "document/XsdtValueType.h"
#include "document/XsdtWriter.h"
#include "support/DocumentText.h"
#include "support/TestMain.h"

/// Reading, changing and writing a settings file, and the values that it takes.
class TestDocument : public QObject
{
    Q_OBJECT

private slots:
    void rewritesInCompactLayout()
    {
        // What is read and, if it isn't the same, what is written: files, or contents of the root.
        const std::pair<QByteArray, QByteArray> rows[] = {
            {"<?xml?>\r\n<!-- > \xC3\xA4 ' --><xsdt  a='1' ><i k=\"a\"></i></xsdt>\r\n ", {}},
            {"<i k=\"a\"><i k=\"b\"/></i><v k=\"\" t=\"&lt;\" v=\"\"/><i k=\"d\"></i>", {}},
            {"<v k=\"c\" t=\"s\"></v><v k=\"c\" t=\"x\">\r\n\xC2\xA0 y</v>", {}},
            {"<v k=\"&quot;&amp;&apos;&lt;&gt;\" t=\"s\" v=\"\r\n\t\x01&amp;\"/>", {}},
            {"<v k=\"\xC3\xA4\xE2\x82\xAC\" t=\"s\" v=\"\xF0\x9F\x98\x80z\"/>", {}},
            {QByteArrayLiteral("<v k=\"\0\" t=\"\0\" v=\"\0\"/>"), {}},
            {"<i k=\"" + QByteArray(5'000'000, 'x') + "\"/>", {}},
            // Keys are shared by what they look like, and these differ where nobody looks.
            {"<i k=\"0123A567890123456789\"/><i k=\"0123A567890123456789\"/>"
             "<i k=\"0123B567890123456789\"/>",
             {}},
            {"\xEF\xBB\xBF<xsdt></xsdt>", "<xsdt></xsdt>"},
            {"<xsdt></xsdt >", "<xsdt></xsdt>"},
            {"\n  <i k=\"a\">\n  </i>\n", "<i k=\"a\"></i>"},
            {"<v t=\"s\" k=\"a\" v=\"x\"/>", "<v k=\"a\" t=\"s\" v=\"x\"/>"},
            {"\r\n <v\tk = 'a'\nt= 's' v ='x' />\xC2\xA0<i k='b'></i >",
             "<v k=\"a\" t=\"s\" v=\"x\"/><i k=\"b\"></i>"},
            {"<v k='a' k='b' t='u' t='s' v='1' v='2\"'/>", "<v k=\"b\" t=\"s\" v=\"2&quot;\"/>"},
            {"<v k='&#65;&#x41;' t='s' v='&#x10fffF;&#0000000065;&#xFEFF;'/>",
             "<v k=\"AA\" t=\"s\" v=\"\xF4\x8F\xBF\xBF\x41\xEF\xBB\xBF\"/>"},
            {"<v k=\"a'\" t=\"s\">></v>", "<v k=\"a&apos;\" t=\"s\">&gt;</v>"},
            {"<v k=\"\xFF\" t=\"s\" v=\"&#xD800;a\"/>",
             "<v k=\"\xEF\xBF\xBD\" t=\"s\" v=\"?a\"/>"}};
        const auto file = [](const QByteArray& text) {
            return text.contains("<xsdt") ? text : fileBytes(text);
        };
        for (const auto& [read, rewritten] : rows) {
            const QByteArray written = file(rewritten.isEmpty() ? read : rewritten);
            XsdtDocument document;
            QString error;
            QVERIFY2(document.parse(file(read), &error), qPrintable(error));
            QCOMPARE(document.serialize(), written);
            QCOMPARE(document.defaultLayout, rewritten.isEmpty());
        }
    }

    void saysWhatIsWrongAndWhere()
    {
        // Part of the message, and what stands behind "<xsdt", with | at the place of the error.
        const std::pair<const char*, QByteArrayList> rows[] = {
            {"empty or malformed", {"", "/>"}},
            {"after </xsdt>", {"></xsdt>\n."}},
            {"unexpected end of file (", {">|", "><i k='a'>|"}},
            {"expected </xsdt>", {"></i>|"}},
            {"expected </i>", {"><i k='a'></v>|</xsdt>", "><i k='a'></xsdt>|"}},
            {"malformed <i>", {"><i/>|", "><i k='a' t='s'>|", "><i k='a' v=''/>|"}},
            {"malformed <v>", {"><v k='a' v='1'/>|", "><v t='s' v=''/>|", "><v k='' t='ss'/>|"}},
            {"without a value", {"><v k='a' t='s'/>|"}},
            {"both", {"><v k='a' t='s' v=''>|</v>"}},
            {"unterminated <v>", {"><v k='a' t='s'>|\n<b/>"}},
            {"markup inside", {"><v k='a' t='s'>|\n<b/></v>", "><v k='a' t='s'>|x</v ></v>"}},
            {"unexpected element <w:1>", {"><w:1 k='a'/>|"}},
            {"expected '<'", {"><i k='a'>|text</i>", " a=\">|\"></xsdt>"}},
            {"an element name", {"><|!-- -->", "></| xsdt>"}},
            {"inside a tag", {"><i k='a' |"}},
            {"malformed tag", {"><i k='a' |/ >", "></xsdt|/>"}},
            {"closing tag", {"></xsdt |k='a'>"}},
            {"malformed attribute", {"><i |='a'>"}},
            {"expected '='", {"><i k |'a'>", "><i k|"}},
            {"a quoted", {"><i k= |a>"}},
            {"unterminated attribute", {"><i k=\"|a'></i></xsdt>"}},
            {"unsupported attribute 'name'", {"><i name='a'|>"}},
            {"malformed entity", {"><i k='&'|>", "><i k='&lt'|>", "><i k='&123456789012;'|>"}},
            {"unknown entity &12345678901;", {"><i k='&12345678901;'|>"}},
            {"unknown entity &AMP;", {"><v k='a' t='s'>|&AMP;</v>"}},
            {"invalid character reference",
             {"><i k='&#;'|>", "><i k='&#x;'|>", "><i k='&#X41;'|>", "><i k='&#0;'|>",
              "><i k='&#-5;'|>", "><i k='&# 5;'|>", "><i k='&#x0x41;'|>", "><i k='&#1114112;'|>",
              "><i k='&#4294967361;'|>", "><i k='&#x100000041;'|>", "><i k='&#5a;'|>"}}};
        for (const auto& [message, contents] : rows) {
            for (QByteArray content : contents) {
                const qsizetype place = content.indexOf('|');
                const QString where = u"(line 2, column %1)"_s.arg(place + 6);
                content.prepend("\xF0\x9F\x98\x80\r\n<xsdt").replace("|", "");
                const auto document = documentFrom("<v k=\"a\" t=\"s\" v=\"x\"/>");
                QString error;
                QVERIFY(document->defaultLayout && !document->parse(content, &error));
                QVERIFY2(error.contains(QLatin1String(message)), qPrintable(error));
                QVERIFY2(place < 0 || error.endsWith(where), qPrintable(error));
                QVERIFY(document->root.children.empty() && !document->defaultLayout);
                QVERIFY(document->head.isEmpty() && document->tail.isEmpty());
            }
        }
        QVERIFY(!XsdtDocument().parse("<XSDT></XSDT>"));
    }

    /// Of each node the path, the number of values and of unmarked ones, and whether the path leads
    /// to it: that of a key with a slash, or of another node before it, doesn't.
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
            u"b/Z a b/z B/z Ab b aB b/[ b/\U00010428 b/\U00010400 b/é b/É"_s.split(u' ');
        QStringList ordered;
        for (const qsizetype place : orderIgnoringCase({texts.begin(), texts.end()})) {
            ordered += texts[place];
        }
        QCOMPARE(ordered.join(u' '),
                 u"a Ab aB b b/[ b/Z b/z B/z b/é b/É b/\U00010428 b/\U00010400"_s);
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
        QCOMPARE(document->pendingCount(), 0);
        QCOMPARE(at(u"a/e")->rowHint, 1U);
        QCOMPARE(document->serialize(), saved);
    }

    void handlesManyLevels()
    {
        const QByteArray content = deepFile(300'000);
        const auto document = documentFrom(content);
        QVERIFY(document->defaultLayout && document->serialize() == fileBytes(content));
        QCOMPARE(document->root.children.front()->serializedSize(), content.size());
        XsdtNode* const deepest = valuesOf(document->root).constLast();
        QCOMPARE(shortPath(*deepest), u'…' + deepest->path().right(shortPathLength));
        deepest->parent->markedForDeletion = true;
        QCOMPARE(document->pendingCount(), 1);
        document->commitEdits();
        QCOMPARE(document->root.valueCount(), 299'999);
    }

    /// Columns: type code, inputs; the type's name and the stored texts, or a question mark with
    /// the end of the message.
    void takesWhatFitsTheType()
    {
        QLocale::setDefault(QLocale(QLocale::German));
        const auto answer = [](const QStringList& cells) {
            const QChar code = cells[0][0];
            QStringList answers(typeName(code));
            for (const QString& input : cells.mid(1, cells.size() - 2)) {
                QString stored(u'?');
                QString error;
                const bool isGood = validateValue(code, input, stored, &error);
                answers += isGood && error.isEmpty() ? stored : stored + error.section(u' ', -1);
            }
            answers.removeDuplicates();
            return answers.join(u' ');
        };
        compareRows(
            {"b >  TRUE  > 1 > false > 0 > Boolean true false", "b > yes >  > Boolean ?false.",
             "i >   42  > +007 > -2147483648 > 2147483647 > Integer 42 7 -2147483648 2147483647",
             "i >  > x > 1,000 > 0x10 > -2147483649 > 2147483648 > 1.5 > 9223372036854775808 > "
             "Integer ?2147483647.",
             "u > 4294967295 > 0 > Unsigned 4294967295 0",
             "u >  > x > 1.000 > 4294967296 > -0 > 1e3 > Unsigned ?4294967295.",
             "F > 1.50 > 1e39 > 0.30000000000000004 > Real 1.5 1e+39 0.30000000000000004",
             "F >  > x > nan > inf > 1,000 > 1,5 > 1 000 > 0x10 > 1e999 > Real ?number.",
             "f > 0.1 > 16777217 > Real (single) 0.1 16777216",
             "f > 3.4028234663852886e+38 > 3.40282347e+38 > Real (single) 3.40282347e+38",
             "f >  > nan > inf > 1,000 > 3.4028235e38 > -1e39 > Real (single) ?range.",
             "s >   42  > String   42 ", "s >  > String ", "t > 2024-01-01 > Time ?edited.",
             "B >  > 1 > Block ?edited.", "x > 1 > Unknown (x) ?edited."},
            answer);
    }
};

KSE_GUILESS_TEST_MAIN(TestDocument)
#include "TestDocument.moc"
