// SPDX-License-Identifier: MIT
#include "schema/SettingsSchema.h"
#include "session/dialogs/ReviewDialog.h"
#include "support/DialogAnswerer.h"
#include "support/DocumentText.h"
#include "support/TestMain.h"
#include "views/model/SettingsModel.h"

#include <QApplication>
#include <QCheckBox>
#include <QClipboard>
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

// A document with pending changes beneath a dialog; `edits` are "path=value".
struct Review
{
    Review(const QByteArray& content, const QStringList& edits, const QStringList& deletions)
        : document(documentFrom(content))
    {
        for (const QString& edit : edits) {
            document->root.findByPath(edit.section(u'=', 0, 0))->value = edit.section(u'=', 1);
        }
        for (const QString& path : deletions) {
            document->root.findByPath(path)->markedForDeletion = true;
        }
        model.setDocument(document.get());
        if (!schema.load({}, R"({"variables": {"C": {"choices": [[1, "one"], [2, "two"]]}}})")) {
            qFatal("no schema");
        }
        dialog = std::make_unique<ReviewDialog>(&model, document.get(), nullptr, &schema);
        tree = child<QTreeWidget>(u"tree"_s);
        dialog->show();
    }

    template <typename Widget>
    Widget* child(const QString& name) const
    {
        return dialog->findChild<Widget*>(name);
    }
    QPushButton* button(const QString& name) const { return child<QPushButton>(name); }
    QString label(const QString& name) const { return child<QLabel>(name)->text(); }
    QString summary() const { return label(u"summary"_s); }
    QString detail() const { return child<QPlainTextEdit>(u"detail"_s)->toPlainText(); }

    // A line a row, its texts between bars.
    QString rows() const
    {
        QString text;
        for (QTreeWidgetItemIterator item(tree); *item; ++item) {
            for (int column = 0; column < 4; ++column) {
                text += (*item)->text(column) + (column < 3 ? u'|' : u'\n');
            }
        }
        return text;
    }

    std::unique_ptr<XsdtDocument> document;
    SettingsSchema schema;
    SettingsModel model;
    std::unique_ptr<ReviewDialog> dialog;
    QTreeWidget* tree = nullptr;
};

const QByteArray sample =
    R"(<i k="B"><v k="x" t="i" v="1"/><v k="y" t="s">one
two</v></i><i k="a"><v k="data" t="B">QUJD</v><i k="in"><v k="z" t="s">%1</v></i></i>)"
    R"(<v k="C&lt;b&gt;%1&amp;" t="s">&lt;i&gt;</v><v k="gone" t="i" v="7"/>)";
const QStringList edits = {u"C<b>%1&=%2"_s, u"B/y=new"_s, u"B/x=2"_s};
const QStringList deletions = {u"gone"_s, u"a"_s};

} // namespace

class TestReviewDialog : public QObject
{
    Q_OBJECT

private slots:
    void listsChangesByPath();
    void tellsWhatTheTextDoesNotShow_data();
    void tellsWhatTheTextDoesNotShow();
    void tellsWhilePixInsightRuns();
    void filtersList_data();
    void filtersList();
    void showsFullText_data();
    void showsFullText();
    void cutsLongTexts();
    void revertsSelectedInOneRefresh();
    void goesOnAtTheTopmostRevertedRow();
    void endsWhenTreeIsReplaced();
    void returnSavesFromTheListAlone();
};

void TestReviewDialog::listsChangesByPath()
{
    const Review review(sample, edits, deletions);
    QCOMPARE(review.summary(), u"3 edit(s) and 2 deletion(s) (3 values removed) will be "
                               "written to the settings file."_s);
    review.tree->expandAll();
    QCOMPARE(review.rows(), u"Delete|a|2 value(s)|(removed)\n"
                            "|data|(4 characters of encoded data)|(removed)\n"
                            "|in/z|%1|(removed)\n"
                            "Delete|gone|1 value(s)|(removed)\n"
                            "|gone|7|(removed)\n"
                            "Edit|B/x|1|2\n"
                            "Edit|B/y|one\u23CEtwo|new\n"
                            "Edit|C<b>%1&|<i>|%2\n"_s);
    QVERIFY(review.child<QLabel>(u"hidden"_s)->isHidden());
    QVERIFY(review.tree->topLevelItem(4)->toolTip(2).contains(u"&lt;i&gt;"_s));
    QCOMPARE(review.tree->topLevelItem(0)->child(1)->toolTip(2), u"%1"_s);
    QCOMPARE(review.tree->topLevelItem(1)->child(0)->toolTip(2), QString());
}

void TestReviewDialog::filtersList_data()
{
    QTest::addColumn<QString>("filter");
    QTest::addColumn<QString>("off");
    QTest::addColumn<QString>("shown");
    const QString nothing = u"|Nothing matches the filters.||\n"_s;
    QTest::newRow("path") << u" b/X "_s << QString() << u"Edit|B/x|1|2\n"_s;
    QTest::newRow("before") << u"TW"_s << QString() << u"Edit|B/y|one\u23CEtwo|new\n"_s;
    QTest::newRow("after") << u"New"_s << QString() << u"Edit|B/y|one\u23CEtwo|new\n"_s;
    QTest::newRow("block") << u"QUJD"_s << QString() << nothing;
    QTest::newRow("no deletions") << u"n"_s << u"showDeletions"_s
                                  << u"Edit|B/y|one\u23CEtwo|new\n"_s;
    QTest::newRow("no edits") << u"n"_s << u"showEdits"_s
                              << u"Delete|gone|1 value(s)|(removed)\n"_s;
}

void TestReviewDialog::filtersList()
{
    QFETCH(QString, off);
    QFETCH(QString, filter);
    const Review review(sample, edits, {u"gone"_s, u"a/data"_s});
    QTest::keyClicks(review.child<QLineEdit>(u"filter"_s), filter);
    if (!off.isEmpty()) {
        review.child<QCheckBox>(off)->click();
    }
    QTEST(review.rows(), "shown");
    QVERIFY(review.button(u"save"_s)->isEnabled());
    QVERIFY(review.summary().startsWith(u"3 edit(s) and 2 deletion(s)"_s));
    const int hidden = review.rows().startsWith(u'|') ? 5 : 4;
    QCOMPARE(review.label(u"hidden"_s),
             u"The filters hide %1 change(s). Save writes them too."_s.arg(hidden));
    QVERIFY(review.child<QLabel>(u"hidden"_s)->isVisible());
}

void TestReviewDialog::tellsWhatTheTextDoesNotShow_data()
{
    QTest::addColumn<QString>("path");
    QTest::addColumn<QString>("after");
    QTest::addColumn<QString>("said");
    QTest::newRow("choice") << u"C"_s << u"2"_s << u"Shown as one before and two after."_s;
    QTest::newRow("no such choice")
        << u"C"_s << u"7"_s << u"Shown as one before and Other (7) after."_s;
    QTest::newRow("colour") << u"BackColor"_s << u"255"_s
                            << u"Shown as #FF00000A before and #000000FF after."_s;
    QTest::newRow("plain") << u"text"_s << u"new"_s << u"Before ends in 2 blank(s)."_s;
    QTest::newRow("ends")
        << u"text"_s << u"a \t\n\n"_s
        << u"Before ends in 2 blank(s). After ends in 2 blank(s), 2 line end(s)."_s;
}

void TestReviewDialog::tellsWhatTheTextDoesNotShow()
{
    QFETCH(QString, path);
    QFETCH(QString, after);
    const Review review(R"(<v k="C" t="i" v="1"/><v k="BackColor" t="u" v="4278190090"/>)"
                        R"(<v k="text" t="s">old  </v><v k="gone" t="s"> </v>)",
                        {path + u'=' + after}, {u"gone"_s});
    review.tree->setCurrentItem(review.tree->topLevelItem(1));
    QTEST(review.label(u"remark"_s), "said");
    QVERIFY(review.detail().endsWith(u"After:  "_s + after));
    review.tree->setCurrentItem(review.tree->topLevelItem(0));
    QCOMPARE(review.label(u"remark"_s), QString());
}

void TestReviewDialog::tellsWhilePixInsightRuns()
{
    Review review(sample, edits, deletions);
    for (const bool runs : {false, true, false}) {
        review.model.setReadOnly(runs);
        QCOMPARE(review.child<QLabel>(u"running"_s)->isVisible(), runs);
    }
}

void TestReviewDialog::showsFullText_data()
{
    QTest::addColumn<QList<int>>("rows"); // of `listsChangesByPath`
    QTest::addColumn<QString>("detail");
    QTest::newRow("deletion") << QList<int>{0}
                              << u"a\nThe whole entry is removed (2 value(s)). Expand the row to "
                                 "see them."_s;
    QTest::newRow("removed block") << QList<int>{1} << u"a/data\nRemoved value: QUJD"_s;
    QTest::newRow("child of a deleted value") << QList<int>{4} << QString();
    QTest::newRow("edit") << QList<int>{6} << u"B/y\nBefore: one\ntwo\nAfter:  new"_s;
    QTest::newRow("several") << QList<int>{1, 6} << u"2 changes selected."_s;
}

void TestReviewDialog::showsFullText()
{
    QFETCH(QList<int>, rows);
    const Review review(sample, edits, deletions);
    review.tree->expandAll();
    for (const int row : rows) {
        QTreeWidgetItemIterator item(review.tree);
        (*(item += row))->setSelected(true);
    }
    QTEST(review.detail(), "detail");
    QVERIFY(review.button(u"revert"_s)->isEnabled());
}

void TestReviewDialog::cutsLongTexts()
{
    const QByteArray many = QByteArray("<v k=\"v\" t=\"i\" v=\"1\"/>").repeated(1000);
    const Review review("<i k=\"many\">" + many +
                            "</i><v k=\"long\" t=\"s\"></v><v k=\"vast\""
                            " t=\"s\"></v>",
                        {u"long="_s + QString(200, u'l'), u"vast="_s + QString(1'000'000, u'v')},
                        {u"many"_s});
    QTreeWidgetItem* group = review.tree->topLevelItem(0);
    group->setExpanded(true);
    QCOMPARE(group->childCount(), 301);
    QCOMPARE(group->child(300)->text(1), u"...and 700 more values"_s);

    QCOMPARE(review.tree->topLevelItem(1)->text(3), QString(120, u'l') + QChar(0x2026));
    review.tree->setCurrentItem(review.tree->topLevelItem(1));
    QCOMPARE(review.detail().count(u'l'), 201); // one in the path
    QCOMPARE(review.tree->topLevelItem(2)->toolTip(3).size(), 500);
    review.tree->setCurrentItem(review.tree->topLevelItem(2));
    QCOMPARE(review.detail().count(u'v'), 100'001);
    QVERIFY(review.detail().contains(u"900000"_s));
    review.tree->setCurrentItem(review.tree->topLevelItem(2), 3);
    review.tree->setFocus();
    QVERIFY(QTest::qWaitForWindowActive(review.dialog.get()));
    QTest::keyClick(review.tree, Qt::Key_C, Qt::ControlModifier);
    QCOMPARE(QApplication::clipboard()->text().size(), 1'000'000);
}

void TestReviewDialog::revertsSelectedInOneRefresh()
{
    const Review review(sample, edits, deletions);
    const QSignalSpy edited(&review.model, &SettingsModel::edited);
    review.tree->expandAll();
    review.tree->topLevelItem(0)->child(0)->setSelected(true);
    review.button(u"revert"_s)->click(); // which takes nothing out of a deletion
    QCOMPARE(review.document->pendingCount(), 5);
    for (const int row : {0, 1, 2, 4}) {
        review.tree->topLevelItem(row)->setSelected(true);
    }
    review.button(u"revert"_s)->click();
    QCOMPARE(edited.count(), 1);
    QCOMPARE(review.rows(), u"Edit|B/y|one\u23CEtwo|new\n"_s);
    QVERIFY(!review.button(u"revert"_s)->isEnabled());

    // The keyboard goes on in the list.
    QTest::keyClick(review.dialog->focusWidget(), Qt::Key_Space);
    review.button(u"revert"_s)->click();
    QCOMPARE(review.rows(), QString());
    QCOMPARE(review.summary(), u"There are no changes to save."_s);
    QVERIFY(!review.button(u"save"_s)->isEnabled());
    QCOMPARE(review.document->pendingCount(), 0);
}

void TestReviewDialog::goesOnAtTheTopmostRevertedRow()
{
    const Review review(sample, edits, deletions);
    for (const int row : {3, 1}) { // also in this order
        review.tree->topLevelItem(row)->setSelected(true);
    }
    review.button(u"revert"_s)->click();
    QCOMPARE(review.tree->currentIndex().row(), 1);
}

void TestReviewDialog::endsWhenTreeIsReplaced()
{
    Review review(sample, edits, deletions);
    review.dialog->hide(); // to be shown as modal
    const DialogAnswerer<ReviewDialog> answer([&](ReviewDialog& dialog) {
        review.tree->setCurrentItem(review.tree->topLevelItem(0));
        review.model.revertAll(); // the same tree: the list follows
        QCOMPARE(review.rows(), QString());
        QVERIFY(dialog.isVisible());
        review.model.setDocument(nullptr);
        QVERIFY(review.document->parse(fileBytes("")));
        review.model.setDocument(review.document.get());
        QVERIFY(!dialog.isVisible());
    });
    QCOMPARE(review.dialog->exec(), int(QDialog::Rejected));
}

void TestReviewDialog::returnSavesFromTheListAlone()
{
    const Review review(sample, edits, deletions);
    for (const char* name : {"showEdits", "showDeletions", "detail", "filter"}) {
        auto* widget = review.child<QWidget>(QLatin1String(name));
        widget->setFocus();
        QTest::keyClick(widget, Qt::Key_Return);
        QVERIFY2(review.dialog->isVisible(), name);
    }
    QCOMPARE(review.dialog->focusWidget(), review.tree);
    QTest::keyClick(review.tree, Qt::Key_Return);
    QCOMPARE(review.dialog->result(), int(QDialog::Accepted));
}

KSE_TEST_MAIN(TestReviewDialog)
#include "TestReviewDialog.moc"
