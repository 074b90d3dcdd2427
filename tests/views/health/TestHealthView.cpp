// SPDX-License-Identifier: MIT
#include "support/DialogAnswerer.h"
#include "support/SettingsPage.h"
#include "support/TestMain.h"
#include "views/health/GroupLine.h"
#include "views/health/HealthView.h"
#include "views/rows/SettingRow.h"

#include <QtWidgets>

using namespace Qt::StringLiterals;
using namespace kse;

namespace {

struct Page : SettingsPage<HealthView>
{
    using SettingsPage::SettingsPage;

    QList<QWidget*> cards() const { return column<QWidget>("cardsContainer"); }

    // A line for each text on the cards but the details.
    QString text() const
    {
        QString text;
        for (const QWidget* card : cards()) {
            for (const QLabel* label : card->findChildren<QLabel*>()) {
                const bool isDetail = label->objectName() == "detailLabel"_L1;
                text += label->isHidden() || isDetail ? QString() : label->text() + u'\n';
            }
        }
        return text.remove(u"<span style=\"white-space:pre-wrap\">"_s).remove(u"</span>"_s);
    }
};

const QByteArray outOfRange = R"(<i k="Global"><i k="Preferences"><i k="Application">)"
                              R"(<v k="AutoSaveSettingsPeriod" t="u" v="0"/></i></i></i>)";
const QByteArray duplicate = R"(<v k="&lt;i>%1&amp;" t="s" v="1"/>)";

} // namespace

class TestHealthView : public QObject
{
    Q_OBJECT

private slots:
    void checksWhenFirstShown()
    {
        Page page(outOfRange + duplicate.repeated(2));
        QSignalSpy summary(&page.view, &HealthView::summaryChanged);
        QVERIFY(page.cards().isEmpty());
        page.view.show();
        page.view.hide();
        page.view.show();
        QCOMPARE(summary.takeFirst(), (QVariantList{1, 1}));
        QVERIFY(summary.isEmpty());
        QCOMPARE(page.summary(), u"1 problem(s), 1 warning(s), 0 note(s)"_s);
        page.view.setDocument(nullptr);
        QCOMPARE(summary.takeFirst(), (QVariantList{0, 0}));
        QCOMPARE(page.text() + page.summary(), QString());
        page.view.setDocument(page.document.get()); // while it is shown
        QCOMPARE(page.cards().size(), 2);
    }

    void showsTwelveSettingsOfFinding()
    {
        Page page(duplicate.repeated(13) + "<i k=\"ModuleData\"><i k=\"Old\"/></i>");
        const QSignalSpy open(&page.view, &HealthView::openUnusedModules);
        page.view.show();
        QCOMPARE(page.text(), u"<b>Warning:</b> &quot;&lt;i&gt;%1&amp;&quot; appears 13 times in "
                              "the top level\n"_s +
                                  u"<i>%1&&\n"_s.repeated(12) +
                                  u"...and 1 more.\n<b>Note:</b> 1 module(s) have saved data but "
                                  "are not in the module list\n"_s);
        QTest::mouseClick(page.child<QPushButton>("openUnusedButton"), Qt::LeftButton);
        QCOMPARE(open.count(), 1);
    }

    void offersToDeleteDuplicatedGroups()
    {
        for (const bool readOnly : {true, false}) {
            Page page(R"(<i k="Global"><v k="n" t="i" v="1"/></i><i k="Global"/>)"
                      R"(<i k="ScriptData"><i k="&lt;i>&amp;"/><i k="&lt;i>&amp;"/></i>)");
            const QSignalSpy remove(&page.view, &HealthView::deleteRequested);
            const QSignalSpy reveal(&page.view, &HealthView::revealRequested);
            page.view.setReadOnly(readOnly);
            page.view.run();
            QCOMPARE(page.text().section(u'\n', 1, 2),
                     u"<b>Global</b>  (1 value(s))\n<b>Global</b>  (0 value(s))"_s);
            QCOMPARE(page.text().section(u'\n', 5, 5),
                     u"<b>ScriptData/&lt;i&gt;&amp;</b>  (0 value(s))"_s);
            const auto buttons = page.view.findChildren<QPushButton*>(u"deleteButton"_s);
            QVERIFY(!buttons[0]->isEnabled());
            QVERIFY(buttons[0]->toolTip().startsWith(u"Protected: "_s));
            QVERIFY(buttons[3]->toolTip().startsWith(u"Saved settings of a script."_s));
            buttons[3]->click();
            QCOMPARE(remove.count(), readOnly ? 0 : 1);
            page.view.setReadOnly(!readOnly); // the card stands on
            QVERIFY(!buttons[0]->isEnabled());
            QCOMPARE(buttons[3]->isEnabled(), readOnly);
            page.view.findChildren<QPushButton*>(u"revealButton"_s)[3]->click();
            QCOMPARE(reveal[0][0].value<XsdtNode*>(),
                     page.document->root.children.back()->children.back().get());
        }
    }

    void asksBeforeTheLastCopyGoes()
    {
        Page page("<i k='ScriptData'><i k='A'><v k='x' t='s' v='1'/></i><i k='A'/></i>");
        QSignalSpy remove(&page.view, &HealthView::deleteRequested);
        QSignalSpy restore(&page.view, &HealthView::restoreRequested);
        page.view.run();
        const auto lines = page.view.findChildren<GroupLine*>();
        const auto button = [&lines](int line) {
            return lines[line]->findChild<QPushButton*>(u"deleteButton"_s);
        };
        const auto label = [&lines](int line) {
            return lines[line]->findChild<QLabel*>(u"groupLabel"_s);
        };
        QHelpEvent help(QEvent::ToolTip, {}, {});
        QApplication::sendEvent(lines[0], &help);
        QCOMPARE(QToolTip::text(), u"Copy 1 of 2, in the order of the file\nx = 1"_s);
        XsdtNode* group = page.node(u"ScriptData"_s);
        const int width = button(0)->sizeHint().width();
        QVERIFY(page.model.markForDeletion(group->children[0].get()));
        QCOMPARE(button(0)->text(), u"Undo deletion"_s);
        QCOMPARE(button(0)->accessibleName(), u"Undo deletion of ScriptData/A (1 of 2)"_s);
        QCOMPARE(button(0)->sizeHint().width(), width);
        QVERIFY(label(0)->font().strikeOut() && !label(1)->font().strikeOut());

        for (const auto answer : {QMessageBox::Cancel, QMessageBox::Yes}) {
            QVERIFY(remove.isEmpty());
            const DialogAnswerer<QMessageBox> answerer([answer](QMessageBox& box) {
                QCOMPARE(box.text(), u"Every other copy of ScriptData/A is queued for deletion. If "
                                     "this one goes too, nothing is left of it."_s);
                box.button(answer)->click();
            });
            button(1)->click();
        }
        QCOMPARE(remove.count(), 1);
        button(0)->click();
        QCOMPARE(restore[0][0].value<XsdtNode*>(), group->children[0].get());
        page.model.undoDeletion(group->children[0].get());
        button(1)->click(); // no question
        QCOMPARE(remove.count(), 2);

        QVERIFY(page.model.markForDeletion(group->children[0].get()));
        page.model.revertAll();
        QVERIFY(!label(0)->font().strikeOut());
        group->markedForDeletion = true;
        page.model.refreshAll();
        page.view.setReadOnly(true);
        page.view.setReadOnly(false);
        QVERIFY(label(0)->font().strikeOut() && !button(0)->isEnabled());
        QCOMPARE(label(0)->accessibleDescription(),
                 u"Copy 1 of 2, in the order of the file\nInside a group marked for deletion"_s);
    }

    void keepsBothEndsOfLongTexts()
    {
        Page page(
            QByteArray(duplicate).replace("k=\"", "k=\"a  " + QByteArray(9999, 'k')).repeated(2));
        page.view.run();
        QVERIFY(page.text().startsWith(u"<b>Warning:</b> &quot;a  kk"_s));
        QVERIFY(page.text().contains(u"&quot; appears 2 times in the top level\n"_s));
        const QLabel* title = page.child<QLabel>("titleLabel");
        QVERIFY(title->text().contains(u"pre-wrap"_s)); // both blanks of the key are shown
    }

    void showsManyFindingsInSteps()
    {
        Page page(manyValues(450, 2));
        page.view.show();
        auto* more = page.child<QPushButton>("showMoreButton");
        QCOMPARE(page.summary(), u"0 problem(s), 450 warning(s), 0 note(s)"_s);
        QCOMPARE(page.cards().size(), 200);
        QCOMPARE(more->text(), u"Show more findings (250 more)"_s);
        more->click();
        more->click();
        QCOMPARE(page.cards().size(), 450);
        QVERIFY(!more->isVisible());
    }
};

KSE_TEST_MAIN(TestHealthView)
#include "TestHealthView.moc"
