// SPDX-License-Identifier: MIT
#include "document/Leaves.h"
#include "support/DialogAnswerer.h"
#include "support/SettingsPage.h"
#include "support/TestMain.h"
#include "views/rows/SettingRow.h"
#include "views/search/ModuleSearchDialog.h"
#include "views/search/SearchView.h"

#include <QtWidgets>

using namespace Qt::StringLiterals;
using namespace kse;

namespace {

struct Page : SettingsPage<SearchView>
{
    explicit Page(const QByteArray& content)
        : SettingsPage(content)
    {
        view.show();
        (void)QTest::qWaitForWindowActive(&view);
    }

    void type(const QString& text) const { QTest::keyClicks(child<QLineEdit>("queryEdit"), text); }
    QList<SettingRow*> rows() const { return column<SettingRow>("resultsContainer"); }
    QString keys() const
    {
        QStringList keys;
        for (const SettingRow* row : rows()) {
            keys.append(row->node()->key);
        }
        return keys.join(u' ');
    }
};

const QByteArray sample =
    R"(<v k="When" t="t" v="2025-01-01"/><i k="Mask"><v k="Other" t="s" v="a mask"/></i>)"
    R"(<v k="MaskOn" t="b" v="true"/><v k="Mask" t="s" v="x"/><v k="Data" t="B">TWFzaw==</v>)"
    R"(<i k="a"><v k="Gone" t="s" v="under a mask"/></i>)";

} // namespace

class TestSearchView : public QObject
{
    Q_OBJECT

private slots:
    /// What to type, the boxes to toggle by keyboard, and the keys of the rows.
    void searchesAsTypedAndTicked_data()
    {
        addTextRows({"mask >  > Mask MaskOn Other Gone", "mask > searchNames > Gone Other",
                     "mask > searchValues > Mask MaskOn Other",
                     "mask > searchNames searchValues searchDescriptions > ",
                     " > changedOnly > Gone MaskOn", "mask > changedOnly > MaskOn Gone",
                     "a > includeProtected > Data Mask MaskOn Gone Other"});
    }
    void searchesAsTypedAndTicked()
    {
        QFETCH(QStringList, cells);
        const Page page(sample);
        page.node(u"MaskOn"_s)->value = u"false"_s;
        page.node(u"a"_s)->markedForDeletion = true;
        page.type(cells[0]);
        for (const QString& box : cells[1].split(u' ', Qt::SkipEmptyParts)) {
            QTest::keyClick(page.view.findChild<QCheckBox*>(box), Qt::Key_Space);
        }
        QCOMPARE(page.summary(), u"Type to search the names, values and descriptions of every "
                                 "setting in the file."_s); // until the keyboard rests
        const int count = cells[2].isEmpty() ? 0 : int(cells[2].count(u' ') + 1);
        QTRY_COMPARE(page.summary(),
                     count ? u"%1 result(s)"_s.arg(count) : u"No matching settings."_s);
        QCOMPARE(page.keys(), cells[2]);
    }

    void showsHundredAtATime()
    {
        const Page page(manyValues(250));
        auto* more = page.child<QPushButton>("showMoreButton");
        page.type(u"key"_s);
        QTRY_COMPARE(page.summary(),
                     u"250 results, showing the best 100. Refine the search or show more."_s);
        QCOMPARE(more->text(), u"Show more results (150 more)"_s);
        // Tab leads down the rows and then to the button; a row's arrow is off while unchanged.
        auto* last = page.rows().constLast()->findChild<QLineEdit*>();
        last->setFocus();
        QTest::keyClick(last, Qt::Key_Tab);
        QVERIFY(more->hasFocus());
        QTest::keyClick(more, Qt::Key_Space);
        QTRY_VERIFY(page.rows().constLast()->isVisible());
        QCOMPARE(page.rows().size(), 200);
        QTest::keyClick(more, Qt::Key_Space);
        QCOMPARE(page.rows().size(), 250);
        QVERIFY(!more->isVisible());
        QVERIFY(page.rows().at(199)->isAncestorOf(QApplication::focusWidget())); // before the new
        QCOMPARE(page.summary(), u"250 result(s)"_s);
        page.child<QCheckBox>("searchValues")->click();
        QTRY_COMPARE(page.rows().size(), 100);
    }

    void narrowsRestrictedListUntilReload()
    {
        Page page(sample);
        page.child<QCheckBox>("changedOnly")->click();
        page.view.setQuery(u"nowhere"_s);
        const QList<XsdtNode*> nodes = {page.node(u"When"_s), page.node(u"MaskOn"_s)};
        page.view.showRestricted(nodes, u"<b>%1"_s);
        auto* banner = page.child<QLabel>("bannerLabel");
        QVERIFY(banner->isVisible());
        QCOMPARE(banner->text(), u"<b>%1"_s);
        QCOMPARE(banner->textFormat(), Qt::PlainText);
        QCOMPARE(page.keys(), u"MaskOn When"_s);
        QVERIFY(!page.child<QLineEdit>("queryEdit")->findChild<QToolButton*>()->isVisible());
        page.view.focusQuery();
        QTest::keyClicks(QApplication::focusWidget(), u"mask"_s);
        QTRY_COMPARE(page.keys(), u"MaskOn"_s);
        QTest::mouseClick(page.child<QPushButton>("clearFilterButton"), Qt::LeftButton);
        QCOMPARE(page.keys(), u"Mask MaskOn Other Gone"_s);
        QVERIFY(!banner->isVisible());

        page.view.showRestricted(nodes, u"again"_s);
        page.child<QCheckBox>("changedOnly")->click();
        page.child<QCheckBox>("searchNames")->click();
        page.view.searchEverywhere(u"mask"_s);
        QCOMPARE(page.keys(), u"Mask MaskOn Other Gone"_s);
        page.view.showRestricted(nodes, u"again"_s);
        page.view.setQuery(u"mask"_s);
        page.view.setDocument(nullptr);
        QCOMPARE(page.keys() + page.summary(), QString());
        page.view.setDocument(page.document.get());
        QCOMPARE(page.keys(), u"Mask MaskOn Other Gone"_s);
    }

    void forgetsTreeBeneathMenuAndEditor()
    {
        Page page(sample);
        const QSignalSpy reveal(&page.view, &SearchView::revealRequested);
        page.view.setQuery(u"mask"_s);
        SettingRow* row = page.rows().constFirst();
        for (const bool isReplaced : {false, true}) {
            const DialogAnswerer<QMenu> answer([&](QMenu& menu) {
                if (isReplaced) {
                    row->findChild<QLineEdit*>()->setText(u"half a wo"_s);
                    page.view.setDocument(nullptr);
                    page.model.setDocument(nullptr);
                    page.document.reset();
                }
                menu.setActiveAction(menu.actions().constLast());
                QTest::keyClick(&menu, Qt::Key_Return);
            });
            QContextMenuEvent event(QContextMenuEvent::Mouse, {}, row->mapToGlobal(QPoint()));
            QApplication::sendEvent(row, &event);
            QVERIFY(answer.wasAsked());
            QCOMPARE(reveal.count(), 1);
        }
    }

    void bearsLongQueriesAndLists()
    {
        Page page(manyValues(100'000));
        QElapsedTimer timer;
        timer.start();
        page.view.setQuery(u"e "_s.repeated(500'000));
        QCOMPARE(page.rows().size(), 100);
        page.view.showRestricted(valuesOf(page.document->root), QString(1'000'000, u'W'));
        QCOMPARE(page.rows().size(), 100);
        QVERIFY2(timer.elapsed() < 20'000, qPrintable(QString::number(timer.elapsed())));
    }

    void asksForModule()
    {
        ModuleSearchDialog dialog({u"Alpha"_s, u"Ostrand"_s});
        auto* search = dialog.findChild<QPushButton*>(u"searchButton"_s);
        dialog.show();
        QVERIFY(QTest::qWaitForWindowActive(&dialog));
        auto* name = qobject_cast<QLineEdit*>(dialog.focusWidget());
        QTest::keyClicks(name, u"  "_s);
        QVERIFY(!search->isEnabled());
        QTest::keyClicks(name, u"TRA "_s);
        QVERIFY(search->isEnabled());
        QCOMPARE(dialog.moduleName(), u"TRA"_s);
        name->completer()->setCompletionPrefix(dialog.moduleName());
        QCOMPARE(name->completer()->currentCompletion(), u"Ostrand"_s);
        QCOMPARE(dialog.mode(), ModuleSearchMode::Process);
        dialog.findChild<QRadioButton*>(u"fullRadio"_s)->click();
        QCOMPARE(dialog.mode(), ModuleSearchMode::Full);
        name->clear();
        QTest::keyClicks(name, u"ostrand"_s);
        QTRY_VERIFY(name->completer()->popup()->isVisible());
        QTest::keyClick(name->completer()->popup(), Qt::Key_Return);
        QCOMPARE(dialog.result(), int(QDialog::Accepted));
    }
};

KSE_TEST_MAIN(TestSearchView)
#include "TestSearchView.moc"
