// SPDX-License-Identifier: MIT
#include "views/health/HealthView.h"

#include "support/SettingsPage.h"
#include "views/rows/SettingRow.h"

using namespace kse;

using Page = SettingsPage<HealthView>;

class TestHealthView : public QObject
{
    Q_OBJECT

private slots:
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
};

KSE_TEST_MAIN(TestHealthView)
#include "TestHealthView.moc"
