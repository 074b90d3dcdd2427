// SPDX-License-Identifier: MIT
#include "support/DialogAnswerer.h"
#include "support/SettingsPage.h"
#include "support/TestMain.h"
#include "views/rows/SettingRow.h"
#include "views/search/ModuleSearchDialog.h"
#include "views/search/SearchView.h"

#include <QtTest>
#include <QtWidgets>

using namespace Qt::StringLiterals;
using namespace kse;

namespace {

const QByteArray sample =
    R"(<v k="When" t="t" v="2025-01-01"/><i k="Mask"><v k="Other" t="s" v="a mask"/></i>)"
    R"(<v k="MaskOn" t="b" v="true"/><v k="Mask" t="s" v="x"/><v k="Data" t="B">TWFzaw==</v>)"
    R"(<i k="a"><v k="Gone" t="s" v="under a mask"/></i>)";

struct Page : SettingsPage<SearchView>
{
    explicit Page(const QByteArray& content = sample)
        : SettingsPage(content)
    {
        view.show();
        (void)QTest::qWaitForWindowActive(&view);
    }

    void press(const char* box) const { QTest::keyClick(child<QWidget>(box), Qt::Key_Space); }
    QList<SettingRow*> rows() const { return column<SettingRow>("resultsContainer"); }
    QString keys() const
    {
        QStringList keys;
        for (const SettingRow* row : rows()) {
            keys.append(row->node()->key);
        }
        return keys.join(u' ');
    }

    QLineEdit& query = *child<QLineEdit>("queryEdit");
};

} // namespace

class TestSearchView : public QObject
{
    Q_OBJECT

private slots:
    /// What to type, the boxes to toggle by keyboard, and the keys of the rows.
    void searchesAsTypedAndTicked_data()
    {
        addTextRows({"mask > searchNames > Gone Other", "mask > searchValues > Mask MaskOn Other",
                     "mask > searchNames searchValues searchDescriptions > ",
                     " > changedOnly > Gone MaskOn",
                     "a > includeProtected > Data Mask MaskOn Gone Other"});
    }
    void searchesAsTypedAndTicked()
    {
        QFETCH(QStringList, cells);
        const Page page;
        page.node(u"MaskOn"_s)->value = u"false"_s;
        page.node(u"a"_s)->markedForDeletion = true;
        QTest::keyClicks(&page.query, cells[0]);
        for (const QString& box : cells[1].split(u' ')) {
            page.press(qPrintable(box));
        }
        QVERIFY(page.summary().startsWith(u"Type to search")); // until the keyboard rests
        const auto count = cells[2].isEmpty() ? 0 : cells[2].count(u' ') + 1;
        QTRY_COMPARE(page.summary(),
                     count ? u"%1 result(s)"_s.arg(count) : u"No matching settings."_s);
        QCOMPARE(page.keys(), cells[2]);
    }

    void showsHundredAtATime()
    {
        const Page page(manyValues(250));
        auto* more = page.child<QPushButton>("showMoreButton");
        QTest::keyClicks(&page.query, u"key"_s);
        QTRY_VERIFY(page.summary().startsWith(u"250 results, showing the best 100."));
        QCOMPARE(more->text(), u"Show more results (150 more)"_s);
        // Tab leads down the rows and then to the button; a row's arrow is off while unchanged.
        auto* last = page.rows().constLast()->findChild<QLineEdit*>();
        last->setFocus();
        QTest::keyClick(last, Qt::Key_Tab);
        QVERIFY(more->hasFocus());
        page.press("showMoreButton");
        QTRY_VERIFY(page.rows().constLast()->isVisible());
        page.press("showMoreButton");
        QCOMPARE(page.rows().size(), 250);
        QVERIFY(page.rows().at(199)->isAncestorOf(QApplication::focusWidget())); // before the new
        page.press("searchValues");
        QTRY_COMPARE(page.rows().size(), 100);
    }

    void narrowsRestrictedListUntilReload()
    {
        Page page;
        page.press("changedOnly");
        page.view.setQuery(u"nowhere"_s);
        const QList<XsdtNode*> nodes = {page.node(u"When"_s), page.node(u"MaskOn"_s)};
        page.view.showRestricted(nodes, u"<b>%1"_s);
        QCOMPARE(page.keys(), u"MaskOn When"_s);
        QVERIFY(!page.query.findChild<QToolButton*>()->isVisible());
        QTest::keyClicks(&page.query, u"mask"_s);
        QTRY_COMPARE(page.keys(), u"MaskOn"_s);
        page.press("clearFilterButton");
        QCOMPARE(page.keys(), u"Mask MaskOn Other Gone"_s);

        page.view.showRestricted(nodes, u"again"_s);
        for (const char* box : {"changedOnly", "searchNames", "searchValues"}) {
            page.press(box);
        }
        page.view.searchEverywhere(u"mask"_s);
        QCOMPARE(page.keys(), u"Mask MaskOn Other Gone"_s);
        page.view.showRestricted(nodes, u"again"_s);
        page.view.setQuery(u"mask"_s);
        page.view.setDocument(nullptr);
        QCOMPARE(page.keys() + page.summary(), QString());
        page.document = documentFrom("<v k='mask' t='i' v='1'/>");
        page.view.setDocument(page.document.get());
        QCOMPARE(page.keys(), u"mask"_s);
    }

    void forgetsTreeBeneathMenuAndEditor()
    {
        Page page;
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
            QCOMPARE(reveal.count(), 1);
        }
    }

    void bearsLongQueries()
    {
        Page page(manyValues(100'000));
        page.view.setQuery(u"e "_s.repeated(500'000)); // hangs where each term is looked for
        QCOMPARE(page.rows().size(), 100);
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
