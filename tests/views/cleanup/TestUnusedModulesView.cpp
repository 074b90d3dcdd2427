// SPDX-License-Identifier: MIT
#include "views/cleanup/UnusedModulesView.h"

#include "support/SettingsPage.h"
#include "views/rows/SettingRow.h"

using namespace kse;

namespace {

struct Page : SettingsPage<UnusedModulesView>
{
    using SettingsPage::SettingsPage;

    QString message() { return messages.last()[0].toString(); }

    QSignalSpy messages{&view, &UnusedModulesView::message};
};

const QString nodes =
    u"Modules/1:s=/bin/Used-pxm.so; ModuleData/Used/u:s=1; ModuleData/Gone/n:s=1; "
    "ModuleData/Gone/Interfaces/P; ModuleData/%1&Old/m:s=1; "
    "Global/Statistics/Process/P/s:s=1"_s;

} // namespace

class TestUnusedModulesView : public QObject
{
    Q_OBJECT

private slots:
    void listsModules()
    {
        const Page page(nodes);
        page.child<QCheckBox>("tick")->click();
        QCOMPARE(page.text("toggleButton") + u"; "_s + page.text("summary"),
                 u"%1&&Old  -  1 value(s), 44 B; 2 unused module(s); 1 ticked (about 44 B); 0 "
                 "queued for deletion"_s);
        page.child<QToolButton>("toggleButton", 1)->click();
        QCOMPARE(page.text("groupLabel"), u"Global/Statistics/Process/P  (1 value(s))"_s);
        QCOMPARE(page.text("groupLabel", 1), u"ModuleData/Gone  (1 value(s))"_s);
        // Tab goes on into what was made later.
        page.child("toggleButton", 1)->setFocus();
        QTest::keyClick(page.view.focusWidget(), Qt::Key_Tab);
        QCOMPARE(page.view.focusWidget()->objectName(), u"groupLabel"_s);
    }

    void followsChangesAtAnyDepth()
    {
        const QString deep = u"ModuleData/A/"_s + u"g/"_s.repeated(1000) + u"v"_s;
        Page page(deep + u":s=1"_s);
        page.view.expandCard(u"A"_s);
        const auto looks = [&page] {
            const auto* title = page.child<QToolButton>("toggleButton");
            return title->text().section(u", "_s, 1) + title->accessibleDescription() +
                   (title->font().strikeOut() ? u" struck"_s : u""_s);
        };
        QCOMPARE(looks(), u"12.7 KiB"_s);
        page.model.setValue(page.node(deep), QString(100, u'x'));
        QCOMPARE(looks(), u"12.8 KiB"_s);
        QCOMPARE(page.child<QLineEdit>("lineEdit")->text(), QString(100, u'x'));
        QVERIFY(page.model.markForDeletion(page.node(deep)));
        QCOMPARE(looks(), u"12.8 KiBSomething in it is queued for deletion."_s);
        page.child<QCheckBox>("tick")->click();
        page.child<QPushButton>("undoButton")->click();
        QVERIFY(page.message().startsWith(u"No ticked module is queued"));
        QVERIFY(page.model.markForDeletion(page.node(u"ModuleData/A"_s)));
        QVERIFY(looks().endsWith(u"[queued for deletion]All of it is queued for deletion. struck"));
    }

    void givesUpWhenThingsChangeBeneathTheBox()
    {
        Page page(nodes);
        page.child<QCheckBox>("tick")->click();
        QVERIFY(page.ask("queueButton", QMessageBox::Yes, [&] { page.view.setReadOnly(true); })
                    .endsWith(u"|%1Old|Cancel"));
        QVERIFY(page.message().startsWith(u"PixInsight is running"));
        for (const char* name : {"tick", "queueButton", "undoButton"}) {
            QVERIFY2(!page.child(name)->isEnabled(), name);
        }
        page.view.setReadOnly(false);
        page.ask("queueButton", QMessageBox::Yes, [&] { page.reload(); });
        QCOMPARE(page.messages.size(), 1);
        QCOMPARE(page.document.pendingCount(), 0);
    }

    void staysWithinLimits()
    {
        Page page(u"ModuleData/A/a:s=1; A/a:s=1; "_s.repeated(401));
        page.view.expandCard(u"A"_s);
        QCOMPARE(page.children<SettingRow>().size(), 400);
        QVERIFY(page.text("moreLabel").startsWith(u"...and 402 more values."));
    }
};

KSE_TEST_MAIN(TestUnusedModulesView)
#include "TestUnusedModulesView.moc"
