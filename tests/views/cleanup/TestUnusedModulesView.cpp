// SPDX-License-Identifier: MIT
#include "views/cleanup/UnusedModulesView.h"

#include "support/SettingsPage.h"
#include "support/TestMain.h"
#include "support/TreePage.h"
#include "views/rows/SettingRow.h"

#include <QCheckBox>
#include <QToolButton>

using namespace Qt::StringLiterals;
using namespace kse;

namespace {

const QByteArray content =
    "<i k='Modules'><v k='1' t='s' v='/bin/Used-pxm.so'/></i>"
    "<i k='ModuleData'><i k='Used'><v k='u' t='s' v='1'/></i>"
    "<i k='Gone'><v k='n' t='s' v='1'/><i k='Interfaces'><i k='P'/></i></i>"
    "<i k='%1&amp;Old'><v k='m' t='s' v='1'/></i></i>"
    "<i k='Global'><i k='Statistics'><i k='Process'><i k='P'><v k='s' t='s' v='1'/></i></i></i>"
    "</i>";

struct Page : SettingsPage<UnusedModulesView>
{
    explicit Page(const QByteArray& xml = content)
        : SettingsPage(xml)
    {
        view.show();
    }

    QString summary() const { return child<QLabel>("summary")->text(); }
    QToolButton* title(int card)
    {
        return view.findChildren<QToolButton*>(u"toggleButton"_s).at(card);
    }
    void tick(int card) { view.findChildren<QCheckBox*>(u"tick"_s).at(card)->click(); }
    QString lastMessage() { return messages.isEmpty() ? QString() : messages.last()[0].toString(); }

    QSignalSpy messages{&view, &UnusedModulesView::message};
};

} // namespace

class TestUnusedModulesView : public QObject
{
    Q_OBJECT

private slots:
    void listsModules()
    {
        Page page;
        QCOMPARE(page.view.moduleNames(), QStringList({u"%1&Old"_s, u"Gone"_s}));
        QCOMPARE(page.title(0)->text(), u"%1&&Old  -  1 value(s), 44 B"_s);
        page.tick(0);
        QCOMPARE(page.summary(),
                 u"2 unused module(s); 1 ticked (about 44 B); 0 queued for deletion"_s);
        QVERIFY(page.model.setValue(page.node(u"ModuleData/%1&Old/m"_s), u"123"_s));
        QCOMPARE(page.title(0)->text(), u"%1&&Old  -  1 value(s), 46 B"_s);
        page.view.setReadOnly(true);
        for (const char* name : {"tick", "queueButton", "undoButton"}) {
            QVERIFY2(!page.child<QWidget>(name)->isEnabled(), name);
        }
    }

    void opensCard()
    {
        Page page;
        page.title(1)->click();
        QStringList lines;
        for (const QLabel* label : page.view.findChildren<QLabel*>(u"groupLabel"_s)) {
            lines.append(label->text());
        }
        QCOMPARE(lines, QStringList({u"Global/Statistics/Process/P  (1 value(s))"_s,
                                     u"ModuleData/Gone  (1 value(s))"_s}));
        // Tab goes on into what was made later, and comes out at what stands below.
        page.view.activateWindow();
        page.title(1)->setFocus();
        QTest::keyClick(page.view.focusWidget(), Qt::Key_Tab);
        QCOMPARE(page.view.focusWidget()->objectName(), u"groupLabel"_s);
        page.child<QPushButton>("tickAllButton")->setFocus();
        QTest::keyClick(page.view.focusWidget(), Qt::Key_Backtab);
        QCOMPARE(page.view.focusWidget()->objectName(), u"lineEdit"_s);
    }

    void followsChangesAtAnyDepth()
    {
        const int deep = int(SettingsModel::maximumDepth);
        Page page("<i k='ModuleData'><i k='A'>" + QByteArray("<i k='g'>").repeated(deep) +
                  "<v k='v' t='s' v='1'/>" + QByteArray("</i>").repeated(deep) + "</i></i>");
        QVERIFY(page.policy.load("{\"policy\": {\"delete\": [{\"path\": \"**\", \"level\": "
                                 "\"safe\"}]}}"));
        const auto looks = [&page] {
            const QToolButton* title = page.title(0);
            return title->text().section(u", "_s, 1) + title->accessibleDescription() +
                   (title->font().strikeOut() ? u" struck"_s : QString());
        };
        XsdtNode* node = page.node(u"ModuleData/A"_s);
        XsdtNode* value = node;
        while (!value->children.empty()) {
            value = value->children.front().get();
        }
        QCOMPARE(looks(), u"12.7 KiB"_s);
        page.model.setValue(value, QString(100, u'x'));
        QCOMPARE(looks(), u"12.8 KiB"_s);
        QVERIFY(page.model.markForDeletion(value));
        QCOMPARE(looks(), u"12.8 KiBSomething in it is queued for deletion."_s);
        page.tick(0);
        page.child<QPushButton>("undoButton")->click();
        QVERIFY(page.lastMessage().startsWith(u"No ticked module is queued"));
        QVERIFY(page.model.markForDeletion(node));
        QVERIFY(looks().endsWith(u"[queued for deletion]All of it is queued for deletion. struck"));
    }

    void givesUpWhenThingsChangeBeneathTheBox()
    {
        Page page;
        page.tick(0);
        QStringList box = clickAndAnswer(page.view, u"queueButton"_s, QMessageBox::Yes,
                                         [&] { page.view.setReadOnly(true); });
        QCOMPARE(box.mid(1), QStringList({u"%1&Old"_s, u"Cancel"_s}));
        QVERIFY(page.lastMessage().startsWith(u"PixInsight is running"));
        page.view.setReadOnly(false);
        box = clickAndAnswer(page.view, u"queueButton"_s, QMessageBox::Yes, [&] {
            page.view.setDocument(nullptr);
            page.document = documentFrom(content);
            page.model.setDocument(page.document.get());
            page.view.setDocument(page.document.get());
        });
        QCOMPARE(page.messages.size(), 1);
        QCOMPARE(page.document->pendingCount(), 0);
    }

    void staysWithinLimits()
    {
        const QByteArray values = QByteArray("<v k='a' t='s' v='1'/>").repeated(401);
        Page page("<i k='ModuleData'><i k='A'>" + values + "</i></i><i k='A'>" + values + "</i>");
        page.view.expandCard(u"A"_s);
        QCOMPARE(page.view.findChildren<SettingRow*>().size(), 400);
        QVERIFY(page.child<QLabel>("moreLabel")->text().startsWith(u"...and 402 more values."));
    }
};

KSE_TEST_MAIN(TestUnusedModulesView)
#include "TestUnusedModulesView.moc"
