// SPDX-License-Identifier: MIT
#include "support/SettingsPage.h"
#include "support/TestMain.h"
#include "support/TreePage.h"
#include "views/health/GroupLine.h"
#include "views/health/HealthView.h"

#include <QHelpEvent>
#include <QToolTip>

using namespace Qt::StringLiterals;
using namespace kse;

namespace {

struct Page : SettingsPage<HealthView>
{
    using SettingsPage::SettingsPage;

    QList<QWidget*> cards() const { return column<QWidget>("cardsContainer"); }
    QPushButton* deleteButton(int line) const
    {
        return view.findChildren<QPushButton*>(u"deleteButton"_s).at(line);
    }
    QLabel* label(int line) const { return view.findChildren<QLabel*>(u"groupLabel"_s).at(line); }

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

const QByteArray duplicate = R"(<v k="&lt;i>%1&amp;" t="s" v="1"/>)";

} // namespace

class TestHealthView : public QObject
{
    Q_OBJECT

private slots:
    void checksWhenFirstShown()
    {
        Page page("<i k='Global'><i k='Preferences'><i k='Application'>"
                  "<v k='AutoSaveSettingsPeriod' t='u' v='0'/></i></i></i>" +
                  duplicate.repeated(2));
        QSignalSpy summary(&page.view, &HealthView::summaryChanged);
        page.view.show();
        page.view.hide();
        page.view.show();
        QCOMPARE(summary.takeFirst(), (QVariantList{1, 1}));
        QVERIFY(summary.isEmpty());
        QCOMPARE(page.summary(), u"1 problem(s), 1 warning(s), 0 note(s)"_s);
        page.model.setValue(page.document->root.children.back().get(), u"2"_s);
        QVERIFY(page.summary().contains(u"run the check again"));
        page.view.setDocument(nullptr);
        QCOMPARE(summary.takeFirst(), (QVariantList{0, 0}));
        QCOMPARE(page.text() + page.summary(), QString());
    }

    void showsTwelveSettingsOfFinding()
    {
        Page page(duplicate.repeated(13) + "<i k='ModuleData'><i k='Old'/></i>");
        const QSignalSpy open(&page.view, &HealthView::openUnusedModules);
        page.view.show();
        QCOMPARE(page.text(), u"<b>Warning:</b> &quot;&lt;i&gt;%1&amp;&quot; appears 13 times in "
                              "the top level\n"_s +
                                  u"<i>%1&&\n"_s.repeated(12) +
                                  u"...and 1 more.\n<b>Note:</b> 1 module(s) have saved data but "
                                  "are not in the module list\n"_s);
        page.child<QPushButton>("openUnusedButton")->click();
        QCOMPARE(open.count(), 1);
    }

    void offersToDeleteDuplicatedGroups()
    {
        Page page("<i k='Global'><v k='n' t='i' v='1'/></i><i k='Global'/>"
                  "<i k='ScriptData'><i k='&lt;i>&amp;'/><i k='&lt;i>&amp;'/></i>");
        const QSignalSpy reveal(&page.view, &HealthView::revealRequested);
        page.view.run();
        QCOMPARE(page.label(0)->text() + page.label(3)->text(),
                 asMarkupOf(u"Global"_s, 1) + asMarkupOf(u"ScriptData/&lt;i&gt;&amp;"_s, 0));
        QVERIFY(page.deleteButton(0)->toolTip().startsWith(u"Protected: "));
        QVERIFY(page.deleteButton(3)->toolTip().startsWith(u"Saved settings of a script."));
        for (const bool readOnly : {false, true, false}) {
            page.view.setReadOnly(readOnly);
            QVERIFY(!page.deleteButton(0)->isEnabled());
            QCOMPARE(page.deleteButton(3)->isEnabled(), !readOnly);
        }
        page.view.findChildren<QPushButton*>(u"revealButton"_s)[3]->click();
        QCOMPARE(reveal[0][0].value<XsdtNode*>(),
                 page.document->root.children.back()->children.back().get());
    }

    void asksBeforeTheLastCopyGoes()
    {
        Page page("<i k='ScriptData'><i k='A'><v k='x' t='s' v='1'/></i><i k='A'/></i>");
        QSignalSpy remove(&page.view, &HealthView::deleteRequested);
        QSignalSpy restore(&page.view, &HealthView::restoreRequested);
        page.view.run();
        QHelpEvent help(QEvent::ToolTip, {}, {});
        QApplication::sendEvent(page.child<GroupLine>("groupLine"), &help);
        QCOMPARE(QToolTip::text(), u"Copy 1 of 2, in the order of the file\nx = 1"_s);
        XsdtNode* group = page.node(u"ScriptData"_s);
        XsdtNode* first = group->children[0].get();
        QVERIFY(page.model.markForDeletion(first));
        QCOMPARE(page.deleteButton(0)->accessibleName(),
                 u"Undo deletion of ScriptData/A (1 of 2)"_s);
        QVERIFY(page.label(0)->font().strikeOut() && !page.label(1)->font().strikeOut());
        for (const auto answer : {QMessageBox::Cancel, QMessageBox::Yes}) {
            QVERIFY(remove.isEmpty());
            const DialogAnswerer<QMessageBox> box(
                [answer](QMessageBox& asked) { asked.button(answer)->click(); });
            page.deleteButton(1)->click();
            QVERIFY(box.wasAsked());
        }
        QCOMPARE(remove.count(), 1);
        page.deleteButton(0)->click();
        QCOMPARE(restore[0][0].value<XsdtNode*>(), first);
        page.model.undoDeletion(first);
        page.deleteButton(1)->click(); // no question
        QCOMPARE(remove.count(), 2);

        QVERIFY(page.model.markForDeletion(first));
        page.model.revertAll();
        QVERIFY(!page.label(0)->font().strikeOut());
    }

    void showsManyFindingsInSteps()
    {
        Page page(manyValues(450, 2));
        page.view.show();
        auto* more = page.child<QPushButton>("showMoreButton");
        QCOMPARE(page.cards().size(), 200);
        QCOMPARE(more->text(), u"Show more findings (250 more)"_s);
        more->click();
        more->click();
        QCOMPARE(page.cards().size(), 450);
    }

private:
    static QString asMarkupOf(const QString& path, int values)
    {
        return u"<b><span style=\"white-space:pre-wrap\">%1</span></b>  (%2 value(s))"_s.arg(path)
            .arg(values);
    }
};

KSE_TEST_MAIN(TestHealthView)
#include "TestHealthView.moc"
