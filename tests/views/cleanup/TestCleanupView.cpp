// SPDX-License-Identifier: MIT
#include "views/cleanup/CleanupView.h"

#include "support/SettingsPage.h"

using namespace kse;

namespace {

struct Page : TreePage<CleanupView>
{
    explicit Page(const QString& nodes =
                      u"PixelClipboard/v:s=x; PixelClipboard/w:s=; CommandHistory/v:i=1; Other:s=; "
                      "ModuleData/z/Interfaces/W/Geometry/v:i=1; "
                      "ModuleData/A/Interfaces/A/Geometry/v:s="_s)
        : TreePage(nodes)
    {
        tree.expandAll();
    }

    /// Ticks the row of that text, or takes the tick away, by the keyboard.
    QString toggle(const QString& row)
    {
        tree.setCurrentItem(item(row));
        QTest::keyClick(&tree, Qt::Key_Space);
        return text("statusLabel");
    }
    QString message() { return messages.takeLast()[0].toString(); }

    QSignalSpy messages{&view, &CleanupView::message};
};

const QString safeTier = u"Safe to clean - PixInsight recreates these"_s;
const QString warnTier = u"Saved tool and script settings - deleting loses your configuration"_s;
const QString windows = u"Window position of each process (2)"_s;
const QString histories = u"Histories and remembered folders"_s;

} // namespace

class TestCleanupView : public QObject
{
    Q_OBJECT

private slots:
    void listsWhatThePolicyOffers()
    {
        const Page page;
        QCOMPARE(page.rows(),
                 u"[ ]%1; .[ ]%2|2|83 B; ..[ ]A › A|1|41 B; ..[ ]z › W|1|42 B; .[ ]%3|3|117 B; "
                 "..CommandHistory|1|48 B; ..PixelClipboard|2|69 B; [ ]%4; .[ ]ModuleData/A|1|89 "
                 "B; .[ ]ModuleData/z|1|90 B"_s.arg(safeTier, windows, histories, warnTier));
        Page other(u"A/x; A/y; B/%1:s="_s.arg(QString(1024, u'k')));
        QVERIFY(other.policy.load(R"({"policy": {"delete": [{"path": "A/x", "level": "safe"},
            {"path": "A/y", "level": "warn"}, {"path": "B", "level": "warn"}]},
            "cleanup": [{"title": "T", "paths": ["B"]},
            {"title": "E", "paths": ["A/x", "A/y"], "each": true}]})"));
        other.setDocument(&other.document);
        QCOMPARE(other.rows(), u"[ ]%1; .[ ]E (1)|0|13 B; ..[ ]A › x|0|13 B; [ ]%2; .[ ]A/y|0|13 "
                               "B; .[ ]B|1|1.0 KiB"_s.arg(safeTier, warnTier));
    }

    void asksBeforeSettingsAreLost()
    {
        Page page;
        QCOMPARE(page.toggle(u"z › W"_s), u"Ticked: 1 (about 42 B)"_s);
        QVERIFY(page.rows().contains(u"[-]"_s + windows));
        QCOMPARE(page.toggle(safeTier), u"Ticked: 3 (about 200 B)"_s);
        QCOMPARE(page.toggle(u"ModuleData/A"_s), u"Ticked: 4 (about 289 B)"_s);
        for (const auto answer : {QMessageBox::Cancel, QMessageBox::Yes}) {
            QVERIFY(page.messages.isEmpty());
            const QString box = page.ask("queueButton", answer);
            QVERIFY(box.contains(u" 1 tool(s) or script(s)"));
            QVERIFY(box.endsWith(u"|ModuleData/A|Cancel"));
        }
        QCOMPARE(page.message(), u"Queued for deletion: 5. Save to apply."_s);
        QCOMPARE(page.text("statusLabel"), u"Queued for deletion: 4"_s);
        page.view.tickAll(false);
        page.child<QPushButton>("undoButton")->click();
        page.view.tickAll(true);
        page.child<QPushButton>("queueButton")->click(); // without a question
        QCOMPARE(page.message(), u"Queued for deletion: 4. Save to apply."_s);
        page.view.tickAll(false);
        QVERIFY(!page.ask("queueButton", QMessageBox::Yes, [&] { page.reload(); }).isEmpty());
        QCOMPARE(page.document.pendingCount(), 0);
    }

    void showsWhatIsQueued()
    {
        Page page;
        const QString module = u"ModuleData/A"_s;
        QVERIFY(page.model.markForDeletion(page.node(u"CommandHistory"_s)));
        QVERIFY(page.model.markForDeletion(page.node(module)));
        QCOMPARE(page.rows(),
                 u"[ ]%1; .[ ]%2|2|83 B|Partly queued (1 of 2); ..[ ]A › A|1|41 B|Queued for "
                 "deletion!; ..[ ]z › W|1|42 B; .[ ]%3|3|117 B|Partly queued (1 of 2); "
                 "..CommandHistory|1|48 B!; ..PixelClipboard|2|69 B; [ ]%4; .[ ]ModuleData/A|1|89 "
                 "B|Queued for deletion!; .[ ]ModuleData/z|1|90 B"_s.arg(safeTier, windows,
                                                                         histories, warnTier));
        QCOMPARE(page.menu(u"z › W"_s), u"Undo deletion!"_s);
        QCOMPARE(page.menu(u"A › A"_s), u"Inside a group marked for deletion!"_s);
        auto* undo = page.child<QPushButton>("undoButton");
        for (const auto& [row, text] : {std::pair(u"A › A"_s, u"lies inside a group"_s),
                                        {u"z › W"_s, u"Nothing that is ticked"_s}}) {
            page.toggle(row);
            undo->click();
            QVERIFY(page.message().contains(text) && !undo->isEnabled());
        }
        page.toggle(module);
        page.view.setReadOnly(true);
        QVERIFY(!undo->isEnabled());
        QCOMPARE(page.menu(module), u"Undo deletion!"_s);
        page.view.setReadOnly(false);
        page.menu(module, u"Undo deletion"_s);
        page.menu(histories, u"Undo deletion"_s);
        QCOMPARE(page.document.pendingCount(), 0);
    }
};

KSE_TEST_MAIN(TestCleanupView)
#include "TestCleanupView.moc"
