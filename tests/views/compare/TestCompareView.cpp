// SPDX-License-Identifier: MIT
#include "views/compare/CompareView.h"

#include "support/SettingsPage.h"

namespace {

/// The page with a file of `nodes`, compared with another of `otherNodes`.
struct Page : TreePage<CompareView>
{
    explicit Page(
        const QString& nodes = u"G/A/x:i=1; G/A/y:s=a; Mine/v:i=1; MainWindow/Layout:i=1"_s,
        const QString& otherNodes = u"G/A/x:i=2; G/A/y:s=b; Yours/v:i=1; MainWindow/Layout:i=2"_s)
        : TreePage(nodes)
    {
        path = dir.filePath(u"core-001-pxi.settings"_s);
        QVERIFY(writeFile(path, document.serialize()));
        QVERIFY(writeFile(otherPath, ModelOf(otherNodes).document.serialize()));
        setDocument(&document);
        if (!view.compareWith(otherPath)) {
            qFatal("the other file isn't read");
        }
    }

    QTemporaryDir dir;
    QString otherPath = dir.filePath(u"other %1.settings"_s);
    QSignalSpy messages{&view, &CompareView::message};
    QSignalSpy reveals{&view, &CompareView::revealRequested};
};

} // namespace

class TestCompareView : public QObject
{
    Q_OBJECT

private slots:
    /// Columns: the nodes of both files; the rows with all states shown.
    void listsDifferences()
    {
        const auto rows = [](const QStringList& cells) {
            Page page(cells[0], cells[1]);
            page.view.setStateFilters(true, true, true);
            page.child<QCheckBox>("hideNoise")->setChecked(false);
            return page.rows();
        };
        compareRows(
            {"a:F=1.0 > a:F=1.0; b > Nothing to show with the current filters.",
             "a:F=1.0; new/x/y:b=1; b:i=7; a:F=1.00 > old/x:b=1; b:u=7; a:F=1.00 > (top level); "
             ".a|1.0|1.00|Different; .b|7|7|Different (type i / u); new/x; .y|1||Only in this "
             "file; old; .x||1|Only in the other file",
             "a:i=1; a:i=2; a:i=3 > a:i=1; x:i=0; a:i=2; x:i=1 > (top level); .a|1|2|Different; "
             ".a|3|2|Different; .x||0|Only in the other file; .x||1|Only in the other file",
             "g/a:i=1 deleted; h deleted; h/b:i=1; c:i=1 > g/a:i=2; h/b:i=2; c:i=2 deleted > (top "
             "level); .c|1||Only in this file; g; .a||2|Only in the other file; h; .b||2|Only in "
             "the other file",
             "Global/Preferences/A/b/c:i=1; Global/a/b/c:i=1 > Global/Preferences/A/b/c:i=2; "
             "Global/a/b/c:i=2 > Global/Preferences/A; .b/c|1|2|Different; Global/a; "
             ".b/c|1|2|Different",
             "a:B=xyz; Modules/v:i=1 > a:B=x; Modules/v:i=2 > (top level); .a|(3 characters of "
             "encoded data)|(1 characters of encoded data)|Different!; Modules; "
             ".v|1|2|Different!"},
            rows);
    }

    void copiesAfterConsent()
    {
        Page page;
        QVERIFY(page.ask("copyAllButton", QMessageBox::No)
                    .startsWith(u"Copy 2 value(s) from other %1.settings into this file?"));
        page.ask("copyAllButton", QMessageBox::Yes, [&] { page.reload(); });
        QVERIFY(page.messages.isEmpty());
        page.ask("copyAllButton", QMessageBox::Yes, [&] { page.model.setReadOnly(true); });
        QVERIFY(page.messages.takeFirst()[0].toString().startsWith(u"Copied 0 value(s); 2 "));
        page.model.setReadOnly(false);
        const QSize size = page.child("copyAllButton")->sizeHint();
        page.ask("copyAllButton", QMessageBox::Yes);
        QVERIFY(page.messages[0][0].toString().startsWith(u"Copied 2 value(s)"));
        QCOMPARE(page.node(u"G/A/y"_s)->value, u"b"_s);
        QTRY_VERIFY(!page.child("copyAllButton")->isEnabled());
        QCOMPARE(page.child("copyAllButton")->sizeHint(), size); // without a number
        page.path = page.otherPath;                              // is opened
        page.setDocument(&page.document);
        QVERIFY(page.text("summaryLabel").startsWith(u"Pick another"));
    }

    void offersMenu()
    {
        Page page;
        page.view.setStateFilters(false, false, true);
        QCOMPARE(page.menu(u"v"_s, u"Copy setting path"_s),
                 u"Use the other file's value!, Show in All settings!, Copy setting path"_s);
        QCOMPARE(QApplication::clipboard()->text(), u"Yours/v"_s);
        page.view.setStateFilters(true, false, false);
        page.view.setReadOnly(true);
        QVERIFY(!page.child("copyAllButton")->isEnabled());
        QVERIFY(page.menu(u"x"_s, u"Show in All settings"_s)
                    .startsWith(u"Use the other file's value!"));
        XsdtNode* node = page.node(u"G/A/x"_s);
        QCOMPARE(page.reveals.takeFirst()[0].value<XsdtNode*>(), node);
        const QPoint row = page.tree.visualItemRect(page.item(u"x"_s)).center();
        QTest::mouseClick(page.tree.viewport(), Qt::LeftButton, {}, row);
        QTest::mouseDClick(page.tree.viewport(), Qt::LeftButton, {}, row);
        QCOMPARE(page.reveals.takeFirst()[0].value<XsdtNode*>(), node);
        page.view.setReadOnly(false);
        page.menu(u"x"_s, u"Use the other file's value"_s);
        QCOMPARE(node->value, u"2"_s);
        page.menu(u"y"_s, u"Show in All settings"_s, [&] { page.reload(); });
        QVERIFY(page.reveals.isEmpty());
    }

    /// Columns: the backup, or what is typed into the file dialog; the number of differences, the
    /// file, and the message. The list looks for files when it opens.
    void comparesWithTheFileChosen()
    {
        Page page;
        QVERIFY(writeFile(page.dir.filePath(u"%2"_s), "<nothing"));
        QVERIFY(writeFile(page.path + u".bak-1"_s, page.document.serialize()));
        auto* combo = page.child<QComboBox>("fileCombo");
        const auto outcome = [&](const QStringList& cells) {
            const DialogAnswerer<QFileDialog> dialog([&](QFileDialog& browse) {
                auto* name = browse.findChild<QLineEdit*>();
                name->setText(cells[0]);
                QTest::keyClick(name, cells[0].isEmpty() ? Qt::Key_Escape : Qt::Key_Return);
            });
            page.messages.clear();
            combo->setFocus();
            QTest::keyClick(combo, Qt::Key_Down);
            const int row = cells[0] == u"backup" ? 1 : combo->count() - 1;
            combo->view()->setCurrentIndex(combo->model()->index(row, 0));
            QTest::keyClick(combo->view(), Qt::Key_Return);
            const QString message = page.messages.value(0).value(0).toString().section(u'/', -1);
            return page.text("summaryLabel").section(u' ', 0, 1) + u' ' +
                   combo->currentText().section(u' ', 0, 1) + message.section(u':', 0, 0);
        };
        compareRows({"backup > 0 different, Backup: core-001-pxi.settings.bak-1",
                     "other %1.settings > 2 different, other %1.settings",
                     "core-001-pxi.settings > 2 different, other %1.settingsThat is the file being "
                     "edited.",
                     " > 2 different, other %1.settings",
                     "%2 > Pick another Choose a%2 is not a valid PixInsight settings file"},
                    outcome);
    }

    void keepsItsPlaceThroughEdits()
    {
        QString nodes = u"A/b/x:i=1; A/b/y:i=1; A/b/z:i=1; A/c/v:i=1; "_s;
        for (int i = 0; i < 400; ++i) {
            nodes += u"G/%1%2%1/v%3:i=1; "_s.arg(QString(600, u'n')).arg(i / 100).arg(i);
        }
        Page page(nodes, QString(nodes).replace(u"=1"_s, u"=2"_s));
        auto* copy = page.child<QPushButton>("copySelectedButton");
        QCOMPARE(page.child("filterEdit")->geometry().right(), page.tree.geometry().right());
        page.item(u"v150"_s)->parent()->setExpanded(true); // of so many none is
        page.tree.setCurrentItem(page.item(u"v150"_s));
        page.tree.verticalScrollBar()->setValue(40);
        copy->click();
        QTRY_VERIFY(!page.item(u"v150"_s));
        QVERIFY(page.item(u"v151"_s)->parent()->isExpanded()); // by its whole name
        QVERIFY(!page.item(u"v0"_s)->parent()->isExpanded());
        QCOMPARE(page.tree.currentItem(), page.item(u"v151"_s));
        QCOMPARE(page.tree.verticalScrollBar()->value(), 40);
        for (const QString& text : {u"A/c"_s, u"x"_s, u"z"_s}) {
            page.item(text)->setSelected(true);
        }
        QVERIFY(page.model.setValue(page.node(u"A/b/x"_s), u"2"_s));
        QTRY_VERIFY(!page.item(u"x"_s));
        copy->click(); // what was selected still is
        QTRY_VERIFY(!page.item(u"v"_s) && !page.item(u"z"_s) && page.item(u"y"_s));
    }
};

KSE_TEST_MAIN(TestCompareView)
#include "TestCompareView.moc"
