// SPDX-License-Identifier: MIT
#include "document/XsdtDocument.h"
#include "schema/DeletePolicy.h"
#include "support/SettingsTree.h"
#include "support/TestMain.h"
#include "support/TextRows.h"
#include "support/TreePage.h"
#include "views/cleanup/CleanupView.h"
#include "views/model/SettingsModel.h"
#include "widgets/PlainText.h"

#include <QtTest>
#include <QtWidgets>

using namespace Qt::StringLiterals;
using namespace kse;

namespace {

// The page over a document of `nodes`.
struct Page
{
    explicit Page(const QString& nodes)
    {
        document.head = u"<xsdt>"_s;
        addNodes(document, nodes);
        model.setPolicy(&policy);
        model.setDocument(&document);
        view.setDocument(&document);
        view.show();
    }

    QStringList lines() const { return treeLines(*tree); }
    QTreeWidgetItem* item(const QString& text) const { return treeItem(*tree, text); }
    void toggle(const QString& text) const
    {
        tree->setCurrentItem(item(text));
        QTest::keyClick(tree, Qt::Key_Space);
    }
    QString status() const { return view.findChild<QLabel*>(u"statusLabel"_s)->text(); }

    DeletePolicy policy;
    const bool hasRules = policy.load(builtInTable("overlay.json"));
    XsdtDocument document;
    SettingsModel model;
    CleanupView view{&model};
    QTreeWidget* tree = view.findChild<QTreeWidget*>(u"tree"_s);
    QPushButton* queueButton = view.findChild<QPushButton*>(u"queueButton"_s);
};

const QString safeTier = u"Safe to clean - PixInsight recreates these"_s;
const QString warnTier = u"Saved tool and script settings - deleting loses your configuration"_s;
const QString windows = u"Window position of each process (2)"_s;
const QString histories = u"Histories and remembered folders"_s;
const QString sample =
    u"PixelClipboard/v:s=x; PixelClipboard/w:s=; CommandHistory/v:i=1; Other:s=; "
    "ModuleData/z/Interfaces/W/Geometry/v:i=1; ModuleData/A/Interfaces/A/Geometry/v:s="_s;

} // namespace

class TestCleanupView : public QObject
{
    Q_OBJECT

private slots:
    void listsWhatThePolicyOffers();
    void ticksWithTheKeyboard();
    void asksBeforeSettingsAreLost();
    void showsWhatIsQueued();
    void dropsTheAnswerWhenTheTreeIsGone();
};

void TestCleanupView::listsWhatThePolicyOffers()
{
    Page page(sample);
    QCOMPARE(page.lines(),
             QStringList({u"[ ]"_s + safeTier, u".[ ]"_s + windows + u"|2|83 B"_s,
                          u"..[ ]A › A|1|41 B"_s, u"..[ ]z › W|1|42 B"_s,
                          u".[ ]"_s + histories + u"|3|117 B"_s, u"..CommandHistory|1|48 B"_s,
                          u"..PixelClipboard|2|69 B"_s, u"[ ]"_s + warnTier,
                          u".[ ]ModuleData/A|1|89 B"_s, u".[ ]ModuleData/z|1|90 B"_s}));
    const QString toolTip = page.item(histories)->toolTip(0);
    QVERIFY2(toolTip.endsWith(u"\nCommandHistory, PixelClipboard"_s), qPrintable(toolTip));
    const XsdtNode* node = page.document.root.findByPath(u"ModuleData/A");
    QCOMPARE(page.item(u"ModuleData/A"_s)->toolTip(0), page.policy.decide(node).reason);
    QVERIFY(page.item(safeTier)->isExpanded() && page.item(warnTier)->isExpanded());

    page.document.root.children.clear();
    page.view.setDocument(&page.document);
    QCOMPARE(page.lines(), QStringList({safeTier, u".Nothing to clean in this file."_s, warnTier,
                                        u".No tool settings found."_s}));
    page.model.setPolicy(nullptr);
    page.view.setDocument(&page.document);
    QVERIFY(page.lines().isEmpty());
}

void TestCleanupView::ticksWithTheKeyboard()
{
    Page page(sample);
    page.item(windows)->setExpanded(true);
    page.toggle(u"z › W"_s);
    QVERIFY(page.lines().contains(u".[-]"_s + windows + u"|2|83 B"_s));
    QCOMPARE(page.status(), u"Ticked: 1 (about 42 B)"_s);
    page.toggle(safeTier);
    page.toggle(warnTier);
    QCOMPARE(page.status(), u"Ticked: 5 (about 379 B)"_s);
    page.view.tickAll(true);
    QCOMPARE(page.status(), u"Ticked: 3 (about 200 B)"_s);
    QVERIFY(page.queueButton->isEnabled());
    page.toggle(safeTier);
    QCOMPARE(page.status(), u"Queued for deletion: 0"_s);
    QVERIFY(!page.queueButton->isEnabled());
}

void TestCleanupView::asksBeforeSettingsAreLost()
{
    Page page(sample);
    QSignalSpy messages(&page.view, &CleanupView::message);
    QSignalSpy edits(&page.model, &SettingsModel::edited);
    page.view.tickAll(false);
    for (const auto answer : {QMessageBox::Cancel, QMessageBox::Yes}) {
        QVERIFY(edits.isEmpty());
        QCOMPARE(page.status(), u"Ticked: 5 (about 379 B)"_s);
        QCOMPARE(clickAndAnswer(page.view, u"queueButton"_s, answer),
                 QStringList({u"This removes the saved configuration of 2 tool(s) or script(s). "
                              "They will start from their defaults."_s,
                              u"ModuleData/A\nModuleData/z"_s, u"Cancel"_s}));
    }
    QCOMPARE(messages.takeFirst(), QVariantList{u"Queued for deletion: 6. Save to apply."_s});
    QCOMPARE(page.status(), u"Queued for deletion: 5"_s);
    QCOMPARE(page.item(histories)->text(3), u"Queued for deletion"_s);

    page.view.tickAll(true);
    page.view.findChild<QPushButton*>(u"undoButton"_s)->click();
    QCOMPARE(page.status(), u"Queued for deletion: 4"_s);
    page.view.tickAll(true);
    page.queueButton->click();
    QCOMPARE(messages.size(), 1);
    QCOMPARE(edits.size(), 3);
}

void TestCleanupView::showsWhatIsQueued()
{
    Page page(sample);
    QSignalSpy messages(&page.view, &CleanupView::message);
    QTreeWidget& tree = *page.tree;
    tree.expandAll();
    const auto looks = [&page](const QString& row) {
        const QTreeWidgetItem* item = page.item(row);
        return item->text(3) + (item->font(0).strikeOut() ? u" struck"_s : u""_s) +
               (item->background(2).color().alpha() == 60 ? u" red"_s : u""_s);
    };
    const QString history = u"CommandHistory"_s;
    const QString module = u"ModuleData/A"_s;
    QCOMPARE(chooseInMenu(tree, history, {}), QStringList(u"Undo deletion!"_s));
    for (const QString& path : {history, module}) {
        QVERIFY(page.model.markForDeletion(page.document.root.findByPath(path)));
    }
    QCOMPARE(looks(histories), u"Partly queued (1 of 2)"_s);
    QCOMPARE(looks(history), u" struck red"_s);
    QCOMPARE(looks(windows), u"Partly queued (1 of 2)"_s);
    QCOMPARE(looks(u"A › A"_s), u"Queued for deletion struck"_s);
    QCOMPARE(looks(module), u"Queued for deletion struck red"_s);
    QCOMPARE(chooseInMenu(tree, u"A › A"_s, {}),
             QStringList(u"Inside a group marked for deletion!"_s));

    // The button says why it does nothing, and the menu needs no ticks.
    auto* undo = page.view.findChild<QPushButton*>(u"undoButton"_s);
    for (const auto& [row, text] :
         {std::pair(u"A › A"_s, u"What is ticked lies inside a group that "
                                "is queued for deletion. Undo the "
                                "deletion of that group."_s),
          std::pair(u"z › W"_s, u"Nothing that is ticked is queued for "
                                "deletion."_s)}) {
        page.toggle(row);
        undo->click();
        QCOMPARE(messages.takeFirst(), QVariantList{text});
    }
    chooseInMenu(tree, module, u"Undo deletion"_s);
    QCOMPARE(looks(windows) + looks(module), QString());
    page.view.setReadOnly(true);
    chooseInMenu(tree, histories, u"Undo deletion"_s);
    QCOMPARE(page.document.pendingCount(), 1);
    page.view.setReadOnly(false);
    chooseInMenu(tree, histories, u"Undo deletion"_s);
    QCOMPARE(page.document.pendingCount(), 0);
}

void TestCleanupView::dropsTheAnswerWhenTheTreeIsGone()
{
    Page page(sample);
    page.view.tickAll(false);
    const auto reload = [&page] {
        page.view.setDocument(nullptr);
        page.model.setDocument(nullptr);
        QVERIFY(page.document.parse(page.document.serialize()));
        page.model.setDocument(&page.document);
        page.view.setDocument(&page.document);
    };
    QVERIFY(!clickAndAnswer(page.view, u"queueButton"_s, QMessageBox::Yes, reload).isEmpty());
    QCOMPARE(page.document.pendingCount(), 0);
}

KSE_TEST_MAIN(TestCleanupView)
#include "TestCleanupView.moc"
