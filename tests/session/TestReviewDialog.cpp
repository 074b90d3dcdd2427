// SPDX-License-Identifier: MIT
#include "document/TreeWalk.h"
#include "session/ReviewDialog.h"
#include "support/DialogAnswerer.h"
#include "support/DocumentText.h"
#include "support/TestMain.h"
#include "views/SettingsModel.h"

#include <QApplication>
#include <QCheckBox>
#include <QLabel>
#include <QLineEdit>
#include <QPlainTextEdit>
#include <QPushButton>
#include <QSignalSpy>
#include <QTest>
#include <QTreeWidget>

using namespace Qt::StringLiterals;
using namespace kse;

namespace {

// A document with pending changes beneath a dialog: `edits` are "path=value", both lists end each
// entry with a semicolon.
struct Review
{
    Review(const QByteArray& content, const QString& edits, const QString& deletions = {})
        : document(documentFrom(content))
    {
        model.setDocument(document.get());
        for (const QString& edit : edits.split(u';', Qt::SkipEmptyParts)) {
            document->root.findByPath(edit.section(u'=', 0, 0))->value = edit.section(u'=', 1);
        }
        for (const QString& path : deletions.split(u';', Qt::SkipEmptyParts)) {
            document->root.findByPath(path)->markedForDeletion = true;
        }
        dialog = std::make_unique<ReviewDialog>(&model, document.get());
        dialog->show();
    }

    template <typename Widget>
    Widget* child(const QString& name) const
    {
        return dialog->findChild<Widget*>(name);
    }
    QTreeWidget* tree() const { return child<QTreeWidget>(u"tree"_s); }
    QString summary() const { return child<QLabel>(u"summary"_s)->text(); }
    QString detail() const { return child<QPlainTextEdit>(u"detail"_s)->toPlainText(); }
    QPushButton* button(const QString& name) const { return child<QPushButton>(name); }

    // A line a row, its texts between bars; the rows beneath an expanded one begin with "> ".
    QString rows() const
    {
        QString text;
        for (QTreeWidgetItemIterator item(tree()); *item; ++item) {
            text += (*item)->parent() ? u"> "_s : QString();
            text += (*item)->text(0) + u'|' + (*item)->text(1) + u'|' + (*item)->text(2) + u'|' +
                    (*item)->text(3) + u'\n';
        }
        return text;
    }

    std::unique_ptr<XsdtDocument> document;
    SettingsModel model;
    std::unique_ptr<ReviewDialog> dialog;
};

const QByteArray sample =
    R"(<i k="B"><v k="x" t="i" v="1"/><v k="y" t="s">one
two</v></i><i k="a"><v k="data" t="B">QUJD</v><i k="in"><v k="z" t="s">%1</v></i></i>)"
    R"(<v k="C&lt;b&gt;%1&amp;" t="s">&lt;i&gt;</v><v k="gone" t="i" v="7"/>)";

} // namespace

class TestReviewDialog : public QObject
{
    Q_OBJECT

private slots:
    void listsChangesByPath();
    void filtersList_data();
    void filtersList();
    void showsFullText_data();
    void showsFullText();
    void cutsLongTexts();
    void revertsSelectedInOneRefresh();
    void endsWhenTreeIsReplaced();
    void returnSavesButNotFromTheFilter();
};

void TestReviewDialog::listsChangesByPath()
{
    const Review review(sample, u"C<b>%1&=%2;B/y=;B/x=2"_s, u"gone;a"_s);
    QCOMPARE(review.summary(), u"3 edit(s) and 2 deletion(s) (3 values removed) will be written "
                               "to the settings file."_s);
    for (int row = 0; row < 5; ++row) {
        review.tree()->expandItem(review.tree()->topLevelItem(row));
    }
    QCOMPARE(review.rows(), u"Delete|a|2 value(s)|(removed)\n"
                            "> |data|(4 characters of encoded data)|(removed)\n"
                            "> |in/z|%1|(removed)\n"
                            "Delete|gone|1 value(s)|(removed)\n"
                            "> |gone|7|(removed)\n"
                            "Edit|B/x|1|2\n"
                            "Edit|B/y|one\u23CEtwo|\n"
                            "Edit|C<b>%1&|<i>|%2\n"_s);
    const QTreeWidgetItem* last = review.tree()->topLevelItem(4);
    QVERIFY(last->toolTip(2).contains(u"&lt;i&gt;"_s));
    QCOMPARE(last->toolTip(3), u"%2"_s);
}

void TestReviewDialog::filtersList_data()
{
    QTest::addColumn<QString>("filter");
    QTest::addColumn<bool>("edits");
    QTest::addColumn<bool>("deletions");
    QTest::addColumn<QString>("shown");
    const QString nothing = u"|Nothing matches the filters.||\n"_s;
    QTest::newRow("path") << u" b/X "_s << true << true << u"Edit|B/x|1|2\n"_s;
    QTest::newRow("before") << u"ONE"_s << true << true << u"Edit|B/y|one\u23CEtwo|new\n"_s;
    QTest::newRow("after") << u"New"_s << true << true << u"Edit|B/y|one\u23CEtwo|new\n"_s;
    QTest::newRow("block") << u"QUJD"_s << true << true << nothing;
    QTest::newRow("inside a deleted group") << u"deep"_s << true << true << nothing;
    QTest::newRow("edits") << u""_s << true << false
                           << u"Edit|B/x|1|2\nEdit|B/y|one\u23CEtwo|new\n"_s;
    QTest::newRow("deletions") << u"a"_s << false << true
                               << u"Delete|a/data|1 value(s)|(removed)\n"
                                  "Delete|a/in|1 value(s)|(removed)\n"_s;
    QTest::newRow("neither") << u""_s << false << false << nothing;
}

void TestReviewDialog::filtersList()
{
    QFETCH(QString, filter);
    QFETCH(bool, edits);
    QFETCH(bool, deletions);
    const Review review(sample, u"B/x=2;B/y=new;a/in/z=deep"_s, u"a/in;a/data"_s);
    QTest::keyClicks(review.child<QLineEdit>(u"filter"_s), filter);
    review.child<QCheckBox>(u"showEdits"_s)->setChecked(edits);
    review.child<QCheckBox>(u"showDeletions"_s)->setChecked(deletions);
    QTEST(review.rows(), "shown");
    QVERIFY(review.button(u"save"_s)->isEnabled());
    QVERIFY(review.summary().startsWith(u"2 edit(s) and 2 deletion(s) (2 values"_s));
}

void TestReviewDialog::showsFullText_data()
{
    QTest::addColumn<QList<int>>("rows"); // as `QTreeWidgetItemIterator` counts them
    QTest::addColumn<QString>("detail");
    QTest::newRow("nothing") << QList<int>{} << QString();
    QTest::newRow("deletion") << QList<int>{0}
                              << u"a\nThe whole entry is removed (2 value(s)). Expand the row to "
                                 "see them."_s;
    QTest::newRow("removed block") << QList<int>{1} << u"a/data\nRemoved value: QUJD"_s;
    QTest::newRow("removed value") << QList<int>{2} << u"a/in/z\nRemoved value: %1"_s;
    QTest::newRow("child of a deleted value") << QList<int>{4} << QString();
    QTest::newRow("edit") << QList<int>{5} << u"B/y\nBefore: one\ntwo\nAfter:  %1%2"_s;
    QTest::newRow("several") << QList<int>{1, 5} << u"2 changes selected."_s;
}

void TestReviewDialog::showsFullText()
{
    QFETCH(QList<int>, rows);
    const Review review(sample, u"B/y=%1%2"_s, u"gone;a"_s);
    review.tree()->expandAll();
    for (const int row : rows) {
        QTreeWidgetItemIterator item(review.tree());
        (*(item += row))->setSelected(true);
    }
    QTEST(review.detail(), "detail");
    QCOMPARE(review.button(u"revert"_s)->isEnabled(), !rows.isEmpty());
    if (!rows.contains(5)) {
        const QString before = treeText(review.document->root);
        if (!rows.contains(0)) {
            review.button(u"revert"_s)->click();
            QCOMPARE(treeText(review.document->root), before);
        }
    }
}

void TestReviewDialog::cutsLongTexts()
{
    QByteArray content = "<i k=\"many\">";
    for (int i = 0; i < 1000; ++i) {
        content += "<v k=\"v" + QByteArray::number(i) + "\" t=\"i\" v=\"1\"/>";
    }
    content += "</i><v k=\"long\" t=\"s\"></v><v k=\"vast\" t=\"s\"></v>";
    const Review review(content,
                        u"long="_s + QString(200, u'l') + u";vast="_s + QString(1'000'000, u'v'),
                        u"many"_s);
    QTreeWidgetItem* many = review.tree()->topLevelItem(0);
    many->setExpanded(true);
    QCOMPARE(many->childCount(), 301);
    QCOMPARE(many->child(299)->text(1), u"v299"_s);
    QCOMPARE(many->child(300)->text(1), u"...and 700 more values"_s);
    QVERIFY(!(many->child(300)->flags() & Qt::ItemIsSelectable));

    QTreeWidgetItem* edit = review.tree()->topLevelItem(1);
    QCOMPARE(edit->text(3), QString(120, u'l') + QChar(0x2026));
    review.tree()->setCurrentItem(edit);
    QVERIFY(review.detail().endsWith(u"After:  "_s + QString(200, u'l')));

    edit = review.tree()->topLevelItem(2);
    QCOMPARE(edit->toolTip(3).size(), 500);
    review.tree()->setCurrentItem(edit);
    QCOMPARE(review.detail().count(u'v'), 100'001); // one in the path
    QVERIFY(review.detail().contains(u"900000"_s));
}

void TestReviewDialog::revertsSelectedInOneRefresh()
{
    const Review review(sample, u"B/x=2;B/y=new"_s, u"gone;a"_s);
    const QSignalSpy edited(&review.model, &SettingsModel::edited);
    QTreeWidget* tree = review.tree();
    tree->expandAll();
    QCOMPARE(review.dialog->focusWidget(), tree);
    for (int row : {0, 1, 2}) {
        tree->topLevelItem(row)->setSelected(true);
    }
    QTest::mouseClick(review.button(u"revert"_s), Qt::LeftButton);
    QCOMPARE(edited.count(), 1);
    QCOMPARE(review.rows(), u"Edit|B/y|one\u23CEtwo|new\n"_s);
    QVERIFY(!review.button(u"revert"_s)->isEnabled());

    // The keyboard goes on in the list.
    QCOMPARE(review.dialog->focusWidget(), tree);
    QTest::keyClick(tree, Qt::Key_Space);
    review.button(u"revert"_s)->click();
    QCOMPARE(review.rows(), QString());
    QCOMPARE(review.summary(), u"There are no changes to save."_s);
    QVERIFY(!review.button(u"save"_s)->isEnabled());
    QCOMPARE(review.document->pendingCount(), 0);
}

void TestReviewDialog::endsWhenTreeIsReplaced()
{
    Review review(sample, u"B/x=2"_s);
    review.dialog->hide();
    const DialogAnswerer<ReviewDialog> answer([&](ReviewDialog& dialog) {
        review.tree()->setCurrentItem(review.tree()->topLevelItem(0));
        review.model.revertAll(); // the same tree: the list follows
        QVERIFY(dialog.isVisible());
        QCOMPARE(review.rows(), QString());
        review.model.setDocument(nullptr);
        QVERIFY(review.document->parse(fileBytes("")));
        review.model.setDocument(review.document.get());
        QVERIFY(!dialog.isVisible());
    });
    QCOMPARE(review.dialog->exec(), int(QDialog::Rejected));
    QVERIFY(answer.wasAsked());
}

void TestReviewDialog::returnSavesButNotFromTheFilter()
{
    const Review review(sample, u"B/x=2"_s);
    auto* pane = review.child<QPlainTextEdit>(u"detail"_s);
    const int height = pane->maximumHeight();
    QFont font = review.dialog->font();
    font.setPointSizeF(font.pointSizeF() * 2);
    review.dialog->setFont(font);
    QVERIFY(pane->maximumHeight() > height * 3 / 2);

    auto* filter = review.child<QLineEdit>(u"filter"_s);
    filter->setFocus();
    QTest::keyClicks(filter, u"b"_s);
    QTest::keyClick(filter, Qt::Key_Return);
    QVERIFY(review.dialog->isVisible());
    QTest::keyClick(review.tree(), Qt::Key_Return);
    QCOMPARE(review.dialog->result(), int(QDialog::Accepted));
}

KSE_TEST_MAIN(TestReviewDialog)
#include "TestReviewDialog.moc"
