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
    /// What a row tells of its deletion by text and by look.
    QString state(const QString& text)
    {
        const QTreeWidgetItem* row = item(text);
        return row->text(3) + (row->font(0).strikeOut() ? u" struck"_s : u""_s) +
               (row->background(2).color().alpha() == 60 ? u" red"_s : u""_s);
    }
    QString message()
    {
        return messages.isEmpty() ? QString() : messages.takeFirst()[0].toString();
    }

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
        Page page;
        QCOMPARE(page.rows(),
                 u"[ ]%1; .[ ]%2|2|83 B; ..[ ]A › A|1|41 B; ..[ ]z › W|1|42 B; .[ ]%3|3|117 B; "
                 "..CommandHistory|1|48 B; ..PixelClipboard|2|69 B; [ ]%4; .[ ]ModuleData/A|1|89 "
                 "B; .[ ]ModuleData/z|1|90 B"_s.arg(safeTier, windows, histories, warnTier));
        const QByteArray overlay = R"({"policy": {"delete": [{"path": "A/x", "level": "safe"},
            {"path": "B", "level": "warn"}, {"path": "?/?", "level": "warn"}]},
            "cleanup": [{"title": "T", "paths": ["B"]},
            {"title": "E", "paths": ["A/?"], "each": true}]})";
        QVERIFY(page.policy.load(
            QByteArray(overlay).replace('?', '*'))); // which moc takes for a comment
        XsdtDocument other;
        addNodes(other, u"A/x; A/y; B/%1:s="_s.arg(QString(1024, u'k')));
        page.setDocument(&other);
        QCOMPARE(page.rows(), u"[ ]%1; .[ ]E (1)|0|13 B; ..[ ]A › x|0|13 B; [ ]%2; .[ ]A/y|0|13 "
                              "B; .[ ]B|1|1.0 KiB"_s.arg(safeTier, warnTier));
    }

    void asksBeforeSettingsAreLost()
    {
        Page page;
        QCOMPARE(page.toggle(u"z › W"_s), u"Ticked: 1 (about 42 B)"_s);
        QVERIFY(page.rows().contains(u"[-]"_s + windows));
        QCOMPARE(page.toggle(safeTier), u"Ticked: 3 (about 200 B)"_s);
        QCOMPARE(page.toggle(warnTier), u"Ticked: 5 (about 379 B)"_s);
        page.toggle(u"ModuleData/z"_s);
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
        QCOMPARE(page.messages.size(), 1);
        page.view.tickAll(false);
        QVERIFY(!page.ask("queueButton", QMessageBox::Yes, [&] { page.reload(); }).isEmpty());
        QCOMPARE(page.document.pendingCount(), 0);
    }

    void showsWhatIsQueued()
    {
        Page page;
        const QString history = u"CommandHistory"_s;
        const QString module = u"ModuleData/A"_s;
        QCOMPARE(page.menu(history), u"Undo deletion!"_s);
        for (const QString& path : {history, module}) {
            QVERIFY(page.model.markForDeletion(page.node(path)));
        }
        QCOMPARE(page.state(histories), u"Partly queued (1 of 2)"_s);
        QCOMPARE(page.state(history), u" struck red"_s);
        QCOMPARE(page.state(u"A › A"_s), u"Queued for deletion struck"_s);
        QCOMPARE(page.state(module), u"Queued for deletion struck red"_s);
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
