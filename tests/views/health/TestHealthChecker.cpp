// SPDX-License-Identifier: MIT
#include "views/health/HealthChecker.h"

#include "schema/SettingsSchema.h"
#include "support/DocumentText.h"
#include "support/SettingsTree.h"
#include "support/TestMain.h"
#include "support/TextRows.h"

#include <QDir>

using namespace Qt::StringLiterals;
using namespace kse;

namespace {

/// A Windows computer with eight processors and exactly the files and folders that `files` lists.
HealthEnv computerWith(const QString& files)
{
    HealthEnv env;
    env.exists = [existing = files.split(u", "_s)](const QString& path) {
        return existing.contains(path);
    };
    env.processors = 8;
    env.installFolders = QStringList{u"C:/PixInsight"_s};
    return env;
}

} // namespace

class TestHealthChecker : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase()
    {
        QVERIFY(m_schema.load(R"({"variables": {"RFile": {"readOnly": true}}})",
                              R"({"variables": {"N": {"min": 1}, "R": {"min": 0.1, "max": 10},
                              "C": {"choices": [[0, "a"]]}, "D": {"choices": [[1, "%3"], [2, "b, c"]]}}})"));
    }

    /// Nodes, what exists on the computer, and severity, title and detail of the only finding.
    void explainsItself_data()
    {
        addTextRows(
            {"Global/Preferences/PDirectory:s=C:/%1 >  > Warning > P directory: the folder does "
             "not exist > C:/%1 is not on this computer. If it is a drive that is not connected "
             "right now, ignore this; otherwise point the setting at somewhere that exists.",
             "Global/ColorManagement/PFile:s=//a >  > Warning > P file: the file does not exist",
             "Global/R:F=10.5 >  > Problem > R is outside its documented range > The value is "
             "10.5; PixInsight documents 0.1 to 10.",
             "Global/D:u=%2 >  > Warning > D has an option value that is not recognised > The "
             "value is %2; the known options are: 1 = %3, 2 = b, c.",
             "Global/Preferences/Process/MaxProcessors:i=9 >  > Warning > Maximum processors is "
             "higher than this computer has > The setting is 9 and this computer has 8 logical "
             "processors. This is harmless on the computer the file came from, but here PixInsight "
             "will simply use them all.",
             "Modules >  > Note > Module files were not checked > The PixInsight program folder "
             "could not be found, so the registered modules could not be matched to files. Looked "
             "in: C:/PixInsight.",
             "Modules/a:s=@pxi_bin_dir/Foo-pxm.dll; Modules/b:s=D:/%n > C:/PixInsight/bin > "
             "Warning > 2 registered module(s) have no file on this computer > Listed in the "
             "module registry but not in C:/PixInsight/bin: Foo, D:/%n. PixInsight repairs its "
             "registry at startup, so this only matters if the modules should be there.",
             "Global/A/%2:s=x; Global/A/%2:s=x >  > Warning > \"%2\" appears 2 times in Global/A > "
             "A key should occur once. PixInsight reads only one of them, so the other holds data "
             "it never uses, or a stale copy that may be the one it picks.",
             "B/x:s=x; %2/Interfaces/B; %2/y:s=x; Global/Statistics/Process/B/z:s=x >  > Note > 2 "
             "module(s) have saved data but are not in the module list > %2, B (4 values in all). "
             "Uninstalled, renamed or replaced modules leave their data behind.",
             "Global/Preferences/Security/AllowUnsignedScriptExecution:b=true; "
             "Global/Preferences/Security/AllowInsecureRepositories:b=true >  > Note > PixInsight "
             "is set to allow unsigned or insecure content > Turned on: allow insecure "
             "repositories; allow unsigned script execution. That is a choice, not an error; it "
             "just lowers PixInsight's protection."});
    }

    void explainsItself()
    {
        QFETCH(QStringList, cells);
        XsdtDocument document;
        addNodes(document, cells[0]);
        const QString before = treeText(document.root);
        const auto findings = HealthChecker::run(document, m_schema, computerWith(cells[1]));
        QCOMPARE(findings.size(), 1);
        const Finding& finding = findings.first();
        QCOMPARE(HealthChecker::severityName(finding.severity), cells[2]);
        QCOMPARE(finding.title, cells[3]);
        const QString detail = QDir::fromNativeSeparators(finding.detail);
        QVERIFY2(cells.size() < 5 || detail == cells[4], qPrintable(detail));
        QCOMPARE(finding.action == FindingAction::OpenUnusedModules,
                 finding.id == u"unused-modules"_s);
        QCOMPARE(treeText(document.root), before);
    }

    /// Nodes, what exists on the computer, and the findings with their nodes.
    void findsNeitherMoreNorLess_data()
    {
        addTextRows(
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
             "/Global/N:i=0 >  > out-of-range Global/N; unused-modules",
             "Modules:s=C:/a; Modules; A >  > duplicate-key Modules Modules; unused-modules",
             "Modules/1:s=@pxi_bin_dir/A-pxm.dll; Modules/2:s=/opt/B-pxm.so; Modules/3:s=C:/c "
             "deleted; Modules/4:s=@pxi_bin_dir/D-pxm.dll; A; D > C:/PixInsight/bin, "
             "C:/PixInsight/bin/A-pxm.dll > module-file-missing Modules/4",
             "a; B/c; B/c/d; B/c/d; B/c:s=x; B/c:s=x; A; B/e; B/e deleted; a >  > duplicate-key a "
             "a; duplicate-key B/c B/c B/c; duplicate-key B/c/d B/c/d; unused-modules",
             "Global/Q; Global/P:s=1 deleted; Global/Q; Global/P:s=2; Global/P:s=3; Global/N:i=0; "
             "Modules >  > out-of-range Global/N; duplicate-key Global/Q Global/Q; duplicate-key "
             "Global/P Global/P; modules-unchecked"});
    }

    void findsNeitherMoreNorLess()
    {
        QFETCH(QStringList, cells);
        XsdtDocument document;
        addNodes(document, cells[0]);
        const auto findings = HealthChecker::run(document, m_schema, computerWith(cells[1]));
        QCOMPARE(namesAndPaths(findings, &Finding::id), cells[2]);
    }

    /// Settings, what exists, the known program folder, and what is told of the search.
    void looksForTheProgramFolder_data()
    {
        addTextRows(
            {"Global/FavoriteProcesses/1/Icon:s=D:\\x\\pixinsight\\RSC\\i; "
             "Global/ColorManagement/A:s=C:/a/PixInsight/color/p; "
             "Global/Preferences/B:s=C:/a/PixInsight/bin/p; Global/C:s=C:/c/PixInsight/bin/p; "
             "Global/Preferences/D:b=C:/d/PixInsight/bin/p; "
             "Global/Preferences/E:s=/opt/PixInsight/bin/p; Global/Preferences/F:s=C:/f/rsc/p >  > "
             "C:/PixInsight > in: C:/PixInsight, C:/a/PixInsight, D:\\x\\pixinsight.",
             "Global/Preferences/Application/A:s=C:/Astro/rsc/rsc/p > C:/Astro/rsc/bin, C:/bin >  "
             "> in C:/Astro/rsc/bin: Foo.",
             "Global/Preferences/A:s=C:/a/PixInsight/lib/p > C:/a/PixInsight/bin, D:/b > D:/b > in "
             "D:/b: Foo."});
    }

    void looksForTheProgramFolder()
    {
        QFETCH(QStringList, cells);
        XsdtDocument document;
        addNodes(document, cells[0] + u"; Modules/1:s=@pxi_bin_dir/Foo-pxm.dll"_s);
        HealthEnv env = computerWith(cells[1]);
        env.binFolder = cells[2];
        const auto findings = HealthChecker::run(document, {}, env);
        QCOMPARE(findings.size(), 1);
        const QString detail = QDir::fromNativeSeparators(findings.first().detail);
        QVERIFY2(detail.contains(QDir::fromNativeSeparators(cells[3])), qPrintable(detail));
    }

    void judgesNoPathOfAnUnknownComputer()
    {
        XsdtDocument document;
        addNodes(
            document,
            u"Modules/1:s=C:/a-pxm.dll; Global/Preferences/X/ADirectory:s=C:/a; Global/Preferences/Process/MaxProcessors:i=9"_s);
        HealthEnv env;
        QCOMPARE(
            HealthChecker::run(document, m_schema, env).constFirst().detail.section(u": "_s, 1),
            u"(nowhere: no location is recorded in the file and none is known for this system)."_s);
        env.installFolders = QStringList{u"C:/p"_s};
        QCOMPARE(namesAndPaths(HealthChecker::run(document, m_schema, env), &Finding::id),
                 QString());
    }

    void asksTheComputerItRunsOn()
    {
        XsdtDocument document;
        addNodes(
            document,
            u"Global/Preferences/X/ADirectory:s=%1; Global/Preferences/X/BDirectory:s=%1/kse-missing"_s
                .arg(QDir::tempPath()));
        QCOMPARE(namesAndPaths(HealthChecker::run(document, m_schema, HealthEnv::system()),
                               &Finding::id),
                 u"path-missing Global/Preferences/X/BDirectory"_s);
        QVERIFY(!HealthEnv::system().installFolders.isEmpty());
#ifndef Q_OS_WIN
        QVERIFY(HealthEnv::system().exists(u"~/."_s));
        QVERIFY(!HealthEnv::system().exists(u"~/missing"_s));
#endif
    }

    void checksTheSample()
    {
        SettingsSchema schema;
        QVERIFY(schema.load(builtInTable("globals.json"), builtInTable("overlay.json")));
        QFile file(QStringLiteral(KSE_SOURCE_DIR "/examples/core-001-pxi.settings"));
        QVERIFY(file.open(QIODevice::ReadOnly));
        XsdtDocument document;
        QVERIFY(document.parse(file.readAll()));
        HealthEnv env = computerWith({});
        env.isWindows = false;
        env.exists = [](const QString& path) {
            return !path.endsWith("/Glimmer-pxm.so"_L1) && !path.startsWith("/media"_L1);
        };
        QStringList ids;
        for (const Finding& finding : HealthChecker::run(document, schema, env)) {
            ids.append(finding.id);
        }
        QCOMPARE(
            ids.join(u"; "_s),
            u"out-of-range; out-of-range; out-of-range; unknown-option; path-missing; too-many-processors; module-file-missing; duplicate-key; unused-modules; unsigned-allowed"_s);
    }

    void survivesDeepAndWideFiles()
    {
        constexpr int levels = 1'000'000;
        constexpr int pairs = 10'000;
        const auto document = documentFrom(QByteArray("<i k=\"Global\">").repeated(levels) +
                                           QByteArray("<v k=\"a\" t=\"s\" v=\"\"/>").repeated(2) +
                                           QByteArray("</i>").repeated(levels));
        for (int i = 0; i < 10 * pairs; ++i) {
            addNode(*document, QStringList{QString::number(i % (9 * pairs))});
        }
        const auto findings = HealthChecker::run(*document, m_schema, computerWith({}));
        QCOMPARE(findings.size(), 1 + pairs + 1);
    }

    void namesDeepPlacesShortly()
    {
        const int levels = 20'000; // the paths of all values are 2 GB
        const QByteArray value = R"(<v k="value" t="i" v="1"/>)";
        const auto document = documentFrom("<i k=\"Global\">" +
                                           deepFile(levels).replace(value, value + value) + "</i>");
        const auto findings = HealthChecker::run(*document, m_schema, computerWith({}));
        QCOMPARE(findings.size(), levels);
        const QString& title = findings.constLast().title;
        QVERIFY(title.startsWith(u"\"value\" appears 2 times in …"_s));
        QVERIFY(title.endsWith(u"/level/level"_s) && title.size() < 1100);
    }

private:
    SettingsSchema m_schema;
};

KSE_GUILESS_TEST_MAIN(TestHealthChecker)
#include "TestHealthChecker.moc"
