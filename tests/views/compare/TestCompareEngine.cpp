// SPDX-License-Identifier: MIT
#include "support/DocumentText.h"
#include "support/SettingsTree.h"
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
        // Of both files the nodes, and of each difference state, path and both texts.
        addTextRows({"a:F=1.0 > a:F=1.0; b > ",
                     "a:F=1.0; new:b=1; b:i=7 > old:b=1; b:u=7; a:F=1.00 > "
                     "0 a F:1.0 F:1.00, 1 new b:1 -, 0 b i:7 u:7, 2 old - b:1",
                     "a:i=1; a:i=2; a:i=3 > a:i=1; x:i=0; a:i=2; x:i=1 > "
                     "0 a i:1 i:2, 0 a i:3 i:2, 2 x - i:0, 2 x - i:1",
                     "g/a:i=1 deleted; h deleted; h/b:i=1; c:i=1 > g/a:i=2; h/b:i=2; c:i=2 deleted "
                     "> 1 c i:1 -, 2 g/a - i:2, 2 h/b - i:2"});
    }
    void listsWhatDiffers()
    {
        QFETCH(QStringList, cells);
        XsdtDocument here;
        XsdtDocument there;
        addNodes(here, cells[0]);
        addNodes(there, cells[1]);
        QCOMPARE(differences(here, there), cells[2]);
    }

    void comparesPathsAsStrings()
    {
        const auto here = documentFrom(R"(<v k="a/b" t="i" v="1"/><v k="/e" t="i" v="1"/>)"
                                       R"(<i k=""><v k="c" t="i" v="2"/></i>)");
        const auto there =
            documentFrom(R"(<i k="a"><v k="b" t="i" v="1"/><i k=""><v k="d" t="i" v="1"/></i></i>)"
                         R"(<i k=""><i k=""><v k="e" t="i" v="1"/></i></i><v k="c" t="i" v="3"/>)");
        QCOMPARE(differences(*here, *there), u"1 /e i:1 -, 0 c i:2 i:3, 2 a//d - i:1, 2 e - i:1"_s);
    }

    void keepsBothEndsOfDeepPaths()
    {
        const int levels = 100'000; // the paths of all values are 60 GB
        const QByteArray deep = deepFile(levels);
        const auto here = documentFrom(deep);
        const auto there = documentFrom(QByteArray(deep).replace("v=\"1\"", "v=\"2\""));
        const QList<CompareEntry> entries = compareDocuments(*here, *there);
        QCOMPARE(entries.size(), levels);
        QCOMPARE(entries[900].path, entries[900].thisNode->path());
        const QString& path = entries.constLast().path;
        QVERIFY(path.startsWith(u"level/level/level/…") && path.size() < 1100);
        QVERIFY(path.endsWith(u"/level/level/value"));
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
