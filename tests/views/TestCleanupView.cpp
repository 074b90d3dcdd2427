// SPDX-License-Identifier: MIT
#include "document/XsdtDocument.h"
#include "schema/DeletePolicy.h"
#include "support/DialogAnswerer.h"
#include "support/SettingsTree.h"
#include "support/TestMain.h"
#include "views/CleanupView.h"
#include "views/PlainText.h"
#include "views/SettingsModel.h"

#include <QLabel>
#include <QPushButton>
#include <QSignalSpy>
#include <QTest>
#include <QTreeWidget>
#include <QTreeWidgetItemIterator>

using namespace Qt::StringLiterals;
using namespace kse;

namespace {

const QByteArray rules =
    QByteArray(
        "{'policy': {'delete': ["
        "{'path': 'S/**', 'level': 'safe', 'reason': 'Comes back.'},"
        "{'path': 'ModuleData/*/Interfaces/*/Geometry', 'level': 'safe', 'reason': 'Comes back.'},"
        "{'path': 'Tools/*', 'level': 'warn', 'reason': 'Lost.'}]},"
        "'cleanup': [{'title': '<b>One', 'description': 'Told',"
        "'paths': ['S/a', 'S/none', 'S/b', 'Tools/A']},"
        "{'title': 'Windows', 'description': 'Each', 'each': true,"
        "'paths': ['ModuleData/*/Interfaces/*/Geometry']}]}")
        .replace('\'', '"');

// The page over a document of `nodes`.
struct Page
{
    explicit Page(const QString& nodes)
    {
        if (!policy.load(rules)) {
            qFatal("The rules can't be read");
        }
        addNodes(document, nodes);
        model.setPolicy(&policy);
        model.setDocument(&document);
        view.setDocument(&document);
        view.resize(700, 500);
        view.show();
    }

    // Rows as lines: level, box, texts, and "!" for what is disabled.
    QStringList lines() const
    {
        QStringList lines;
        for (QTreeWidgetItemIterator it(tree); *it; ++it) {
            QString line;
            for (const QTreeWidgetItem* above = (*it)->parent(); above; above = above->parent()) {
                line += u'.';
            }
            const QVariant box = (*it)->data(0, Qt::CheckStateRole);
            line += box.isValid() ? QString(u"_-x"_s[box.toInt()]) : QString();
            for (int column = 0; column < 4; ++column) {
                const QString text = (*it)->text(column);
                line += text.isEmpty() ? QString() : u' ' + text;
            }
            lines << line + ((*it)->isDisabled() ? u"!"_s : QString());
        }
        return lines;
    }

    QTreeWidgetItem* item(const QString& text) const
    {
        return tree->findItems(text, Qt::MatchExactly | Qt::MatchRecursive).value(0);
    }
    void toggle(const QString& text) const
    {
        tree->setCurrentItem(item(text));
        QTest::keyClick(tree, Qt::Key_Space);
    }
    void press(const QString& button) const { view.findChild<QPushButton*>(button)->click(); }
    bool isEnabled(const QString& button) const
    {
        return view.findChild<QPushButton*>(button)->isEnabled();
    }
    QString status() const { return view.findChild<QLabel*>(u"statusLabel"_s)->text(); }

    DeletePolicy policy;
    XsdtDocument document;
    SettingsModel model;
    CleanupView view{&model};
    QTreeWidget* tree = view.findChild<QTreeWidget*>(u"tree"_s);
};

const QString safeTier = u"Safe to clean - PixInsight recreates these"_s;
const QString warnTier = u"Saved tool and script settings - deleting loses your configuration"_s;
const QString sample =
    u"S/b/v:s=x; S/b/w:s=; S/a:i=1; ModuleData/z/Interfaces/W/Geometry/v:i=1; "
    "ModuleData/A/Interfaces/A/Geometry:s=; Tools/b/v:s=; Tools/A/v:s=; Other:s="_s;

} // namespace

class TestCleanupView : public QObject
{
    Q_OBJECT

private slots:
    void listsWhatThePolicyOffers();
    void saysWhenThereIsNothing();
    void ticksWithTheKeyboard();
    void asksBeforeSettingsAreLost();
    void followsOtherPages();
    void refusesWhilePixInsightRuns();
    void dropsTheAnswerWhenTheTreeIsGone();
};

void TestCleanupView::listsWhatThePolicyOffers()
{
    const Page page(sample);
    QCOMPARE(page.lines(),
             QStringList({u"_ "_s + safeTier, u"._ <b>One 3 78 B"_s, u".. S/a 1 22 B"_s,
                          u".. S/b 2 56 B"_s, u"._ Windows (2) 2 70 B"_s, u".._ A › A 1 28 B"_s,
                          u".._ z › W 1 42 B"_s, u"_ "_s + warnTier, u"._ Tools/A 1 34 B"_s,
                          u"._ Tools/b 1 34 B"_s}));
    QCOMPARE(page.item(u"<b>One"_s)->toolTip(0), u"Told\nS/a, S/b"_s);
    QCOMPARE(page.item(u"A › A"_s)->toolTip(0), u"Comes back."_s);
    QCOMPARE(page.item(u"Tools/A"_s)->toolTip(0), u"Lost."_s);
    QVERIFY(page.item(safeTier)->isExpanded() && page.item(warnTier)->isExpanded());
}

void TestCleanupView::saysWhenThereIsNothing()
{
    Page page(u"Other:s="_s);
    QCOMPARE(page.lines(), QStringList({u' ' + safeTier, u". Nothing to clean in this file."_s,
                                        u' ' + warnTier, u". No tool settings found."_s}));
    page.model.setPolicy(nullptr);
    page.view.setDocument(&page.document);
    QVERIFY(page.lines().isEmpty());
    QCOMPARE(page.status(), u"Queued for deletion: 0"_s);
}

void TestCleanupView::ticksWithTheKeyboard()
{
    Page page(sample);
    page.item(u"Windows (2)"_s)->setExpanded(true);
    page.toggle(u"z › W"_s);
    QCOMPARE(page.item(u"Windows (2)"_s)->checkState(0), Qt::PartiallyChecked);
    QCOMPARE(page.status(), u"Ticked: 1 (about 42 B)"_s);
    page.toggle(safeTier);
    page.toggle(warnTier);
    QCOMPARE(page.status(), u"Ticked: 5 (about 216 B)"_s);
    page.view.tickAll(true);
    QCOMPARE(page.status(), u"Ticked: 3 (about 148 B)"_s);
    page.toggle(safeTier);
    QCOMPARE(page.status(), u"Queued for deletion: 0"_s);
    QVERIFY(!page.isEnabled(u"queueButton"_s) && !page.isEnabled(u"undoButton"_s));
}

void TestCleanupView::asksBeforeSettingsAreLost()
{
    Page page(sample);
    QSignalSpy messages(&page.view, &CleanupView::message);
    page.view.tickAll(false);
    for (const auto answer : {QMessageBox::Cancel, QMessageBox::Yes}) {
        QCOMPARE(page.document.pendingCount(), 0);
        DialogAnswerer<QMessageBox> question([&](QMessageBox& box) {
            QCOMPARE(box.text(), u"This removes the saved configuration of 2 tool(s) or script(s). "
                                 "They will start from their defaults."_s);
            QCOMPARE(box.detailedText(), u"Tools/A\nTools/b"_s);
            QCOMPARE(box.defaultButton(), box.button(QMessageBox::Cancel));
            box.button(answer)->click();
        });
        QCOMPARE(page.status(), u"Ticked: 5 (about 216 B)"_s);
        page.press(u"queueButton"_s);
        QVERIFY(question.wasAsked());
    }
    QCOMPARE(messages.takeFirst(), QVariantList{u"Queued for deletion: 6. Save to apply."_s});
    QCOMPARE(page.document.deletions().size(), 6);
    QCOMPARE(page.status(), u"Queued for deletion: 5"_s);
    QCOMPARE(page.item(u"<b>One"_s)->text(3), u"Queued for deletion"_s);

    QSignalSpy edits(&page.model, &SettingsModel::edited);
    page.view.tickAll(true);
    page.press(u"undoButton"_s);
    QCOMPARE(edits.size(), 1);
    QCOMPARE(page.status(), u"Queued for deletion: 2"_s);
    page.view.tickAll(true);
    page.press(u"queueButton"_s);
    QCOMPARE(edits.size(), 2);
    QCOMPARE(messages.size(), 1);
}

void TestCleanupView::followsOtherPages()
{
    Page page(sample);
    QVERIFY(page.model.markForDeletion(page.document.root.findByPath(u"S/a")));
    QVERIFY(page.model.markForDeletion(page.document.root.findByPath(u"S/b/v")));
    QCOMPARE(page.item(u"<b>One"_s)->text(3), u"Partly queued (1 of 2)"_s);
    QCOMPARE(page.status(), u"Queued for deletion: 1"_s);
    page.model.revertAll();
    QCOMPARE(page.item(u"<b>One"_s)->text(3), QString());
}

void TestCleanupView::refusesWhilePixInsightRuns()
{
    Page page(sample);
    QSignalSpy messages(&page.view, &CleanupView::message);
    page.view.tickAll(true);
    page.model.setReadOnly(true);
    page.view.queueTicked();
    QCOMPARE(messages.takeFirst(),
             QVariantList{u"Some entries were refused: PixInsight is running; nothing can be "
                          "changed."_s});
    page.view.tickAll(true);
    const QStringList enabled = page.lines();
    page.view.setReadOnly(true);
    QCOMPARE(page.lines().filter(u"!"_s), page.lines());
    QVERIFY(!page.isEnabled(u"queueButton"_s) && !page.isEnabled(u"undoButton"_s));
    QCOMPARE(page.status(), u"PixInsight is running: view only."_s);
    page.view.setReadOnly(false);
    QCOMPARE(page.lines(), enabled);
    QVERIFY(page.isEnabled(u"queueButton"_s));
}

void TestCleanupView::dropsTheAnswerWhenTheTreeIsGone()
{
    Page page(sample);
    page.view.tickAll(false);
    DialogAnswerer<QMessageBox> question([&](QMessageBox& box) {
        page.view.setDocument(nullptr);
        page.model.setDocument(nullptr);
        const bool parsed = page.document.parse("<xsdt><i k=\"S\"/></xsdt>");
        page.model.setDocument(&page.document);
        page.view.setDocument(&page.document);
        QVERIFY(parsed);
        box.button(QMessageBox::Yes)->click();
    });
    page.press(u"queueButton"_s);
    QVERIFY(question.wasAsked());
    QCOMPARE(page.document.pendingCount(), 0);
    QCOMPARE(page.status(), u"Queued for deletion: 0"_s);
}

KSE_TEST_MAIN(TestCleanupView)
#include "TestCleanupView.moc"
