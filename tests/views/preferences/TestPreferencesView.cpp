// SPDX-License-Identifier: MIT
#include "views/preferences/PreferencesView.h"

#include "support/SettingsPage.h"

namespace {

const QString group = u"Global/Preferences/"_s;
const QString nodes =
    u"~Application/S&b/Deep/Needle:s=hay; ~Application/Fast:b=true; ~Application/Data:B=Needle; "
    "~Identifiers/Max:s=x; ~GUI/Icon:s=%1&; ~ScriptEditor/Cache/c:s=1; ~ScriptEditor/Cache:s=1; "
    "~ScriptEditor/Tab:s=x; ~Security/Keys/k:T=2020; ~/e:s=1; Global/ColorManagement/On:b=true"_s
        .replace(u"~"_s, group);

struct Page : SettingsPage<PreferencesView>
{
    using SettingsPage::SettingsPage;

    /// The pages in the list, the current one in brackets, and what is in sight on it.
    QString shown()
    {
        QStringList titles;
        for (int i = 0; i < list->count(); ++i) {
            if (!list->item(i)->isHidden()) {
                titles << (i == list->currentRow() ? u"[%1]"_s : u"%1"_s).arg(title(i));
            }
        }
        QStringList texts;
        for (const QWidget* widget : children()) {
            const QString name = widget->objectName();
            if (widget->isVisible() && (name == "nameLabel"_L1 || name == "toggleButton"_L1)) {
                texts.append(widget->property("text").toString());
            }
        }
        return titles.join(u", "_s) + u": "_s + texts.join(u"; "_s);
    }

    QString title(int i) const { return list->item(i)->text(); }

    QListWidget* list = view.findChild<QListWidget*>(u"pageList"_s);
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
                               "GUI, (no name): Fast; S&&b"_s);
        page.child<QToolButton>("toggleButton")->click();
        QVERIFY(page.shown().endsWith(u": Fast; S&&b; Deep"));
        QCOMPARE(page.child<QToolButton>("toggleButton")->arrowType(), Qt::DownArrow);
        QTest::keyClick(page.list, Qt::Key_Down);
        QVERIFY(page.shown().endsWith(u": On"));
        QVERIFY(page.view.selectPage(2) && page.shown().endsWith(u": Tab"));
        QVERIFY(page.view.selectPage(3) && !page.view.selectPage(5) && !page.view.selectPage(-1));
        QVERIFY(page.shown().endsWith(u": Identifiers; Max; GUI; Icon"));
        QTest::mouseClick(page.list->viewport(), Qt::LeftButton, Qt::ControlModifier,
                          page.list->visualItemRect(page.list->item(4)).center());
        QTest::mouseClick(page.list->viewport(), Qt::LeftButton, {}, {5, 550});
        QVERIFY(page.list->item(4)->isSelected() && page.shown().endsWith(u": E"));
    }

    void countsChangesAndSearches()
    {
        QString many = nodes;
        for (int i = 0; i < 50; ++i) {
            many += u"; %1Application/Key%2:s="_s.arg(group).arg(i);
        }
        Page page(many);
        const auto counts = [&page] {
            return page.title(0) + page.text("toggleButton");
        };
        page.model.setValue(page.node(group + u"Application/S&b/Deep/Needle"_s), u"straw"_s);
        QCOMPARE(counts(), u"Application   ● 1S&&b   ● 1"_s);
        page.document.commitEdits();
        page.model.refreshAll(); // as after a save
        QCOMPARE(counts(), u"ApplicationS&&b"_s);

        const auto* pages = page.child<QStackedWidget>("pageStack");
        auto* bar = static_cast<QScrollArea*>(pages->currentWidget())->verticalScrollBar();
        QTRY_VERIFY(bar->maximum() > 0);
        bar->setValue(bar->maximum());
        page.view.setSearchText(u"key"_s);
        QCOMPARE(bar->value(), 0);
        const auto found = [&page](const QStringList& cells) {
            page.view.setSearchText(cells[0]);
            return page.shown();
        };
        compareRows({"straw > [Application]: S&&b; Deep; Needle",
                     "true > : ", "ICON > [Identifiers and GUI]: GUI; Icon",
                     "%1& > [Identifiers and GUI]: GUI; Icon"},
                    found);
        page.view.setSearchText({});
        QVERIFY(page.view.selectPage(0));
        QVERIFY(page.shown().endsWith(u"; S&&b")); // the section is closed, as at first
        page.view.setSearchText(u"icon"_s);
        page.reload();
        QCOMPARE(page.shown(), u"[Identifiers and GUI]: GUI; Icon"_s);
    }

    /// So many rows that they are made and searched later.
    void searchesInManyRows()
    {
        QString many = u"; ~Other/O:s=; ~Sub/Key7:s=; ~Sub/O:s="_s;
        for (int i = 0; i < 998; ++i) {
            many.prepend(u"; ~Key%1:s="_s.arg(i));
        }
        Page page(many.replace(u"~"_s, group + u"Application/"_s).mid(2));
        page.view.activateWindow();
        QVERIFY(QTest::qWaitForWindowActive(&page.view));
        QTest::keyClicks(page.view.findChild<QLineEdit*>(u"searchEdit"_s), u"7"_s);
        auto* clicked = page.view.findChild<WidgetColumn*>()->findChild<QLineEdit*>();
        clicked->setFocus(Qt::MouseFocusReason); // a click would wait for what is to come later
        QCOMPARE(QApplication::focusWidget(), clicked);
        QVERIFY(page.shown().endsWith(u"; Key 17; Key 7; Sub; Key 7"));
        QCOMPARE(page.shown().count(u';'), 272);
        QVERIFY(page.child("limitLabel")->isVisible());
    }
};

KSE_TEST_MAIN(TestPreferencesView)
#include "TestPreferencesView.moc"
