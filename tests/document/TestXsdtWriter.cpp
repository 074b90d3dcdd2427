// SPDX-License-Identifier: MIT
#include "document/XsdtDocument.h"
#include "document/XsdtWriter.h"
#include "support/DocumentText.h"
#include "support/TestMain.h"

#include <QTest>

using namespace kse;

class TestXsdtWriter : public QObject
{
    Q_OBJECT

private slots:
    void rewritesInCompactLayout_data();
    void rewritesInCompactLayout();
    void comparesWholeFiles();
    void writesEditsInTheFormOfTheFile();
    void leavesMarkedNodesOut();
};

void TestXsdtWriter::rewritesInCompactLayout_data()
{
    QTest::addColumn<QByteArray>("file");
    QTest::addColumn<QByteArray>("written");

    const char* const same[] = {
        "<xsdt></xsdt>",
        "<?xml?>\r\n<!-- \xC3\xA4 ' -->\n<xsdt  a='1' ><i k=\"a\"></i></xsdt>\r\n ",
        "<xsdt><i k=\"a\"><i k=\"b\"/></i><v k=\"\" t=\"&lt;\" v=\"\"/><i k=\"d\"></i></xsdt>",
        "<xsdt><v k=\"c\" t=\"s\"></v><v k=\"c\" t=\"x\">y</v></xsdt>",
        "<xsdt><v k=\"&quot;&amp;&apos;&lt;&gt;\" t=\"s\" v=\"\r\n\t\x01\"/></xsdt>",
        "<xsdt><v k=\"\xC3\xA4\xE2\x82\xAC\" t=\"s\" v=\"\xF0\x9F\x98\x80z\"/></xsdt>"};
    for (const char* file : same) {
        QTest::newRow(file) << QByteArray(file) << QByteArray(file);
    }
    // Of content: what is read and what is written.
    const std::pair<const char*, const char*> changed[] = {
        {"\n  <i k=\"a\">\n  </i>\n", "<i k=\"a\"></i>"},
        {"<v t=\"s\" k=\"a\" v=\"x\"/>", "<v k=\"a\" t=\"s\" v=\"x\"/>"},
        {"\r\n <v\tk = 'a'\nt= 's' v ='x' />\xC2\xA0<i k='b'></i >",
         "<v k=\"a\" t=\"s\" v=\"x\"/><i k=\"b\"></i>"},
        {"<v k='a' k='b' t='u' t='s' v='1' v='2'/>", "<v k=\"b\" t=\"s\" v=\"2\"/>"},
        {"<v k='&#65;&#x41;' t='s' v='&#x1f600;&#0000000065;'/>",
         "<v k=\"AA\" t=\"s\" v=\"\xF0\x9F\x98\x80\x41\"/>"},
        {"<v k=\"a'\" t=\"s\">></v>", "<v k=\"a&apos;\" t=\"s\">&gt;</v>"},
        {"<v k=\"a\" t=\"s\" v=\"\xFF\"/>", "<v k=\"a\" t=\"s\" v=\"\xEF\xBF\xBD\"/>"},
        {"<v k=\"&#xDC00;\" t=\"s\" v=\"&#xD800;a\"/>", "<v k=\"?\" t=\"s\" v=\"?a\"/>"}};
    for (const auto& [read, written] : changed) {
        QTest::newRow(read) << fileBytes(read) << fileBytes(written);
    }
    QTest::newRow("byte order mark") << "\xEF\xBB\xBF" + fileBytes("") << fileBytes("");
    QTest::newRow("space in the end tag")
        << QByteArray("<xsdt></xsdt >") << QByteArray("<xsdt></xsdt>");
}

void TestXsdtWriter::rewritesInCompactLayout()
{
    QFETCH(const QByteArray, file);
    QFETCH(const QByteArray, written);
    XsdtDocument document;
    QString error;
    QVERIFY2(document.parse(file, &error), qPrintable(error));
    QCOMPARE(document.serialize(), written);
    QCOMPARE(document.defaultLayout, written == file);
    QByteArray nodes;
    qint64 size = 0;
    for (const auto& child : document.root.children) {
        writeNode(*child, nodes, true);
        size += child->serializedSize();
    }
    QCOMPARE(size, nodes.size());
    QCOMPARE(document.head.toUtf8() + nodes + "</xsdt>" + document.tail.toUtf8(),
             document.serialize());
}

void TestXsdtWriter::comparesWholeFiles()
{
    const QByteArray file = fileBytes("<v k=\"a\" t=\"s\" v=\"&lt;\xC3\xA4\"/>") + "\n";
    XsdtDocument document;
    QVERIFY(document.parse(file));
    QVERIFY(hasCanonicalLayout(document, file));
    QVERIFY(!hasCanonicalLayout(document, file + " "));
    for (qsizetype at = 0; at < file.size(); ++at) {
        QVERIFY(!hasCanonicalLayout(document, file.left(at)));
        QByteArray changed = file;
        changed[at] = static_cast<char>(changed[at] ^ 0x80);
        QVERIFY2(!hasCanonicalLayout(document, changed), qPrintable(QString::number(at)));
    }
}

void TestXsdtWriter::writesEditsInTheFormOfTheFile()
{
    const auto document = documentFrom("<v k=\"a\" t=\"s\">x</v><v k=\"b\" t=\"s\" v=\"x\"/>");
    const auto contentWith = [&](const QString& value) {
        document->root.children[0]->value = value;
        document->root.children[1]->value = value;
        return document->serialize();
    };
    QCOMPARE(contentWith(QString()),
             fileBytes("<v k=\"a\" t=\"s\"></v><v k=\"b\" t=\"s\" v=\"\"/>"));
    QCOMPARE(contentWith(QStringLiteral("a<b")),
             fileBytes("<v k=\"a\" t=\"s\">a&lt;b</v><v k=\"b\" t=\"s\" v=\"a&lt;b\"/>"));
}

void TestXsdtWriter::leavesMarkedNodesOut()
{
    const auto document = documentFrom("<i k=\"a\"><v k=\"b\" t=\"s\" v=\"1\"/></i><i k=\"c\"/>");
    XsdtNode& group = *document->root.children.front();
    const qint64 size = group.serializedSize();
    group.children.front()->markedForDeletion = true;
    QCOMPARE(document->serialize(), fileBytes("<i k=\"a\"></i><i k=\"c\"/>"));
    QCOMPARE(group.serializedSize(), size);
    QByteArray whole("before ");
    writeNode(group, whole, false);
    QCOMPARE(whole, QByteArray("before <i k=\"a\"><v k=\"b\" t=\"s\" v=\"1\"/></i>"));
    document->commitEdits();
    QCOMPARE(document->serialize(), fileBytes("<i k=\"a\"></i><i k=\"c\"/>"));
    document->root.children.front()->markedForDeletion = true;
    QCOMPARE(document->serialize(), fileBytes("<i k=\"c\"/>"));
}

KSE_GUILESS_TEST_MAIN(TestXsdtWriter)
#include "TestXsdtWriter.moc"
