// SPDX-License-Identifier: MIT
#include "document/XsdtDocument.h"
#include "support/DocumentText.h"
#include "support/TestMain.h"

#include <QTest>

using namespace kse;

class TestXsdtReader : public QObject
{
    Q_OBJECT

private slots:
    void keepsCharactersAndSurroundings();
    void saysWhatIsWrongAndWhere_data();
    void saysWhatIsWrongAndWhere();
    void readsHugeStrings();
    void failsQuicklyOnUnfinishedInput();
};

void TestXsdtReader::keepsCharactersAndSurroundings()
{
    XsdtDocument document;
    QVERIFY(document.parse(
        QByteArrayLiteral("<?x?><!-- > --><xsdtx a=\"1\"><v k='\0' t='\0' v='\0'/>"
                          "<v k='&#xFEFF;' t='s'>\r\n&#xD800;\xC2\xA0</v></xsdt >\r\n ")));
    QCOMPARE(document.head, QStringLiteral("<?x?><!-- > --><xsdtx a=\"1\">"));
    QCOMPARE(document.tail, QStringLiteral("\r\n "));
    const XsdtNode& nul = *document.root.children[0];
    QVERIFY(nul.key == nul.value && nul.value == QChar(nul.typeCode) && nul.typeCode.isNull());
    const QChar text[] = {u'\r', u'\n', QChar(0xD800), QChar(0xA0)};
    QCOMPARE(document.root.children[1]->value, QString(text, 4));
    QCOMPARE(document.root.children[1]->key, QString(QChar(0xFEFF)));
}

void TestXsdtReader::saysWhatIsWrongAndWhere_data()
{
    QTest::addColumn<QByteArray>("file");
    QTest::addColumn<QString>("message");

    const QList<std::pair<const char*, const char*>> files = {
        {"<XSDT></XSDT>", "Not a PixInsight settings file (no <xsdt> element)."},
        {"<xsdt", "The <xsdt> element is empty or malformed."},
        {"<xsdt/>", "The <xsdt> element is empty or malformed."},
        {"<xsdt></xsdt>\n.", "Unexpected content after </xsdt>."},
        {"<xsdt a=\">\"></xsdt>", "expected '<' (line 1, column 11)"},
        {"\n\r\n<xsdt>\r<i k='a'>\n \r\n  x", "expected '<' (line 5, column 3)"},
        {"\xF0\x9F\x98\x80<xsdt>x", "expected '<' (line 1, column 9)"}};
    for (const auto& [file, message] : files) {
        QTest::newRow(QByteArray(file).simplified().constData())
            << QByteArray(file) << QString::fromUtf8(message);
    }
    struct Fault
    {
        const char* content; ///< behind "<xsdt>", so it begins in column 7
        int column;
    };
    const QList<std::pair<const char*, QList<Fault>>> contents = {
        {"unexpected end of file", {{"", 7}, {"<i k='a'>", 16}}},
        {"expected </xsdt>", {{"</i>", 11}}},
        {"expected </i>", {{"<i k='a'></v></xsdt>", 20}, {"<i k='a'></xsdt>", 23}}},
        {"malformed <i> element", {{"<i/>", 11}, {"<i k='a' t='s'>", 22}, {"<i k='a' v=''/>", 22}}},
        {"malformed <v> element",
         {{"<v k='a' v='1'/>", 23}, {"<v t='s' v=''/>", 22}, {"<v k='a' t='ss' v='1'/>", 30}}},
        {"<v> element without a value", {{"<v k='a' t='s'/>", 23}}},
        {"<v> element with both an attribute and a text value", {{"<v k='a' t='s' v=''></v>", 27}}},
        {"unterminated <v> element", {{"<v k='a' t='s'>\n<b/>", 22}}},
        {"markup inside a <v> text value",
         {{"<v k='a' t='s'>\n<b/></v>", 22}, {"<v k='a' t='s'>x</v ></v>", 22}}},
        {"unexpected element <w:1>", {{"<w:1 k='a'/>", 19}}},
        {"expected '<'", {{"<i k='a'>text</i>", 16}}},
        {"expected an element name", {{"<!-- -->", 8}, {"</ xsdt>", 9}}},
        {"unexpected end of file inside a tag", {{"<i k='a' ", 16}}},
        {"malformed tag", {{"<i k='a' / >", 16}, {"</xsdt/>", 13}}},
        {"unexpected content in closing tag", {{"</xsdt k='a'>", 14}}},
        {"malformed attribute", {{"<i ='a'>", 10}}},
        {"expected '=' after attribute name", {{"<i k 'a'>", 12}, {"<i k", 11}}},
        {"expected a quoted attribute value", {{"<i k= a>", 13}}},
        {"unterminated attribute value", {{"<i k=\"a'></i></xsdt>", 13}}},
        {"unsupported attribute 'name'", {{"<i name='a'>", 18}}},
        {"malformed entity reference",
         {{"<i name='&'>", 18}, {"<i k='&lt'>", 17}, {"<i k='&123456789012;'>", 28}}},
        {"unknown entity &12345678901;", {{"<i k='&12345678901;'>", 27}}},
        {"unknown entity &%1%2%3;", {{"<i k='&%1%2%3;'>", 22}}},
        {"unknown entity &;", {{"<i k='&;'>", 16}, {"<v k='a' t='s'>&;</v>", 22}}},
        {"unknown entity &AMP;", {{"<i k='&AMP;' &", 19}}}};
    for (const auto& [message, faults] : contents) {
        for (const Fault& fault : faults) {
            QTest::newRow(QByteArray(fault.content).simplified().constData())
                << QByteArray("<xsdt>") + fault.content
                << QStringLiteral("%1 (line 1, column %2)")
                       .arg(QString::fromUtf8(message), QString::number(fault.column));
        }
    }
    for (const char* reference : {"#", "#x", "#X41", "#0", "#x0", "#-5", "# 5", "#5 ", "#x0x41",
                                  "#1114112", "#4294967361", "#x100000041", "#5a", "#xg"}) {
        const QByteArray tag = QByteArray("<i k='&") + reference + ";'>";
        QTest::newRow(reference) << "<xsdt>" + tag
                                 << QStringLiteral(
                                        "invalid character reference (line 1, column %1)")
                                        .arg(tag.size() + 6);
    }
}

void TestXsdtReader::saysWhatIsWrongAndWhere()
{
    QFETCH(const QByteArray, file);
    const auto document = documentFrom("<v k=\"a\" t=\"s\" v=\"x\"/>");
    QVERIFY(document->defaultLayout);
    QString error;
    QVERIFY(!document->parse(file, &error));
    QTEST(error, "message");
    QVERIFY(document->root.children.empty() && !document->defaultLayout);
    QVERIFY(document->head.isEmpty() && document->tail.isEmpty());
    QVERIFY(!document->parse(file));
}

void TestXsdtReader::readsHugeStrings()
{
    const QByteArray huge(50'000'000, 'x');
    const auto document = documentFrom("<v k=\"" + huge + "\" t=\"s\">" + huge + "</v>");
    QCOMPARE(document->root.children.front()->key.size(), huge.size());
    QCOMPARE(document->root.children.front()->value.size(), huge.size());
    QVERIFY(document->defaultLayout);
}

void TestXsdtReader::failsQuicklyOnUnfinishedInput()
{
    for (const char* part : {"<i k='", "<i k='a", "&", "<v k='' t='s'>", " ", "<i k=''>"}) {
        XsdtDocument document;
        QVERIFY(!document.parse("<xsdt><i k='" + QByteArray(part).repeated(1'000'000)));
        QVERIFY(!document.parse("<xsdt>" + QByteArray(part).repeated(1'000'000)));
    }
}

KSE_GUILESS_TEST_MAIN(TestXsdtReader)
#include "TestXsdtReader.moc"
