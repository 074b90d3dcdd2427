// SPDX-License-Identifier: MIT
#include "document/XsdtDocument.h"
#include "document/XsdtWriter.h"
#include "support/DocumentText.h"
#include "support/TestMain.h"

using namespace Qt::StringLiterals;
using namespace kse;

class TestXsdtFormat : public QObject
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
            QVERIFY(!hasCanonicalLayout(document, written + ' '));
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
};

KSE_GUILESS_TEST_MAIN(TestXsdtFormat)
#include "TestXsdtFormat.moc"
