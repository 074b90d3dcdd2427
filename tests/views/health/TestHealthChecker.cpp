// SPDX-License-Identifier: MIT
#include "views/health/HealthChecker.h"

#include "schema/SettingsSchema.h"
#include "support/SettingsTree.h"
#include "support/TestMain.h"
#include "support/TextRows.h"

#include <QDir>

using namespace Qt::StringLiterals;
using namespace kse;

class TestHealthChecker : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase()
    {
        QVERIFY(m_schema.load(R"({"variables": {"RFile": {"readOnly": true}}})",
                              R"({"variables": {"N": {"min": 1}, "R": {"min": 0.1, "max": 10},
                              "C": {"choices": [[0, "a"]]}, "D": {"choices": [[1, "%3"], [2, "b"]]}}})"));
    }

    /// Nodes, what exists on the computer, and the only finding: its severity, title, and the
    /// detail from the values on.
    void explainsItself()
    {
        const auto text = [this](const QStringList& cells) {
            const auto findings = check(cells[0], computerWith(cells[1]));
            return findings.size() != 1
                       ? namesAndPaths(findings, &Finding::id)
                       : HealthChecker::severityName(findings[0].severity) + u": "_s +
                             findings[0].title + u": "_s +
                             QDir::fromNativeSeparators(findings[0].detail).section(u'.', 0, 0);
        };
        compareRows(
            {"Global/Preferences/PDirectory:s=C:/%1 >  > Warning: P directory: the folder does not "
             "exist: C:/%1 is not on this computer",
             "Global/D:u=%2 >  > Warning: D has an option value that is not recognised: The value "
             "is %2; the known options are: 1 = %3, 2 = b",
             "Modules/a:s=@pxi_bin_dir/Foo-pxm.dll; Modules/b:s=D:/%n > C:/PixInsight/bin > "
             "Warning: "
             "2 registered module(s) have no file on this computer: Listed in the module registry "
             "but not in C:/PixInsight/bin: Foo, D:/%n",
             "Global/A/%2:s=x; Global/A/%2:s=x >  > Warning: \"%2\" appears 2 times in Global/A: A "
             "key should "
             "occur once",
             "B/x:s=x; %2/Interfaces/B; %2/y:s=x; Global/Statistics/Process/B/z:s=x >  > Note: 2 "
             "module(s) have saved data but are not in the module list: %2, B (4 values in all)"},
            text);
    }

    /// Nodes, what exists on the computer, and the findings with their nodes.
    void findsNeitherMoreNorLess()
    {
        const auto found = [this](const QStringList& cells) {
            return namesAndPaths(check(cells[0], computerWith(cells[1])), &Finding::id);
        };
        compareRows(
            {"Global/Preferences/ADirectory:s=/a; Global/Preferences/BDirectory:s=@x/b; "
             "Global/Preferences/CFile:s= ; Global/Preferences/RFile:s=C:/r; Global/DFile:s=C:/d; "
             "Global/Preferences/EFile:s=C:/there; Global/Preferences/FFile:B=C:/f; "
             "Global/Preferences/G:s=C:/g; Global/Preferences/HFile:s=C:h > C:/there > ",
             "Global/Preferences/A/BFile:s=\\\\a\\b deleted; Global/Preferences/A/CFile:s=\\\\a\\b "
             ">  > path-missing Global/Preferences/A/CFile",
             "Global/R:F=10; Global/N:i=1; Global/Preferences/N:i=soon; Global/C:i=soon; R:F=11; "
             "Global/Preferences/R:F=0.1; Global/Preferences/Process/MaxProcessors:i=8 >  > ",
             "Global/Preferences/Process/MaxProcessors:i=9 deleted; "
             "Global/Preferences/Security/AllowInsecureRepositories:b=true deleted; "
             "Global/Preferences/Security/AllowUnsignedRepositories:b=True >  > ",
             "Global/ColorManagement/PFile:s=//a; Global/R:F=11; Global/D:u=0; "
             "Global/Preferences/Process/MaxProcessors:i=9; "
             "Global/Preferences/Security/AllowInsecureRepositories:b=true >  > out-of-range "
             "Global/R; path-missing Global/ColorManagement/PFile; unknown-option Global/D; "
             "too-many-processors Global/Preferences/Process/MaxProcessors; unsigned-allowed "
             "Global/Preferences/Security/AllowInsecureRepositories",
             "Modules/1:s=@pxi_bin_dir/A-pxm.dll; Modules/2:s=/opt/B-pxm.so; Modules/3:s=C:/c "
             "deleted; Modules/4:s=@pxi_bin_dir/D-pxm.dll; A; D > C:/PixInsight/bin, "
             "C:/PixInsight/bin/A-pxm.dll > module-file-missing Modules/4",
             "a; B/c; B/c/d; B/c/d; B/c:s=x; B/c:s=x; A; B/e; B/e deleted; a >  > duplicate-key a "
             "a; duplicate-key B/c B/c B/c; duplicate-key B/c/d B/c/d; unused-modules",
             "Global/Q; Global/P:s=1 deleted; Global/Q; Global/P:s=2; Global/P:s=3; Global/N:i=0; "
             "Modules >  > out-of-range Global/N; duplicate-key Global/Q Global/Q; duplicate-key "
             "Global/P Global/P; modules-unchecked"},
            found);
    }

    /// Settings, what exists, the known program folder, and what is told of the search.
    void looksForTheProgramFolder()
    {
        const auto told = [this](const QStringList& cells) {
            HealthEnv env = computerWith(cells[1]);
            env.binFolder = cells[2];
            const auto findings =
                check(cells[0] + u"; Modules/1:s=@pxi_bin_dir/Foo-pxm.dll"_s, env);
            return QString(findings.value(0).detail)
                .replace(u'\\', u'/')
                .section(u". P"_s, 0, 0)
                .section(u" in"_s, -1);
        };
        compareRows(
            {"Global/FavoriteProcesses/1/Icon:s=D:\\x\\pixinsight\\RSC\\i; "
             "Global/ColorManagement/A:s=C:/a/PixInsight/color/p; "
             "Global/Preferences/B:s=C:/a/PixInsight/bin/p; Global/C:s=C:/c/PixInsight/bin/p; "
             "Global/Preferences/D:b=C:/d/PixInsight/bin/p; "
             "Global/Preferences/E:s=/opt/PixInsight/bin/p; Global/Preferences/F:s=C:/f/rsc/p >  > "
             "C:/PixInsight > : C:/PixInsight, C:/a/PixInsight, D:/x/pixinsight.",
             "Global/Preferences/Application/A:s=C:/Astro/rsc/rsc/p > C:/Astro/rsc/bin, C:/bin >  "
             ">  C:/Astro/rsc/bin: Foo",
             "Global/Preferences/A:s=C:/a/PixInsight/lib/p > C:/a/PixInsight/bin, D:/b > D:/b >  "
             "D:/b: Foo"},
            told);
    }

    void judgesByTheComputerItRunsOn()
    {
        const QString nodes = u"Modules/1:s=C:/a-pxm.dll; Global/Preferences/ADirectory:s=%1; "
                              "Global/Preferences/BDirectory:s=%1/kse-missing; "
                              "Global/Preferences/Process/MaxProcessors:i=9"_s;
        QCOMPARE(namesAndPaths(check(nodes.arg(u"C:/a"_s), {}), &Finding::id),
                 u"modules-unchecked"_s); // nothing is known of it
        HealthEnv here = HealthEnv::system();
        QVERIFY(here.processors > 0 && !here.installFolders.isEmpty());
        here.processors = 0;
        QVERIFY(namesAndPaths(check(nodes.arg(QDir::tempPath()), here), &Finding::id)
                    .startsWith(u"path-missing Global/Preferences/BDirectory; "));
#ifndef Q_OS_WIN
        QVERIFY(here.exists(u"~/."_s) && !here.exists(u"~/missing"_s));
#endif
    }

private:
    /// A Windows computer with eight processors and the files and folders that `files` lists.
    static HealthEnv computerWith(const QString& files)
    {
        HealthEnv env;
        env.exists = [existing = files.split(u", "_s)](const QString& path) {
            return existing.contains(path);
        };
        env.processors = 8;
        env.installFolders = QStringList{u"C:/PixInsight"_s};
        return env;
    }

    QList<Finding> check(const QString& nodes, const HealthEnv& env)
    {
        m_document = std::make_unique<XsdtDocument>();
        addNodes(*m_document, nodes);
        return HealthChecker::run(*m_document, m_schema, env);
    }

    SettingsSchema m_schema;
    std::unique_ptr<XsdtDocument> m_document; ///< Of the last `check`; its findings point into it.
};

KSE_GUILESS_TEST_MAIN(TestHealthChecker)
#include "TestHealthChecker.moc"
