// SPDX-License-Identifier: MIT
#include "app/AboutDialog.h"
#include "session/dialogs/BackupsDialog.h"
#include "session/dialogs/ReviewDialog.h"
#include "support/DialogAnswerer.h"
#include "support/FakePixInsight.h"
#include "support/TestMain.h"
#include "support/WindowFixture.h"
#include "views/compare/CompareView.h"
#include "views/rows/SettingRow.h"
#include "views/search/ModuleSearchDialog.h"
#include "views/search/SearchView.h"

#include <QCheckBox>
#include <QClipboard>
#include <QComboBox>
#include <QDesktopServices>
#include <QInputDialog>
#include <QLabel>
#include <QLineEdit>
#include <QListWidget>
#include <QMessageBox>
#include <QNetworkReply>
#include <QPushButton>
#include <QScopeGuard>
#include <QScrollBar>
#include <QTabWidget>
#include <QTreeWidget>
#include <QUrl>

#ifdef Q_OS_UNIX
#include <unistd.h>
#endif

using namespace kse;
using namespace Qt::StringLiterals;

namespace {

const QString safePath = u"Global/Statistics"_s;
const QString warnPath = u"ModuleData/Ostrand"_s;
const QString stringPath = u"Global/Preferences/ProcessIcon/Prefix"_s;

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
            for (QWidget* widget : widgets) {
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
        QString look;
        QDebug debug(&look);
        debug << widget.metaObject()->className() << widget.objectName() << widget.font()
              << widget.size() << widget.mapTo(widget.window(), QPoint()) << widget.minimumSize()
              << widget.layoutDirection() << widget.devicePixelRatio();
        QByteArray palette;
        QDataStream stream(&palette, QIODevice::WriteOnly);
        stream << widget.palette();
        debug << qHash(palette);
        QPixmap picture;
        if (const auto* button = qobject_cast<const QAbstractButton*>(&widget)) {
            picture = button->icon().pixmap(button->iconSize(), widget.devicePixelRatio());
        } else if (const auto* label = qobject_cast<const QLabel*>(&widget)) {
            picture = label->pixmap(Qt::ReturnByValue);
        }
        const QImage image = picture.toImage();
        debug << qHashBits(image.constBits(), size_t(image.sizeInBytes()));
        const bool isOurs = !qobject_cast<QLineEdit*>(widget.parentWidget());
        if (isOurs && !picture.isNull() && picture.devicePixelRatio() < widget.devicePixelRatio()) {
            look.prepend(u"blurred "_s);
        }
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
        find<QTabWidget>("tabs")->setCurrentWidget(find<QWidget>("advancedPage"));
    }
    void cleanup() { m_window.reset(); }

    void asksBeforeAWarnedDeletionOnce()
    {
        DialogAnswerer<QMessageBox> no([](QMessageBox& box) {
            QCOMPARE(box.windowTitle(), u"Delete saved information?"_s);
            QVERIFY(box.text().startsWith("Delete ModuleData/Ostrand?\n("_L1));
            QVERIFY(box.informativeText().endsWith("you can undo it before then."_L1));
            QCOMPARE(box.defaultButton(), box.button(QMessageBox::Cancel));
            QTest::keyClick(&box, Qt::Key_Return);
        });
        pressDelete(warnPath);
        QVERIFY(no.wasAsked());
        QCOMPARE(pending(), 0);

        DialogAnswerer<QMessageBox> yes([](QMessageBox& box) {
            box.checkBox()->click();
            box.button(QMessageBox::Yes)->click();
        });
        pressDelete(warnPath);
        QVERIFY(yes.wasAsked());
        QVERIFY(status().startsWith("ModuleData/Ostrand queued for deletion ("_L1));
        pressDelete(u"Thornwick"_s);
        pressDelete(safePath);
        QCOMPARE(pending(), 3);
    }

    void tellsWhatIsQueuedAlready()
    {
        pressDelete(safePath);
        pressDelete(safePath + u'/' + node(safePath)->children.front()->key);
        QVERIFY2(status().endsWith(" is already queued for deletion with Global/Statistics."_L1),
                 qPrintable(status()));
    }

    void reviewsSavesAndRestores()
    {
        const QByteArray before = contentOf(m_file);
        const QString other = u"Global/Preferences/Process/MaxConsoleLines"_s;
        edit(other, u"77"_s);
        pressDelete(safePath);
        // The text is still in its editor when Save is pressed.
        QWidget* editor = type(stringPath, u"typed"_s);
        DialogAnswerer<QDialog> review([&](QDialog& dialog) {
            QCOMPARE(dialog.windowTitle(), u"Review changes"_s);
            auto* list = dialog.findChild<QTreeWidget*>();
            QCOMPARE(list->topLevelItemCount(), 3);
            const auto items = list->findItems(other, Qt::MatchExactly, 1);
            QCOMPARE(items.size(), 1);
            list->setCurrentItem(items.constFirst());
            dialog.findChild<QPushButton*>(u"revert"_s)->click();
            QCOMPARE(list->topLevelItemCount(), 2);
            dialog.accept();
        });
        QTest::keyClick(editor, Qt::Key_S, Qt::ControlModifier);
        QVERIFY(review.wasAsked());

        const QStringList backups = PixInsightEnv::backupsOf(m_file);
        QCOMPARE(backups.size(), 1);
        QCOMPARE(contentOf(backups.constFirst()), before);
        QStatusTipEvent tip(u"Review"_s); // of the button beneath the mouse
        QCoreApplication::sendEvent(m_window.get(), &tip);
        QCOMPARE(status(), u"Saved. Backup: "_s + QFileInfo(backups.constFirst()).fileName());
        XsdtDocument saved;
        QVERIFY(saved.parse(contentOf(m_file)));
        QCOMPARE(saved.root.findByPath(stringPath)->value, u"typed"_s);
        QVERIFY(!saved.root.findByPath(safePath));
        QCOMPARE(pending(), 0);
        QCOMPARE(m_window->windowTitle(), u"Kestrane Settings Editor"_s);

        std::unique_ptr<DialogAnswerer<QMessageBox>> confirm; // made when its turn comes
        DialogAnswerer<QInputDialog> choose([&](QInputDialog& dialog) {
            QVERIFY(dialog.textValue().startsWith(QFileInfo(backups.constFirst()).fileName()));
            confirm = std::make_unique<DialogAnswerer<QMessageBox>>(
                [](QMessageBox& box) { box.button(QMessageBox::Yes)->click(); });
            dialog.accept();
        });
        action("actRestore")->trigger();
        QVERIFY(choose.wasAsked());
        QCOMPARE(contentOf(m_file), before);
        QVERIFY(node(safePath));
        QCOMPARE(PixInsightEnv::backupsOf(m_file).size(), 2);
    }

    void forgetsTheCountOnceItIsSaved()
    {
        const auto* pages = find<QListWidget>("pageList");
        model()->setValue(node(u"Global/Preferences/Process/MaxConsoleLines"_s), u"77"_s);
        QCOMPARE(pages->findItems(u"Processes   ● 1"_s, Qt::MatchExactly).size(), 1);
        DialogAnswerer<QDialog> review([](QDialog& dialog) { dialog.accept(); });
        action("actSave")->trigger();
        QVERIFY(review.wasAsked());
        QCOMPARE(pages->findItems(u"Processes"_s, Qt::MatchExactly).size(), 1);
    }

    void turnsViewOnlyWhilePixInsightRuns()
    {
        QWidget* editor = type(stringPath, u"kept"_s);
        Q_UNUSED(editor)
        FakePixInsight process;
        QVERIFY(process.start());
        poll();
        QCOMPARE(node(stringPath)->value, u"kept"_s);
        auto* banner = find<QLabel>("bannerLabel");
        QVERIFY(banner->text().startsWith("<b>PixInsight is running - view only.</b>"_L1));
        QVERIFY(!action("actSave")->isEnabled() && !action("actRestore")->isEnabled());
        QVERIFY(action("actRevert")->isEnabled());
        QCOMPARE(type(stringPath, u"x"_s), tree());
        DialogAnswerer<QMessageBox> refusal([](QMessageBox& box) {
            QCOMPARE(box.text(), u"PixInsight is running; nothing can be changed."_s);
            box.close();
        });
        pressDelete(safePath);
        QVERIFY(refusal.wasAsked());

        QVERIFY(process.stop());
        poll();
        QVERIFY(banner->isHidden() && action("actSave")->isEnabled());
        edit(stringPath, u"again"_s);
        QCOMPARE(node(stringPath)->value, u"again"_s);

        QVERIFY(process.start());
        DialogAnswerer<QMessageBox> atOnce([](QMessageBox& box) { // not after a review
            QCOMPARE(box.windowTitle(), u"Save failed"_s);
            box.close();
        });
        action("actSave")->trigger();
        QVERIFY(atOnce.wasAsked());
        DialogAnswerer<QMessageBox> close([](QMessageBox& box) {
            QVERIFY(box.informativeText().startsWith("PixInsight is running"_L1));
            box.close();
        });
        QVERIFY(!m_window->close() && close.wasAsked());
    }

    void takesUpWhatPixInsightWroteUnderAnOpenBox()
    {
        FakePixInsight process;
        bool reloaded = false;
        DialogAnswerer<QMessageBox> question([&](QMessageBox& box) {
            QVERIFY(process.start());
            poll();
            write(m_file, contentOf(m_file).replace("\"7680\"", "\"1\"") + "\n");
            QVERIFY(process.stop());
            poll();
            reloaded = status().startsWith("Loaded "_L1);
            box.button(QMessageBox::Yes)->click();
        });
        pressDelete(warnPath);
        QVERIFY(question.wasAsked());
        QVERIFY(reloaded);
        QCOMPARE(pending(), 0);
    }

    void asksBeforeLeavingAFileWithChanges()
    {
        edit(stringPath, u"mine"_s);
        auto* box = find<QComboBox>("fileBox");
        QCOMPARE(box->count(), 2);
        QTest::keyClick(box, Qt::Key_Down); // opens the list, not the next file
        QVERIFY(box->view()->isVisible() && box->currentIndex() == 0);
        box->hidePopup();
        DialogAnswerer<QMessageBox> cancel([](QMessageBox& asked) { asked.close(); });
        box->setCurrentIndex(1);
        emit box->activated(1);
        QVERIFY(cancel.wasAsked());
        QCOMPARE(box->currentIndex(), 0);

        DialogAnswerer<QMessageBox> close([](QMessageBox& asked) {
            QCOMPARE(asked.text(), u"You have 1 unsaved change(s)."_s);
            QCOMPARE(asked.defaultButton(), asked.button(QMessageBox::Save));
            asked.button(QMessageBox::Cancel)->click();
        });
        QVERIFY(!m_window->close());
        QVERIFY(close.wasAsked());
        DialogAnswerer<QMessageBox> revert(
            [](QMessageBox& asked) { asked.button(QMessageBox::Yes)->click(); });
        action("actRevert")->trigger();
        QVERIFY(revert.wasAsked());
        QVERIFY(m_window->close());
    }

    void leavesWhatIsBeingTypedToItsUser()
    {
        auto* search = find<QWidget>("searchView");
        find<QTabWidget>("tabs")->setCurrentWidget(search);
        QTest::keyClicks(search->findChild<QLineEdit*>(u"queryEdit"_s), u"ProcessIcon/Prefix"_s);
        QTRY_VERIFY(search->findChild<SettingRow*>());
        auto* editor = search->findChild<SettingRow*>()->findChild<QLineEdit*>();
        editor->setFocus();
        editor->selectAll();
        QTest::keyClicks(editor, u"half"_s);
        poll();
        QCOMPARE(editor->text(), u"half"_s);
        QVERIFY(!node(stringPath)->isModified());
        DialogAnswerer<QMessageBox> cancel([](QMessageBox& box) { box.close(); });
        QVERIFY(!m_window->close());
        QCOMPARE(node(stringPath)->value, u"half"_s);

        const QString number = u"Global/Preferences/Process/MaxConsoleLines"_s;
        find<QTabWidget>("tabs")->setCurrentWidget(find<QWidget>("advancedPage"));
        model()->revertAll();
        type(number, u"many"_s);
        QVERIFY(!m_window->close()); // so that the refusal is seen
        edit(stringPath, u"pending"_s);
        QWidget* typing = type(number, u"many"_s);
        QTest::keyClick(typing, Qt::Key_S, Qt::ControlModifier); // a review would hang here
        QVERIFY(!QApplication::activeModalWidget());
        QVERIFY(status().startsWith("Not accepted - MaxConsoleLines"_L1));
        model()->revertAll();
        QVERIFY(m_window->close());
    }

    void namesABackupForAFileThatCannotBeOpened()
    {
        const QString bad = m_folder + u"/&lt;%1.settings"_s;
        write(bad, "nonsense");
        for (int day = 10; day < 21; ++day) {
            write(bad + u".bak-202601%1-000000"_s.arg(day), "nonsense too");
        }
        write(bad + u".bak-20260101-000000"_s, contentOf(m_file));
        DialogAnswerer<QMessageBox> told([&](QMessageBox& box) {
            QCOMPARE(box.windowTitle(), u"Cannot open file"_s);
            QCOMPARE(box.text(), bad +
                                     u" is not a valid PixInsight settings file: Not a PixInsight "
                                     "settings file (no <xsdt> element)."_s);
            QVERIFY(box.informativeText().contains("&amp;lt;%1.settings.bak-20260101-000000"_L1));
            QVERIFY(!action("actReload")->isEnabled()); // already now
            box.close();
        });
        QVERIFY(!m_window->openFile(bad));
        QVERIFY(told.wasAsked());
        QVERIFY(!model()->document());
        QCOMPARE(find<QComboBox>("fileBox")->currentIndex(), -1);
        QCOMPARE(find<QComboBox>("fileBox")->placeholderText(), u"Choose a settings file"_s);
        QVERIFY(m_window->openFile(m_file));
    }

    void turnsPagesFromAnywhere()
    {
        auto* tabs = find<QTabWidget>("tabs");
        find<QWidget>("fileBox")->setFocus();
        QTest::keyClick(m_window->focusWidget(), Qt::Key_Tab, Qt::ControlModifier);
        QCOMPARE(tabs->currentIndex(), 0);
        tabs->setCurrentWidget(find<QWidget>("advancedPage"));
        QWidget* editor = type(stringPath, u"typed"_s);
        QTest::keyClick(editor, Qt::Key_Backtab, Qt::ControlModifier | Qt::ShiftModifier);
        QCOMPARE(tabs->currentWidget(), find<QWidget>("compareView"));
        QCOMPARE(node(stringPath)->value, u"typed"_s);
    }

#ifdef Q_OS_UNIX
    void writesTheGuideWhereNobodyElsesNameIs()
    {
        const QTemporaryDir folder;
        const QByteArray before = qgetenv("TMPDIR");
        qputenv("TMPDIR", folder.path().toLocal8Bit());
        const auto restore = qScopeGuard([&] {
            before.isNull() ? qunsetenv("TMPDIR") : qputenv("TMPDIR", before);
            QDesktopServices::unsetUrlHandler(u"file"_s);
        });
        QDesktopServices::setUrlHandler(u"file"_s, this, "open");
        const QString name = folder.filePath(u"KestraneSettingsEditor-Help.html"_s);
        const QString target = folder.filePath(u"target"_s);
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
        auto* box = find<QComboBox>("fileBox");
        QVERIFY(QFile::remove(m_file));
        poll();
        QVERIFY(box->currentText().endsWith(" - instance 1, missing"_L1));
        box->addItem(u"chosen"_s, m_file + u".bak-20260101-000000"_s);
        box->setCurrentText(u"chosen"_s);
        poll();
        QCOMPARE(box->currentText(), u"chosen"_s);
        DialogAnswerer<QMessageBox> offer([](QMessageBox& asked) {
            QVERIFY(
                asked.informativeText().contains("core-001-pxi.settings.bak-20260101-000000"_L1));
            asked.buttons().constLast()->click();
        });
        find<QPushButton>("bannerReload")->click();
        QVERIFY(offer.wasAsked());
        QCOMPARE(contentOf(m_file), before);
        QVERIFY(status().startsWith("Restored "_L1) && find<QLabel>("bannerLabel")->isHidden());
        QVERIFY(!box->currentText().contains(u"missing"_s));
#ifdef Q_OS_UNIX
        QVERIFY(QFile::remove(m_file) && QFile::link(u"nowhere"_s, m_file)); // no restore mends it
        DialogAnswerer<QMessageBox> told([](QMessageBox& asked) {
            QCOMPARE(asked.buttons().size(), 1);
            asked.accept();
        });
        find<QPushButton>("bannerReload")->click();
        QVERIFY(told.wasAsked());
#endif
    }

    void filtersAndKeepsItsPlace()
    {
        auto* filter = find<QLineEdit>("treeFilter");
        QTest::keyClicks(filter, u"animate"_s);
        const QModelIndex index = select(u"Global/Preferences/MainWindow/AnimateCombo"_s);
        QVERIFY(index.isValid());
        QVERIFY(!select(stringPath).isValid());
        select(u"Global/Preferences/MainWindow/AnimateCombo"_s);
        filter->clear();
        QCOMPARE(tree()->currentIndex().data().toString(), u"AnimateCombo"_s);
        QVERIFY(tree()->selectionModel()->isSelected(tree()->currentIndex()));
        QVERIFY(!tree()->isExpanded(tree()->model()->index(0, 0)));

        edit(stringPath, u"x"_s);
        find<QWidget>("advancedPage")->findChild<QCheckBox*>(u"changedOnly"_s)->click();
        QCOMPARE(tree()->model()->rowCount(), 1);
        QVERIFY(tree()->isExpanded(tree()->model()->index(0, 0)));
        edit(stringPath, node(stringPath)->original);
        QCOMPARE(tree()->model()->rowCount(), 0);
        QCOMPARE(status(), u"Prefix doesn't match the filter any more, so it isn't shown."_s);
    }

    void editsAndCopiesARowFromAnyOfItsCells()
    {
        m_window->findChild<SearchView*>()->revealRequested(node(stringPath));
        QCOMPARE(tree()->currentIndex().column(), 0);
        QTest::keyClick(m_window->focusWidget(), Qt::Key_C, Qt::ControlModifier);
        QCOMPARE(QGuiApplication::clipboard()->text(), u"Prefix"_s);
        QTest::mouseClick(tree()->viewport(), Qt::LeftButton, {},
                          tree()->visualRect(tree()->currentIndex()).center());
        QTest::qWait(QApplication::doubleClickInterval() + 100);
        QCOMPARE(m_window->focusWidget(), tree()); // a slow second click on the name
        QTest::keyClick(tree(), Qt::Key_F2);
        qobject_cast<QLineEdit*>(m_window->focusWidget())->setText(u"a\n"_s + QString(300, u'x'));
        QTest::keyClick(m_window->focusWidget(), Qt::Key_Return);
        QTRY_VERIFY(tree()->hasFocus());
        QTest::keyClick(tree(), Qt::Key_C, Qt::ControlModifier);
        QCOMPARE(QGuiApplication::clipboard()->text(), node(stringPath)->value);
        QCOMPARE(node(stringPath)->value.size(), 302);
    }

    void revertsAllInPlace()
    {
        for (const QString& filter : {QString(), u"max"_s}) {
            find<QLineEdit>("treeFilter")->setText(filter);
            edit(u"Global/Preferences/Process/MaxConsoleLines"_s, u"77"_s);
            const int scrolled = tree()->verticalScrollBar()->value();
            QCOMPARE(scrolled > 0, filter.isEmpty());
            DialogAnswerer<QMessageBox> yes(
                [](QMessageBox& box) { box.button(QMessageBox::Yes)->click(); });
            action("actRevert")->trigger();
            QCOMPARE(pending(), 0);
            QCOMPARE(tree()->currentIndex().data().toString(), u"4000"_s);
            QVERIFY(tree()->visualRect(tree()->currentIndex()).isValid()); // its group is open
            QCOMPARE(tree()->verticalScrollBar()->value(), scrolled);
        }
    }

    void rendersItsPicturesAndLeavesTheFileAlone()
    {
        const QByteArray before = contentOf(m_file);
        const QStringList files = QDir(m_folder).entryList(QDir::Files);
        QTemporaryDir pictures;
        m_window->hide(); // as the program starts it
        m_window->renderScreenshots(pictures.filePath(u"new"_s), QString());
        QStringList expected{u"about"_s,         u"advanced-changed"_s, u"advanced"_s,
                             u"backups"_s,       u"cleanup-queued"_s,   u"cleanup"_s,
                             u"compare-all"_s,   u"compare"_s,          u"health"_s,
                             u"module-search"_s, u"review"_s,           u"search-font"_s,
                             u"search"_s,        u"unused-modules"_s};
        for (int page = 0; page < 12; ++page) {
            expected.append(u"prefs-%1"_s.arg(page, 2, 10, QChar(u'0')));
        }
        const QFileInfoList written = QDir(pictures.filePath(u"new"_s)).entryInfoList(QDir::Files);
        QCOMPARE(written.size(), expected.size());
        for (const QFileInfo& picture : written) {
            QVERIFY2(expected.contains(picture.baseName()), qPrintable(picture.fileName()));
            QCOMPARE(picture.suffix(), u"png"_s);
            QVERIFY(!QImage(picture.filePath()).isNull());
        }
        QCOMPARE(m_window->size(), QSize(1200, 820)); // on this screen too
        QVERIFY(!m_window->findChild<QNetworkReply*>());
        QCOMPARE(contentOf(m_file), before);
        QCOMPARE(QDir(m_folder).entryList(QDir::Files), files);
        QCOMPARE(pending(), 0);
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
            for (const QString& widget : seen) {
                QVERIFY2(!widget.startsWith("blurred"_L1), qPrintable(widget));
            }
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
        DialogAnswerer<QDialog> review([](QDialog& dialog) { dialog.accept(); });
        action("actSave")->trigger();
        QVERIFY(review.wasAsked());
        QVERIFY(status().startsWith("Saved."_L1));
        QVERIFY(contentOf(deep).endsWith("<i k=\"top\"><v k=\"v\" t=\"i\" v=\"2\"/></i></xsdt>"));
    }

private:
    QString m_opened;
};

KSE_TEST_MAIN(TestMainWindow)
#include "TestMainWindow.moc"
