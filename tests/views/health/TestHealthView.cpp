// SPDX-License-Identifier: MIT
#include "views/health/HealthView.h"

#include "support/SettingsPage.h"
#include "views/health/GroupLine.h"

using namespace kse;

namespace {

struct Page : SettingsPage<HealthView>
{
    using SettingsPage::SettingsPage;

    // The texts of the only card but the details.
    QString card() const
    {
        QStringList texts;
        for (const QLabel* label : child("card")->findChildren<QLabel*>()) {
            if (!label->isHidden() && label->objectName() != "detailLabel"_L1) {
                texts += label->text();
            }
        }
        return texts.join(u"; "_s)
            .remove(u"<span style=\"white-space:pre-wrap\">"_s)
            .remove(u"</span>"_s);
    }
};

} // namespace

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
        QCOMPARE(page.text("summaryLabel"), QString());
        page.view.show();
        QCOMPARE(summary.takeLast(), (QVariantList{1, 1}));
    }

    void showsTwelveSettingsOfFinding()
    {
        Page page(u"<i>%1&:s=; "_s.repeated(13));
        QCOMPARE(
            page.card(),
            u"<b>Warning:</b> &quot;&lt;i&gt;%1&amp;&quot; appears 13 times in the top level; "_s +
                u"<i>%1&&; "_s.repeated(12) + u"...and 1 more."_s);
    }

    void offersToDeleteDuplicatedGroups()
    {
        Page page(u"Global/n:i=1; Global; ScriptData/<i>&; ScriptData/<i>&"_s);
        const QSignalSpy reveal(&page.view, &HealthView::revealRequested);
        QVERIFY(
            page.card().endsWith(u"; <b>Global</b>  (1 value(s)); <b>Global</b>  (0 value(s))"));
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
        QSignalSpy remove(&page.view, &HealthView::deleteRequested);
        QSignalSpy restore(&page.view, &HealthView::restoreRequested);
        QHelpEvent help(QEvent::ToolTip, {}, {});
        QApplication::sendEvent(page.child("groupLine"), &help);
        QCOMPARE(QToolTip::text(), u"Copy 1 of 2, in the order of the file\nx = 1"_s);
        XsdtNode* first = page.node(u"ScriptData/A"_s);
        QVERIFY(page.model.markForDeletion(first));
        QCOMPARE(page.child("deleteButton")->accessibleName(),
                 u"Undo deletion of ScriptData/A (1 of 2)"_s);
        for (const auto answer : {QMessageBox::Cancel, QMessageBox::Yes}) {
            QVERIFY(remove.isEmpty());
            const DialogAnswerer<QMessageBox> box(
                [answer](QMessageBox& asked) { asked.button(answer)->click(); });
            page.child<QPushButton>("deleteButton", 1)->click();
            QVERIFY(box.wasAsked());
        }
        page.child<QPushButton>("deleteButton")->click();
        QCOMPARE(restore[0][0].value<XsdtNode*>(), first);
        page.model.undoDeletion(first);
        page.child<QPushButton>("deleteButton", 1)->click(); // no question
        QCOMPARE(remove.count(), 2);
    }
};

KSE_TEST_MAIN(TestHealthView)
#include "TestHealthView.moc"
