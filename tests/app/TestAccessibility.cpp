// SPDX-License-Identifier: MIT
#include "support/AccessibilityWalk.h"
#include "support/DialogAnswerer.h"
#include "support/FakePixInsight.h"
#include "support/TestMain.h"
#include "support/WindowFixture.h"
#include "views/cleanup/UnusedModulesView.h"
#include "views/rows/SettingRow.h"
#include "widgets/CollapsibleSection.h"

using namespace kse;
using namespace Qt::StringLiterals;

namespace {

const QString stringPath = u"Global/Preferences/ProcessIcon/Prefix"_s;

/// Those whose faint colours are wanted: what matters less.
const QStringList quietTexts{u"descriptionLabel"_s, u"pathLabel"_s, u"notice"_s, u"caption"_s};

/// In one menu, where the letter goes from one to the other, and Return chooses.
const QString sharedOnPurpose = u"Alt+M: Find &module data..., &Manage backups..."_s;

} // namespace

/// Every page and dialog, as the keyboard and a screen reader meet them.
class TestAccessibility : public WindowFixture
{
    Q_OBJECT

private:
    QStringList m_faults;

    void look(QWidget& window, const QString& where)
    {
        QTest::qWait(0);
        QTRY_VERIFY(isLaidOut(window));
        QStringList faults = namelessControls(window) + sharedMnemonics(window) +
                             faultsOfTabOrder(window) + toldByColourAlone(window) +
                             faintTexts(window, quietTexts);
        faults.removeOne(sharedOnPurpose);
        m_faults += faults.replaceInStrings(QRegularExpression(u"^"_s), where + u": "_s);
    }

    void lookAtDialog(const std::function<void()>& open)
    {
        const QStringList asked = answer({}, open, [this](QWidget& dialog) {
            for (auto* button : dialog.findChildren<QPushButton*>()) {
                if (button->text().startsWith("Show Details"_L1)) {
                    button->click();
                }
            }
            look(dialog, dialog.windowTitle());
        });
        QCOMPARE(asked.size(), 1);
    }

    void press(const QWidget* page, const char* button) const
    {
        auto* pressed = page->findChild<QPushButton*>(QLatin1String(button));
        pressed->setFocus();
        QTest::keyClick(pressed, Qt::Key_Space);
    }

    /// Brings to light what the pages only show on demand, without a change of the file.
    void fillPages() const
    {
        find<QLineEdit>("queryEdit")->setText(u"font"_s);
        auto* files = find<QComboBox>("fileCombo");
        emit files->activated(files->findText(u"core-002"_s, Qt::MatchStartsWith));
        for (const char* box : {"showOnlyThis", "showOnlyOther"}) {
            find<QCheckBox>(box)->setChecked(true);
        }
        auto* entries = page("cleanupView")->findChild<QTreeWidget*>();
        entries->topLevelItem(0)->child(0)->setCheckState(0, Qt::Checked);
        entries->topLevelItem(1)->child(0)->setCheckState(0, Qt::Checked);
        auto* unused = static_cast<UnusedModulesView*>(page("unusedModulesView"));
        unused->expandCard(unused->moduleNames().constFirst());
        unused->findChild<QCheckBox*>(u"tick"_s)->setChecked(true);
        tree()->expandAll();
        const auto sections = find<QWidget>("preferencesView")->findChildren<CollapsibleSection*>();
        for (CollapsibleSection* section : sections) {
            section->setExpanded(true);
        }
    }

    void change() const
    {
        model()->setValue(node(stringPath), u"other"_s);
        for (const char* path : {"Global/Statistics", "ModuleData/Ostrand", "Thornwick"}) {
            QVERIFY(model()->markForDeletion(node(QLatin1String(path))));
        }
    }

private slots:
    void initTestCase()
    {
        QAccessible::setActive(true);
        prepareProgram();
    }
    void init()
    {
        openSample();
        // Names that are none: of a group, and of a value in it.
        const QByteArray group = "<i k=\"ProcessIcon\">";
        write(m_file,
              contentOf(m_file).replace(group, group + "<i k=\"\"><v k=\"_\" t=\"s\">x</v></i>"));
        QVERIFY(m_window->openFile(m_file));
        QTest::qWait(0); // the former pages go
        m_faults.clear();
    }
    void cleanup() { m_window.reset(); }

    void looksAtEveryPage_data();
    void looksAtEveryPage();
    void looksAtEveryDialog_data();
    void looksAtEveryDialog();
    void reachesBothOfASharedMnemonic();
    void leavesTheTreesEditor();
    void keepsTheFocusOfAButtonGoneDead();
    void tellsTheStateOfASetting();
    void showsTheWholeOfACutTitle();
#if QT_VERSION >= QT_VERSION_CHECK(6, 8, 0)
    void saysWhatShowsElsewhere();
#endif
};

void TestAccessibility::looksAtEveryPage_data()
{
    QTest::addColumn<ThemeMode>("theme");
    QTest::addColumn<bool>("changed");
    QTest::addColumn<bool>("running");
    QTest::newRow("light") << ThemeMode::Light << false << false;
    QTest::newRow("light, view only") << ThemeMode::Light << true << true;
    QTest::newRow("dark, changed") << ThemeMode::Dark << true << false;
}

void TestAccessibility::looksAtEveryPage()
{
    QFETCH(ThemeMode, theme);
    QFETCH(bool, changed);
    QFETCH(bool, running);
    ThemeManager::instance().setMode(theme, false);
    FakePixInsight pixInsight;
    if (changed) {
        change();
    }
    fillPages();
    if (running) {
        QVERIFY(pixInsight.start());
        poll();
    }
    auto* tabs = find<QTabWidget>("tabs");
    auto* pages = find<QListWidget>("pageList");
    for (int i = 0; i < pages->count(); ++i) {
        tabs->setCurrentIndex(0);
        pages->setCurrentRow(i);
        look(*m_window, pages->item(i)->text());
    }
    QTRY_VERIFY(find<QWidget>("searchView")
                    ->findChild<QLabel*>(u"summaryLabel"_s)
                    ->text()
                    .contains("result"_L1));
    for (int i = 1; i < tabs->count(); ++i) {
        tabs->setCurrentIndex(i);
        look(*m_window, tabs->tabText(i));
    }
    QVERIFY2(m_faults.isEmpty(), qPrintable(m_faults.join(u'\n')));
}

void TestAccessibility::looksAtEveryDialog_data()
{
    QTest::addColumn<ThemeMode>("theme");
    QTest::newRow("light") << ThemeMode::Light;
    QTest::newRow("dark") << ThemeMode::Dark;
}

void TestAccessibility::looksAtEveryDialog()
{
    QFETCH(ThemeMode, theme);
    ThemeManager::instance().setMode(theme, false);
    for (const char* stamp : {"20250101-000000", "20250102-000000"}) {
        write(m_file + u".bak-"_s + QLatin1String(stamp), "<xsdt/>");
    }
    fillPages();
    lookAtDialog([this] { press(page("cleanupView"), "queueButton"); });
    lookAtDialog([this] { press(page("unusedModulesView"), "queueButton"); });
    lookAtDialog([this] { press(page("compareView"), "copyAllButton"); });
    page("advancedPage");
    lookAtDialog([this] { pressDelete(u"ModuleData/Ostrand"_s); });
    lookAtDialog([this] { pressDelete(u"Global/Preferences"_s); });
    change();
    for (const char* command : {"actSave", "actRestore", "actBackups", "actRevert", "actFindModule",
                                "actAbout", "actOpen", "actReload"}) {
        lookAtDialog([this, command] { action(command)->trigger(); });
    }
    lookAtDialog([this] { m_window->close(); });
    lookAtDialog([this] { m_window->openFile(m_folder); });
    QVERIFY2(m_faults.isEmpty(), qPrintable(m_faults.join(u'\n')));
}

void TestAccessibility::reachesBothOfASharedMnemonic()
{
    QStringList titles;
    for (int presses = 1; presses <= 2; ++presses) {
        const DialogAnswerer<QDialog> dialog(
            [&](QDialog& opened) { titles << opened.windowTitle(); });
        DialogAnswerer<QMenu> menu([presses](QMenu& file) {
            for (int i = 0; i < presses; ++i) {
                QTest::keyClick(&file, Qt::Key_M);
            }
            QTest::keyClick(&file, Qt::Key_Return);
        });
        m_window->activateWindow();
        QVERIFY(QTest::qWaitForWindowActive(m_window.get()));
        QTest::keyClick(m_window.get(), Qt::Key_F, Qt::AltModifier);
        QTRY_COMPARE(titles.size(), presses);
    }
    QCOMPARE(titles, QStringList({u"Find module data"_s, u"Manage backups"_s}));
}

void TestAccessibility::leavesTheTreesEditor()
{
    page("advancedPage");
    QWidget* editor = type(stringPath, u"typed"_s);
    QVERIFY(editor != tree());
    QTest::keyClick(editor, Qt::Key_Tab);
    QCOMPARE(node(stringPath)->value, u"typed"_s);
    QTest::keyClick(m_window->focusWidget(), Qt::Key_Escape);
    QTRY_COMPARE(m_window->focusWidget(), tree());
    QTest::keyClick(tree(), Qt::Key_Tab);
    QCOMPARE(m_window->focusWidget(), find<QWidget>("strip"));
}

void TestAccessibility::keepsTheFocusOfAButtonGoneDead()
{
    fillPages();
    const auto focusAfter = [this](const char* name, const char* button) {
        QWidget* where = page(name);
        (void)answer({u"Yes"_s}, [&] { press(where, button); });
        return m_window->focusWidget()->objectName();
    };
    // The confirmed command ends what the button was for.
    QCOMPARE(focusAfter("cleanupView", "queueButton"), u"tree"_s);
    QCOMPARE(focusAfter("unusedModulesView", "queueButton"), u"column"_s);
    QWidget* compare = page("compareView");
    compare->findChild<QTreeWidget*>()->topLevelItem(0)->setSelected(true);
    QCOMPARE(focusAfter("compareView", "copySelectedButton"), u"copySelectedButton"_s);
    QTRY_COMPARE(m_window->focusWidget(), compare->findChild<QTreeWidget*>());
}

void TestAccessibility::tellsTheStateOfASetting()
{
    const QString before = node(stringPath)->value;
    change();
    const auto rows = find<QWidget>("preferencesView")->findChildren<SettingRow*>();
    const auto row = std::find_if(rows.begin(), rows.end(), [this](const SettingRow* shown) {
        return shown->node() == node(stringPath);
    });
    const QString told = accessibleText((*row)->findChild<QLineEdit*>(), QAccessible::Description);
    QCOMPARE(told.section(u'\n', 0, 0), u"Changed; on disk: "_s + before);
    QVERIFY(told.section(u'\n', 1).startsWith("What the automatic identifiers"_L1));
    const auto described = [this](const QString& path) {
        return select(path).data(Qt::AccessibleDescriptionRole).toString();
    };
    QCOMPARE(described(stringPath), u"Original value: "_s + before);
    QCOMPARE(described(u"Global/Statistics"_s),
             u"Marked for deletion (312 value(s)); removed when you save."_s);
}

void TestAccessibility::showsTheWholeOfACutTitle()
{
    const QString title = u"A <b>long</b> title of a section"_s;
    CollapsibleSection section(title, false);
    section.show();
    const auto shownAt = [&section](int width) {
        section.resize(width, section.height());
        auto* button = section.findChild<QToolButton*>();
        QHelpEvent event(QEvent::ToolTip, QPoint(5, 5), button->mapToGlobal(QPoint(5, 5)));
        QApplication::sendEvent(button, &event);
        return QTextDocumentFragment::fromHtml(QToolTip::text()).toPlainText();
    };
    QCOMPARE(shownAt(900), QString());
    QCOMPARE(shownAt(60), title);
}

#if QT_VERSION >= QT_VERSION_CHECK(6, 8, 0)
void TestAccessibility::saysWhatShowsElsewhere()
{
    static QStringList said;
    said.clear();
    const auto before = QAccessible::installUpdateHandler([](QAccessibleEvent* event) {
        if (event->type() == QAccessible::Announcement) {
            said << static_cast<QAccessibleAnnouncementEvent*>(event)->message();
        }
    });
    page("advancedPage");
    edit(u"Global/Preferences/Process/MaxConsoleLines"_s, u"many"_s);
    FakePixInsight pixInsight;
    QVERIFY(pixInsight.start());
    poll();
    poll();
    QAccessible::installUpdateHandler(before);
    QCOMPARE(said.size(), 2);
    QVERIFY(said.at(0).startsWith("Not accepted - MaxConsoleLines"_L1));
    QVERIFY(said.at(1).startsWith("PixInsight is running - view only. It"_L1));
}
#endif

KSE_TEST_MAIN(TestAccessibility)
#include "TestAccessibility.moc"
