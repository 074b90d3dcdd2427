// SPDX-License-Identifier: MIT
#include "support/SettingsTree.h"
#include "support/StoreFixture.h"
#include "support/TestMain.h"
#include "support/TextRows.h"
#include "support/TreePage.h"
#include "views/compare/CompareView.h"
#include "views/model/SettingsModel.h"
#include "widgets/PlainText.h"

#include <QtTest>
#include <QtWidgets>

using namespace Qt::StringLiterals;
using namespace kse;

namespace {

// The page over a document of the first nodes, compared with a file of the others.
struct Page
{
    explicit Page(const QString& nodes = u"G/A/x:i=1; G/A/y:s=a; Mine/v:i=1"_s,
                  const QString& otherNodes = u"G/A/x:i=2; G/A/y:s=b; Yours/v:i=1"_s)
    {
        XsdtDocument other;
        document.head = other.head = u"<xsdt>"_s;
        addNodes(document, nodes);
        addNodes(other, otherNodes);
        StoreFixture::write(otherPath, other.serialize());
        StoreFixture::write(path, document.serialize());
        model.setPolicy(&policy);
        const bool read = policy.load("{\"compareNoCopy\": [\"Lock/**\"]}");
        setDocument(&document);
        view.show();
        if (!read || !view.compareWith(otherPath)) {
            qFatal("The fixture failed");
        }
    }

    void setDocument(XsdtDocument* shown)
    {
        model.setDocument(shown);
        view.setDocument(shown, path);
    }

    // The same again with new nodes, as after a reload of the file.
    void reload()
    {
        setDocument(nullptr);
        QVERIFY(document.parse(document.serialize()));
        setDocument(&document);
    }

    QTreeWidgetItem* item(const QString& text) const { return treeItem(*tree, text); }
    QPushButton* button(const QString& name) const { return view.findChild<QPushButton*>(name); }
    QString summary() const { return view.findChild<QLabel*>(u"summaryLabel"_s)->text(); }

    QTemporaryDir dir;
    QString path = dir.filePath(u"core-001-pxi.settings"_s);
    QString otherPath = dir.filePath(u"other %1.settings"_s);
    DeletePolicy policy;
    XsdtDocument document;
    SettingsModel model;
    CompareView view{&model};
    QTreeWidget* tree = view.findChild<QTreeWidget*>(u"tree"_s);
    QComboBox* combo = view.findChild<QComboBox*>(u"fileCombo"_s);
    QSignalSpy messages{&view, &CompareView::message};
    QSignalSpy reveals{&view, &CompareView::revealRequested};
};

} // namespace

class TestCompareView : public QObject
{
    Q_OBJECT

private slots:
    void listsDifferences_data()
    {
        addTextRows({"a:i=1 > a:i=1 > 0 0 0 > Nothing to show with the current filters.",
                     "a/b:s=1 > a/b:i=1 > 1 0 0 > a; .b|1|1|Different (type s / i)",
                     "a/b/c:i=1 > a:i=2 > 0 1 1 > a/b; .c|1||Only in this file; (top level); "
                     ".a||2|Only in the other file",
                     "a:B=xyz; Lock/v:i=1 > a:B=x; Lock/v:i=2 > 2 0 0 > (top level); .a|(3 "
                     "characters of encoded data)|(1 characters of encoded data)|Different!; Lock; "
                     ".v|1|2|Different!"});
    }
    void listsDifferences()
    {
        QFETCH(QStringList, cells);
        const Page page(cells[0], cells[1]);
        for (QCheckBox* box : page.view.findChildren<QCheckBox*>()) {
            box->setChecked(true);
        }
        const QStringList counts = cells[2].split(u' ');
        QCOMPARE(page.summary(),
                 u"%1 different, %2 only in this file, %3 only in the other file"_s.arg(
                     counts[0], counts[1], counts[2]));
        QCOMPARE(treeLines(*page.tree), cells[3].split(u"; "_s));
    }

    void copiesAllShownAfterConsent()
    {
        Page page;
        QPushButton* copy = page.button(u"copyAllButton"_s);
        const int width = copy->sizeHint().width();
        QVERIFY(clickAndAnswer(page.view, copy->objectName(), QMessageBox::No)[0].startsWith(
            u"Copy 2 value(s) from other %1.settings into this file?"));
        clickAndAnswer(page.view, copy->objectName(), QMessageBox::Yes, [&] { page.reload(); });
        QVERIFY(page.messages.isEmpty());
        clickAndAnswer(page.view, copy->objectName(), QMessageBox::Yes);
        QVERIFY(page.messages[0][0].toString().startsWith(u"Copied 2 value(s)"));
        QTRY_VERIFY(!copy->isEnabled());
        QCOMPARE(copy->sizeHint().width(), width); // its neighbour stays where it is
    }

    void offersMenu()
    {
        Page page;
        page.view.setStateFilters(false, false, true);
        QCOMPARE(chooseInMenu(*page.tree, u"v"_s, u"Copy setting path"_s),
                 QStringList({u"Use the other file's value!"_s, u"Show in All settings!"_s,
                              u"Copy setting path"_s}));
        QCOMPARE(QApplication::clipboard()->text(), u"Yours/v"_s);
        page.view.setStateFilters(true, false, false);
        page.view.setReadOnly(true);
        QVERIFY(!page.button(u"copyAllButton"_s)->isEnabled());
        QCOMPARE(chooseInMenu(*page.tree, u"x"_s, u"Show in All settings"_s)[0],
                 u"Use the other file's value!"_s);
        const QPoint place = page.tree->visualItemRect(page.item(u"x"_s)).center();
        QTest::mouseClick(page.tree->viewport(), Qt::LeftButton, {}, place);
        QTest::mouseDClick(page.tree->viewport(), Qt::LeftButton, {}, place);
        XsdtNode* node = page.document.root.findByPath(u"G/A/x");
        const QVariantList revealed{QVariant::fromValue(node)};
        QCOMPARE(page.reveals, QList<QVariantList>({revealed, revealed}));
        page.view.setReadOnly(false);
        chooseInMenu(*page.tree, u"x"_s, u"Use the other file's value"_s);
        QCOMPARE(node->value, u"2"_s);
        chooseInMenu(*page.tree, u"y"_s, u"Show in All settings"_s, [&] { page.reload(); });
        QCOMPARE(page.reveals.size(), 2);
    }

    void refusesFiles()
    {
        Page page;
        const QString bad = page.dir.filePath(u"%2"_s);
        const auto faultOf = [&page](const QString& path) {
            QString error;
            return page.view.compareWith(path, &error) ? QString() : error;
        };
        QVERIFY(faultOf(page.path).startsWith(u"That is the file being edited"));
        QVERIFY(faultOf(bad).startsWith(u"Cannot read %1: "_s.arg(bad)));
        QVERIFY(page.item(u"x"_s));
        StoreFixture::write(bad, "<nothing");
        QVERIFY(faultOf(bad).startsWith(bad + u" is not a valid PixInsight settings file: "_s));
        QVERIFY(page.summary().startsWith(u"Pick another"));
    }

    void choosesFromTheList()
    {
        Page page;
        const QString backup = page.path + u".bak-1"_s;
        StoreFixture::write(backup, page.document.serialize());
        const auto choose = [&page](int index) { // the list looks for files when it opens
            page.combo->setFocus();
            QTest::keyClick(page.combo, Qt::Key_Down);
            page.combo->view()->setCurrentIndex(page.combo->model()->index(index, 0));
            QTest::keyClick(page.combo->view(), Qt::Key_Return);
            return page.summary();
        };
        QVERIFY(choose(1).startsWith(u"0 different, 0 only"));
        QVERIFY(page.combo->currentText().startsWith(u"Backup: core-001-pxi.settings.bak-1"));
        for (const QString& picked : {page.otherPath, page.path, QString()}) {
            const DialogAnswerer<QFileDialog> dialog([&](QFileDialog& browse) {
                auto* name = browse.findChild<QLineEdit*>();
                name->setText(picked);
                QTest::keyClick(name, picked.isEmpty() ? Qt::Key_Escape : Qt::Key_Return);
            });
            QVERIFY(choose(page.combo->count() - 1).startsWith(u"2 different"));
            QCOMPARE(page.combo->currentData().toString(), page.otherPath);
        }
        QCOMPARE(page.messages.size(), 1);
        page.view.setDocument(&page.document, page.otherPath);
        QVERIFY(page.summary().startsWith(u"Pick another"));
    }

    void keepsItsPlaceThroughEdits()
    {
        QString nodes = u"A/b/x:i=1; A/b/y:i=1; A/b/z:i=1; A/c/v:i=1; "_s;
        for (int i = 0; i < 400; ++i) {
            nodes += u"G/%1/v%2:i=1; "_s.arg(i / 100).arg(i);
        }
        Page page(nodes, QString(nodes).replace(u"=1"_s, u"=2"_s));
        QVERIFY(!page.item(u"G/1"_s)->isExpanded()); // of so many none is
        page.item(u"G/1"_s)->setExpanded(true);
        page.tree->setCurrentItem(page.item(u"v150"_s));
        page.tree->verticalScrollBar()->setValue(40);
        page.button(u"copySelectedButton"_s)->click();
        QTRY_VERIFY(!page.item(u"v150"_s));
        QVERIFY(page.item(u"G/1"_s)->isExpanded() && !page.item(u"G/0"_s)->isExpanded());
        QCOMPARE(page.tree->currentItem(), page.item(u"v151"_s));
        QCOMPARE(page.tree->verticalScrollBar()->value(), 40);
        for (const QString& text : {u"A/c"_s, u"x"_s, u"z"_s}) {
            page.item(text)->setSelected(true);
        }
        QVERIFY(page.model.setValue(page.document.root.findByPath(u"A/b/x"), u"2"_s));
        QTRY_VERIFY(!page.item(u"x"_s));
        QVERIFY(page.item(u"A/c"_s)->isSelected() && page.item(u"z"_s)->isSelected());
        page.button(u"copySelectedButton"_s)->click();
        QTRY_VERIFY(!page.item(u"v"_s) && !page.item(u"z"_s) && page.item(u"y"_s));
    }

    void showsAndCopiesWholeValues()
    {
        const QString value = u"<a> "_s.repeated(50);
        const Page page(u"v:s=%1; w:s=short"_s.arg(value), u"v:s=b; w:s=c"_s);
        QCOMPARE(page.item(u"v"_s)->toolTip(1), asMarkup(value));
        QCOMPARE(page.item(u"v"_s)->toolTip(2) + page.item(u"w"_s)->toolTip(1), QString());
        page.tree->setCurrentItem(page.item(u"v"_s), 1);
        page.tree->setFocus();
        QVERIFY(QTest::qWaitForWindowActive(page.tree));
        QTest::keyClick(page.tree, Qt::Key_C, Qt::ControlModifier);
        QCOMPARE(QApplication::clipboard()->text(), value);
    }
};

KSE_TEST_MAIN(TestCompareView)
#include "TestCompareView.moc"
