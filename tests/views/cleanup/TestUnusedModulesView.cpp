// SPDX-License-Identifier: MIT
#include "views/cleanup/UnusedModulesView.h"

#include "support/SettingsPage.h"
#include "support/TestMain.h"
#include "support/TreePage.h"
#include "views/rows/SettingRow.h"

#include <QtTest>
#include <QtWidgets>

using namespace Qt::StringLiterals;

namespace kse {

namespace {

const QByteArray content =
    "<i k='Modules'><v k='1' t='s' v='/bin/Used-pxm.so'/></i>"
    "<i k='ModuleData'><i k='Used'><v k='u' t='s' v='1'/></i>"
    "<i k='Gone'><v k='n' t='s' v='1'/><i k='Interfaces'><i k='P'/></i></i>"
    "<i k='%1&amp;Old'><v k='m' t='s' v='1'/></i></i>"
    "<i k='Global'><i k='Statistics'><i k='Process'><i k='P'><v k='s' t='s' v='1'/></i></i></i>"
    "</i>";

struct Fixture : SettingsPage<UnusedModulesView>
{
    explicit Fixture(const QByteArray& xml = content)
        : SettingsPage(xml)
    {
        if (!policy.load("{\"policy\": {\"delete\": [{\"path\": \"ModuleData/*\", "
                         "\"level\": \"safe\"}]}}")) {
            qFatal("the policy doesn't load");
        }
        view.show();
    }

    QString summary() const { return child<QLabel>("summary")->text(); }
    QToolButton* title(int card)
    {
        return view.findChildren<QToolButton*>(u"toggleButton"_s).at(card);
    }
    void tick(int card)
    {
        QTest::mouseClick(view.findChildren<QCheckBox*>(u"tick"_s).at(card), Qt::LeftButton);
    }

    /// Presses the button for queueing and answers its box; what the view then says.
    QString queue(
        QMessageBox::StandardButton answer, const std::function<void()>& beneath = [] {})
    {
        QSignalSpy messages(&view, &UnusedModulesView::message);
        asked = clickAndAnswer(view, u"queueButton"_s, answer, beneath);
        return messages.isEmpty() ? QString() : messages.first().first().toString();
    }

    QStringList asked;
};

} // namespace

class TestUnusedModulesView : public QObject
{
    Q_OBJECT

private slots:
    void listsModules()
    {
        Fixture f;
        QCOMPARE(f.view.moduleNames(), QStringList({u"%1&Old"_s, u"Gone"_s}));
        QCOMPARE(f.title(0)->text(), u"%1&&Old  -  1 value(s), 44 B"_s);
        QCOMPARE(f.summary(), u"2 unused module(s); 0 queued for deletion"_s);
        f.tick(0);
        QCOMPARE(f.summary(),
                 u"2 unused module(s); 1 ticked (about 44 B); 0 queued for deletion"_s);

        const XsdtNode* node = f.node(u"ModuleData/%1&Old/m"_s);
        f.model.setData(f.model.indexForNode(node, SettingsModel::ValueColumn), u"123"_s);
        QCOMPARE(f.title(0)->text(), u"%1&&Old  -  1 value(s), 46 B"_s);

        f.view.setReadOnly(true);
        QTest::mouseClick(f.child<QPushButton>("tickAllButton"), Qt::LeftButton);
        QVERIFY(f.summary().startsWith(u"2 unused module(s); 2 ticked"));
        for (const char* name : {"tick", "queueButton", "undoButton"}) {
            QVERIFY2(!f.child<QWidget>(name)->isEnabled(), name);
        }
    }

    void opensCard()
    {
        Fixture f;
        f.view.expandCard(u"Gone"_s);
        f.title(1)->click();
        f.title(1)->click();
        QStringList lines;
        for (const QLabel* label : f.view.findChildren<QLabel*>(u"groupLabel"_s)) {
            lines.append(label->text());
        }
        QCOMPARE(lines, QStringList({u"Global/Statistics/Process/P  (1 value(s))"_s,
                                     u"ModuleData/Gone  (1 value(s))"_s}));
        QCOMPARE(f.view.findChildren<SettingRow*>().size(), 2);

        // Tab goes on into what was made later, and comes out at what stands below.
        f.view.activateWindow();
        f.title(1)->setFocus();
        QTest::keyClick(f.view.focusWidget(), Qt::Key_Tab);
        QCOMPARE(f.view.focusWidget()->objectName(), u"groupLabel"_s);
        f.child<QPushButton>("tickAllButton")->setFocus();
        QTest::keyClick(f.view.focusWidget(), Qt::Key_Backtab);
        QCOMPARE(f.view.focusWidget()->objectName(), u"lineEdit"_s);
    }

    void followsChangesAtAnyDepth()
    {
        const int deep = int(SettingsModel::maximumDepth);
        Fixture f("<i k='ModuleData'><i k='A'>" + QByteArray("<i k='g'>").repeated(deep) +
                  "<v k='v' t='s' v='1'/>" + QByteArray("</i>").repeated(deep) + "</i></i>");
        const auto looks = [&f] {
            const QToolButton* title = f.title(0);
            return title->text().section(u"  -  "_s, 1) + title->accessibleDescription() +
                   (title->font().strikeOut() ? u" struck"_s : QString());
        };
        XsdtNode* node = f.node(u"ModuleData/A"_s);
        XsdtNode* value = node;
        while (!value->children.empty()) {
            value = value->children.front().get();
        }
        QCOMPARE(looks(), u"1 value(s), 12.7 KiB"_s);
        f.model.setValue(value, QString(100, u'x'));
        QCOMPARE(looks(), u"1 value(s), 12.8 KiB"_s);

        QVERIFY(f.policy.load("{\"policy\": {\"delete\": [{\"path\": \"**\", \"level\": "
                              "\"safe\"}]}}"));
        QVERIFY(f.model.markForDeletion(value));
        QCOMPARE(looks(), u"1 value(s), 12.8 KiBSomething in it is queued for deletion."_s);
        QVERIFY(f.model.markForDeletion(node));
        QCOMPARE(looks(), u"1 value(s), 12.8 KiB   [queued for deletion]All of it is queued for "
                          "deletion. struck"_s);
        f.model.undoDeletion(node);
        QSignalSpy messages(&f.view, &UnusedModulesView::message);
        f.tick(0);
        f.child<QPushButton>("undoButton")->click();
        QCOMPARE(messages.size(), 1);
        f.model.undoDeletion(value);
        QCOMPARE(looks(), u"1 value(s), 12.8 KiB"_s);
    }

    void givesUpWhenThingsChangeBeneathTheBox()
    {
        Fixture f;
        f.tick(0);
        QCOMPARE(f.queue(QMessageBox::Yes, [&] { f.view.setReadOnly(true); }),
                 u"PixInsight is running; nothing can be changed."_s);
        f.view.setReadOnly(false);
        QCOMPARE(f.queue(QMessageBox::Yes,
                         [&] {
                             f.view.setDocument(nullptr);
                             f.document = documentFrom(content);
                             f.model.setDocument(f.document.get());
                             f.view.setDocument(f.document.get());
                         }),
                 QString());
        QCOMPARE(f.document->pendingCount(), 0);
    }

    void staysWithinLimits()
    {
        const QByteArray values = QByteArray("<v k='a' t='s' v='1'/>").repeated(401);
        Fixture f("<i k='ModuleData'><i k='A'>" + values + "</i></i><i k='A'>" + values + "</i>");
        f.view.expandCard(u"A"_s);
        QCOMPARE(f.view.findChildren<SettingRow*>().size(), 400);
        QCOMPARE(f.view.findChildren<QLabel*>(u"groupLabel"_s).size(), 2);
        QCOMPARE(
            f.child<QLabel>("moreLabel")->text(),
            u"...and 402 more values. Use \"Show in All settings\" from the right-click menu to "
            "see the rest."_s);

        f.view.setDocument(nullptr);
        QCOMPARE(f.summary(), QString());
        f.document = documentFrom("<i k='Modules'/>");
        f.view.setDocument(f.document.get());
        QCOMPARE(f.summary(),
                 u"No unused module data: every module with saved data is in the module list."_s);
        QVERIFY(!f.child<QPushButton>("tickAllButton")->isEnabled());
    }
};

} // namespace kse

KSE_TEST_MAIN(kse::TestUnusedModulesView)
#include "TestUnusedModulesView.moc"
