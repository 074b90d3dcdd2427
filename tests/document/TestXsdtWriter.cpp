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
    void rewritesInCompactLayout_data()
    {
        QTest::addColumn<QByteArray>("file");
        QTest::addColumn<QByteArray>("written");
        const auto row = [](const char* name, const QByteArray& file, const QByteArray& written) {
            QTest::newRow(name) << file << written;
        };
        for (const char* file :
             {"<xsdt></xsdt>",
              "<?xml?>\r\n<!-- \xC3\xA4 ' -->\n<xsdt  a='1' ><i k=\"a\"></i></xsdt>\r\n ",
              "<xsdt><i k=\"a\"><i k=\"b\"/></i><v k=\"\" t=\"&lt;\" v=\"\"/><i "
              "k=\"d\"></i></xsdt>",
              "<xsdt><v k=\"c\" t=\"s\"></v><v k=\"c\" t=\"x\">y</v></xsdt>",
              "<xsdt><v k=\"&quot;&amp;&apos;&lt;&gt;\" t=\"s\" v=\"\r\n\t\x01\"/></xsdt>",
              "<xsdt><v k=\"\xC3\xA4\xE2\x82\xAC\" t=\"s\" v=\"\xF0\x9F\x98\x80z\"/></xsdt>"}) {
            row(file, file, file);
        }
        const QByteArray huge = fileBytes("<i k=\"" + QByteArray(5'000'000, 'x') + "\"/>");
        row("huge", huge, huge);
        row("byte order mark", "\xEF\xBB\xBF" + fileBytes(""), fileBytes(""));
        row("space in the end tag", "<xsdt></xsdt >", "<xsdt></xsdt>");
        // Of content: what is read and what is written.
        const std::pair<const char*, const char*> changed[] = {
            {"\n  <i k=\"a\">\n  </i>\n", "<i k=\"a\"></i>"},
            {"<v t=\"s\" k=\"a\" v=\"x\"/>", "<v k=\"a\" t=\"s\" v=\"x\"/>"},
            {"\r\n <v\tk = 'a'\nt= 's' v ='x' />\xC2\xA0<i k='b'></i >",
             "<v k=\"a\" t=\"s\" v=\"x\"/><i k=\"b\"></i>"},
            {"<v k='a' k='b' t='u' t='s' v='1' v='2\"'/>", "<v k=\"b\" t=\"s\" v=\"2&quot;\"/>"},
            {"<v k='&#65;&#x41;' t='s' v='&#x10fffF;&#0000000065;'/>",
             "<v k=\"AA\" t=\"s\" v=\"\xF4\x8F\xBF\xBF\x41\"/>"},
            {"<v k=\"a'\" t=\"s\">></v>", "<v k=\"a&apos;\" t=\"s\">&gt;</v>"},
            {"<v k=\"a\" t=\"s\" v=\"\xFF\"/>", "<v k=\"a\" t=\"s\" v=\"\xEF\xBF\xBD\"/>"},
            {"<v k=\"&#xDC00;\" t=\"s\" v=\"&#xD800;a\"/>", "<v k=\"?\" t=\"s\" v=\"?a\"/>"}};
        for (const auto& [read, written] : changed) {
            row(read, fileBytes(read), fileBytes(written));
        }
    }

    void rewritesInCompactLayout()
    {
        QFETCH(const QByteArray, file);
        QFETCH(const QByteArray, written);
        XsdtDocument document;
        QString error;
        QVERIFY2(document.parse(file, &error), qPrintable(error));
        QCOMPARE(document.serialize(), written);
        QCOMPARE(document.defaultLayout, written == file);
        qint64 size = document.head.toUtf8().size() + 7 + document.tail.size();
        for (const auto& child : document.root.children) {
            size += child->serializedSize();
        }
        QCOMPARE(size, written.size());
    }

    void comparesWholeFiles()
    {
        const QByteArray file = fileBytes("<v k=\"a\" t=\"s\" v=\"&lt;\xC3\xA4\"/>") + "\n";
        XsdtDocument document;
        QVERIFY(document.parse(file) && !hasCanonicalLayout(document, file + " "));
        for (qsizetype at = 0; at < file.size(); ++at) {
            QByteArray changed = file;
            changed[at] = static_cast<char>(changed[at] ^ 0x80);
            QVERIFY(!hasCanonicalLayout(document, changed));
            QVERIFY(!hasCanonicalLayout(document, file.left(at)));
        }
    }

    void writesPendingChanges()
    {
        const auto document = documentFrom("<i k=\"a\"><v k=\"b\" t=\"s\">x</v><v k=\"c\" t=\"s\" "
                                           "v=\"x\"/></i><i k=\"d\"/>");
        XsdtNode& group = *document->root.children[0];
        group.children[0]->value = QString();
        group.children[1]->value = QStringLiteral("a<b");
        const QByteArray edited = "<v k=\"b\" t=\"s\"></v><v k=\"c\" t=\"s\" v=\"a&lt;b\"/>";
        QCOMPARE(document->serialize(), fileBytes("<i k=\"a\">" + edited + "</i><i k=\"d\"/>"));
        const qint64 size = group.serializedSize();
        group.children[0]->markedForDeletion = group.children[1]->markedForDeletion = true;
        QCOMPARE(document->serialize(), fileBytes("<i k=\"a\"></i><i k=\"d\"/>"));
        QCOMPARE(group.serializedSize(), size);
        QByteArray whole("before ");
        writeNode(group, whole, false);
        QCOMPARE(whole, "before <i k=\"a\">" + edited + "</i>");
        group.markedForDeletion = true;
        QCOMPARE(document->serialize(), fileBytes("<i k=\"d\"/>"));
    }
};

KSE_GUILESS_TEST_MAIN(TestXsdtWriter)
#include "TestXsdtWriter.moc"
