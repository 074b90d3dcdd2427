// SPDX-License-Identifier: MIT
#include "document/XsdtDocument.h"
#include "support/DocumentText.h"
#include "support/TestMain.h"

#include <QTest>

using namespace Qt::StringLiterals;
using namespace kse;

class TestXsdtReader : public QObject
{
    Q_OBJECT

private slots:
    void keepsCharactersAndSurroundings()
    {
        XsdtDocument document;
        QVERIFY(document.parse(
            QByteArrayLiteral("<?x?><!-- > --><xsdtx a=\"1\"><v k='\0' t='\0' v='\0'/>"
                              "<v k='&#xFEFF;' t='s'>\r\n&#xD800;\xC2\xA0</v></xsdt >\r\n ")));
        QCOMPARE(document.head, u"<?x?><!-- > --><xsdtx a=\"1\">"_s);
        QCOMPARE(document.tail, u"\r\n "_s);
        const XsdtNode& nul = *document.root.children[0];
        QVERIFY(nul.key == nul.value && nul.value == QChar(nul.typeCode) && nul.typeCode.isNull());
        const QChar text[] = {u'\r', u'\n', QChar(0xD800), QChar(0xA0)};
        QCOMPARE(document.root.children[1]->value, QString(text, 4));
        QCOMPARE(document.root.children[1]->key, QString(QChar(0xFEFF)));
    }

    /// Keys are shared by what they look like, and these differ where nobody looks.
    void keepsLikeKeysApart()
    {
        const QByteArray a = "<i k='0123A567890123456789'/>";
        const QByteArray b = "<i k='0123B567890123456789'/>";
        QCOMPARE(treeText(documentFrom(a + a + b)->root),
                 u"0123A567890123456789\n0123A567890123456789\n0123B567890123456789\n"_s);
    }

    /// What stands behind "<xsdt>", with | at the place of the error.
    void saysWhatIsWrongAndWhere_data()
    {
        const std::pair<const char*, QByteArrayList> rows[] = {
            {"unexpected end of file (", {"|", "<i k='a'>|"}},
            {"expected </xsdt>", {"</i>|"}},
            {"expected </i>", {"<i k='a'></v>|</xsdt>", "<i k='a'></xsdt>|"}},
            {"malformed <i>", {"<i/>|", "<i k='a' t='s'>|", "<i k='a' v=''/>|"}},
            {"malformed <v>", {"<v k='a' v='1'/>|", "<v t='s' v=''/>|", "<v k='' t='ss' v=''/>|"}},
            {"without a value", {"<v k='a' t='s'/>|"}},
            {"both", {"<v k='a' t='s' v=''>|</v>"}},
            {"unterminated <v>", {"<v k='a' t='s'>|\n<b/>"}},
            {"markup inside", {"<v k='a' t='s'>|\n<b/></v>", "<v k='a' t='s'>|x</v ></v>"}},
            {"unexpected element <w:1>", {"<w:1 k='a'/>|"}},
            {"expected '<'", {"<i k='a'>|text</i>"}},
            {"an element name", {"<|!-- -->", "</| xsdt>"}},
            {"inside a tag", {"<i k='a' |"}},
            {"malformed tag", {"<i k='a' |/ >", "</xsdt|/>"}},
            {"closing tag", {"</xsdt |k='a'>"}},
            {"malformed attribute", {"<i |='a'>"}},
            {"expected '='", {"<i k |'a'>", "<i k|"}},
            {"a quoted", {"<i k= |a>"}},
            {"unterminated attribute", {"<i k=\"|a'></i></xsdt>"}},
            {"unsupported attribute 'name'", {"<i name='a'|>"}},
            {"malformed entity", {"<i name='&'|>", "<i k='&lt'|>", "<i k='&123456789012;'|>"}},
            {"entity &12345678901;", {"<i k='&12345678901;'|>"}},
            {"entity &%1%2;", {"<i k='&%1%2;'|>"}},
            {"entity &;", {"<v k='a' t='s'>|&;</v>"}},
            {"entity &AMP;", {"<i k='&AMP;'| &"}},
            {"invalid character reference",
             {"<i k='&#;'|>", "<i k='&#x;'|>", "<i k='&#X41;'|>", "<i k='&#0;'|>", "<i k='&#x0;'|>",
              "<i k='&#-5;'|>", "<i k='&# 5;'|>", "<i k='&#5 ;'|>", "<i k='&#x0x41;'|>",
              "<i k='&#1114112;'|>", "<i k='&#4294967361;'|>", "<i k='&#x100000041;'|>",
              "<i k='&#5a;'|>", "<i k='&#xg;'|>"}}};
        QTest::addColumn<QString>("message");
        for (const auto& [message, contents] : rows) {
            for (const QByteArray& content : contents) {
                QTest::newRow(content.constData()) << QString::fromLatin1(message);
            }
        }
    }

    void saysWhatIsWrongAndWhere()
    {
        QFETCH(const QString, message);
        QByteArray content = QTest::currentDataTag();
        const qsizetype column = content.indexOf('|') + 7;
        content.remove(column - 7, 1);
        QString error;
        QVERIFY(!XsdtDocument().parse("\xF0\x9F\x98\x80\r\n<xsdt>" + content, &error));
        QVERIFY2(error.contains(message), qPrintable(error));
        QVERIFY2(error.endsWith(u"(line 2, column %1)"_s.arg(column)), qPrintable(error));
    }

    void leavesNothingOfABadFile()
    {
        const std::pair<const char*, const char*> files[] = {
            {"<XSDT></XSDT>", "no <xsdt>"},
            {"<xsdt", "empty or malformed"},
            {"<xsdt/>", "empty or malformed"},
            {"<xsdt></xsdt>\n.", "after </xsdt>"},
            {"<xsdt a=\">\"></xsdt>", "column 11"}};
        for (const auto& [file, message] : files) {
            const auto document = documentFrom("<v k=\"a\" t=\"s\" v=\"x\"/>");
            QString error;
            QVERIFY(document->defaultLayout && !document->parse(file) &&
                    !document->parse(file, &error));
            QVERIFY2(error.contains(QLatin1String(message)), qPrintable(error));
            QVERIFY(document->root.children.empty() && !document->defaultLayout);
            QVERIFY(document->head.isEmpty() && document->tail.isEmpty());
        }
    }

    void failsQuicklyOnUnfinishedInput()
    {
        for (const char* part : {"<i k='", "<i k='a", "&", "<v k='' t='s'>", " ", "<i k=''>"}) {
            XsdtDocument document;
            QVERIFY(!document.parse("<xsdt><i k='" + QByteArray(part).repeated(1'000'000)));
            QVERIFY(!document.parse("<xsdt>" + QByteArray(part).repeated(1'000'000)));
        }
    }
};

KSE_GUILESS_TEST_MAIN(TestXsdtReader)
#include "TestXsdtReader.moc"
