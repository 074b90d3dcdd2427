// SPDX-License-Identifier: MIT
#include "app/AboutDialog.h"
#include "session/dialogs/BackupsDialog.h"
#include "session/dialogs/ReviewDialog.h"
#include "support/DialogAnswerer.h"
#include "support/FakePixInsight.h"
#include "support/TestMain.h"
#include "support/WindowFixture.h"
#include "views/compare/CompareView.h"
#include "views/search/ModuleSearchDialog.h"
#include "views/search/SearchView.h"

namespace {

const QString groupPath = u"Global/Statistics"_s;
const QString warnPath = u"ModuleData/Ostrand"_s;
const QString stringPath = u"Global/Preferences/ProcessIcon/Prefix"_s;
const QString numberPath = u"Global/Preferences/Process/MaxConsoleLines"_s;

/// The program in use, with a change and with dialogs open.
class StandingProgram
{
public:
    StandingProgram(const QString& otherFile, const QScreen& screen)
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

    void moveTo(const QScreen& screen)
    {
        for (QWidget* window : m_windows) {
            window->move(screen.geometry().topLeft());
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
        const bool isBlurred = !picture.isNull() && picture.devicePixelRatio() < ratio &&
                               !qobject_cast<QLineEdit*>(widget.parentWidget()); // Qt's button
        QByteArray colors;
        QDataStream stream(&colors, QIODevice::WriteOnly);
        stream << widget.palette() << picture;
        QString look;
        QDebug(&look) << (isBlurred ? "blurred" : "") << widget.metaObject()->className()
                      << widget.objectName() << widget.font() << widget.size()
                      << widget.mapTo(widget.window(), QPoint()) << widget.minimumSize()
                      << widget.layoutDirection() << ratio << qHash(colors);
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
        const auto textsOf = [](const QWidget& bar, QString (QAction::*text)() const) {
            QStringList texts;
            for (const QAction* action : bar.actions()) {
                texts << (action->isSeparator() ? u"-"_s : (action->*text)());
            }
            return texts.join(u", "_s);
        };
        QStringList offered{textsOf(*find<QToolBar>("MainToolbar"), &QAction::iconText)};
        for (const QMenu* menu : m_window->findChildren<QMenu*>()) {
            if (!menu->title().isEmpty()) { // else of no bar
                offered << menu->title() + u": "_s + textsOf(*menu, &QAction::text);
            }
        }
        const QStringList expected{
            u"Open, Reload, -, Save, Revert all, -, Find module, Backups, Restore, -, Theme, "
            "-, About"_s,
            u"&File: &Open settings file..., &Reload from disk, -, Find &module data..., "
            "&Unused module data, Run &health check, -, &Save changes..., Restore &backup..., "
            "&Manage backups..., -, &Quit"_s,
            u"&Edit: Revert &all changes, -, &Theme"_s,
            u"&Theme: &Light, &Dark, Follow &system, -, Toggle light/dark"_s,
            u"&View: &Expand all, &Collapse all, -, &Larger text, &Smaller text, "
            "&Default text size, -, &Toolbar"_s,
            u"&Help: &User Guide, -, &About Kestrane Settings Editor, About &Qt"_s};
        QCOMPARE(offered, expected);

        qputenv("TMPDIR", m_home.path().toLocal8Bit()); // not where others' guides lie
        QTextBrowser guide;
        QDesktopServices::setUrlHandler(u"file"_s, &guide, "setSource");
        QTest::keyClick(m_window.get(), Qt::Key_F1);
        QVERIFY(guide.toPlainText().contains(u"Kestrane Settings Editor"_s));
        QDesktopServices::unsetUrlHandler(u"file"_s);

        const QIcon icon = action("actSave")->icon();
        QVERIFY(icon.pixmap(18).toImage() != icon.pixmap(18, QIcon::Disabled).toImage());
        (void)choose("actAbout", {u"Copy details"_s});
        const QString details = QGuiApplication::clipboard()->text();
        QVERIFY(details.contains(u"Open file: "_s + QDir::toNativeSeparators(m_file)));
        QVERIFY(details.contains(node(u"LastVersion"_s)->value));
    }

    void asksBeforeAWarnedDeletionOnce()
    {
        const auto askedAt = [this](const QString& path, const QString& button) {
            const auto tick = [&button](QWidget& box) {
                box.findChild<QCheckBox*>()->click();
                QTest::keyClick(&box, button.isEmpty() ? Qt::Key_Return : Qt::Key_Tab);
            };
            return answer(
                       {button}, [&] { pressDelete(path); }, tick)
                .join(u'\n');
        };
        QVERIFY(askedAt(warnPath, {})
                    .startsWith("Delete saved information?: Delete ModuleData/Ostrand?\n("_L1));
        QCOMPARE(pending(), 0);
        QVERIFY(askedAt(warnPath, u"Yes"_s).startsWith("Delete saved information?"_L1));
        QVERIFY(status().startsWith("ModuleData/Ostrand queued for deletion ("_L1));
        QCOMPARE(askedAt(u"Thornwick"_s, {}), QString());
        select(groupPath);
        tree()->clearSelection();
        QTest::keyClick(tree(), Qt::Key_Delete);
        QCOMPARE(pending(), 2);
        pressDelete(groupPath);
        QCOMPARE(pending(), 3);
        pressDelete(groupPath + u"/Process/AldwaterCalibration"_s);
        QVERIFY(status().endsWith(" is already queued for deletion with Global/Statistics."_L1));
    }

    void reviewsSavesAndRestores()
    {
        const QByteArray before = contentOf(m_file);
        write(m_file + u".bak-20200101-000000"_s, before + "\n");
        pressDelete(groupPath);
        (void)type(numberPath, u"77"_s); // is still in its editor when Save is chosen
        const auto seesBoth = [](QWidget& review) {
            QCOMPARE(review.findChild<QTreeWidget*>()->topLevelItemCount(), 2);
        };
        QCOMPARE(choose("actSave", {u"Save"_s}, seesBoth), QStringList{u"Review changes"_s});
        const QStringList backups = PixInsightEnv::backupsOf(m_file);
        QCOMPARE(backups.size(), 2);
        QCOMPARE(contentOf(backups.constFirst()), before);
        QStatusTipEvent tip(u"Review"_s); // of the button below the mouse
        QCoreApplication::sendEvent(m_window.get(), &tip);
        QCOMPARE(status(), u"Saved. Backup: "_s + QFileInfo(backups.constFirst()).fileName());
        XsdtDocument saved;
        QVERIFY(saved.parse(contentOf(m_file)));
        QCOMPARE(saved.root.findByPath(numberPath)->value, u"77"_s);
        QVERIFY(!saved.root.findByPath(groupPath) && pending() == 0);
        model()->setValue(node(stringPath), QString(1024, u'x'));
        (void)choose("actSave", {u"Save"_s});
        QCOMPARE(find<QComboBox>("fileBox")->currentText(), PixInsightEnv::describeFile(m_file));

        write(m_file, "<xsdt/>"); // which the restore undoes, too
        poll();
        QVERIFY(!banner()->isHidden());
        const auto takeOldest = [](QWidget& dialog) {
            if (auto* list = dialog.findChild<QComboBox*>()) {
                list->setCurrentIndex(2);
            }
        };
        (void)choose("actRestore", {u"OK"_s, u"Yes"_s}, takeOldest);
        QCOMPARE(contentOf(m_file), before + "\n");
        QVERIFY(node(groupPath) && banner()->isHidden());
    }

    void turnsViewOnlyWhilePixInsightRuns()
    {
        (void)type(stringPath, u"kept"_s);
        FakePixInsight process;
        QVERIFY(process.start());
        poll();
        QCOMPARE(node(stringPath)->value, u"kept"_s);
        QVERIFY(banner()->text().startsWith("<b>PixInsight is running - view only.</b>"_L1));
        QVERIFY(!action("actSave")->isEnabled() && !action("actRestore")->isEnabled());
        QCOMPARE(type(stringPath, u"x"_s), tree());
        QCOMPARE(answer({}, [this] { pressDelete(groupPath); }),
                 QStringList{u"Cannot delete: PixInsight is running; nothing can be changed.|"_s});
        QVERIFY(process.stop());
        poll();
        QVERIFY(banner()->isHidden() && action("actSave")->isEnabled());
        QCOMPARE(type(u"LastVersion"_s, u"x"_s), tree());

        edit(stringPath, u"mine"_s); // nobody's change is dropped
        QVERIFY(process.start());    // as the save finds out before the next look
        QVERIFY(choose("actSave", {}).value(0).startsWith("Save failed"_L1));
        QVERIFY(!action("actSave")->isEnabled());
        const QStringList asked = answer({u"Cancel"_s}, [this] { QVERIFY(!m_window->close()); });
        QVERIFY(asked.value(0).contains("cannot be saved now"_L1));
        write(m_file, contentOf(m_file) + "\n");
        QVERIFY(process.stop());
        poll();
        QCOMPARE(node(stringPath)->value, u"mine"_s);
        QVERIFY(banner()->text().contains("your 1 unsaved"_L1));
        (void)answer({u"Discard"_s}, [this] { find<QPushButton>("bannerReload")->click(); });
        QVERIFY(banner()->isHidden() && pending() == 0);
        QVERIFY(process.start());
        poll();
        write(m_file, contentOf(m_file) + "\n");
        QVERIFY(process.stop());
        poll(); // which loads what PixInsight has written
        QVERIFY(banner()->isHidden());
    }

    /// What was asked about one tree isn't done to the next, which has changes of its own.
    void dropsAnswersAboutAnotherTree()
    {
        const auto reload = [this](QWidget& /*dialog*/) {
            QVERIFY(m_window->openFile(m_file));
            edit(stringPath, u"new"_s);
        };
        edit(stringPath, u"old"_s);
        for (const char* command : {"actRevert", "actSave"}) {
            (void)choose(command, {command[3] == 'R' ? u"Yes"_s : u"Save"_s}, reload);
            QCOMPARE(node(stringPath)->value, u"new"_s);
        }
        QVERIFY(PixInsightEnv::backupsOf(m_file).isEmpty());
        (void)answer(
            {u"Yes"_s}, [this] { pressDelete(warnPath); }, reload);
        QCOMPARE(pending(), 1);
    }

    void asksBeforeLeavingAFileWithChanges()
    {
        edit(stringPath, u"mine"_s);
        auto* box = find<QComboBox>("fileBox");
        QTest::keyClick(box, Qt::Key_C); // opens the list, not the next file
        QVERIFY(box->view()->isVisible() && box->currentIndex() == 0);
        box->hidePopup();
        box->setCurrentIndex(1);
        QCOMPARE(answer({}, [box] { emit box->activated(1); }).size(), 1);
        QCOMPARE(box->currentIndex(), 0);
        QCOMPARE(answer({u"Cancel"_s}, [this] { QVERIFY(!m_window->close()); }),
                 QStringList{u"Unsaved changes: You have 1 unsaved change(s).|"_s});

        write(m_file, contentOf(m_file) + "\n"); // the save fails, so the window stays
        const QStringList told = answer({u"Save"_s, u"Save"_s}, [this] { m_window->close(); });
        QVERIFY(told.value(2).startsWith("Save failed"_L1) && m_window->isVisible());
        QVERIFY(!banner()->isHidden() && !action("actSave")->isEnabled());
        (void)type(numberPath, u"77"_s); // is discarded with the rest
        QVERIFY(choose("actRevert", {u"Yes"_s}).value(0).contains("all 2 unsaved"_L1));
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
        (void)answer({}, [&] { QTest::keyClick(spinBox, Qt::Key_S, Qt::ControlModifier); });
        QCOMPARE(node(numberPath)->value, u"77"_s);
    }

    void offersBackupsOfFilesThatCannotBeOpened()
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
        const auto* box = find<QComboBox>("fileBox");
        QCOMPARE(box->placeholderText(), u"Choose a settings file"_s);

        const QString elsewhere = m_home.filePath(u"other.settings"_s);
        write(elsewhere, contentOf(m_file));
        QVERIFY(m_window->openFile(elsewhere));
        QCOMPARE(box->currentData(), elsewhere);
        QVERIFY(QFile::rename(elsewhere, elsewhere + u".bak-20260101-000000"_s));
        poll();
        QVERIFY(box->currentText().contains(u"missing"_s));
        const auto reload = [this] {
            find<QPushButton>("bannerReload")->click();
        };
        QCOMPARE(answer({u""_s, u"OK"_s}, reload).size(), 1);
        const QStringList offer = answer({u"Restore it"_s}, reload);
        QVERIFY(offer.value(0).contains("other.settings.bak-20260101-000000"_L1));
        QVERIFY(QFile::exists(elsewhere) && banner()->isHidden());
        QVERIFY(!box->currentText().contains(u"missing"_s));
        QVERIFY(QFile::copy(elsewhere, m_folder + u"/core-003-pxi.settings"_s));
        poll();
        QVERIFY(box->findText(u"core-003"_s, Qt::MatchStartsWith) >= 0);

        QVERIFY(QFile::remove(elsewhere));
        poll();
        (void)answer({u"Restore it"_s}, reload, [this](QWidget& /*box*/) {
            QVERIFY(m_window->openFile(m_file)); // which needs no other content
        });
        QVERIFY(PixInsightEnv::backupsOf(m_file).isEmpty());
    }

    void turnsPagesAndSearchesForAModule()
    {
        auto* tabs = find<QTabWidget>("tabs");
        (void)type(numberPath, u"many"_s);
        QTest::mouseClick(tabs->tabBar(), Qt::LeftButton, {}, QPoint(5, 5));
        QTest::keyClick(type(numberPath, u"many"_s), Qt::Key_Tab, Qt::ControlModifier);
        QCOMPARE(tabs->currentWidget(), find<QWidget>("advancedPage"));
        QWidget* editor = type(stringPath, u"typed"_s);
        QTest::keyClick(editor, Qt::Key_Backtab, Qt::ControlModifier | Qt::ShiftModifier);
        QCOMPARE(tabs->currentWidget(), find<QWidget>("compareView"));
        QCOMPARE(node(stringPath)->value, u"typed"_s);
        find<QWidget>("fileBox")->setFocus();
        QTest::keyClick(m_window->focusWidget(), Qt::Key_Tab, Qt::ControlModifier);
        QVERIFY(tabs->isAncestorOf(m_window->focusWidget()));

        const auto* query = find<QLineEdit>("queryEdit");
        page("searchView")->findChild<QCheckBox*>()->setFocus();
        QTest::keyClick(m_window->focusWidget(), Qt::Key_F, Qt::ControlModifier);
        for (const QString& name : {u"Ostrand"_s, u"Nobody"_s, u"ostrand"_s}) {
            QVERIFY(m_window->focusWidget() == query && query->selectedText() == query->text());
            const auto ask = [&name](QWidget& dialog) {
                if (auto* edit = dialog.findChild<QLineEdit*>(u"nameEdit"_s)) {
                    QVERIFY(!dialog.findChild<QWidget*>(u"searchButton"_s)->isEnabled());
                    dialog.findChild<QRadioButton*>(u"fullRadio"_s)
                        ->setChecked(name == "Ostrand"_L1);
                    QTest::keyClicks(edit, name);
                    auto* list = QApplication::activePopupWidget();
                    QTest::keyClick(list ? list : edit, Qt::Key_Return);
                }
            };
            find<QWidget>("searchNames")->setFocus();
            (void)choose("actFindModule", {{}, u"Yes"_s}, ask);
            QCOMPARE(tabs->currentWidget(), find<QWidget>("searchView"));
            QCOMPARE(query->text(), name == "ostrand"_L1 ? QString() : name);
        }
        QCOMPARE(m_window->focusWidget(), query);
    }

    void filtersRevealsAndCopies()
    {
        edit(stringPath, u"x"_s);
        find<QWidget>("advancedPage")->findChild<QCheckBox*>()->click();
        edit(stringPath, node(stringPath)->original);
        QCOMPARE(tree()->model()->rowCount(), 0);
        QCOMPARE(status(), u"Prefix doesn't match the filter any more, so it isn't shown."_s);
        find<QWidget>("treeFilter")->setFocus();
        emit m_window->findChild<SearchView*>()->revealRequested(node(stringPath));
        QCOMPARE(tree()->currentIndex().data().toString(), u"Prefix"_s);
        QCOMPARE(m_window->focusWidget(), tree());
        const QRect row = tree()->visualRect(tree()->currentIndex());
        QVERIFY(qAbs(row.center().y() - tree()->viewport()->height() / 2) <= row.height());

        auto* editor = static_cast<QLineEdit*>(type(stringPath, u"abc"_s));
        editor->setSelection(0, 1);
        QTest::keyClick(editor, Qt::Key_C, Qt::ControlModifier);
        QCOMPARE(QGuiApplication::clipboard()->text(), u"a"_s);
        QTest::keyClick(editor, Qt::Key_Return);
        QTRY_VERIFY(tree()->hasFocus());
        QTest::keyClick(tree(), Qt::Key_C, Qt::ControlModifier);
        QCOMPARE(QGuiApplication::clipboard()->text(), u"abc"_s);
    }

    /// Columns, one row after the other: step; which groups are open ("all", "first" for those at
    /// the start), and the current row.
    void opensWhatTheFilterShows()
    {
        auto* filter = find<QLineEdit>("treeFilter");
        auto* changedOnly = find<QWidget>("advancedPage")->findChild<QCheckBox*>();
        const auto groups = [this] {
            const QAbstractItemModel& rows = *tree()->model();
            QString all;
            QString open;
            for (const QModelIndex& row : rows.match(rows.index(0, 0), Qt::DisplayRole, u""_s, -1,
                                                     Qt::MatchContains | Qt::MatchRecursive)) {
                const QString name = rows.hasChildren(row) ? row.data().toString() + u' ' : u""_s;
                all += name;
                open += tree()->isExpanded(row) ? name : QString();
            }
            return open == all ? u"all "_s : open;
        };
        const QString first = groups();
        const auto outcome = [&](const QStringList& cells) {
            if (cells[0] == u"revert") {
                (void)choose("actRevert", {u"Yes"_s});
            } else if (cells[0] == u"edit") {
                edit(stringPath, u"mine"_s);
                edit(numberPath, u"77"_s);
            } else if (cells[0] == u"open") {
                select(groupPath);
                tree()->expand(tree()->currentIndex());
            } else if (cells[0] == u"tick") {
                changedOnly->isChecked() ? void() : tree()->collapseAll();
                changedOnly->click();
            } else {
                filter->setText(cells[0]);
            }
            const QModelIndex current = tree()->currentIndex();
            return groups().replace(first, u"first "_s) +
                   (tree()->selectionModel()->isSelected(current) ? current.data().toString()
                                                                  : u""_s);
        };
        compareRows({"edit > first Process ProcessIcon 77", "tick > all 77",
                     "tick > first Process ProcessIcon 77", "console > all 77", "revert > all 4000",
                     " > first 4000", "edit > first Process ProcessIcon 77",
                     "open > first Process ProcessIcon Statistics Statistics",
                     "revert > first Process ProcessIcon Statistics Statistics"},
                    outcome);
        tree()->expandAll();
        select(warnPath);
        tree()->scrollTo(tree()->currentIndex().parent(), QAbstractItemView::PositionAtTop);
        filter->setText(u"o"_s);
        QCOMPARE(tree()->indexAt({0, 0}).data().toString(), u"ModuleData"_s);
    }

    /// Columns: what happens and what is chosen in the menu of a changed value; what it offers,
    /// with "!" for what is disabled, what is copied, and whether the value still differs.
    void offersMenuInTheTree()
    {
        const auto outcome = [this](const QStringList& cells) {
            edit(stringPath, u"mine"_s);
            select(cells[1].isEmpty() ? groupPath : stringPath);
            model()->setReadOnly(cells[0] == u"runs");
            QGuiApplication::clipboard()->clear();
            QStringList texts;
            const DialogAnswerer<QMenu> answer([&](QMenu& menu) {
                for (QAction* action : menu.actions()) {
                    texts << action->text().left(6) + (action->isEnabled() ? u""_s : u"!"_s);
                    if (action->text() == cells[1]) {
                        menu.setActiveAction(action);
                    }
                }
                model()->setReadOnly(cells[0].endsWith(u's'));
                if (cells[0] == u"load") {
                    QVERIFY(m_window->openFile(m_file));
                }
                QTest::keyClick(&menu, Qt::Key_Return);
            });
            const QPoint pos = tree()->visualRect(tree()->currentIndex()).center();
            emit tree()->customContextMenuRequested(pos);
            model()->setReadOnly(false);
            return texts.join(u' ') + u", "_s + QGuiApplication::clipboard()->text() +
                   (node(stringPath)->isModified() ? u", changed"_s : u""_s);
        };
        compareRows({" > Copy value > Revert Copy s Copy v  Why ca, mine, changed",
                     " > Revert this value > Revert Copy s Copy v  Why ca, ",
                     "starts > Revert this value > Revert Copy s Copy v  Why ca, , changed",
                     "runs >  > Revert! Copy s Copy v!  Delete!, , changed",
                     "runs > Copy value > Revert! Copy s Copy v  Why ca, mine, changed",
                     "load > Copy value > Revert Copy s Copy v  Why ca, "},
                    outcome);
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
        if (QGuiApplication::platformName() == u"windows"_s) {
            QSKIP("Before a window is shown, Windows only estimates its frame");
        }
        m_window.reset();
        FakePixInsight process;
        const auto change = [&process](bool changed) {
            ThemeManager::instance().setMode(changed ? ThemeMode::Dark : ThemeMode::Light, false);
            ThemeManager::instance().setFontScale(changed ? 2.2 : 0.8, false);
            QApplication::setLayoutDirection(changed ? Qt::RightToLeft : Qt::LeftToRight);
            return changed ? process.start() : process.stop();
        };
        const QList<QScreen*> screens = QGuiApplication::screens();
        const QString file = m_folder + u"/core-002-pxi.settings"_s;
        QVERIFY(change(true));
        StandingProgram live(file, *screens.last());
        for (const bool changed : {false, true}) {
            QVERIFY(change(changed));
            const QScreen& screen = changed ? *screens.last() : *screens.first();
            live.moveTo(screen);
            const QSet<QString> seen = live.looks();
            const QSet<QString> expected = StandingProgram(file, screen).looks();
            QCOMPARE((seen - expected).values().value(0), (expected - seen).values().value(0));
            QCOMPARE(seen.values().filter(u"blurred"_s).value(0), QString());
        }
    }

    void staysOnItsScreenWithLargerText()
    {
        ThemeManager::instance().setFontScale(0.8, false);
        settle();
        m_window->resize(1, 1); // as low as it gets with wrapped rows on a page behind
        settle();
        const int height = m_window->height();
        page("compareView");
        settle();
        const auto* compare = find<CompareView>("compareView");
        const auto isWhole = [&] {
            return compare->parentWidget()->height() >=
                   compare->layout()->totalMinimumHeightForWidth(compare->width());
        };
        QVERIFY(isWhole());
        FakePixInsight process;
        QVERIFY(process.start());
        poll();
        QTRY_VERIFY(m_window->height() > height && isWhole()); // a banner of several lines
        QVERIFY(process.stop());
        poll();
        QTRY_COMPARE(m_window->height(), height);
        const QRect screen = m_window->screen()->geometry();
        m_window->move(screen.left(), screen.bottom() - m_window->height());
        ThemeManager::instance().setFontScale(2.2, false);
        settle();
        QTRY_VERIFY(m_window->frameGeometry().bottom() <= screen.bottom() && isWhole());
        find<QWidget>("adBanner")->setMinimumHeight(300); // as on a lower screen
        settle();
        QTRY_VERIFY(m_window->frameGeometry().height() <= screen.height() && isWhole());
        find<QWidget>("adBanner")->setMinimumHeight(0);
        ThemeManager::instance().setFontScale(0.8, false);
        QTRY_COMPARE(m_window->height(), height);
        find<QWidget>("adBanner")->setMinimumHeight(screen.height());
        settle();
        const QWidget* content = find<QWidget>("tabs")->parentWidget();
        QVERIFY(content->width() >= content->minimumSizeHint().width()); // beside the scroll bar
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

    QLabel* banner() const { return find<QLabel>("bannerLabel"); }
    QString status() const { return m_window->statusBar()->currentMessage(); }

    QTemporaryDir m_home;
};

KSE_TEST_MAIN(TestMainWindow)
#include "TestMainWindow.moc"
