// SPDX-License-Identifier: MIT
#include "schema/DeletePolicy.h"
#include "schema/ModuleCatalog.h"
#include "schema/PrettyName.h"
#include "schema/SettingsSchema.h"
#include "support/SettingsTree.h"
#include "support/TestMain.h"

namespace {

/// All that is known of a variable of type `code`: its label, its kind as a number, its flags,
/// range and choices, and its description.
QString described(const SettingsSchema& schema, const QString& path, QChar code)
{
    XsdtDocument document;
    const VariableInfo info = schema.describe(*addNode(document, path, code));
    QString line = info.label + u'|' + QString::number(static_cast<int>(info.kind));
    line += info.documented ? u" documented"_s : QString();
    line += info.readOnly ? u" readOnly"_s : QString();
    line += info.hasRange ? u" %1..%2"_s.arg(info.min).arg(info.max) : QString();
    for (const VariableChoice& choice : info.choices) {
        line += u' ' + QString::number(choice.value) + u'=' + choice.text;
    }
    return line + u'|' + info.description;
}

} // namespace

/// What is known of nodes: tables, delete policy and modules.
class TestSchema : public QObject
{
    Q_OBJECT

private slots:
    void init()
    {
        const QByteArray overlay = builtInTable("overlay.json");
        QVERIFY(m_schema.load(builtInTable("globals.json"), overlay) && m_policy.load(overlay));
    }

    void describesByTheBuiltInTables()
    {
        compareRows(
            {"i > Global/ColorManagement/ProofingIntent > Proofing intent|1 documented "
             "0=Perceptual 1=Saturation 2=Relative colorimetric 3=Absolute colorimetric|",
             "s > Global/Preferences/Application/CoreDirectory > Core directory|7 documented "
             "readOnly|Folder that holds the core executable. Read-only.",
             "F > Global/Preferences/MainWindow/ActiveWindowOpacity > Active window opacity|4 "
             "documented 0..1|Window opacity in the [0,1] range.",
             "F > Global/RGBWorkingSpace/Gamma > Gamma|4 0.1..10|",
             "u > X/Foreground23 > Foreground 23|8|", "s > X/Foreground2 > Foreground 2|5|",
             "i > X/Color > Color|2|", "t > X/WallpaperFile01 > Wallpaper file 01|6|",
             "s > X/SomeFiles > Some files|5|", "s > X/Path > Path|6|",
             "u > Preferences/ScriptEditor/Count > Count|3|"},
            [this](const QStringList& cells) {
                return described(m_schema, cells[1], cells[0][0]);
            });
    }

    /// What refines a variable that is documented with a range, its type, and what comes of it.
    void mergesTheTables()
    {
        const auto merged = [](const QStringList& cells) {
            const QByteArray globals = R"({"variables":{"A/Key":{"readOnly":1,"description":
            " See the A/B global variable. In [ -5, 2.5 ], not [7,8]. See the pcl::X namespace"}}})";
            SettingsSchema schema;
            return schema.load(globals, R"({"variables":{"A/Key":)" + cells[0].toUtf8() + "}}")
                       ? described(schema, u"Global/A/Key"_s, cells[1][0])
                       : u"not loaded"_s;
        };
        compareRows(
            {R"({} > u > Key|3 documented -5..2.5|In [ -5, 2.5 ], not [7,8].)",
             R"({"max":3,"description":"See [7,8] "} > i > Key|2 documented -5..3|See [7,8] )",
             R"({"max":3,"description":""} > s > Key|5 documented -1.79769e+308..3|)",
             R"({"min":"1","label":1,"description":[]} > s > |5 documented 0..1.79769e+308|)",
             R"({"choices":[[9223372036854775808,"a"],[-1e300,"b"],[-1.9,"c"],7],)"
             R"("label":"%1","description":""} > i > %1|1 documented -5..2.5 )"
             R"(9223372036854775807=a -9223372036854775808=b -1=c 0=|)",
             R"({"choices":[[1,"a"]],"description":""} > b > Key|0 documented|)"},
            merged);
    }

    void keepsNothingOfBadTables()
    {
        QString error;
        QVERIFY(!m_schema.load("[1]", "{", &error) && error.startsWith("globals.json: "_L1));
        QVERIFY(!m_schema.load(builtInTable("globals.json"), QByteArray(100'000, '['), &error));
        QVERIFY2(error.startsWith("overlay.json: "_L1), qPrintable(error));
        QCOMPARE(described(m_schema, u"Process/MaxProcessors"_s, u'i'), u"Max processors|2|"_s);
    }

    void makesLabels()
    {
        compareRows({"sRGBGamma > S RGB gamma", "IOPort > IO port", "ProxyURLs > Proxy URLs",
                     "OpenURLsWithInternalBrowser > Open URLs with internal browser",
                     "Default24BitLUT > Default 24 bit LUT",
                     "CIP_ITRSDataFile > CIP ITRS data file", "__a_1 > A 1", " > "},
                    [](const QStringList& cells) { return prettyName(cells[0]); });
    }

    void showsPagesOfTheDocument()
    {
        XsdtDocument document;
        addNodes(document, u"Global/ColorManagement; Global/Preferences/ProcessInterface; "
                           "Global/Preferences/NewGroup; Global/Preferences/GUI; "
                           "Global/Preferences/Process; Global/Preferences/Lone:s=x; "
                           "Global/Preferences/ScriptEditor/Cache/X"_s);
        QString pages;
        for (const PageSpec& page : m_schema.decoratedPages(document)) {
            pages += page.title + u'=' + page.nodes.constFirst()->path().section(u'/', 1) + u' ';
        }
        QCOMPARE(pages, u"Processes=Preferences/Process Color Management=ColorManagement "
                        "Script Editor=Preferences/ScriptEditor "
                        "Identifiers and GUI=Preferences/GUI New group=Preferences/NewGroup "_s);
        const XsdtNode* cache = document.root.findByPath(u"Global/Preferences/ScriptEditor/Cache");
        QVERIFY(m_schema.isHidden(*cache) && !m_schema.isHidden(*cache->children.front()));
    }

    /// A group or value, its level and the lists that hold it.
    void judgesByTheBuiltInTable()
    {
        QCOMPARE(m_policy.cleanupGroups().size(), 6);
        const auto verdict = [this](const QStringList& cells) {
            XsdtDocument document;
            const XsdtNode* node = addNode(document, cells[1], cells[0] == u'G' ? QChar() : u's');
            QString text = QString::number(static_cast<int>(m_policy.decide(node).level));
            text += m_policy.isCompareNoise(node) ? u" noise"_s : QString();
            text += m_policy.isCompareNoCopy(node) ? u" noCopy"_s : QString();
            return text + (m_policy.isEditLocked(node) ? u" locked"_s : QString());
        };
        compareRows({"G > ModuleData/Foo > 1", "G > ModuleData > 0", "V > Foo/Bar > 1",
                     "V > Global/Preferences/P/X > 0", "V > Global/FeaturedScripts > 0",
                     "G > Global/UpdateManager/Repositories/R > 1 noise",
                     "G > ModuleData/M/Interfaces/P/Geometry > 2 noise",
                     "V > MainWindow/Layout > 0 noise noCopy",
                     "V > Modules/M/Path > 0 noise noCopy locked"},
                    verdict);
        QVERIFY(m_policy.isEditLocked(nullptr) && m_policy.isCompareNoCopy(nullptr));
    }

    /// The rules in file order, the keys of a node with | between them, and the rule that decides.
    void choosesOneOfSeveralRules()
    {
        const auto chosen = [](const QStringList& cells) {
            QStringList rules;
            for (const QString& path : cells[0].split(u' ')) {
                rules += QLatin1String(R"({"path":"%1","level":"safe","reason":"%1"})").arg(path);
            }
            const QLatin1String json(R"({"policy":{"defaultReason":5,"delete":[%1]}})");
            DeletePolicy policy;
            XsdtDocument document;
            return policy.load(json.arg(rules.join(u',')).toUtf8())
                       ? policy.decide(addNode(document, cells[1].split(u'|'))).reason
                       : u"not loaded"_s;
        };
        compareRows({"A/** A/* > A|B > A/*", "A/* A/** > A|B > A/*", "A/* */* > A|B > A/*",
                     "A/** */B/** > A|B|C > */B/**", "*/B A/* > A|B > A/*",
                     "A/*/C A/** > A|B|C > A/*/C", "X/** > X > ", "X * > X|a > ", "** / > X|a > **",
                     "** > |/ > ", "foo Foo Foo* > Foob > ", "A/**/B > A|x|B > ",
                     "A/*/b > A||a/b > A/*/b"},
                    chosen);
    }

    void deletesNothingByABadTable()
    {
        QString error;
        QVERIFY(!m_policy.load(
            R"({"policy":{"delete":[{"path":"**","level":"safe"},{"level":"Safe"}]}})", &error));
        QVERIFY2(error.endsWith(u" 'Safe'"_s), qPrintable(error));
        XsdtDocument document;
        const XsdtNode* node = addNode(document, u"LastVersion"_s);
        QCOMPARE(m_policy.decide(node).level, DeleteLevel::Never);
        QVERIFY(m_policy.decide(node).reason.contains("not on the list"_L1));
        QVERIFY(!m_policy.isEditLocked(node) && m_policy.cleanupGroups().isEmpty());
        QVERIFY(!m_policy.load("{"));
    }

    void findsNodesInFileOrder()
    {
        DeletePolicy policy;
        QVERIFY(policy.load(R"({"policy":{"delete":[{"path":"A/*","level":"warn"},
            {"path":"*/*/*/C","level":"warn"},{"path":"*/*/C","level":"warn"}]}})"));
        XsdtDocument document;
        addNodes(document, u"A/B; A/B/C; X/Y/C; X/Y/C; X/Y/Z/C"_s);
        QString paths;
        for (const XsdtNode* node : policy.warnCandidates(document) +
                                        policy.matchPattern(document, u"/*//*/C") +
                                        policy.matchPattern(document, u"X/**")) {
            paths += node->path() + u' ';
        }
        QCOMPARE(paths, u"A/B X/Y/C X/Y/C A/B/C X/Y/C X/Y/C "_s);
        const XsdtNode& b = *document.root.findByPath(u"A/B");
        QCOMPARE(policy.decide(&b).reason, policy.decide(&document.root).reason);
        QCOMPARE(policy.decide(&document.root).level, DeleteLevel::Never);
    }

    void namesModulesByTheirFiles()
    {
        compareRows(
            {"C:/Program Files/PixInsight/bin/Foo-pxm.dll > Foo", "@pxi_bin_dir/Foo-pxm.so > Foo",
             "C:\\bin/x\\Foo-pxm.dylib > Foo", "a-pxm.so-pxm.so > a-pxm.so", "Foo-pxm.so\n > Foo",
             "Foo-pxm.DLL > ", "Foo-pxm.dll.bak > ", "bin/-pxm.dll > ", "Foo-pxm-dll > "},
            [](const QStringList& cells) { return ModuleCatalog::moduleNameFromPath(cells[0]); });
    }

    /// Nodes, then the registered names, those with data, and what is unused.
    void findsWhatIsUnused()
    {
        const auto found = [](const QStringList& cells) {
            XsdtDocument document;
            addNodes(document, cells[0]);
            return ModuleCatalog::registeredModules(document).join(u' ') + u" | "_s +
                   ModuleCatalog::modulesWithData(document).join(u' ') + u" | "_s +
                   namesAndPaths(ModuleCatalog::unusedModules(document), &ModuleInfo::name);
        };
        compareRows(
            {"ModuleData/B; ModuleData/0; ModuleData/V:s=x; a; 0; T:s=x; Global; MainWindow; "
             "Modules; ModuleDataAccess; ScriptData; LastVersion; PixInsight; "
             "CentralWidgetClients; CommandHistory; DontShowAgain; ExtensibleWidgets; "
             "FileExplorer; FloatingInstanceInfoViewer; FloatingSourceEditor; "
             "ThreadPerformanceOptimization >  | 0 a B | 0 ModuleData/0 0; a a; B ModuleData/B",
             "Modules:s=x; Modules; Modules/A:s=A-pxm.so; ModuleData:s=x; ModuleData/M; A >  | A | "
             "A A",
             "Modules/1:s=b/Foo-pxm.so; Modules/2:s=c/Foo-pxm.so; Modules/3:s=Bar.so; "
             "Modules/4/x:s=Bar-pxm.so; ModuleData/0; ModuleDataAccess/foo; Foo; ModuleData/Bar; "
             "ModuleData/Bar > Foo | Bar Foo foo | Bar ModuleData/Bar ModuleData/Bar; foo "
             "ModuleDataAccess/foo",
             "M/Interfaces/T; ModuleData/M; ModuleData/M/Interfaces/P:s=x; "
             "ModuleData/M/Interfaces/T; ModuleData/M/Interfaces; ModuleDataAccess/M/Interfaces/X; "
             "Global/Preferences/ProcessInterface/T; Global/Preferences/ProcessInterface/P:s=x; "
             "Global/Preferences/ProcessInterface/P; Global/Preferences/ProcessInterface/M; "
             "Global/Statistics/Process/T; Global/Statistics/Process/X; "
             "Global/Statistics/Process/P >  | M | M ModuleData/M ModuleDataAccess/M M "
             "Global/Preferences/ProcessInterface/M Global/Statistics/Process/P "
             "Global/Preferences/ProcessInterface/T Global/Statistics/Process/T",
             "ModuleData/Global/Interfaces/P; Global/Interfaces/Q; Global/Statistics/Process/P; "
             "Global/Statistics/Process/Q >  | Global | Global ModuleData/Global "
             "Global/Statistics/Process/P"},
            found);
    }

    void searchesModules()
    {
        const auto found = [](const QStringList& cells) {
            XsdtDocument document;
            addNodes(document, u"Modules/1:s=b/Foo-pxm.so; ModuleData/FooBar; foo; foo:s=x"_s);
            bool isExact = false;
            const auto modules = ModuleCatalog::searchModules(document, cells[0], &isExact);
            return namesAndPaths(modules, &ModuleInfo::name) + (isExact ? u" exact"_s : u""_s);
        };
        compareRows({" foo > Foo; foo foo exact", "FOOB > FooBar ModuleData/FooBar",
                     "oo > Foo; foo foo; FooBar ModuleData/FooBar", "  > ", "x > "},
                    found);
    }

    void listsAndCountsTheValuesOfModules()
    {
        XsdtDocument document;
        addNodes(document, u"Modules/1:s=Foo-pxm.so; Modules/2:s=Foo-pxm.so; Foo/d:s=x; "
                           "ModuleData/Foo/a/b:s=x deleted; ModuleData/Foo/c:s=x"_s);
        const ModuleInfo foo = ModuleCatalog::moduleInfo(document, u"Foo"_s);
        QString text = QString::number(ModuleCatalog::moduleValueCount(foo)) + u' ' +
                       QString::number(ModuleCatalog::moduleDataSize(foo));
        for (const XsdtNode* leaf : ModuleCatalog::moduleLeaves(foo)) {
            text += u' ' + leaf->path();
        }
        QCOMPARE(text, u"4 109 Modules/1 ModuleData/Foo/a/b ModuleData/Foo/c Foo/d"_s);
    }

private:
    SettingsSchema m_schema;
    DeletePolicy m_policy;
};

KSE_GUILESS_TEST_MAIN(TestSchema)
#include "TestSchema.moc"
