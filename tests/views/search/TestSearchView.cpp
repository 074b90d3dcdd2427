// SPDX-License-Identifier: MIT
#include "views/search/SearchView.h"

#include "support/SettingsPage.h"
#include "views/rows/SettingRow.h"

namespace {

struct Page : SettingsPage<SearchView>
{
    explicit Page(const QString& nodes)
        : SettingsPage(nodes)
    {
        (void)QTest::qWaitForWindowActive(&view);
    }

    void press(const QString& box) const { QTest::keyClick(view.findChild<QWidget*>(box), ' '); }
    QList<SettingRow*> rows() const
    {
        QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete); // those of before
        return children<SettingRow>();
    }
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
    /// The boxes to toggle, what to search for, and the keys of what is found.
    void findsBestFirst()
    {
        const QString nodes =
            u"Top:s=unMASKed; Block:B=mask; G/Gone:b=1 deleted; H deleted; H/In:b=1; "
            u"Mask/b:s=Light Mask; aMask:i=0; "
            "ÉTÉ:i=0; été:i=0; MaskOn:i=0; Mask:s=light; Light:s=a mask; z-z/y:i=12; z/x:t=12; "
            "Global/ImageWindow/WheelDirection:i=0; "_s +
            u"deep/"_s.repeated(5000) + u"end/of:s="_s;
        const auto found = [&nodes](const QStringList& cells) {
            Page page(nodes);
            page.node(u"MaskOn"_s)->value = u"12"_s;
            for (const QString& box : cells[0].split(u' ', Qt::SkipEmptyParts)) {
                page.press(box);
            }
            page.view.setQuery(cells[1]);
            return page.keys();
        };
        compareRows({" > MASK > Mask MaskOn aMask b Light Top", " > mask light > Light Mask b",
                     " > light mask mask > Mask Light b", " > \"light mask\" > b",
                     " > \"mask light\" > ", " > \u00C9t\u00E9 > ÉTÉ été", " > 12 > MaskOn y",
                     " > fast 12 > ", " > deep/end/of > of", "\u0020>  > ",
                     "searchNames includeProtected > mask > Light b Top",
                     "searchValues > light > Light",
                     "searchNames searchValues > \"Zoom direction\" > WheelDirection",
                     "searchNames searchValues searchDescriptions > \"zoom direction\" > ",
                     "includeProtected > 12 > MaskOn y x", "includeProtected > block > Block",
                     "changedOnly >  > Gone In MaskOn", "changedOnly > gone > Gone"},
                    found);
    }

    void showsHundredAtATime()
    {
        QString nodes;
        for (int i = 0; i < 250; ++i) {
            nodes += u"Key%1:s=; "_s.arg(i);
        }
        Page page(nodes);
        auto* more = page.child<QPushButton>("showMoreButton");
        page.query.setText(u"key "_s.repeated(100'000)); // hangs if each is looked for
        QVERIFY(page.text("summaryLabel").startsWith(u"Type to search")); // once no more is typed
        QTRY_VERIFY(page.text("summaryLabel").startsWith(u"250 results, showing the best 100."));
        QCOMPARE(more->text(), u"Show more results (150 more)"_s);
        more->setFocus();
        page.press(more->objectName());
        QTRY_VERIFY(page.rows().constLast()->isVisible());
        QVERIFY(page.rows().at(99)->isAncestorOf(QApplication::focusWidget())); // before the new
        QVERIFY(page.rows().constLast()->findChild<QLineEdit*>()->isEnabled());
        page.view.setReadOnly(true);
        more->setFocus();
        page.press(more->objectName());
        QCOMPARE(page.rows().size(), 250);
        QVERIFY(!page.rows().constLast()->findChild<QLineEdit*>()->isEnabled());
        QVERIFY(page.rows().at(199)->isAncestorOf(QApplication::focusWidget()));
        auto* bar = page.view.findChild<QScrollArea*>()->verticalScrollBar();
        bar->setValue(bar->maximum());
        page.press(u"searchValues"_s);
        QTRY_COMPARE(page.rows().size(), 100);
        QCOMPARE(bar->value(), 0);
        page.view.setQuery(u"key 1 0"_s);
        QTest::keyClick(bar->parentWidget(), Qt::Key_End); // before the last one is made
        const auto* last = page.view.findChildren<SettingRow*>().constLast();
        QVERIFY(last == page.rows().constLast() && !last->visibleRegion().isEmpty());
    }

    void narrowsRestrictedListUntilReload()
    {
        Page page(u"When:t=2025; Mask:s=x; MaskOn:b=1"_s);
        const QList<XsdtNode*> nodes = {page.node(u"When"_s), page.node(u"MaskOn"_s)};
        page.press(u"changedOnly"_s);
        page.view.setQuery(u"nowhere"_s);
        page.view.showRestricted(nodes, u"<b>%1"_s);
        QCOMPARE(page.keys(), u"MaskOn When"_s);
        QVERIFY(!page.query.findChild<QToolButton*>()->isVisible());
        page.view.setQuery(u"mask"_s);
        QCOMPARE(page.keys(), u"MaskOn"_s);
        page.press(u"searchNames"_s);
        page.view.searchEverywhere(u"mask"_s);
        QCOMPARE(page.keys(), u"Mask MaskOn"_s);
        page.view.showRestricted(nodes, u"again"_s);
        page.view.setQuery(u"mask"_s);
        page.reload();
        QCOMPARE(page.keys(), u"Mask MaskOn"_s);
    }
};

KSE_TEST_MAIN(TestSearchView)
#include "TestSearchView.moc"
