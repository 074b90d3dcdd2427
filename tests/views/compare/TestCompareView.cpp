// SPDX-License-Identifier: MIT
#include "document/XsdtDocument.h"
#include "schema/DeletePolicy.h"
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
    Page(const QString& nodes, const QString& otherNodes)
    {
        XsdtDocument other;
        document.head = other.head = u"<xsdt>"_s;
        addNodes(document, nodes);
        addNodes(other, otherNodes);
        StoreFixture::write(otherPath, other.serialize());
        StoreFixture::write(path, document.serialize());
        model.setPolicy(&policy);
        const bool read = policy.load("{\"policy\": {\"delete\": [{\"path\": \"Junk/**\", "
                                      "\"level\": \"safe\"}]}, \"compareNoCopy\": [\"Lock/**\"]}");
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

    QStringList lines() const { return treeLines(*tree); }
    QTreeWidgetItem* item(const QString& text) const { return treeItem(*tree, text); }
    QPushButton* button(const QString& name) const { return view.findChild<QPushButton*>(name); }
    QString summary() const { return view.findChild<QLabel*>(u"summaryLabel"_s)->text(); }
    QString message()
    {
        return messages.isEmpty() ? QString() : messages.takeFirst()[0].toString();
    }

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

const QString sample = u"G/A/x:i=1; G/A/y:s=<b>; G/B/z:i=1; Lock/v:s=a; Junk/v:i=1; Mine/v:i=1"_s;
const QString otherSample =
    u"G/A/x:i=2; G/A/y:s=two; G/B/z:i=no; Lock/v:s=b; Junk/v:i=2; Yours/v:i=1"_s;

} // namespace

class TestCompareView : public QObject
{
    Q_OBJECT

private slots:
    void listsDifferences_data();
    void listsDifferences();
    void copiesAllShownAfterConsent();
    void offersMenu();
    void refusesFiles();
    void choosesFromTheList();
    void copiesWhatTheTreeDoesNotShow();
    void keepsItsPlaceWhenRefreshed();
    void keepsSelectionAndClosedGroupsThroughEdits();
    void showsCutValueInToolTip();
};

void TestCompareView::listsDifferences_data()
{
    addTextRows({"a:i=1 > a:i=1 > 0 0 0 > Nothing to show with the current filters.",
                 "a/b:s=1 > a/b:i=1 > 1 0 0 > a; .b|1|1|Different (type s / i)",
                 "a/b/c:i=1 > a:i=2 > 0 1 1 > a/b; .c|1||Only in this file; (top level); "
                 ".a||2|Only in the other file",
                 "a:B=xyz > a:B=x > 1 0 0 > (top level); .a|(3 characters of encoded data)|"
                 "(1 characters of encoded data)|Different!",
                 "Lock/v:i=1 > Lock/v:i=2 > 1 0 0 > Lock; .v|1|2|Different!"});
}

void TestCompareView::listsDifferences()
{
    QFETCH(QStringList, cells);
    Page page(cells[0], cells[1]);
    page.view.setStateFilters(true, true, true);
    const QStringList counts = cells[2].split(u' ');
    QCOMPARE(page.summary(), u"%1 different, %2 only in this file, %3 only in the other file"_s.arg(
                                 counts[0], counts[1], counts[2]));
    QCOMPARE(page.lines(), cells[3].split(u"; "_s));
}

void TestCompareView::copiesAllShownAfterConsent()
{
    Page page(u"A/x:i=1; A/y:s=one"_s, u"A/x:i=2; A/y:s=two"_s);
    QPushButton* copy = page.button(u"copyAllButton"_s);
    QCOMPARE(copy->text(), u"Use the other file's value for all shown (2)"_s);
    QCOMPARE(clickAndAnswer(page.view, u"copyAllButton"_s, QMessageBox::No)[0],
             u"Copy 2 value(s) from other %1.settings into this file?\n\nThey become pending "
             "changes: you can review, revert and save them as usual."_s);
    clickAndAnswer(page.view, u"copyAllButton"_s, QMessageBox::Yes, [&] { page.reload(); });
    QCOMPARE(page.message(), QString());
    clickAndAnswer(page.view, u"copyAllButton"_s, QMessageBox::Yes);
    QCOMPARE(page.message(), u"Copied 2 value(s) into this file. Review and save when ready."_s);
    QTRY_VERIFY(!copy->isEnabled());
    QCOMPARE(copy->text(), u"Use the other file's value for all shown"_s);
}

void TestCompareView::offersMenu()
{
    Page page(sample, otherSample);
    page.view.setStateFilters(false, false, true);
    QCOMPARE(chooseInMenu(*page.tree, u"v"_s, u"Copy setting path"_s),
             QStringList({u"Use the other file's value!"_s, u"Show in All settings!"_s,
                          u"Copy setting path"_s}));
    QCOMPARE(QApplication::clipboard()->text(), u"Yours/v"_s);
    page.view.setStateFilters(true, false, false);
    page.view.setReadOnly(true);
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

    Page block(u"a:B=xyz"_s, u"a:B=x"_s);
    block.tree->setCurrentItem(block.item(u"a"_s), 1);
    block.tree->setFocus();
    QVERIFY(QTest::qWaitForWindowActive(&block.view));
    QTest::keyClick(block.tree, Qt::Key_C, Qt::ControlModifier);
    QCOMPARE(QApplication::clipboard()->text(), u"xyz"_s);
}

void TestCompareView::refusesFiles()
{
    Page page(sample, otherSample);
    const QStringList before = page.lines();
    const QString missing = page.dir.filePath(u"%2"_s);
    QString error;
    QVERIFY(!page.view.compareWith(page.path, &error));
    QCOMPARE(error, u"That is the file being edited."_s);
    QVERIFY(!page.view.compareWith(missing, &error));
    QVERIFY2(error.startsWith(u"Cannot read %1: "_s.arg(missing)), qPrintable(error));
    QCOMPARE(page.lines(), before);
    StoreFixture::write(missing, "<nothing");
    QVERIFY(!page.view.compareWith(missing, &error));
    QVERIFY2(error.startsWith(missing + u" is not a valid PixInsight settings file: "_s),
             qPrintable(error));
    QCOMPARE(page.summary(), u"Pick another settings file to see how it differs from this one."_s);
}

void TestCompareView::choosesFromTheList()
{
    Page page(sample, otherSample);
    StoreFixture::write(page.path + u".bak-1"_s, page.document.serialize());
    page.setDocument(&page.document);
    QCOMPARE(page.combo->count(), 4);
    QCOMPARE(page.combo->currentIndex(), 2);
    const auto choose = [&page](int index) {
        page.combo->setFocus();
        QTest::keyClick(page.combo, Qt::Key_Down); // opens the list, and no file
        page.combo->view()->setCurrentIndex(page.combo->model()->index(index, 0));
        QTest::keyClick(page.combo->view(), Qt::Key_Return);
        return page.summary();
    };
    StoreFixture::write(page.path + u".bak-2"_s, "<nothing");
    page.combo->showPopup(); // looks again
    page.combo->hidePopup();
    QCOMPARE(page.combo->count(), 5);
    QFile::remove(page.path + u".bak-2"_s);
    page.combo->showPopup();
    page.combo->hidePopup();
    QVERIFY(choose(1).startsWith(u"0 different, 0 only"_s));
    QVERIFY(page.combo->currentText().startsWith(u"Backup: core-001-pxi.settings.bak-1"_s));
    for (const QString& picked : {page.otherPath, page.path, QString()}) {
        DialogAnswerer<QFileDialog> dialog([&](QFileDialog& browse) {
            QCOMPARE(browse.directory(), QDir(page.dir.path()));
            auto* name = browse.findChild<QLineEdit*>();
            name->setText(picked);
            QTest::keyClick(name, picked.isEmpty() ? Qt::Key_Escape : Qt::Key_Return);
        });
        QVERIFY(choose(page.combo->count() - 1).startsWith(u"4 different"_s));
        QVERIFY(dialog.wasAsked());
        QCOMPARE(page.combo->currentData().toString(), page.otherPath);
    }
    QCOMPARE(page.message(), u"That is the file being edited."_s);
    QVERIFY(page.messages.isEmpty());
    page.view.setDocument(&page.document, page.otherPath);
    QVERIFY(page.summary().startsWith(u"Pick another"_s));
}

void TestCompareView::copiesWhatTheTreeDoesNotShow()
{
    const QString groups = QString(u"deep/"_s).repeated(SettingsModel::maximumDepth + 1);
    Page page(groups + u"v:i=1"_s, groups + u"v:i=2"_s);
    page.tree->selectAll();
    page.button(u"copySelectedButton"_s)->click();
    const QList<XsdtNode*> copied = page.document.editedValues();
    QCOMPARE(copied.size(), 1);
    QCOMPARE(copied.constFirst()->value, u"2"_s);
}

void TestCompareView::keepsItsPlaceWhenRefreshed()
{
    QString nodes;
    for (int i = 0; i < 402; ++i) {
        nodes += u"G/%1/v%2:i=1; "_s.arg(i / 100).arg(i);
    }
    Page page(nodes, QString(nodes).replace(u"=1"_s, u"=2"_s));
    QVERIFY(!page.item(u"G/1"_s)->isExpanded());
    page.item(u"G/1"_s)->setExpanded(true);
    page.tree->setCurrentItem(page.item(u"v150"_s));
    page.tree->verticalScrollBar()->setValue(40);
    page.button(u"copySelectedButton"_s)->click();
    QTRY_VERIFY(!page.item(u"v150"_s));
    QVERIFY(page.item(u"G/1"_s)->isExpanded() && !page.item(u"G/0"_s)->isExpanded());
    QCOMPARE(page.tree->currentItem(), page.item(u"v151"_s));
    QCOMPARE(page.tree->verticalScrollBar()->value(), 40);
}

void TestCompareView::keepsSelectionAndClosedGroupsThroughEdits()
{
    const QString nodes = u"A/a/v:i=1; A/b/w:i=1; A/b/x:i=1; A/c/y:i=1; A/c/z:i=1"_s;
    Page page(nodes, QString(nodes).replace(u"=1"_s, u"=2"_s));
    const int width = page.button(u"copyAllButton"_s)->sizeHint().width();
    const auto isSelected = [&](const QString& text) {
        return page.item(text)->isSelected();
    };
    page.tree->setCurrentItem(page.item(u"y"_s));
    page.item(u"A/a"_s)->setExpanded(false);
    for (const QString& text : {u"A/a"_s, u"w"_s, u"z"_s}) {
        page.item(text)->setSelected(true);
    }
    XsdtNode* x = page.document.root.findByPath(u"A/b/x");
    QVERIFY(page.model.setValue(x, u"2"_s));
    QTRY_VERIFY(!page.item(u"x"_s));
    QVERIFY(isSelected(u"A/a"_s) && isSelected(u"w"_s) && isSelected(u"y"_s) && isSelected(u"z"_s));
    QCOMPARE(page.tree->selectedItems().size(), 4);
    QVERIFY(!page.item(u"A/a"_s)->isExpanded() && page.item(u"A/b"_s)->isExpanded());
    QCOMPARE(page.tree->currentItem(), page.item(u"y"_s));
    page.button(u"copySelectedButton"_s)->click();
    QTRY_COMPARE(page.lines(), QStringList(u"Nothing to show with the current filters."_s));
    QCOMPARE(page.button(u"copyAllButton"_s)->sizeHint().width(), width);
}

void TestCompareView::showsCutValueInToolTip()
{
    const QString value = u"<a> "_s.repeated(50);
    Page page(u"v:s=%1; w:s=short"_s.arg(value), u"v:s=b; w:s=c"_s);
    QCOMPARE(page.item(u"v"_s)->toolTip(1), asMarkup(value));
    QCOMPARE(page.item(u"v"_s)->toolTip(2), QString());
    QCOMPARE(page.item(u"w"_s)->toolTip(1), QString());
    page.tree->header()->setSectionResizeMode(1, QHeaderView::Fixed);
    page.tree->setColumnWidth(1, 20);
    QCOMPARE(page.item(u"w"_s)->toolTip(1), asMarkup(u"short"_s));
}

KSE_TEST_MAIN(TestCompareView)
#include "TestCompareView.moc"
