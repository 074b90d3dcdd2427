// SPDX-License-Identifier: MIT
#include "support/SettingsPage.h"
#include "support/TestMain.h"
#include "support/TreePage.h"
#include "views/cleanup/CleanupView.h"
#include "views/cleanup/FormatBytes.h"

#include <QTreeWidget>

using namespace Qt::StringLiterals;
using namespace kse;

namespace {

struct Page : SettingsPage<CleanupView>
{
    Page()
        : SettingsPage("<i k='PixelClipboard'><v k='v' t='s' v='x'/><v k='w' t='s' v=''/></i>"
                       "<i k='CommandHistory'><v k='v' t='i' v='1'/></i><v k='Other' t='s' v=''/>"
                       "<i k='ModuleData'><i k='z'><i k='Interfaces'><i k='W'><i k='Geometry'>"
                       "<v k='v' t='i' v='1'/></i></i></i></i>"
                       "<i k='A'><i k='Interfaces'><i k='A'><i k='Geometry'>"
                       "<v k='v' t='s' v=''/></i></i></i></i></i>")
    {
        view.show();
    }

    QTreeWidgetItem* item(const QString& text) { return treeItem(tree, text); }
    void toggle(const QString& text)
    {
        tree.setCurrentItem(item(text));
        QTest::keyClick(&tree, Qt::Key_Space);
    }
    QString status() const { return child<QLabel>("statusLabel")->text(); }
    /// What a row tells of its deletion by text and by look.
    QString state(const QString& text)
    {
        const QTreeWidgetItem* row = item(text);
        return row->text(3) + (row->font(0).strikeOut() ? u" struck"_s : QString()) +
               (row->background(2).color().alpha() == 60 ? u" red"_s : QString());
    }

    QTreeWidget& tree = *child<QTreeWidget>("tree");
    QPushButton& queue = *child<QPushButton>("queueButton");
    QPushButton& undo = *child<QPushButton>("undoButton");
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
        QCOMPARE(treeLines(page.tree),
                 QStringList({u"[ ]"_s + safeTier, u".[ ]"_s + windows + u"|2|83 B"_s,
                              u"..[ ]A › A|1|41 B"_s, u"..[ ]z › W|1|42 B"_s,
                              u".[ ]"_s + histories + u"|3|117 B"_s, u"..CommandHistory|1|48 B"_s,
                              u"..PixelClipboard|2|69 B"_s, u"[ ]"_s + warnTier,
                              u".[ ]ModuleData/A|1|89 B"_s, u".[ ]ModuleData/z|1|90 B"_s}));
        page.view.setDocument(documentFrom({}).get());
        QCOMPARE(treeLines(page.tree), QStringList({safeTier, u".Nothing to clean in this file."_s,
                                                    warnTier, u".No tool settings found."_s}));
        QCOMPARE(formatBytes(1023) + formatBytes(1024), u"1023 B1.0 KiB"_s);
    }

    void ticksWithTheKeyboard()
    {
        Page page;
        page.item(windows)->setExpanded(true);
        page.toggle(u"z › W"_s);
        QVERIFY(treeLines(page.tree).contains(u".[-]"_s + windows + u"|2|83 B"_s));
        QCOMPARE(page.status(), u"Ticked: 1 (about 42 B)"_s);
        page.toggle(safeTier);
        page.toggle(warnTier);
        QCOMPARE(page.status(), u"Ticked: 5 (about 379 B)"_s);
    }

    void asksBeforeSettingsAreLost()
    {
        Page page;
        page.view.tickAll(false);
        page.toggle(u"ModuleData/z"_s);
        for (const auto answer : {QMessageBox::Cancel, QMessageBox::Yes}) {
            QVERIFY(page.messages.isEmpty());
            const QStringList box = clickAndAnswer(page.view, u"queueButton"_s, answer);
            QVERIFY(box.value(0).contains(u" 1 tool(s) or script(s)"_s));
            QCOMPARE(box.mid(1), QStringList({u"ModuleData/A"_s, u"Cancel"_s}));
        }
        QCOMPARE(page.messages.takeFirst()[0], u"Queued for deletion: 5. Save to apply."_s);
        QCOMPARE(page.status(), u"Queued for deletion: 4"_s);
        page.view.tickAll(true);
        page.undo.click();
        page.view.tickAll(true);
        page.queue.click(); // without a question
        QCOMPARE(page.messages.size(), 1);
    }

    void showsWhatIsQueued()
    {
        Page page;
        page.tree.expandAll();
        const QString history = u"CommandHistory"_s;
        const QString module = u"ModuleData/A"_s;
        QCOMPARE(chooseInMenu(page.tree, history, {}), QStringList(u"Undo deletion!"_s));
        for (const QString& path : {history, module}) {
            QVERIFY(page.model.markForDeletion(page.node(path)));
        }
        QCOMPARE(page.state(histories), u"Partly queued (1 of 2)"_s);
        QCOMPARE(page.state(history), u" struck red"_s);
        QCOMPARE(page.state(u"A › A"_s), u"Queued for deletion struck"_s);
        QCOMPARE(page.state(module), u"Queued for deletion struck red"_s);
        QCOMPARE(chooseInMenu(page.tree, u"A › A"_s, {}),
                 QStringList(u"Inside a group marked for deletion!"_s));
        for (const auto& [row, text] : {std::pair(u"A › A"_s, u"lies inside a group"_s),
                                        {u"z › W"_s, u"Nothing that is ticked"_s}}) {
            page.toggle(row);
            page.undo.click();
            QVERIFY(page.messages.takeFirst()[0].toString().contains(text));
        }
        page.view.setReadOnly(true);
        chooseInMenu(page.tree, module, u"Undo deletion"_s);
        QCOMPARE(page.document->pendingCount(), 2);
        page.view.setReadOnly(false);
        chooseInMenu(page.tree, module, u"Undo deletion"_s);
        chooseInMenu(page.tree, histories, u"Undo deletion"_s);
        QCOMPARE(page.document->pendingCount(), 0);
    }

    void dropsTheAnswerWhenTheTreeIsGone()
    {
        Page page;
        page.view.tickAll(false);
        const auto reload = [&page] {
            page.view.setDocument(nullptr);
            page.model.setDocument(nullptr);
            QVERIFY(page.document->parse(page.document->serialize()));
            page.model.setDocument(page.document.get());
            page.view.setDocument(page.document.get());
        };
        QVERIFY(!clickAndAnswer(page.view, u"queueButton"_s, QMessageBox::Yes, reload).isEmpty());
        QCOMPARE(page.document->pendingCount(), 0);
    }
};

KSE_TEST_MAIN(TestCleanupView)
#include "TestCleanupView.moc"
