// SPDX-License-Identifier: MIT
#include "views/preferences/PreferencesView.h"

#include "support/DialogAnswerer.h"
#include "support/SettingsPage.h"
#include "support/TestMain.h"
#include "views/rows/SettingRow.h"

#include <QtTest>
#include <QtWidgets>

using namespace Qt::StringLiterals;

namespace kse {

namespace {

const QByteArray content =
    "<i k='Global'><i k='Preferences'>"
    "<i k='Application'><i k='S&amp;b'><i k='Deep'><v k='Needle' t='s' v='hay'/></i></i>"
    "<v k='Fast' t='b' v='true'/><v k='Data' t='B' v='Needle'/></i>"
    "<i k='Identifiers'><v k='Max' t='s' v='eight'/></i>"
    "<i k='GUI'><v k='Icon' t='s' v='%1&amp;'/></i>"
    "<i k='ScriptEditor'><i k='Cache'><v k='c' t='s' v='1'/></i><v k='Tab' t='s' v='x'/></i>"
    "<i k='Security'><i k='Keys'><v k='k' t='T' v='2020'/></i></i>"
    "<i k='ProcessInterface'><v k='p' t='s' v='1'/></i><i k=''><v k='e' t='s' v='1'/></i>"
    "</i><i k='ColorManagement'><v k='On' t='b' v='true'/></i></i>";

struct Fixture : SettingsPage<PreferencesView>
{
    explicit Fixture(const QByteArray& xml = content)
        : SettingsPage(xml)
    {
        view.show();
    }

    template <typename Widget>
    Widget* onFirstPage(const char* name)
    {
        return stack->widget(1)->findChild<Widget*>(QLatin1String(name));
    }

    /// The titles that show, the current one in brackets.
    QString pages()
    {
        QStringList titles;
        for (int i = 0; i < list->count(); ++i) {
            if (!list->item(i)->isHidden()) {
                const QString title = list->item(i)->text();
                titles.append(i == list->currentRow() ? u'[' + title + u']' : title);
            }
        }
        return titles.join(u", "_s);
    }

    /// The titles and names in sight on the current page.
    QString shown()
    {
        QStringList texts;
        for (const QWidget* widget : stack->currentWidget()->findChildren<QWidget*>()) {
            const QString name = widget->objectName();
            if (widget->isVisible() && (name == "nameLabel"_L1 || name == "toggleButton"_L1)) {
                texts.append(widget->property("text").toString());
            }
        }
        return texts.join(u" > "_s);
    }

    QStackedWidget* stack = view.findChild<QStackedWidget*>(u"pageStack"_s);
    QListWidget* list = view.findChild<QListWidget*>(u"pageList"_s);
};

} // namespace

class TestPreferencesView : public QObject
{
    Q_OBJECT

private slots:
    void laysOutPages()
    {
        Fixture f;
        QCOMPARE(
            f.pages(),
            u"[Application], Color Management, Script Editor, Identifiers and GUI, (no name)"_s);
        QCOMPARE(f.shown(), u"Fast > S&&b"_s);
        QTest::mouseClick(f.onFirstPage<QToolButton>("toggleButton"), Qt::LeftButton);
        QCOMPARE(f.shown(), u"Fast > S&&b > Deep"_s);
        DialogAnswerer<QMenu> answer([](QMenu& menu) {
            QCOMPARE(menu.actions().size(), 1); // no way to the tree from here
            QCOMPARE(menu.actions().constFirst()->text(), u"Why can't this be deleted?"_s);
        });
        emit f.onFirstPage<QToolButton>("toggleButton")->customContextMenuRequested({});
        QVERIFY(answer.wasAsked());
        QTest::keyClick(f.list, Qt::Key_Down);
        QCOMPARE(f.shown(), u"On"_s);
        QTest::mouseClick(f.list->viewport(), Qt::LeftButton, Qt::ControlModifier,
                          f.list->visualItemRect(f.list->item(1)).center());
        QCOMPARE(f.list->selectedItems(), QList{f.list->item(1)});
        QVERIFY(f.view.selectPage(3) && !f.view.selectPage(5) && !f.view.selectPage(-1));
        QCOMPARE(f.shown(), u"Identifiers > Max > GUI > Icon"_s);
        QVERIFY(f.view.selectPage(4));
        QCOMPARE(f.shown(), u"E"_s);

        f.view.setDocument(nullptr);
        QCOMPARE(f.stack->currentWidget()->objectName(), u"emptyLabel"_s);
        QCOMPARE(f.view.pageCount(), 0);
    }

    void showsChangesAndBeginsEachSearchAtTheTop()
    {
        Fixture f(QByteArray(content).replace("<v k='Fast'", manyValues(50) + "<v k='Fast'"));
        const auto* title = f.onFirstPage<QToolButton>("toggleButton");
        XsdtNode* node = f.node(u"Global/Preferences/Application/S&b/Deep/Needle"_s);
        QVERIFY(f.model.setValue(node, u"straw"_s));
        QCOMPARE(f.list->item(0)->text(), u"Application   ● 1"_s);
        QCOMPARE(title->text(), u"S&&b   ● 1"_s);
        f.model.revertValue(node);
        QCOMPARE(title->text(), u"S&&b"_s);

        auto* bar = qobject_cast<QScrollArea*>(f.stack->widget(1))->verticalScrollBar();
        bar->setValue(bar->maximum());
        f.view.setSearchText(u"hay"_s);
        QCOMPARE(bar->value(), 0);
        QCOMPARE(f.shown(), u"S&&b > Deep > Needle"_s);
        QTest::keyClick(f.list, Qt::Key_Down);
        f.view.setSearchText(u"Icon"_s);
        QCOMPARE(f.pages(), u"[Identifiers and GUI]"_s);
        f.view.setSearchText({});
        QVERIFY(f.view.selectPage(0));
        QVERIFY(f.shown().endsWith(u"Fast > S&&b"_s)); // the section is closed, as at first
    }

    void copesWithHostileFile()
    {
        QByteArray deep;
        QByteArray wide;
        for (int i = 0; i < 3000; ++i) {
            deep = "<i k='d'><v k='v' t='s' v='1'/>" + deep + "</i>";
            wide += "<v k='w' t='s' v='1'/><i k='d'/>";
        }
        Fixture f("<i k='Global'><i k='Preferences'><i k='Two'>" + deep + "</i><i k='Two'>" + wide +
                  "</i><i k='Three'>" + wide + "</i></i></i>");
        QCOMPARE(f.pages(), u"[Two], Two, Three"_s);
        QCOMPARE(f.stack->widget(1)->findChildren<SettingRow*>().size(), 16);
        QCOMPARE(f.stack->widget(2)->findChildren<SettingRow*>().size(), 2000);
        QCOMPARE(f.stack->findChildren<SettingRow*>().size(), 4016);
        QVERIFY(f.view.findChild<QWidget*>(u"limitLabel"_s)->isVisible());
    }
};

} // namespace kse

KSE_TEST_MAIN(kse::TestPreferencesView)
#include "TestPreferencesView.moc"
