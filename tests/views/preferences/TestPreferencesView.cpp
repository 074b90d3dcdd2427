// SPDX-License-Identifier: MIT
#include "views/preferences/PreferencesView.h"

#include "support/SettingsPage.h"

using namespace kse;

namespace {

const QString application = u"Global/Preferences/Application/"_s;
const QString nodes =
    u"Global/Preferences/Application/S&b/Deep/Needle:s=hay; Global/Preferences/Application/Fast:"
    "b=true; Global/Preferences/Application/Data:B=Needle; Global/Preferences/Identifiers/Max:s=x; "
    "Global/Preferences/GUI/Icon:s=%1&; Global/Preferences/ScriptEditor/Cache/c:s=1; "
    "Global/Preferences/ScriptEditor/Tab:s=x; Global/Preferences/Security/Keys/k:T=2020; "
    "Global/Preferences//e:s=1; Global/ColorManagement/On:b=true"_s;

struct Page : SettingsPage<PreferencesView>
{
    using SettingsPage::SettingsPage;

    /// The pages in the list, the current one in brackets, and what is in sight on it.
    QString shown()
    {
        QStringList titles;
        for (int i = 0; i < list->count(); ++i) {
            if (!list->item(i)->isHidden()) {
                const QString title = list->item(i)->text();
                titles.append(i == list->currentRow() ? u'[' + title + u']' : title);
            }
        }
        QStringList texts;
        for (const QWidget* widget : children()) {
            const QString name = widget->objectName();
            if (widget->isVisible() && (name == "nameLabel"_L1 || name == "toggleButton"_L1)) {
                texts.append(widget->property("text").toString());
            }
        }
        return titles.join(u", "_s) + u": "_s + texts.join(u" > "_s);
    }

    QToolButton* toggle() const
    {
        return stack->currentWidget()->findChild<QToolButton*>(u"toggleButton"_s);
    }

    QStackedWidget* stack = child<QStackedWidget>("pageStack");
    QListWidget* list = child<QListWidget>("pageList");
};

} // namespace

class TestPreferencesView : public QObject
{
    Q_OBJECT

private slots:
    void laysOutPages()
    {
        Page page(nodes);
        QCOMPARE(page.shown(), u"[Application], Color Management, Script Editor, Identifiers and "
                               "GUI, (no name): Fast > S&&b"_s);
        page.toggle()->click();
        QVERIFY(page.shown().endsWith(u": Fast > S&&b > Deep"));
        QTest::keyClick(page.list, Qt::Key_Down);
        QVERIFY(page.shown().endsWith(u": On"));
        QVERIFY(page.view.selectPage(2) && page.shown().endsWith(u": Tab"));
        QVERIFY(page.view.selectPage(3) && !page.view.selectPage(5) && !page.view.selectPage(-1));
        QVERIFY(page.shown().endsWith(u": Identifiers > Max > GUI > Icon"));
        QTest::mouseClick(page.list->viewport(), Qt::LeftButton, Qt::ControlModifier,
                          page.list->visualItemRect(page.list->item(4)).center());
        QTest::mouseClick(page.list->viewport(), Qt::LeftButton, {}, {5, 550});
        QVERIFY(page.list->item(4)->isSelected() && page.shown().endsWith(u": E"));
    }

    void countsChangesAndSearches()
    {
        QString many = nodes;
        for (int i = 0; i < 50; ++i) {
            many += u"; "_s + application + u"Key%1:s="_s.arg(i);
        }
        Page page(many);
        XsdtNode* node = page.node(application + u"S&b/Deep/Needle"_s);
        QVERIFY(page.model.setValue(node, u"straw"_s));
        QCOMPARE(page.list->item(0)->text() + page.toggle()->text(),
                 u"Application   ● 1S&&b   ● 1"_s);
        page.document.commitEdits();
        page.model.refreshAll(); // as after a save
        QCOMPARE(page.list->item(0)->text() + page.toggle()->text(), u"ApplicationS&&b"_s);

        auto* bar = qobject_cast<QScrollArea*>(page.stack->widget(1))->verticalScrollBar();
        bar->setValue(bar->maximum());
        page.view.setSearchText(u"straw"_s);
        QCOMPARE(bar->value(), 0);
        QCOMPARE(page.shown(), u"[Application]: S&&b > Deep > Needle"_s);
        page.view.setSearchText(u"Icon"_s);
        QCOMPARE(page.shown(), u"[Identifiers and GUI]: GUI > Icon"_s);
        page.view.setSearchText({});
        QVERIFY(page.view.selectPage(0));
        QVERIFY(page.shown().endsWith(u" > S&&b")); // the section is closed, as at first
    }
};

KSE_TEST_MAIN(TestPreferencesView)
#include "TestPreferencesView.moc"
