// SPDX-License-Identifier: MIT
#include "app/AboutDialog.h"
#include "session/dialogs/BackupsDialog.h"
#include "session/dialogs/ReviewDialog.h"
#include "support/FakePixInsight.h"
#include "support/TestMain.h"
#include "support/WindowFixture.h"
#include "views/compare/CompareView.h"
#include "views/rows/SettingRow.h"
#include "views/search/ModuleSearchDialog.h"
#include "views/search/SearchView.h"

#ifdef Q_OS_UNIX
#include <unistd.h>
#endif

using namespace kse;

namespace {

const QString safePath = u"Global/Statistics"_s;
const QString warnPath = u"ModuleData/Ostrand"_s;
const QString stringPath = u"Global/Preferences/ProcessIcon/Prefix"_s;
const QString numberPath = u"Global/Preferences/Process/MaxConsoleLines"_s;

/// Waits until layouts in layouts have settled.
void settle()
{
    for (int i = 0; i < 5; ++i) {
        QCoreApplication::processEvents();
    }
}

/// What can change while the window stands.
struct Look
{
    ThemeMode theme = ThemeMode::Light;
    double scale = 0.8;
    Qt::LayoutDirection direction = Qt::LeftToRight;
    int screen = 0;
    bool running = false;
};

/// The program in use, with a change and with dialogs open.
class StandingProgram
{
public:
    StandingProgram(const QString& otherFile, int screen)
    {
        m_model->setReadOnly(false); // for the change
        m_model->setValue(m_model->document()->root.findByPath(stringPath), u"x"_s);
        m_window.findChild<QLineEdit*>(u"queryEdit"_s)->setText(u"thread"_s);
        (void)m_window.findChild<CompareView*>()->compareWith(otherFile);
        moveTo(screen);
        for (QWidget* window : m_windows) {
            window->show();
        }
        (void)looks();
    }

    void moveTo(int screen)
    {
        for (QWidget* window : m_windows) {
            window->move(QGuiApplication::screens().at(screen)->geometry().topLeft());
        }
    }

    /// What the look of each widget in sight is made of, page by page and in the dialogs.
    QSet<QString> looks()
    {
        QMetaObject::invokeMethod(&m_window, "pollEnvironment");
        settle();
        QSet<QString> looks;
        auto* tabs = m_window.findChild<QTabWidget*>(u"tabs"_s);
        auto* pages = m_window.findChild<QListWidget*>(u"pageList"_s);
        for (int i = 0; i < tabs->count() + pages->count(); ++i) {
            tabs->setCurrentIndex(qMax(0, i - pages->count()));
            pages->setCurrentRow(qMin(i, pages->count() - 1));
            settle();
            const auto widgets = m_window.findChildren<QWidget*>() << &m_window;
            for (const QWidget* widget : widgets) {
                if (widget->isVisible()) {
                    looks.insert(lookOf(*widget));
                }
            }
        }
        return looks;
    }

private:
    static QString lookOf(const QWidget& widget)
    {
        const auto* button = qobject_cast<const QAbstractButton*>(&widget);
        const auto* label = qobject_cast<const QLabel*>(&widget);
        const qreal ratio = widget.devicePixelRatio();
        const QPixmap picture = button  ? button->icon().pixmap(button->iconSize(), ratio)
                                : label ? label->pixmap(Qt::ReturnByValue)
                                        : QPixmap();
        QByteArray palette;
        QDataStream stream(&palette, QIODevice::WriteOnly);
        stream << widget.palette() << picture;
        const bool isOurs = !qobject_cast<QLineEdit*>(widget.parentWidget());
        QString look;
        QDebug debug(&look);
        debug << (isOurs && !picture.isNull() && picture.devicePixelRatio() < ratio ? "blurred"
                                                                                    : "")
              << widget.metaObject()->className() << widget.objectName() << widget.font()
              << widget.size() << widget.mapTo(widget.window(), QPoint()) << widget.minimumSize()
              << widget.layoutDirection() << ratio << qHash(palette);
        return look;
    }

    MainWindow m_window;
    SettingsModel* m_model = m_window.findChild<SettingsModel*>();
    AboutDialog m_about{{}, {}, &m_window};
    BackupsDialog m_backups{u"/none"_s, &m_window};
    ReviewDialog m_review{m_model, m_model->document(), &m_window};
    ModuleSearchDialog m_find{{}, &m_window};
    QList<QWidget*> m_windows{&m_window, &m_about, &m_backups, &m_review, &m_find};
};

} // namespace

/// The window's own commands, and the tree of all settings.
class TestMainWindow : public WindowFixture
{
    Q_OBJECT

public slots:
    void open(const QUrl& url) { m_opened = url.toLocalFile(); }

private slots:
    void initTestCase() { prepareProgram(); }
    void init()
    {
        openSample();
        page("advancedPage");
    }
    void cleanup() { m_window.reset(); }

    void offersItsCommandsInOrder()
    {
        QStringList offered;
        for (const QMenu* menu : m_window->findChildren<QMenu*>()) {
            offered << menu->title() + u": "_s + textsOf(menu->actions(), &QAction::text);
        }
        offered.removeIf([](const QString& menu) { return menu.startsWith(u':'); }); // of no bar
        offered << textsOf(find<QToolBar>("MainToolbar")->actions(), &QAction::iconText);
        const QStringList expected{
            u"&File: &Open settings file..., &Reload from disk, -, Find &module data..., "
            "&Unused module data, Run &health check, -, &Save changes..., Restore &backup..., "
            "&Manage backups..., -, &Quit"_s,
            u"&Edit: Revert &all changes, -, &Theme"_s,
            u"&Theme: &Light, &Dark, Follow &system, -, Toggle light/dark"_s,
            u"&View: &Expand all, &Collapse all, -, &Larger text, &Smaller text, "
            "&Default text size, -, &Toolbar"_s,
            u"&Help: &User Guide, -, &About Kestrane Settings Editor, About &Qt"_s,
            u"Open, Reload, -, Save, Revert all, -, Find module, Backups, Restore, -, Theme, "
            "-, About"_s};
        QCOMPARE(offered, expected);
    }

    void tellsAboutTheOpenFile()
    {
        const auto read = [](QWidget& dialog) {
            dialog.findChild<QPushButton*>(u"copy"_s)->click();
        };
        QCOMPARE(answer(
                     {u"OK"_s}, [this] { action("actAbout")->trigger(); }, read)
                     .size(),
                 1);
        const QString copied = QGuiApplication::clipboard()->text();
        QVERIFY(copied.contains(u"Open file: "_s + m_file));
        QVERIFY(copied.contains(node(u"LastVersion"_s)->value));
    }

    void asksBeforeAWarnedDeletionOnce()
    {
        const auto pressReturn = [](QWidget& box) {
            QTest::keyClick(&box, Qt::Key_Return);
        };
        QStringList asked = answer(
            {}, [this] { pressDelete(warnPath); }, pressReturn);
        QCOMPARE(asked.size(), 1);
        QVERIFY(asked.constFirst().startsWith(
            "Delete saved information?: Delete ModuleData/Ostrand?\n("_L1));
        QCOMPARE(pending(), 0);
        const auto tick = [](QWidget& box) {
            box.findChild<QCheckBox*>()->click();
        };
        asked = answer(
            {u"Yes"_s}, [this] { pressDelete(warnPath); }, tick);
        QCOMPARE(asked.size(), 1);
        QVERIFY(status().startsWith("ModuleData/Ostrand queued for deletion ("_L1));
        QCOMPARE(answer({}, [this] { pressDelete(u"Thornwick"_s); }), QStringList());
        pressDelete(safePath);
        QCOMPARE(pending(), 3);

        XsdtNode* below = node(safePath);
        while (!below->children.empty()) {
            below = below->children.front().get();
        }
        pressDelete(below->path());
        QVERIFY(status().endsWith(" is already queued for deletion with Global/Statistics."_L1));
    }

    void reviewsSavesAndRestores()
    {
        const QByteArray before = contentOf(m_file);
        const QByteArray older = before + "\n";
        write(m_file + u".bak-20200101-000000"_s, older);
        edit(numberPath, u"77"_s);
        pressDelete(safePath);
        // The text is still in its editor when Save is pressed, be it by a key or in the menu.
        QWidget* editor = type(stringPath, u"typed"_s);
        const auto revertOne = [&](QWidget& dialog) {
            auto* list = dialog.findChild<QTreeWidget*>();
            QCOMPARE(list->topLevelItemCount(), 3);
            list->setCurrentItem(list->findItems(numberPath, Qt::MatchExactly, 1).value(0));
            dialog.findChild<QPushButton*>(u"revert"_s)->click();
            QCOMPARE(list->topLevelItemCount(), 2);
            dialog.findChild<QPushButton*>(u"save"_s)->click();
        };
        const QStringList asked = answer(
            {}, [&] { QTest::keyClick(editor, Qt::Key_S, Qt::ControlModifier); }, revertOne);
        QCOMPARE(asked, QStringList{u"Review changes"_s});
        const QStringList backups = PixInsightEnv::backupsOf(m_file);
        QCOMPARE(backups.size(), 2);
        QCOMPARE(contentOf(backups.constFirst()), before);
        QStatusTipEvent tip(u"Review"_s); // of the button beneath the mouse
        QCoreApplication::sendEvent(m_window.get(), &tip);
        QCOMPARE(status(), u"Saved. Backup: "_s + QFileInfo(backups.constFirst()).fileName());
        XsdtDocument saved;
        QVERIFY(saved.parse(contentOf(m_file)));
        QCOMPARE(saved.root.findByPath(stringPath)->value, u"typed"_s);
        QVERIFY(!saved.root.findByPath(safePath));
        QCOMPARE(pending(), 0);

        write(m_file, "<xsdt/>"); // which the restore undoes, too
        poll();
        const auto choose = [](QWidget& dialog) {
            if (auto* list = dialog.findChild<QComboBox*>()) {
                list->setCurrentIndex(1);
            }
        };
        (void)answer(
            {u"OK"_s, u"Yes"_s}, [this] { action("actRestore")->trigger(); }, choose);
        QCOMPARE(contentOf(m_file), older);
        QVERIFY(node(safePath) && find<QWidget>("bannerLabel")->isHidden());
        QCOMPARE(PixInsightEnv::backupsOf(m_file).size(), 3);
    }

    void showsNoChangeOnceItIsSaved()
    {
        const auto* pages = find<QListWidget>("pageList");
        (void)type(numberPath, u"77"_s);
        model()->setValue(node(stringPath), u"x"_s);
        (void)answer({u"Save"_s}, [this] { action("actSave")->trigger(); });
        XsdtDocument saved;
        QVERIFY(saved.parse(contentOf(m_file)));
        QCOMPARE(saved.root.findByPath(numberPath)->value, u"77"_s);
        QCOMPARE(pages->findItems(u"●"_s, Qt::MatchContains).size(), 0);
    }

    void turnsViewOnlyWhilePixInsightRuns()
    {
        (void)type(stringPath, u"kept"_s);
        FakePixInsight process;
        QVERIFY(process.start());
        poll();
        QCOMPARE(node(stringPath)->value, u"kept"_s);
        const auto* banner = find<QLabel>("bannerLabel");
        QVERIFY(banner->text().startsWith("<b>PixInsight is running - view only.</b>"_L1));
        QVERIFY(!action("actSave")->isEnabled() && !action("actRestore")->isEnabled());
        QCOMPARE(type(stringPath, u"x"_s), tree());
        QCOMPARE(answer({}, [this] { pressDelete(safePath); }),
                 QStringList{u"Cannot delete: PixInsight is running; nothing can be changed.|"_s});
        QVERIFY(process.stop());
        poll();
        QVERIFY(banner->isHidden() && action("actSave")->isEnabled());

        QVERIFY(process.start()); // not after a review
        QVERIFY(answer({}, [this] { action("actSave")->trigger(); })
                    .value(0)
                    .startsWith("Save failed"_L1));
        QVERIFY(answer({}, [this] { m_window->close(); })
                    .value(0)
                    .contains("|PixInsight is running"_L1));
    }

    void takesUpWhatPixInsightWroteUnderAnOpenBox()
    {
        FakePixInsight process;
        const auto meanwhile = [&](QWidget&) {
            QVERIFY(process.start());
            poll();
            write(m_file, contentOf(m_file).replace("\"7680\"", "\"1\"") + "\n");
            QVERIFY(process.stop());
            poll();
            QVERIFY(status().startsWith("Loaded "_L1));
        };
        QCOMPARE(answer(
                     {u"Yes"_s}, [this] { pressDelete(warnPath); }, meanwhile)
                     .size(),
                 1);
        QCOMPARE(pending(), 0);
        QVERIFY(find<QWidget>("bannerLabel")->isHidden());

        edit(stringPath, u"mine"_s); // nobody's change is dropped
        QVERIFY(process.start());
        poll();
        write(m_file, contentOf(m_file) + "\n");
        QVERIFY(process.stop());
        poll();
        QCOMPARE(node(stringPath)->value, u"mine"_s);
        QVERIFY(find<QLabel>("bannerLabel")->text().contains("your 1 unsaved"_L1));
    }

    void asksBeforeLeavingAFileWithChanges()
    {
        edit(stringPath, u"mine"_s);
        auto* box = find<QComboBox>("fileBox");
        QTest::keyClick(box, Qt::Key_Down); // opens the list, not the next file
        QVERIFY(box->view()->isVisible() && box->currentIndex() == 0);
        box->hidePopup();
        box->setCurrentIndex(1);
        const auto pressReturn = [](QWidget& asked) {
            QTest::keyClick(&asked, Qt::Key_Return);
        };
        QCOMPARE(answer(
                     {}, [box] { emit box->activated(1); }, pressReturn)
                     .size(),
                 1);
        QCOMPARE(box->currentIndex(), 0);
        QCOMPARE(answer({u"Cancel"_s}, [this] { QVERIFY(!m_window->close()); }),
                 QStringList{u"Unsaved changes: You have 1 unsaved change(s).|"_s});

        write(m_file, contentOf(m_file) + "\n"); // the save fails, so the window stays
        const QStringList asked = answer({u"Save"_s, u"Save"_s}, [this] { m_window->close(); });
        QCOMPARE(asked.size(), 3);
        QVERIFY(asked.constLast().startsWith("Save failed"_L1) && m_window->isVisible());
        (void)type(numberPath, u"77"_s); // is discarded with the rest
        (void)answer({u"Yes"_s}, [this] { action("actRevert")->trigger(); });
        QCOMPARE(pending(), 0);
        QVERIFY(m_window->close());
    }

    void leavesWhatIsBeingTypedToItsUser()
    {
        auto* search = static_cast<SearchView*>(page("searchView"));
        search->setQuery(u"ProcessIcon/Prefix"_s);
        auto* editor = search->findChild<SettingRow*>()->findChild<QLineEdit*>();
        editor->setFocus();
        editor->selectAll();
        QTest::keyClicks(editor, u"half"_s);
        poll();
        QVERIFY(!node(stringPath)->isModified());
        (void)answer({}, [this] { QVERIFY(!m_window->close()); });
        QCOMPARE(node(stringPath)->value, u"half"_s);

        search->setQuery(u"MaxConsoleLines"_s);
        QTest::qWait(0); // the former row goes
        auto* spinBox = search->findChild<QAbstractSpinBox*>();
        spinBox->setFocus();
        spinBox->selectAll();
        QTest::keyClicks(spinBox, u"77"_s);
        (void)answer({}, [&] { QTest::keyClick(spinBox, Qt::Key_S, Qt::ControlModifier); });
        QCOMPARE(node(numberPath)->value, u"77"_s);

        page("advancedPage");
        model()->revertAll();
        type(numberPath, u"many"_s);
        QVERIFY(!m_window->close()); // so that the refusal is seen
        edit(stringPath, u"pending"_s);
        QWidget* typing = type(numberPath, u"many"_s);
        QCOMPARE(answer({}, [=] { QTest::keyClick(typing, Qt::Key_S, Qt::ControlModifier); }),
                 QStringList());
        QVERIFY(status().startsWith("Not accepted - MaxConsoleLines"_L1));
    }

    void namesABackupForAFileThatCannotBeOpened()
    {
        const QString bad = m_folder + u"/&lt;%1.settings"_s;
        write(bad, "nonsense");
        for (int day = 10; day < 21; ++day) {
            write(bad + u".bak-202601%1-000000"_s.arg(day), "nonsense too");
        }
        write(bad + u".bak-20260101-000000"_s, contentOf(m_file));
        write(m_file, contentOf(m_file) + "\n");
        poll();
        const QStringList told = answer(
            {}, [&] { QVERIFY(!m_window->openFile(bad)); },
            [this](QWidget&) { QVERIFY(!action("actReload")->isEnabled()); }); // already now
        QCOMPARE(told.size(), 1);
        QVERIFY(told.constFirst().startsWith(u"Cannot open file: "_s + bad + u" is not a valid"_s));
        QVERIFY(told.constFirst().contains("&amp;lt;%1.settings.bak-20260101-000000"_L1));
        QVERIFY(!model()->document() && find<QWidget>("bannerLabel")->isHidden());
        QCOMPARE(find<QComboBox>("fileBox")->placeholderText(), u"Choose a settings file"_s);

        const QString elsewhere = m_home.filePath(u"other.settings"_s);
        write(elsewhere, contentOf(m_file));
        QVERIFY(m_window->openFile(elsewhere));
        QCOMPARE(find<QComboBox>("fileBox")->currentData(), elsewhere);
    }

    void turnsPagesFromAnywhere()
    {
        auto* tabs = find<QTabWidget>("tabs");
        find<QWidget>("fileBox")->setFocus();
        QTest::keyClick(m_window->focusWidget(), Qt::Key_Tab, Qt::ControlModifier);
        QCOMPARE(tabs->currentIndex(), 0);
        page("advancedPage");
        QWidget* editor = type(stringPath, u"typed"_s);
        QTest::keyClick(editor, Qt::Key_Backtab, Qt::ControlModifier | Qt::ShiftModifier);
        QCOMPARE(tabs->currentWidget(), find<QWidget>("compareView"));
        QCOMPARE(node(stringPath)->value, u"typed"_s);
    }

    void searchesTheWholeFileForAModule()
    {
        (void)answer(
            {u"Search"_s}, [this] { action("actFindModule")->trigger(); },
            [](QWidget& dialog) {
                dialog.findChild<QWidget*>(u"fullRadio"_s)->setFocus();
                QTest::keyClick(dialog.focusWidget(), Qt::Key_Space);
                dialog.findChild<QLineEdit*>(u"nameEdit"_s)->setText(u"Ostrand"_s);
            });
        QCOMPARE(find<QTabWidget>("tabs")->currentWidget(), find<QWidget>("searchView"));
        QCOMPARE(find<QLineEdit>("queryEdit")->text(), u"Ostrand"_s);
    }

#ifdef Q_OS_UNIX
    void writesTheGuideWhereNobodyElsesNameIs()
    {
        const QByteArray before = qgetenv("TMPDIR");
        qputenv("TMPDIR", m_home.path().toLocal8Bit());
        const auto restore = qScopeGuard([&] {
            before.isNull() ? qunsetenv("TMPDIR") : qputenv("TMPDIR", before);
            QDesktopServices::unsetUrlHandler(u"file"_s);
        });
        QDesktopServices::setUrlHandler(u"file"_s, this, "open");
        const QString name = m_home.filePath(u"KestraneSettingsEditor-Help.html"_s);
        const QString target = m_home.filePath(u"target"_s);
        write(target, "mine");
        QVERIFY(QFile::link(target, name));
        QTest::keyClick(tree(), Qt::Key_F1);
        QCOMPARE(m_opened, name);
        QVERIFY(contentOf(name).startsWith("<!DOCTYPE html>"));
        QCOMPARE(contentOf(target), "mine");

        // A folder can't be written over; given away, it stands for what another account made.
        QVERIFY(QFile::remove(name) && QDir().mkdir(name));
        m_opened.clear();
        QTest::keyClick(tree(), Qt::Key_F1);
        QCOMPARE(m_opened, QString());
        if (::chown(qPrintable(name), 1, 1) != 0) {
            QSKIP("Only root can give a folder away");
        }
        QTest::keyClick(tree(), Qt::Key_F1);
        QVERIFY(m_opened.startsWith(qEnvironmentVariable("XDG_CACHE_HOME")));
        QCOMPARE(contentOf(m_opened), contentOf(u":/help/help.html"_s));
    }
#endif

    void bringsBackAFileThatIsGone()
    {
        const QByteArray before = contentOf(m_file);
        QVERIFY(QFile::copy(m_file, m_file + u".bak-20260101-000000"_s));
        const auto* box = find<QComboBox>("fileBox");
        QVERIFY(QFile::remove(m_file));
        poll();
        QVERIFY(box->currentText().endsWith(" - instance 1, missing"_L1));
        const auto reload = [this] {
            find<QPushButton>("bannerReload")->click();
        };
        const QStringList offer = answer({u"Restore it"_s}, reload);
        QVERIFY(offer.value(0).contains("core-001-pxi.settings.bak-20260101-000000"_L1));
        QCOMPARE(contentOf(m_file), before);
        QVERIFY(status().startsWith("Restored "_L1) && find<QLabel>("bannerLabel")->isHidden());
        QVERIFY(!box->currentText().contains(u"missing"_s));
#ifdef Q_OS_UNIX
        QVERIFY(QFile::remove(m_file) && QFile::link(u"nowhere"_s, m_file)); // no restore mends it
        QCOMPARE(answer({u"Restore it"_s}, reload).size(), 1);
        QVERIFY(!QFile::exists(m_file));
#endif
    }

    void filtersAndKeepsItsPlace()
    {
        auto* filter = find<QLineEdit>("treeFilter");
        const QString path = u"Global/Preferences/MainWindow/AnimateCombo"_s;
        QTest::keyClicks(filter, u"animate"_s);
        QVERIFY(!select(stringPath).isValid());
        QVERIFY(select(path).isValid());
        filter->clear();
        QCOMPARE(tree()->currentIndex().data().toString(), u"AnimateCombo"_s);
        QVERIFY(tree()->selectionModel()->isSelected(tree()->currentIndex()));
        QVERIFY(!tree()->isExpanded(tree()->model()->index(0, 0)));

        edit(stringPath, u"x"_s);
        auto* changedOnly = find<QWidget>("advancedPage")->findChild<QCheckBox*>();
        changedOnly->click();
        QCOMPARE(tree()->model()->rowCount(), 1);
        QVERIFY(tree()->isExpanded(tree()->model()->index(0, 0)));
        edit(stringPath, node(stringPath)->original);
        QCOMPARE(tree()->model()->rowCount(), 0);
        QCOMPARE(status(), u"Prefix doesn't match the filter any more, so it isn't shown."_s);
        emit m_window->findChild<SearchView*>()->revealRequested(node(stringPath));
        QCOMPARE(tree()->currentIndex().data().toString(), u"Prefix"_s);
    }

    void editsAndCopiesARowFromAnyOfItsCells()
    {
        select(stringPath);
        tree()->setFocus();
        QTest::keyClick(tree(), Qt::Key_C, Qt::ControlModifier);
        QCOMPARE(QGuiApplication::clipboard()->text(), u"Prefix"_s);
        QTest::mouseClick(tree()->viewport(), Qt::LeftButton, {},
                          tree()->visualRect(tree()->currentIndex()).center());
        QTest::qWait(QApplication::doubleClickInterval() + 100);
        QCOMPARE(m_window->focusWidget(), tree()); // a slow second click on the name
        QTest::keyClick(tree(), Qt::Key_F2);
        auto* editor = qobject_cast<QLineEdit*>(m_window->focusWidget());
        editor->setText(u"a\n"_s + QString(300, u'x'));
        editor->setSelection(0, 1);
        QTest::keyClick(editor, Qt::Key_C, Qt::ControlModifier);
        QCOMPARE(QGuiApplication::clipboard()->text(), u"a"_s);
        QTest::keyClick(editor, Qt::Key_Return);
        QTRY_VERIFY(tree()->hasFocus());
        QTest::keyClick(tree(), Qt::Key_C, Qt::ControlModifier);
        QCOMPARE(QGuiApplication::clipboard()->text(), node(stringPath)->value);
        QCOMPARE(node(stringPath)->value.size(), 302);
    }

    void revertsAllInPlace()
    {
        for (const QString& filter : {u""_s, u"max"_s}) {
            find<QLineEdit>("treeFilter")->setText(filter);
            edit(numberPath, u"77"_s);
            const int scrolled = tree()->verticalScrollBar()->value();
            QCOMPARE(scrolled > 0, filter.isEmpty());
            (void)answer({u"Yes"_s}, [this] { action("actRevert")->trigger(); });
            QCOMPARE(tree()->currentIndex().data().toString(), u"4000"_s);
            QVERIFY(tree()->visualRect(tree()->currentIndex()).isValid()); // its group is open
            QCOMPARE(tree()->verticalScrollBar()->value(), scrolled);
        }
    }

    void takesItsArguments_data()
    {
        QTest::addColumn<QStringList>("arguments");
        QTest::addColumn<QColor>("ground");
        QTest::addColumn<bool>("isLarge");
        QTest::newRow("dark") << QStringList{u"--theme"_s, u"dark"_s, u"--font-scale"_s, u"0.8"_s}
                              << QColor(45, 45, 48) << false;
        QTest::newRow("light") << QStringList{u"--theme=light"_s, u"--font-scale=2.2"_s}
                               << QColor(240, 240, 240) << true;
    }

    /// The built program draws its pictures, of the first file that is named, and changes nothing.
    void takesItsArguments()
    {
        QFETCH(QStringList, arguments);
        m_window.reset();
        const QStringList files = QDir(m_folder).entryList(QDir::Files);
        const QByteArray before = contentOf(m_file);
        QProcess program;
        program.start(QStringLiteral(KSE_PROGRAM),
                      arguments << u"--screenshots"_s << m_home.filePath(u"new"_s)
                                << u"none.settings"_s << u"other.settings"_s);
        QVERIFY(program.waitForFinished(60'000));
        QCOMPARE(program.exitCode(), 0);
        const QByteArray told = program.readAllStandardError();
        QVERIFY(told.contains("none.settings") && !told.contains("other.settings"));
        const QDir pictures(m_home.filePath(u"new"_s));
        QVERIFY(pictures.entryList(QDir::Files).size() >= 14);
        QTEST(QImage(pictures.filePath(u"about.png"_s)).pixelColor(1, 1), "ground");
        QTEST(QImage(pictures.filePath(u"about.png"_s)).width() > 640, "isLarge");
        QCOMPARE(QImage(pictures.filePath(u"search.png"_s)).size(), QSize(1200, 820));
        QCOMPARE(contentOf(m_file), before);
        QCOMPARE(QDir(m_folder).entryList(QDir::Files), files);
    }

    void looksAsIfStartedSo()
    {
        m_window.reset();
        FakePixInsight process;
        const auto apply = [&process](const Look& look) {
            ThemeManager::instance().setMode(look.theme, false);
            ThemeManager::instance().setFontScale(look.scale, false);
            QApplication::setLayoutDirection(look.direction);
            return look.running ? process.start() : process.stop();
        };
        const Look plain;
        const Look other{ThemeMode::Dark, 2.2, Qt::RightToLeft,
                         int(QGuiApplication::screens().size() - 1), true};
        QVERIFY(apply(other));
        const QString file = m_folder + u"/core-002-pxi.settings"_s;
        StandingProgram live(file, other.screen);
        for (const Look& look : {plain, other}) {
            QVERIFY(apply(look));
            live.moveTo(look.screen);
            const QSet<QString> seen = live.looks();
            const QSet<QString> expected = StandingProgram(file, look.screen).looks();
            QCOMPARE((seen - expected).values().value(0), (expected - seen).values().value(0));
            QVERIFY(!seen.values().join(u' ').contains("blurred"_L1));
        }
    }

    void takesWidthOnItsScreenAndGivesItBack()
    {
        ThemeManager::instance().setFontScale(0.8, false);
        settle();
        const QRect screen = m_window->screen()->availableGeometry();
        m_window->resize(m_window->minimumWidth(), 700);
        const int width = m_window->width();
        m_window->move(screen.right() - m_window->frameGeometry().width(), 20);
        ThemeManager::instance().setFontScale(2.2, false);
        settle();
        QVERIFY(m_window->width() > width);
        QVERIFY(screen.contains(m_window->frameGeometry()));
        ThemeManager::instance().setFontScale(0.8, false);
        settle();
        QCOMPARE(m_window->width(), width);
        m_window->resize(5000, 5000);
        m_window->hide();
        m_window->show();
        QVERIFY(screen.contains(m_window->frameGeometry()));
    }

    void worksOnAFileOfAMillionLevels()
    {
        const int depth = 1'000'000;
        const QString deep = m_folder + u"/core-003-pxi.settings"_s;
        write(deep, "<xsdt>" + QByteArray("<i k=\"g\">").repeated(depth) +
                        "<v k=\"v\" t=\"i\" v=\"1\"/>" + QByteArray("</i>").repeated(depth) +
                        "<i k=\"top\"><v k=\"v\" t=\"i\" v=\"1\"/></i></xsdt>");
        QVERIFY(m_window->openFile(deep));
        tree()->expandAll();
        QTest::keyClicks(find<QLineEdit>("treeFilter"), u"top"_s);
        edit(u"top/v"_s, u"2"_s);
        (void)answer({u"Save"_s}, [this] { action("actSave")->trigger(); });
        QVERIFY(contentOf(deep).endsWith("<i k=\"top\"><v k=\"v\" t=\"i\" v=\"2\"/></i></xsdt>"));
    }

private:
    static QString textsOf(const QList<QAction*>& actions, QString (QAction::*text)() const)
    {
        QStringList texts;
        for (const QAction* action : actions) {
            texts << (action->isSeparator() ? u"-"_s : (action->*text)());
        }
        return texts.join(u", "_s);
    }

    QTemporaryDir m_home;
    QString m_opened;
};

KSE_TEST_MAIN(TestMainWindow)
#include "TestMainWindow.moc"
