// SPDX-License-Identifier: MIT
#include "support/DocumentText.h"
#include "support/PlainWays.h"
#include "support/RandomTree.h"
#include "support/TestMain.h"
#include "support/TextRows.h"
#include "views/compare/CompareEngine.h"

using namespace Qt::StringLiterals;
using namespace kse;

class TestCompareEngine : public QObject
{
    Q_OBJECT

private slots:
    void listsWhatDiffers_data()
    {
        // Of both files the values, and of each difference state, path and both texts.
        addTextRows({"a:F=1.0 > a:F=1.0 > ",
                     "a:F=1.0 new:b=1 b:i=7 > old:b=1 b:u=7 a:F=1.00 > "
                     "0 a F:1.0 F:1.00, 1 new b:1 -, 0 b i:7 u:7, 2 old - b:1",
                     "a:i=1 a:i=2 a:i=3 > a:i=1 x:i=0 a:i=2 x:i=1 > "
                     "0 a i:1 i:2, 0 a i:3 i:2, 2 x - i:0, 2 x - i:1"});
    }
    void listsWhatDiffers()
    {
        QFETCH(QStringList, cells);
        QCOMPARE(differences(*documentOf(cells[0]), *documentOf(cells[1])), cells[2]);
    }

    void comparesPathsAsStrings()
    {
        const auto here =
            documentFrom(R"(<v k="a/b" t="i" v="1"/><i k=""><v k="c" t="i" v="2"/></i>)");
        const auto there =
            documentFrom(R"(<i k="a"><v k="b" t="i" v="1"/></i><v k="c" t="i" v="3"/><i k="d"/>)");
        QCOMPARE(differences(*here, *there), u"0 c i:2 i:3"_s);
    }

    void agreesWithThePlainWay()
    {
        const QStringList keys = u",a,b,c,/,a/b,/a,b/,a//c,A"_s.split(u',');
        QRandomGenerator random(1);
        for (int round = 0; round < 300; ++round) {
            XsdtDocument here;
            XsdtDocument there;
            growRandomTree(here.root, random, keys, 100);
            growRandomTree(there.root, random, keys, 100);
            QVERIFY(compareDocuments(here, there) == plainCompare(here, there));
        }
    }

    void staysQuickInADeepFile()
    {
        // A value at each level: to build, or to climb along, the path of each would take minutes.
        const int levels = 300'000;
        const QByteArray deep = deepFile(levels);
        QCOMPARE(differences(*documentFrom(deep + R"(<v k="top" t="i" v="1"/>)"),
                             *documentFrom(deep + R"(<v k="top" t="i" v="2"/>)")),
                 u"0 top i:1 i:2"_s);
    }

    void keepsBothEndsOfDeepPaths()
    {
        const int levels = 20'000; // the paths of all values are 2 GB
        const QByteArray deep = deepFile(levels);
        const auto here = documentFrom(deep);
        const auto there = documentFrom(QByteArray(deep).replace("v=\"1\"", "v=\"2\""));
        const QList<CompareEntry> entries = compareDocuments(*here, *there);
        QCOMPARE(entries.size(), levels);
        QCOMPARE(entries[900].path, entries[900].thisNode->path());
        const QString& path = entries.constLast().path;
        QCOMPARE(path.size(), u"level/level/level/…"_s.size() + 1000);
        QVERIFY(path.startsWith(u"level/level/level/…"_s));
        QVERIFY(path.endsWith(u"/level/level/value"_s));
        QCOMPARE(groupedPath(path).group, u"level/level"_s);
    }

    void groupsPaths_data()
    {
        addTextRows({"Global/Preferences/Process/MaxProcessors > Global/Preferences/Process > "
                     "MaxProcessors",
                     "Global/Preferences/Deep/er/still > Global/Preferences/Deep > er/still",
                     "Global/Preferences/Version > Global/Preferences > Version",
                     "ModuleData/A/B/C > ModuleData/A > B/C", "Tool/Option > Tool > Option",
                     "/Option >  > Option", "Option > (top level) > Option"});
    }
    void groupsPaths()
    {
        QFETCH(QStringList, cells);
        const GroupedPath parts = groupedPath(cells[0]);
        QCOMPARE(QStringList({parts.group, parts.name}), cells.mid(1));
    }

private:
    /// A document of values written "key:t=text" with blanks between.
    static std::unique_ptr<XsdtDocument> documentOf(const QString& values)
    {
        static const QRegularExpression value(u"(\\w+):(\\w)=(\\S+) ?"_s);
        return documentFrom(
            QString(values).replace(value, uR"(<v k="\1" t="\2" v="\3"/>)"_s).toUtf8());
    }

    static QString differences(const XsdtDocument& here, const XsdtDocument& there)
    {
        const auto side = [](const XsdtNode* node) {
            return node ? node->typeCode + u":"_s + node->value : u"-"_s;
        };
        QStringList texts;
        for (const CompareEntry& entry : compareDocuments(here, there)) {
            texts.append(QString::number(static_cast<int>(entry.state)) + u' ' + entry.path + u' ' +
                         side(entry.thisNode) + u' ' + side(entry.otherNode));
        }
        return texts.join(u", "_s);
    }
};

KSE_GUILESS_TEST_MAIN(TestCompareEngine)
#include "TestCompareEngine.moc"
