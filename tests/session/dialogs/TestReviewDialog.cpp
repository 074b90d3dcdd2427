// SPDX-License-Identifier: MIT
#include "schema/SettingsSchema.h"
#include "session/dialogs/ReviewDialog.h"
#include "support/DocumentText.h"
#include "support/TestMain.h"
#include "views/model/SettingsModel.h"

#include <QtWidgets>

namespace {

/// A document with pending changes, and the dialog that shows them. Edits are "path=value".
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
        (void)schema.load({}, R"({"variables": {"C": {"choices": [[1, "one"], [2, "two"]]}}})");
        dialog = std::make_unique<ReviewDialog>(&model, document.get(), nullptr, &schema);
        tree = dialog->findChild<QTreeWidget*>(u"tree"_s);
        tree->expandAll();
        dialog->show();
        (void)QTest::qWaitForWindowActive(dialog.get()); // else no shortcut works
    }

    QWidget* child(const QString& name) const { return dialog->findChild<QWidget*>(name); }

    QTreeWidgetItem* row(int number) const
    {
        QTreeWidgetItemIterator item(tree);
        return *(item += number);
    }

    /// Takes the steps of `script` and answers its questions.
    QString play(const QString& script)
    {
        QStringList answers;
        for (const QString& part : script.split(u',')) {
            const QString rest = part.section(u' ', 1);
            const int number = rest.section(u' ', 0, 0).toInt();
            const int column = rest.section(u' ', 1).toInt();
            const auto on = [&](const char* name, const std::function<void()>& step) {
                return part.section(u' ', 0, 0) == QLatin1String(name) ? step() : void();
            };
            on("type", [&] { QTest::keyClicks(child(u"filter"_s), rest); });
            on("press", [&] { QMetaObject::invokeMethod(child(rest), "click"); });
            on("select", [&] { row(number)->setSelected(true); });
            on("at", [&] { tree->setCurrentItem(row(number), column); });
            on("focus", [&] { child(rest)->setFocus(); });
            on("key", [&] {
                const QKeyCombination keys = QKeySequence(rest)[0];
                QTest::keyClick(dialog->focusWidget(), keys.key(), keys.keyboardModifiers());
            });
            on("running", [&] { model.setReadOnly(number != 0); });
            on("undo", [&] { model.revertAll(); });
            on("reload", [&] { model.setDocument(document.get()); });
            on("rows", [&] { answers << rows(); });
            on("alive", [&] { answers << alive(); });
            on("text", [&] { answers << child(rest)->property("text").toString(); });
            on("detail", [&] { answers << child(u"detail"_s)->property("plainText").toString(); });
            on("tip", [&] { answers << tree->currentItem()->toolTip(tree->currentColumn()); });
            on("where", [&] {
                answers << dialog->focusWidget()->objectName() +
                               QString::number(tree->currentIndex().row());
            });
            on("copied", [&] { answers << QApplication::clipboard()->text(); });
        }
        return answers.join(u" / "_s).replace(u'\n', u" / "_s);
    }

    /// A line a row, its texts between bars.
    QString rows() const
    {
        QStringList lines;
        for (QTreeWidgetItemIterator row(tree); *row; ++row) {
            lines << (*row)->text(0) + u'|' + (*row)->text(1) + u'|' + (*row)->text(2) + u'|' +
                         (*row)->text(3);
        }
        return lines.join(u'\n');
    }

    /// Which of these are visible and enabled, and whether the dialog has ended with a save.
    QString alive() const
    {
        QStringList names(dialog->result(), u"saved"_s);
        for (const QString& name : {u"running"_s, u"hidden"_s, u"revert"_s, u"save"_s, u"tree"_s}) {
            const QWidget* widget = child(name);
            names += QStringList(widget->isVisible() && widget->isEnabled(), name);
        }
        return names.join(u' ');
    }

    std::unique_ptr<XsdtDocument> document;
    SettingsSchema schema;
    SettingsModel model;
    std::unique_ptr<ReviewDialog> dialog;
    QTreeWidget* tree = nullptr;
};

} // namespace

class TestReviewDialog : public QObject
{
    Q_OBJECT

private slots:
    /// Steps and questions, and the answers: "⏎" ends a line in a text, " / " all others.
    void reviewsChanges()
    {
        const QByteArray sample =
            R"(<i k="B"><v k="x" t="i" v="1"/><v k="y" t="s">one
two</v></i><v k="BackColor" t="u" v="4278190090"/><v k="C" t="i" v="1"/><v k="D
&lt;b&gt;%1&amp;" t="s">&lt;i&gt;</v><v k="E" t="s">old  </v><i k="a"><v k="BackColor" t="u" v="9"/>)"
            R"(<i k="in"><v k="z" t="s">%1 </v></i></i><v k="gone" t="B">QUJD</v>)";
        const QStringList edits{u"E=a \t\n\n"_s,    u"D\n<b>%1&=%2"_s, u"C=7"_s,
                                u"BackColor=255"_s, u"B/y=new"_s,      u"B/x=2"_s};
        compareRows(
            {"alive,text summary > save tree / 6 edit(s) and 2 deletion(s) (3 values removed) will "
             "be written to the settings file.",
             "rows > Delete|a|2 value(s)|(removed) / |BackColor|9|(removed) / |in/z|%1 |(removed) "
             "/ Delete|gone|1 value(s)|(removed) / |gone|(4 characters of encoded data)|(removed) "
             "/ Edit|B/x|1|2 / Edit|B/y|one⏎two|new / Edit|BackColor|4278190090|255 / Edit|C|1|7 / "
             "Edit|D⏎<b>%1&|<i>|%2 / Edit|E|old  |a \t⏎⏎",
             "type  b/X ,rows,text hidden,alive > Edit|B/x|1|2 / The filters hide 7 change(s). "
             "Save writes them too. / hidden save tree",
             "type TW,rows > Edit|B/y|one⏎two|new",
             "type QUJD,rows,text hidden > |Nothing matches the filters.|| / The filters hide 8 "
             "change(s). Save writes them too.",
             "press showEdits,type O,rows > Delete|gone|1 value(s)|(removed)",
             "select 0,press revert,press showDeletions,alive,text hidden > hidden save tree / The "
             "filters hide 1 change(s). Save writes them too.",
             "at 7,at 0,detail,text remark > a / The whole entry is removed (2 value(s)). Expand "
             "the row to see them. / ",
             "select 2,detail,text remark > a/in/z / Removed value: %1  / The value ends in 1 "
             "blank(s).",
             "select 4,detail,alive >  / revert save tree",
             "select 6,detail,select 0,detail > B/y / Before: one / two / After:  new / 2 changes "
             "selected.",
             "at 5,text remark,at 7,text remark,at 8,text remark >  / Shown as #FF00000A before "
             "and #000000FF after. / Shown as one before and Other (7) after.",
             "at 10,text remark > Before ends in 2 blank(s). After ends in 2 blank(s), 2 line "
             "end(s).",
             "at 9 1,key Ctrl+C,copied,at 6 2,key Ctrl+C,copied,at 4 2,key Ctrl+C,copied,at 9 "
             "2,tip > D / <b>%1& / one / two / QUJD / <span "
             "style=\"white-space:pre-wrap\">&lt;i&gt;</span>",
             "select 1,press revert,alive,text remark > revert save tree / Shown as #00000009.",
             "select 8,select 6,press revert,where,alive,key Space,detail > tree3 / save tree / "
             "BackColor / Before: 4278190090 / After:  255",
             "select 5,select 6,select 7,select 8,select 9,select 10,press revert,where,alive > "
             "tree1 / save tree",
             "undo,text summary,rows,alive > There are no changes to save. /  / tree",
             "reload,alive > ",
             "running 1,alive,running 0,alive > running save tree / save tree",
             "focus showEdits,key Return,focus detail,key Return,alive,focus filter,key "
             "Return,where > save tree / tree0",
             "key Return,alive > saved"},
            [&](const QStringList& cells) {
                return Review(sample, edits, {u"gone"_s, u"a"_s}).play(cells[0]);
            });
    }

    void cutsLongTexts()
    {
        const QByteArray many = QByteArray("<v k=\"v\" t=\"i\" v=\"1\"/>").repeated(301);
        Review review("<i k=\"many\">" + many + "</i><v k=\"x\" t=\"s\"></v>",
                      {u"x="_s + QString(1'000'000, u'v')}, {u"many"_s});
        QCOMPARE(review.play(u"at 302 3,tip"_s).size(), 500);
        QCOMPARE(review.row(302)->text(3), QString(120, u'v') + QChar(0x2026));
        QCOMPARE(review.play(u"detail"_s).count(u'v'), 100'000);
        QCOMPARE(review.play(u"key Ctrl+C,copied"_s).size(), 1'000'000);
        QCOMPARE(review.play(u"at 301 1,key Ctrl+C,copied"_s), u"...and 1 more values"_s);
    }
};

KSE_TEST_MAIN(TestReviewDialog)
#include "TestReviewDialog.moc"
