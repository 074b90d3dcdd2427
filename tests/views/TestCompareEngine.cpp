// SPDX-License-Identifier: MIT
#include "support/DocumentText.h"
#include "support/PlainWays.h"
#include "support/RandomTree.h"
#include "support/TestMain.h"
#include "views/CompareEngine.h"

#include <QtTest>

using namespace kse;

namespace {

/// For each entry: state, path, and what each file has there, "-" for nothing.
QString entryLines(const QList<CompareEntry>& entries)
{
    const auto side = [](const XsdtNode* node) {
        return node ? node->typeCode + QStringLiteral(":") + node->value : QStringLiteral("-");
    };
    QStringList lines;
    for (const CompareEntry& entry : entries) {
        lines.append(QStringLiteral("%1 %2 %3 %4")
                         .arg(static_cast<int>(entry.state))
                         .arg(entry.path, side(entry.thisNode), side(entry.otherNode)));
    }
    return lines.join(QLatin1String(", "));
}

bool areSame(const CompareEntry& a, const CompareEntry& b)
{
    return a.path == b.path && a.state == b.state && a.thisNode == b.thisNode &&
           a.otherNode == b.otherNode;
}

} // namespace

class TestCompareEngine : public QObject
{
    Q_OBJECT

private slots:
    void listsWhatDiffers_data()
    {
        QTest::addColumn<QByteArray>("here");
        QTest::addColumn<QByteArray>("there");
        QTest::addColumn<QString>("lines");
        const QByteArray one = R"(<v k="a" t="F" v="1.0"/>)";
        QTest::newRow("equal; groups don't count") << one << one + R"(<i k="g"/>)"
                                                   << "";
        QTest::newRow("text, type, and what only one has, the other file's last")
            << QByteArray(R"(<v k="a" t="F" v="1.0"/><v k="new" t="b" v="true"/>)"
                          R"(<v k="b" t="i" v="7"/>)")
            << QByteArray(R"(<v k="old" t="b" v="true"/><v k="b" t="u" v="7"/>)"
                          R"(<v k="a" t="F" v="1.00"/>)")
            << "0 a F:1.0 F:1.00, 1 new b:true -, 0 b i:7 u:7, 2 old - b:true";
        QTest::newRow("duplicates: each here against the last there")
            << QByteArray(R"(<v k="a" t="i" v="1"/><v k="a" t="i" v="2"/><v k="a" t="i" v="3"/>)")
            << QByteArray(R"(<v k="a" t="i" v="1"/><v k="x" t="i" v="0"/><v k="a" t="i" v="2"/>)"
                          R"(<v k="x" t="i" v="1"/>)")
            << "0 a i:1 i:2, 0 a i:3 i:2, 2 x - i:0, 2 x - i:1";
        QTest::newRow("one path of other keys")
            << QByteArray(R"(<v k="a/b" t="i" v="1"/><i k=""><v k="c" t="i" v="2"/></i>)")
            << QByteArray(R"(<i k="a"><v k="b" t="i" v="1"/></i><v k="c" t="i" v="3"/>)")
            << "0 c i:2 i:3";
    }
    void listsWhatDiffers()
    {
        QFETCH(QByteArray, here);
        QFETCH(QByteArray, there);
        QTEST(entryLines(compareDocuments(*documentFrom(here), *documentFrom(there))), "lines");
    }

    void agreesWithThePlainWay()
    {
        const QStringList keys = QStringLiteral(",a,b,c,/,a/b,/a,b/,a//c,A").split(u',');
        QRandomGenerator random(1);
        for (int round = 0; round < 300; ++round) {
            XsdtDocument here;
            XsdtDocument there;
            growRandomTree(here.root, random, keys, 100);
            growRandomTree(there.root, random, keys, 100);
            const QList<CompareEntry> quick = compareDocuments(here, there);
            const QList<CompareEntry> plain = plainCompare(here, there);
            QVERIFY(std::equal(quick.begin(), quick.end(), plain.begin(), plain.end(), areSame));
        }
    }

    void staysQuickInADeepFile()
    {
        // A value at each level: to build, or to climb along, the path of each would take minutes.
        XsdtDocument here;
        XsdtDocument there;
        for (XsdtDocument* document : {&here, &there}) {
            addLevels(document->root, 300'000);
        }
        XsdtNode* top = here.root.children.back().get();
        top->value = QStringLiteral("other");
        QCOMPARE(entryLines(compareDocuments(here, there)), QStringLiteral("0 top i:other i:"));
    }

    void groupsPaths_data()
    {
        QTest::addColumn<QString>("group");
        QTest::addColumn<QString>("name");
        QTest::newRow("Global/Preferences/Process/MaxProcessors") << "Global/Preferences/Process"
                                                                  << "MaxProcessors";
        QTest::newRow("Global/Preferences/Deep/er/still") << "Global/Preferences/Deep"
                                                          << "er/still";
        QTest::newRow("Global/Preferences/Version") << "Global/Preferences"
                                                    << "Version";
        QTest::newRow("ModuleData/A/B/C") << "ModuleData/A"
                                          << "B/C";
        QTest::newRow("Tool/Option") << "Tool"
                                     << "Option";
        QTest::newRow("/Option") << ""
                                 << "Option";
        QTest::newRow("Option") << "(top level)"
                                << "Option";
    }
    void groupsPaths()
    {
        const GroupedPath parts = groupedPath(QString::fromUtf8(QTest::currentDataTag()));
        QTEST(parts.group, "group");
        QTEST(parts.name, "name");
    }

private:
    static void addValue(XsdtNode& group, const QString& key)
    {
        XsdtNode* value = group.append(std::make_unique<XsdtNode>());
        value->kind = XsdtNode::Kind::Value;
        value->key = key;
        value->typeCode = u'i';
    }

    static void addLevels(XsdtNode& root, int levels)
    {
        XsdtNode* group = &root;
        for (int i = 0; i < levels; ++i) {
            group = group->append(std::make_unique<XsdtNode>());
            group->key = QStringLiteral("level");
            addValue(*group, QStringLiteral("value"));
        }
        addValue(root, QStringLiteral("top"));
    }
};

KSE_GUILESS_TEST_MAIN(TestCompareEngine)
#include "TestCompareEngine.moc"
