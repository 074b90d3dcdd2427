// SPDX-License-Identifier: MIT
#include "support/DialogAnswerer.h"
#include "support/FakePixInsight.h"
#include "support/TestMain.h"
#include "support/WindowFixture.h"
#include "views/CollapsibleSection.h"
#include "views/HealthView.h"
#include "views/SettingRow.h"

#include <QCheckBox>
#include <QComboBox>
#include <QDialogButtonBox>
#include <QLabel>
#include <QLineEdit>
#include <QListWidget>
#include <QMessageBox>
#include <QPushButton>
#include <QSpinBox>
#include <QTabWidget>
#include <QToolButton>
#include <QTreeWidget>

using namespace kse;
using namespace Qt::StringLiterals;

/// One change on its way through the pages: what is done on one shows on all.
class TestPagesTogether : public WindowFixture
{
    Q_OBJECT

private:
    QWidget* show(const char* name) const
    {
        auto* page = find<QWidget>(name);
        find<QTabWidget>("tabs")->setCurrentWidget(page);
        return page;
    }

    template <typename Widget>
    static Widget* in(const QWidget* page, const QString& name)
    {
        return page->findChild<Widget*>(name);
    }

    /// The row of the value at `path` on `page`, or null.
    static SettingRow* row(const QWidget* page, const QString& path)
    {
        const auto rows = page->findChildren<SettingRow*>();
        for (SettingRow* candidate : rows) {
            const QString shown = candidate->toolTip().section(u'\n', 0, 0);
            if (shown == path && candidate->isVisibleTo(page)) {
                return candidate;
            }
        }
        return nullptr;
    }

    static bool isBold(const SettingRow* shown)
    {
        return in<QLabel>(shown, u"nameLabel"_s)->font().bold();
    }

    /// The item whose first column is `text`, wherever it is in the tree of `page`.
    static QTreeWidgetItem* item(const QWidget* page, const QString& text)
    {
        return in<QTreeWidget>(page, u"tree"_s)
            ->findItems(text, Qt::MatchExactly | Qt::MatchRecursive)
            .value(0);
    }

    QFont treeFont(const QString& path) { return select(path).data(Qt::FontRole).value<QFont>(); }

    /// Chooses the second sample on the Compare page.
    QWidget* compareWithOther() const
    {
        QWidget* page = show("compareView");
        auto* files = in<QComboBox>(page, u"fileCombo"_s);
        const int other = files->findText(u"core-002-pxi.settings"_s, Qt::MatchStartsWith);
        files->setCurrentIndex(other);
        emit files->activated(other);
        return page;
    }

    void reviewAndAccept(const std::function<void(QTreeWidget&)>& look) const
    {
        DialogAnswerer<QDialog> review([&](QDialog& dialog) {
            look(*dialog.findChild<QTreeWidget*>());
            dialog.accept();
        });
        action("actSave")->trigger();
        QVERIFY(review.wasAsked());
    }

private slots:
    void initTestCase() { prepareProgram(); }
    void init() { openSample(); }
    void cleanup() { m_window.reset(); }

    void showsOneEditOnEveryPage()
    {
        const QString path = u"Global/Preferences/Process/MaxConsoleLines"_s;
        QWidget* preferences = show("preferencesView");
        auto* pages = in<QListWidget>(preferences, u"pageList"_s);
        pages->setCurrentItem(pages->findItems(u"Processes"_s, Qt::MatchExactly).constFirst());
        auto* editor = in<QSpinBox>(row(preferences, path), u"spinBox"_s);
        editor->setFocus();
        editor->selectAll();
        QTest::keyClicks(editor, u"4321"_s);
        QTest::keyClick(editor, Qt::Key_Return);
        QCOMPARE(node(path)->value, u"4321"_s);
        QCOMPARE(pages->currentItem()->text(), u"Processes   ● 1"_s);

        QWidget* search = show("searchView");
        in<QCheckBox>(search, u"changedOnly"_s)->click();
        QTRY_COMPARE(in<QLabel>(search, u"summaryLabel"_s)->text(), u"1 result(s)"_s);
        QTRY_VERIFY(row(search, path)); // shown a turn later
        QVERIFY(isBold(row(search, path)));
        QVERIFY(treeFont(path).bold());

        // Compare takes the edit as this file's value: with the other's, the two agree.
        QWidget* compare = compareWithOther();
        model()->setData(model()->indexForNode(node(path), SettingsModel::ValueColumn), u"9999"_s);
        QTRY_VERIFY(item(compare, u"MaxConsoleLines"_s));
        auto* list = in<QTreeWidget>(compare, u"tree"_s);
        list->setCurrentItem(item(compare, u"MaxConsoleLines"_s));
        QTest::mouseClick(in<QPushButton>(compare, u"copySelectedButton"_s), Qt::LeftButton);
        QTRY_VERIFY(!item(compare, u"MaxConsoleLines"_s));

        model()->setData(model()->indexForNode(node(path), SettingsModel::ValueColumn), u"4321"_s);
        DialogAnswerer<QDialog> review([&](QDialog& dialog) {
            auto* changes = dialog.findChild<QTreeWidget*>();
            QCOMPARE(changes->topLevelItem(0)->text(1), path);
            changes->setCurrentItem(changes->topLevelItem(0));
            QTest::mouseClick(dialog.findChild<QPushButton*>(u"revert"_s), Qt::LeftButton);
            dialog.reject();
        });
        action("actSave")->trigger();
        QVERIFY(review.wasAsked());
        QVERIFY(!isBold(row(preferences, path)) && !isBold(row(search, path)));
        QVERIFY(!treeFont(path).bold());
        QCOMPARE(pages->currentItem()->text(), u"Processes"_s);
    }

    void queuesAndUndoesACleanup()
    {
        QWidget* cleanup = show("cleanupView");
        item(cleanup, u"Process usage statistics"_s)->setCheckState(0, Qt::Checked);
        QTest::mouseClick(in<QPushButton>(cleanup, u"queueButton"_s), Qt::LeftButton);
        QCOMPARE(item(cleanup, u"Process usage statistics"_s)->text(3), u"Queued for deletion"_s);
        QVERIFY(treeFont(u"Global/Statistics"_s).strikeOut());
        model()->undoDeletion(node(u"Global/Statistics"_s));
        QVERIFY(!treeFont(u"Global/Statistics"_s).strikeOut());
        QCOMPARE(item(cleanup, u"Process usage statistics"_s)->text(3), QString());
    }

    void deletesOneEntryOfAnUnusedModule()
    {
        QWidget* unused = show("unusedModulesView");
        auto* section = unused->findChild<CollapsibleSection*>();
        in<QToolButton>(section, u"toggleButton"_s)->click();
        QVERIFY(section->findChild<SettingRow*>());
        const QString name =
            in<QToolButton>(section, u"toggleButton"_s)->text().section(u' ', 0, 0);
        const QString path = u"ModuleData/"_s + name;
        XsdtNode* entry = node(path) ? node(path) : node(name);
        QVERIFY(model()->markForDeletion(entry));
        QVERIFY(in<QToolButton>(section, u"toggleButton"_s)
                    ->text()
                    .contains("queued for deletion]"_L1));
        QCOMPARE(pending(), 1);
    }

    void mendsAFindingOnItsCard()
    {
        const QString path = u"Global/Preferences/Process/MaxProcessors"_s;
        model()->setData(model()->indexForNode(node(path), SettingsModel::ValueColumn), u"-3"_s);
        QWidget* health = show("healthView");
        auto* tabs = find<QTabWidget>("tabs");
        const QString before = tabs->tabText(tabs->indexOf(health));
        QVERIFY(before.startsWith("Health check ("_L1));
        QTRY_VERIFY(row(health, path));
        auto* editor = in<QSpinBox>(row(health, path), u"spinBox"_s);
        editor->setValue(1);
        auto* summary = in<QLabel>(health, u"summaryLabel"_s);
        QVERIFY(summary->text().endsWith(
            "(You changed settings: run the check again to re-check.)"_L1));
        QTest::mouseClick(in<QPushButton>(health, u"rerunButton"_s), Qt::LeftButton);
        QVERIFY(!row(health, path));
        const auto number = [](const QString& text) {
            return text.section(u'(', 1).chopped(1).toInt();
        };
        QCOMPARE(number(tabs->tabText(tabs->indexOf(health))), number(before) - 1);
    }

    void copiesAllShownAndSaves()
    {
        QWidget* compare = compareWithOther();
        DialogAnswerer<QMessageBox> yes(
            [](QMessageBox& box) { box.button(QMessageBox::Yes)->click(); });
        QTest::mouseClick(in<QPushButton>(compare, u"copyAllButton"_s), Qt::LeftButton);
        QVERIFY(yes.wasAsked());
        const qsizetype copied = pending();
        QVERIFY(copied > 50);
        reviewAndAccept([&](QTreeWidget& list) { QCOMPARE(list.topLevelItemCount(), copied); });
        QCOMPARE(pending(), 0);
        XsdtDocument saved;
        XsdtDocument other;
        QVERIFY(saved.parse(contentOf(m_file)));
        QVERIFY(other.parse(contentOf(m_folder + u"/core-002-pxi.settings"_s)));
        const QString path = u"Global/RGBWorkingSpace/Gamma"_s;
        QCOMPARE(saved.root.findByPath(path)->value, other.root.findByPath(path)->value);
    }

    void leavesWhatIsBeingTypedToItsUser()
    {
        QWidget* search = show("searchView");
        QTest::keyClicks(in<QLineEdit>(search, u"queryEdit"_s), u"ProcessIcon"_s);
        const QString path = u"Global/Preferences/ProcessIcon/Prefix"_s;
        QTRY_VERIFY(row(search, path));
        auto* editor = in<QLineEdit>(row(search, path), u"lineEdit"_s);
        editor->setFocus();
        editor->selectAll();
        QTest::keyClicks(editor, u"half"_s);
        poll();
        QCOMPARE(editor->text(), u"half"_s);
        QVERIFY(!node(path)->isModified());
        DialogAnswerer<QMessageBox> cancel([](QMessageBox& box) { box.close(); });
        QVERIFY(!m_window->close());
        QCOMPARE(node(path)->value, u"half"_s);

        const QString number = u"Global/Preferences/Process/MaxConsoleLines"_s;
        find<QTabWidget>("tabs")->setCurrentWidget(find<QWidget>("advancedPage"));
        model()->revertAll();
        type(number, u"many"_s);
        QVERIFY(!m_window->close()); // so that the refusal is seen
        edit(path, u"pending"_s);
        QWidget* typing = type(number, u"many"_s);
        QTest::keyClick(typing, Qt::Key_S, Qt::ControlModifier); // a review would hang here
        QVERIFY(!QApplication::activeModalWidget());
        QVERIFY(status().startsWith("Not accepted - MaxConsoleLines"_L1));
        model()->revertAll();
        QVERIFY(m_window->close());
    }

    void forgetsTheCountOnceItIsSaved()
    {
        QWidget* preferences = show("preferencesView");
        const QString path = u"Global/Preferences/Process/MaxConsoleLines"_s;
        model()->setValue(node(path), u"77"_s);
        auto* pages = in<QListWidget>(preferences, u"pageList"_s);
        QCOMPARE(pages->findItems(u"Processes   ● 1"_s, Qt::MatchExactly).size(), 1);
        reviewAndAccept([](QTreeWidget&) {});
        QCOMPARE(pages->findItems(u"Processes"_s, Qt::MatchExactly).size(), 1);
    }

    void turnsEveryPageOffWhilePixInsightRuns()
    {
        QWidget* preferences = show("preferencesView");
        QWidget* search = show("searchView");
        QTest::keyClicks(in<QLineEdit>(search, u"queryEdit"_s), u"thread"_s);
        QTRY_VERIFY(search->findChild<SettingRow*>());
        const QWidget* cleanup = show("cleanupView");
        item(cleanup, u"Hidden dialog choices"_s)->setCheckState(0, Qt::Checked);
        const QWidget* compare = compareWithOther();
        const QWidget* health = show("healthView");
        const QList<QWidget*> controls{
            in<QWidget>(preferences->findChild<SettingRow*>(), u"editorHost"_s),
            in<QWidget>(search->findChild<SettingRow*>(), u"editorHost"_s),
            in<QWidget>(health->findChild<SettingRow*>(), u"editorHost"_s),
            in<QWidget>(cleanup, u"queueButton"_s),
            in<QWidget>(compare, u"copyAllButton"_s),
        };
        FakePixInsight process;
        for (const bool running : {false, true, false}) {
            QVERIFY(running ? process.start() : process.stop());
            poll();
            for (const QWidget* control : controls) {
                QVERIFY2(control->isEnabled() != running, qPrintable(control->objectName()));
            }
        }
    }
};

KSE_TEST_MAIN(TestPagesTogether)
#include "TestPagesTogether.moc"
