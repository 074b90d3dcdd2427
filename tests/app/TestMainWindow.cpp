// SPDX-License-Identifier: MIT
#include "app/AboutDialog.h"
#include "session/dialogs/BackupsDialog.h"
#include "session/dialogs/ReviewDialog.h"
#include "support/FakePixInsight.h"
#include "support/TestMain.h"
#include "support/WindowFixture.h"
#include "views/compare/CompareView.h"
#include "views/search/ModuleSearchDialog.h"
#include "views/search/SearchView.h"
#include "widgets/WidgetColumn.h"

using namespace kse;

namespace {

const QString groupPath = u"Global/Statistics"_s;
const QString warnPath = u"ModuleData/Ostrand"_s;
const QString stringPath = u"Global/Preferences/ProcessIcon/Prefix"_s;
const QString numberPath = u"Global/Preferences/Process/MaxConsoleLines"_s;

const auto pressReturn = [](QWidget& dialog) {
    QTest::keyClick(&dialog, Qt::Key_Return);
};

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
            for (auto* column : m_window.findChildren<WidgetColumn*>()) {
                column->complete();
            }
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

        const auto copy = [](QWidget& about) {
            about.findChild<QPushButton*>(u"copy"_s)->click();
        };
        (void)choose("actAbout", {}, copy);
        const QString details = QGuiApplication::clipboard()->text();
        QVERIFY(details.contains(u"Open file: "_s + m_file));
        QVERIFY(details.contains(node(u"LastVersion"_s)->value));
    }

    void asksBeforeAWarnedDeletionOnce()
    {
        const auto askedAt = [this](const QString& path, const QString& button, auto meanwhile) {
            return answer(
                       {button}, [&] { pressDelete(path); }, meanwhile)
                .join(u'\n');
        };
        const auto tick = [](QWidget& box) {
            box.findChild<QCheckBox*>()->click();
        };
        QVERIFY(askedAt(warnPath, {}, pressReturn)
                    .startsWith("Delete saved information?: Delete ModuleData/Ostrand?\n("_L1));
        QCOMPARE(pending(), 0);
        QVERIFY(askedAt(warnPath, u"Yes"_s, tick).startsWith("Delete saved information?"_L1));
        QVERIFY(status().startsWith("ModuleData/Ostrand queued for deletion ("_L1));
        QCOMPARE(askedAt(u"Thornwick"_s, {}, tick), QString());
        pressDelete(groupPath);
        QCOMPARE(pending(), 3);
        XsdtNode* below = node(groupPath);
        while (!below->children.empty()) {
            below = below->children.front().get();
        }
        pressDelete(below->path());
        QVERIFY(status().endsWith(" is already queued for deletion with Global/Statistics."_L1));
    }

    void reviewsSavesAndRestores()
    {
        const QByteArray before = contentOf(m_file);
        write(m_file + u".bak-20200101-000000"_s, before + "\n");
        pressDelete(groupPath);
        // The text is still in its editor when Save is chosen, be it by a key or in the menu.
        QWidget* editor = type(stringPath, u"typed"_s);
        (void)answer({}, [&] { QTest::keyClick(editor, Qt::Key_S, Qt::ControlModifier); });
        QCOMPARE(node(stringPath)->value, u"typed"_s);
        (void)type(numberPath, u"77"_s);
        QCOMPARE(choose("actSave", {u"Save"_s}), QStringList{u"Review changes"_s});
        const QStringList backups = PixInsightEnv::backupsOf(m_file);
        QCOMPARE(backups.size(), 2);
        QCOMPARE(contentOf(backups.constFirst()), before);
        QStatusTipEvent tip(u"Review"_s); // of the button below the mouse
        QCoreApplication::sendEvent(m_window.get(), &tip);
        QCOMPARE(status(), u"Saved. Backup: "_s + QFileInfo(backups.constFirst()).fileName());
        XsdtDocument saved;
        QVERIFY(saved.parse(contentOf(m_file)));
        QCOMPARE(saved.root.findByPath(numberPath)->value, u"77"_s);
        QVERIFY(!saved.root.findByPath(groupPath));
        QCOMPARE(pending(), 0);

        write(m_file, "<xsdt/>"); // which the restore undoes, too
        poll();
        const auto takeSecond = [](QWidget& dialog) {
            if (auto* list = dialog.findChild<QComboBox*>()) {
                list->setCurrentIndex(1);
            }
        };
        (void)choose("actRestore", {u"OK"_s, u"Yes"_s}, takeSecond);
        QCOMPARE(contentOf(m_file), before + "\n");
        QVERIFY(node(groupPath) && find<QWidget>("bannerLabel")->isHidden());
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
        QCOMPARE(answer({}, [this] { pressDelete(groupPath); }),
                 QStringList{u"Cannot delete: PixInsight is running; nothing can be changed.|"_s});
        QVERIFY(process.stop());
        poll();
        QVERIFY(banner->isHidden() && action("actSave")->isEnabled());

        const auto writeMeanwhile = [&](QWidget&) {
            QVERIFY(process.start());
            poll();
            write(m_file, contentOf(m_file).replace("\"7680\"", "\"1\"") + "\n");
            QVERIFY(process.stop());
            poll();
        };
        model()->revertAll();
        (void)answer(
            {u"Yes"_s}, [this] { pressDelete(warnPath); }, writeMeanwhile);
        QVERIFY(pending() == 0 && !status().contains("queued"_L1)); // another tree was asked about
        QVERIFY(banner->isHidden());

        edit(stringPath, u"mine"_s); // nobody's change is dropped
        writeMeanwhile(*m_window);
        QCOMPARE(node(stringPath)->value, u"mine"_s);
        QVERIFY(banner->text().contains("your 1 unsaved"_L1));
    }

    void asksBeforeLeavingAFileWithChanges()
    {
        edit(stringPath, u"mine"_s);
        auto* box = find<QComboBox>("fileBox");
        QTest::keyClick(box, Qt::Key_C); // opens the list, not the next file
        QVERIFY(box->view()->isVisible() && box->currentIndex() == 0);
        box->hidePopup();
        box->setCurrentIndex(1);
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
        (void)choose("actRevert", {u"Yes"_s});
        QCOMPARE(pending(), 0);
        (void)type(numberPath, u"many"_s);
        QVERIFY(!m_window->close()); // so that the refusal is seen
        QVERIFY(status().startsWith("Not accepted - MaxConsoleLines"_L1));
        QVERIFY(m_window->close());
    }

    void readsASpinBoxThatIsTypedIn()
    {
        auto* search = static_cast<SearchView*>(page("searchView"));
        search->setQuery(u"MaxConsoleLines"_s);
        auto* spinBox = search->findChild<QAbstractSpinBox*>();
        spinBox->setFocus();
        spinBox->selectAll();
        QTest::keyClicks(spinBox, u"77"_s);
        QCOMPARE(node(numberPath)->value, u"4000"_s);
        (void)answer({}, [&] { QTest::keyClick(spinBox, Qt::Key_S, Qt::ControlModifier); });
        QCOMPARE(node(numberPath)->value, u"77"_s);
    }

    void namesABackupForAFileThatCannotBeOpened()
    {
        const QString bad = m_folder + u"/&lt;%1.settings"_s;
        write(bad, "nonsense");
        write(bad + u".bak-20260111-000000"_s, "nonsense too");
        write(bad + u".bak-20260101-000000"_s, contentOf(m_file));
        const QStringList told = answer(
            {}, [&] { QVERIFY(!m_window->openFile(bad)); },
            [this](QWidget&) { // already now
                QVERIFY(!action("actReload")->isEnabled());
            });
        QVERIFY(told.value(0).startsWith(u"Cannot open file: "_s + bad + u" is not a valid"_s));
        QVERIFY(told.value(0).contains("&amp;lt;%1.settings.bak-20260101-000000"_L1));
        QCOMPARE(find<QComboBox>("fileBox")->placeholderText(), u"Choose a settings file"_s);
        const QString elsewhere = m_home.filePath(u"other.settings"_s);
        write(elsewhere, contentOf(m_file));
        QVERIFY(m_window->openFile(elsewhere));
        QCOMPARE(find<QComboBox>("fileBox")->currentData(), elsewhere);
    }

    void bringsBackAFileThatIsGone()
    {
        QVERIFY(QFile::rename(m_file, m_file + u".bak-20260101-000000"_s));
        poll();
        const auto* box = find<QComboBox>("fileBox");
        QVERIFY(box->currentText().endsWith(" - instance 1, missing"_L1));
        const QStringList offer =
            answer({u"Restore it"_s}, [this] { find<QPushButton>("bannerReload")->click(); });
        QVERIFY(offer.value(0).contains("core-001-pxi.settings.bak-20260101-000000"_L1));
        QVERIFY(QFile::exists(m_file) && find<QLabel>("bannerLabel")->isHidden());
        QVERIFY(!box->currentText().contains(u"missing"_s));
    }

    void turnsPagesAndSearchesForAModule()
    {
        auto* tabs = find<QTabWidget>("tabs");
        QWidget* editor = type(stringPath, u"typed"_s);
        QTest::keyClick(editor, Qt::Key_Backtab, Qt::ControlModifier | Qt::ShiftModifier);
        QCOMPARE(tabs->currentWidget(), find<QWidget>("compareView"));
        QCOMPARE(node(stringPath)->value, u"typed"_s);

        const auto ask = [](const QString& name) {
            return [name](QWidget& dialog) {
                if (auto* edit = dialog.findChild<QLineEdit*>(u"nameEdit"_s)) {
                    dialog.findChild<QRadioButton*>(u"fullRadio"_s)
                        ->setChecked(name == "Ostrand"_L1);
                    edit->setText(name);
                }
            };
        };
        const auto* query = find<QLineEdit>("queryEdit");
        for (const QString& name : {u"Ostrand"_s, u"Nobody"_s}) {
            (void)choose("actFindModule", {u"Search"_s, u"Yes"_s}, ask(name));
            QCOMPARE(tabs->currentWidget(), find<QWidget>("searchView"));
            QCOMPARE(query->text(), name);
        }
    }

    void filtersRevealsAndCopies()
    {
        auto* changedOnly = find<QWidget>("advancedPage")->findChild<QCheckBox*>();
        edit(stringPath, u"x"_s);
        changedOnly->click();
        QCOMPARE(tree()->model()->rowCount(), 1);
        edit(stringPath, node(stringPath)->original);
        QCOMPARE(tree()->model()->rowCount(), 0);
        QCOMPARE(status(), u"Prefix doesn't match the filter any more, so it isn't shown."_s);
        emit m_window->findChild<SearchView*>()->revealRequested(node(stringPath));
        QCOMPARE(tree()->currentIndex().data().toString(), u"Prefix"_s);

        auto* editor = static_cast<QLineEdit*>(type(stringPath, u"abc"_s));
        editor->setSelection(0, 1);
        QTest::keyClick(editor, Qt::Key_C, Qt::ControlModifier);
        QCOMPARE(QGuiApplication::clipboard()->text(), u"a"_s);
        QTest::keyClick(editor, Qt::Key_Return);
        QTRY_VERIFY(tree()->hasFocus());
        QTest::keyClick(tree(), Qt::Key_C, Qt::ControlModifier);
        QCOMPARE(QGuiApplication::clipboard()->text(), u"abc"_s);
    }

    /// The built program draws its pictures, of the first file that is named, and changes nothing.
    void takesItsArguments()
    {
        const QByteArray before = contentOf(m_file);
        const QDir pictures(m_home.filePath(u"new"_s));
        QProcess program;
        program.start(QStringLiteral(KSE_PROGRAM),
                      {u"--theme"_s, u"dark"_s, u"--font-scale=2.2"_s, u"--screenshots"_s,
                       pictures.path(), u"none.settings"_s, u"other.settings"_s});
        QVERIFY(program.waitForFinished(60'000));
        QCOMPARE(program.exitCode(), 0);
        const QByteArray told = program.readAllStandardError();
        QVERIFY(told.contains("none.settings") && !told.contains("other.settings"));
        QVERIFY(pictures.entryList(QDir::Files).size() >= 14);
        const QImage about(pictures.filePath(u"about.png"_s));
        QCOMPARE(about.pixelColor(1, 1), QColor(45, 45, 48));
        QVERIFY(about.width() > 640);
        QCOMPARE(contentOf(m_file), before);
        QCOMPARE(QDir(m_folder).entryList(QDir::Files).size(), 2);
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
            QVERIFY(std::none_of(seen.begin(), seen.end(), [](const QString& seenLook) {
                return seenLook.contains("blurred"_L1);
            }));
        }
    }

    void staysOnItsScreenWithLargerText()
    {
        ThemeManager::instance().setFontScale(0.8, false);
        const QRect screen = m_window->screen()->geometry();
        m_window->resize(screen.width(), 1); // as low as it gets, at the lower edge
        m_window->move(screen.left(), screen.bottom() - m_window->height());
        ThemeManager::instance().setFontScale(2.2, false);
        QTRY_VERIFY(screen.contains(m_window->frameGeometry()));
    }

private:
    /// What is asked when the command is chosen.
    QStringList choose(
        const char* command, const QStringList& buttons,
        const std::function<void(QWidget&)>& meanwhile = [](QWidget&) {}) const
    {
        return answer(
            buttons, [&] { action(command)->trigger(); }, meanwhile);
    }

    static QString textsOf(const QList<QAction*>& actions, QString (QAction::*text)() const)
    {
        QStringList texts;
        for (const QAction* action : actions) {
            texts << (action->isSeparator() ? u"-"_s : (action->*text)());
        }
        return texts.join(u", "_s);
    }

    QString status() const { return m_window->statusBar()->currentMessage(); }

    QTemporaryDir m_home;
};

KSE_TEST_MAIN(TestMainWindow)
#include "TestMainWindow.moc"
