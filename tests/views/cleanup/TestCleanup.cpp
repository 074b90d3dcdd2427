// SPDX-License-Identifier: MIT
#include "support/SettingsPage.h"
#include "views/cleanup/CleanupView.h"
#include "views/cleanup/UnusedModulesView.h"
#include "views/rows/SettingRow.h"

namespace {

struct CleanupPage : TreePage<CleanupView>
{
    explicit CleanupPage(
        const QString& nodes =
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

struct ModulesPage : SettingsPage<UnusedModulesView>
{
    using SettingsPage::SettingsPage;

    QString message() { return messages.last()[0].toString(); }

    QSignalSpy messages{&view, &UnusedModulesView::message};
};

const QString moduleNodes =
    u"Modules/1:s=/bin/Used-pxm.so; ModuleData/Used/u:s=1; ModuleData/Gone/n:s=1; "
    "ModuleData/Gone/Interfaces/P; ModuleData/%1&Old/m:s=1; "
    "Global/Statistics/Process/P/s:s=1"_s;

} // namespace

class TestCleanup : public QObject
{
    Q_OBJECT

private slots:
    void listsWhatThePolicyOffers()
    {
        const CleanupPage page;
        QCOMPARE(page.rows(),
                 u"[ ]%1; .[ ]%2|2|83 B; ..[ ]A › A|1|41 B; ..[ ]z › W|1|42 B; .[ ]%3|3|117 B; "
                 "..CommandHistory|1|48 B; ..PixelClipboard|2|69 B; [ ]%4; .[ ]ModuleData/A|1|89 "
                 "B; .[ ]ModuleData/z|1|90 B"_s.arg(safeTier, windows, histories, warnTier));
        CleanupPage other(u"A/x; A/y; B/%1:s="_s.arg(QString(1024, u'k')));
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
        CleanupPage page;
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
        CleanupPage page;
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
        for (const auto& [row, text] :
             {std::pair(u"A › A"_s, u"inside a group"_s), {u"z › W"_s, u"None of the ticked"_s}}) {
            page.toggle(row);
            undo->click();
            QVERIFY(page.message().contains(text) && !undo->isEnabled());
        }
        page.toggle(module);
        page.view.setReadOnly(true);
        QVERIFY(!undo->isEnabled() && page.item(safeTier)->isDisabled());
        QCOMPARE(page.menu(module), u"Undo deletion!"_s);
        page.view.setReadOnly(false);
        page.menu(module, u"Undo deletion"_s, [&] { page.view.setReadOnly(true); });
        QCOMPARE(page.document.pendingCount(), 2);
        page.view.setReadOnly(false);
        page.menu(module, u"Undo deletion"_s);
        page.menu(histories, u"Undo deletion"_s);
        QCOMPARE(page.document.pendingCount(), 0);
    }

    void listsUnusedModules()
    {
        ModulesPage page(moduleNodes);
        page.child<QCheckBox>("tick")->click();
        QCOMPARE(page.text("toggleButton") + u"; "_s + page.text("summary"),
                 u"%1&&Old  -  1 value(s), 44 B; 2 unused module(s); 1 ticked (about 44 B); 0 "
                 "queued for deletion"_s);
        QVERIFY(page.child("toggleButton")->accessibleName().startsWith(u"%1&Old"));
        page.child<QToolButton>("toggleButton", 1)->click();
        QCOMPARE(page.text("groupLabel"), u"Global/Statistics/Process/P  (1 value(s))"_s);
        QCOMPARE(page.text("groupLabel", 1), u"ModuleData/Gone  (1 value(s))"_s);
        QVERIFY(page.model.markForDeletion(page.node(u"ModuleData/Gone/n"_s)));
        auto* title = page.child("toggleButton", 1);
        QVERIFY(!title->accessibleDescription().isEmpty());
        page.model.revertAll();
        QCOMPARE(title->accessibleDescription(), QString());
        title->resize(9, 9);
        QHelpEvent help(QEvent::ToolTip, {}, {});
        QApplication::sendEvent(title, &help);
        QVERIFY(QToolTip::text().startsWith(u"Gone"));
    }

    void titlesFollowChangesAtAnyDepth()
    {
        const QString deep = u"ModuleData/A/"_s + u"g/"_s.repeated(1000) + u"v"_s;
        ModulesPage page(deep + u":s=1"_s);
        page.view.expandCard(u"A"_s);
        const auto looks = [&page] {
            auto* title = page.child<QToolButton>("toggleButton");
            const QColor mean =
                title->grab().toImage().scaled(1, 1, {}, Qt::SmoothTransformation).pixelColor(0, 0);
            return title->text().section(u", "_s, 1) + title->accessibleDescription() +
                   (mean.red() > mean.green() ? u" red"_s : u""_s) +
                   (title->font().strikeOut() ? u" struck"_s : u""_s);
        };
        page.model.setValue(page.node(deep), QString(100, u'x'));
        QCOMPARE(looks(), u"12.8 KiB"_s);
        QCOMPARE(page.child<QLineEdit>("lineEdit")->text(), QString(100, u'x'));
        page.model.markAllForDeletion({page.node(deep)});
        QCOMPARE(looks(), u"12.8 KiBSomething in it is queued for deletion. red"_s);
        page.child<QCheckBox>("tick")->click();
        page.child<QPushButton>("undoButton")->click();
        QVERIFY(page.message().startsWith(u"No ticked module is queued"));
        page.model.undoDeletion(page.node(deep));
        QVERIFY(page.model.markForDeletion(page.node(u"ModuleData/A"_s)));
        QVERIFY(
            looks().endsWith(u"[queued for deletion]All of it is queued for deletion. red struck"));
        QVERIFY(!page.child("lineEdit")->isEnabled());
        page.model.revertAll();
        QCOMPARE(page.child<QLineEdit>("lineEdit")->text(), u"1"_s);
    }

    void queuesNoModuleOnceThingsChanged()
    {
        ModulesPage page(moduleNodes);
        page.child<QCheckBox>("tick")->click();
        QVERIFY(page.ask("queueButton", QMessageBox::Yes, [&] { page.view.setReadOnly(true); })
                    .endsWith(u"|%1Old|Cancel"));
        QVERIFY(page.message().startsWith(u"PixInsight is running"));
        for (const char* name : {"tick", "queueButton", "undoButton"}) {
            QVERIFY2(!page.child(name)->isEnabled(), name);
        }
        page.view.setReadOnly(false);
        page.ask("queueButton", QMessageBox::Yes, [&] { page.reload(); });
        QCOMPARE(page.messages.size(), 1);
        QCOMPARE(page.document.pendingCount(), 0);
    }

    void showsFourHundredValuesOfAModule()
    {
        ModulesPage page(u"ModuleData/A/a:s=1; A/a:s=1; "_s.repeated(401));
        page.view.expandCard(u"A"_s);
        const QWidget* list = page.view.findChild<QScrollArea*>()->widget();
        const int height = list->sizeHint().height(); // also of those that come later
        QTRY_COMPARE(page.view.findChildren<SettingRow*>().size(), 400);
        QVERIFY(height > list->sizeHint().height() / 2);
        QVERIFY(page.text("moreLabel").startsWith(u"...and 402 more values."));
        QString modules;
        for (int i = 0; i < 99; ++i) {
            modules += u"; ModuleData/A%1/a:s="_s.arg(i);
        }
        const ModulesPage many(modules.mid(2));
        many.view.findChild<QPushButton*>(u"tickAllButton"_s)->click();
        QVERIFY(many.child<QCheckBox>("tick", 98)->isChecked()); // although it was made later
    }
};

KSE_TEST_MAIN(TestCleanup)
#include "TestCleanup.moc"
