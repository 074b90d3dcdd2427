// SPDX-License-Identifier: MIT
#include "schema/ModuleCatalog.h"
#include "support/SettingsTree.h"
#include "support/TestMain.h"

class TestModuleCatalog : public QObject
{
    Q_OBJECT

private slots:
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

    void searchesNames()
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

    void listsAndCountsTheValues()
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
};

KSE_GUILESS_TEST_MAIN(TestModuleCatalog)
#include "TestModuleCatalog.moc"
