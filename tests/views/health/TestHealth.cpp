// SPDX-License-Identifier: MIT
#include "support/SettingsPage.h"
#include "views/health/HealthChecker.h"
#include "views/health/HealthView.h"
#include "views/rows/SettingRow.h"

namespace {

using Page = SettingsPage<HealthView>;

const QString group = u"Global/Preferences/"_s; ///< "$" in the tables.

} // namespace

/// What the check finds, and the page that shows it.
class TestHealth : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase()
    {
        QVERIFY(m_schema.load(R"({"variables": {"RFile": {"readOnly": true}}})",
                              R"({"variables": {"N": {"min": 1}, "R": {"min": 0.1, "max": 10},
                              "C": {"choices": [[0, "a"]]}, "D": {"choices": [[1, "%3"], [2, "b"]]}}})"));
    }

    /// Columns: nodes, the files on the computer and, after a star, the program folder; severity,
    /// title and detail of the only finding.
    void explainsItself()
    {
        const auto text = [this](const QStringList& cells) {
            const auto findings = check(cells[0], computerWith(cells[1]));
            return findings.size() != 1 ? namesAndPaths(findings, &Finding::id)
                                        : HealthChecker::severityName(findings[0].severity) +
                                              u": "_s + findings[0].title + u": "_s +
                                              QString(findings[0].detail)
                                                  .replace(u'\\', u'/')
                                                  .section(u"files. "_s, -1)
                                                  .section(u". "_s, 0, 0);
        };
        compareRows(
            {"$PDirectory:s=C:/%1 >  > Warning: P directory: the folder does not exist: C:/%1 is "
             "not on this computer",
             "Global/D:u=%2 >  > Warning: D has an option value that is not recognised: The value "
             "is %2; the known options are: 1 = %3, 2 = b.",
             "Modules/a:s=@pxi_bin_dir/Foo-pxm.dll; Modules/b:s=D:/%n > C:/PixInsight/bin > "
             "Warning: 2 registered module(s) have no file on this computer: Listed in the module "
             "registry but not in C:/PixInsight/bin: Foo, D:/%n",
             "Global/A/%2:s=x; Global/A/%2:s=x >  > Warning: \"%2\" appears 2 times in Global/A: A "
             "key should occur once",
             "B/x:s=x; %2/Interfaces/B; %2/y:s=x; Global/Statistics/Process/B/z:s=x >  > Note: 2 "
             "module(s) have saved data but are not in the module list: %2, B (4 values in all)",
             "Global/FavoriteProcesses/1/Icon:s=D:\\x\\pixinsight\\RSC\\i; "
             "Global/ColorManagement/A:s=C:/a/PixInsight/color/p; $B:s=C:/a/PixInsight/bin/p; "
             "Global/C:s=C:/c/PixInsight/bin/p; $D:b=C:/d/PixInsight/bin/p; Modules; "
             "$E:s=/opt/PixInsight/bin/p; $F:s=C:/f/rsc/p > *C:/PixInsight > Note: Module files "
             "were not checked: Looked in: C:/PixInsight, C:/a/PixInsight, D:/x/pixinsight.",
             "$Application/A:s=C:/Astro/rsc/rsc/p; Modules/1:s=C:/m > C:/Astro/rsc/bin, C:/bin > "
             "Warning: 1 registered module(s) have no file on this computer: Listed in the module "
             "registry but not in C:/Astro/rsc/bin: C:/m",
             "$A:s=C:/a/PixInsight/lib/p; Modules/1:s=C:/m > C:/a/PixInsight/bin, D:/b*D:/b > "
             "Warning: 1 registered module(s) have no file on this computer: Listed in the module "
             "registry but not in D:/b: C:/m"},
            text);
    }

    /// Columns: nodes, the files on the computer; the findings with their nodes.
    void findsNeitherMoreNorLess()
    {
        const auto found = [this](const QStringList& cells) {
            return namesAndPaths(check(cells[0], computerWith(cells[1])), &Finding::id)
                .replace(group, u"$"_s);
        };
        compareRows(
            {"$ADirectory:s=/a; $BDirectory:s=@x/b; $CFile:s= ; $RFile:s=C:/r; "
             "Global/DFile:s=C:/d; $EFile:s=C:/there; $FFile:B=C:/f; $G:s=C:/g; $HFile:s=C:h; "
             "$A/BFile:s=\\\\a\\b deleted; $A/CFile:s=\\\\a\\b > C:/there > path-missing $A/CFile",
             "Global/R:F=10; Global/N:i=1; $N:i=soon; Global/C:i=soon; R:F=11; $R:F=0.1; "
             "$Process/MaxProcessors:i=8; $Security/AllowInsecureRepositories:b=true deleted; "
             "$Security/AllowUnsignedRepositories:b=True >  > ",
             "Global/ColorManagement/PFile:s=//a; Global/R:F=11; Global/D:u=0; "
             "$Process/MaxProcessors:i=9; $Security/AllowInsecureRepositories:b=true >  > "
             "out-of-range Global/R; path-missing Global/ColorManagement/PFile; unknown-option "
             "Global/D; too-many-processors $Process/MaxProcessors; unsigned-allowed "
             "$Security/AllowInsecureRepositories",
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

    void judgesByTheComputerItRunsOn()
    {
        const QString nodes = u"Modules/1:s=C:/a-pxm.dll; $ADirectory:s=%1; "
                              "$BDirectory:s=%1/kse-missing; $CDirectory:s=~/."_s;
        QCOMPARE(namesAndPaths(check(nodes.arg(u"C:/a"_s), {}), &Finding::id),
                 u"modules-unchecked"_s); // nothing is known of it
        const HealthEnv here = HealthEnv::system();
        QVERIFY(here.processors > 0 && !here.installFolders.isEmpty());
        QVERIFY(namesAndPaths(check(nodes.arg(QDir::tempPath()), here), &Finding::id)
                    .startsWith(u"path-missing Global/Preferences/BDirectory; module"));
    }

    void checksWhenFirstShown()
    {
        Page page(u"Global/Preferences/Application/AutoSaveSettingsPeriod:u=0; A:s=; A:s="_s);
        QCOMPARE(page.text("summaryLabel"), u"1 problem(s), 1 warning(s), 0 note(s)"_s);
        QSignalSpy summary(&page.view, &HealthView::summaryChanged);
        page.model.setValue(page.node(u"A"_s), u"2"_s);
        page.view.hide();
        page.view.show();
        QVERIFY(page.text("summaryLabel").contains(u"run the check again") && summary.isEmpty());
        page.view.hide();
        page.reload();
        QCOMPARE(summary.takeLast(), (QVariantList{0, 0}));
        page.view.show();
        QCOMPARE(summary.takeLast(), (QVariantList{1, 1}));
        page.reload();
        QCOMPARE(summary.takeLast(), (QVariantList{1, 1}));
    }

    void showsTwelveSettingsOfFinding()
    {
        const Page page(u"<i>%1&:s=; "_s.repeated(13));
        QVERIFY(page.text("titleLabel").contains(u"&quot;&lt;i&gt;%1&amp;&quot; appears 13 times"));
        QCOMPARE(page.children<SettingRow>().size(), 12);
        QCOMPARE(page.text("moreLabel"), u"...and 1 more."_s);
    }

    void offersToDeleteDuplicatedGroups()
    {
        Page page(u"Global/n:i=1; Global; ScriptData/<i>&; ScriptData/<i>&"_s);
        const QSignalSpy reveal(&page.view, &HealthView::revealRequested);
        QVERIFY(page.text("groupLabel").endsWith(u"Global</span></b>  (1 value(s))"));
        QVERIFY(page.text("groupLabel", 3).contains(u"/&lt;i&gt;&amp;"));
        QVERIFY(page.child("deleteButton")->toolTip().startsWith(u"Protected: "));
        for (const bool readOnly : {false, true, false}) {
            page.view.setReadOnly(readOnly);
            QVERIFY(!page.child("deleteButton")->isEnabled());
            QCOMPARE(page.child("deleteButton", 3)->isEnabled(), !readOnly);
        }
        page.child<QPushButton>("revealButton", 3)->click();
        QCOMPARE(reveal[0][0].value<XsdtNode*>(),
                 page.node(u"ScriptData"_s)->children.back().get());
    }

    void asksBeforeTheLastCopyGoes()
    {
        Page page(u"ScriptData/A/x:s=1; ScriptData/A"_s);
        const QSignalSpy remove(&page.view, &HealthView::deleteRequested);
        const QSignalSpy restore(&page.view, &HealthView::restoreRequested);
        QHelpEvent help(QEvent::ToolTip, {}, {});
        QApplication::sendEvent(page.child("groupLine"), &help);
        QCOMPARE(QToolTip::text(), u"Copy 1 of 2, in the order of the file\nx = 1"_s);
        XsdtNode* second = page.node(u"ScriptData"_s)->children.back().get();
        QVERIFY(page.model.markForDeletion(second));
        page.ask("deleteButton", QMessageBox::Cancel);
        QVERIFY(remove.isEmpty());
        page.ask("deleteButton", QMessageBox::Yes);
        QCOMPARE(remove.count(), 1);
        QCOMPARE(page.child("deleteButton", 1)->accessibleName(),
                 u"Undo deletion of ScriptData/A (2 of 2)"_s);
        page.child<QPushButton>("deleteButton", 1)->click();
        QCOMPARE(restore[0][0].value<XsdtNode*>(), second);
        page.model.undoDeletion(second);
        page.child<QPushButton>("deleteButton")->click(); // no question
        QCOMPARE(remove.count(), 2);
    }

private:
    /// A Windows computer with eight processors, the files and folders that `files` lists, and the
    /// program folder after a star.
    static HealthEnv computerWith(const QString& files)
    {
        HealthEnv env;
        env.exists = [existing = files.section(u'*', 0, 0).split(u", "_s)](const QString& path) {
            return existing.contains(path);
        };
        env.binFolder = files.section(u'*', 1);
        env.processors = 8;
        env.installFolders = QStringList{u"C:/PixInsight"_s};
        return env;
    }

    QList<Finding> check(const QString& nodes, const HealthEnv& env)
    {
        m_document = std::make_unique<XsdtDocument>();
        addNodes(*m_document, QString(nodes).replace(u"$"_s, group));
        return HealthChecker::run(*m_document, m_schema, env);
    }

    SettingsSchema m_schema;
    std::unique_ptr<XsdtDocument> m_document; ///< Of the last `check`; its findings point into it.
};

KSE_TEST_MAIN(TestHealth)
#include "TestHealth.moc"
