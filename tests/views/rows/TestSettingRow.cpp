// SPDX-License-Identifier: MIT
#include "views/rows/SettingRow.h"

#include "support/SettingsPage.h"
#include "views/rows/NodeContextMenu.h"

using namespace kse;

namespace {

using Kind = VariableKind;

/// What is known of the setting; a range only where `max` isn't 0.
VariableInfo infoOf(Kind kind, double min = 0, double max = 0)
{
    return {u"A & B"_s, {}, kind, false, false, max != 0, min, max, {{1, u"one"_s}, {2, u"two"_s}}};
}

/// A row over the first value at `path`, in a window of its own.
struct Row : ModelOf
{
    Row(const VariableInfo& info, const QString& nodes, const QString& path = u"Tool/Key"_s)
        : ModelOf(nodes)
        , value(node(path))
        , row(new SettingRow(value, info, &model, &window))
    {
        row->resize(700, 100);
        window.show();
        window.activateWindow();
    }

    template <typename Widget = QWidget>
    Widget* part(const char* name) const
    {
        return row->findChild<Widget*>(QLatin1String(name));
    }

    QWidget window;
    XsdtNode* value;
    QPointer<SettingRow> row;
};

} // namespace

class TestSettingRow : public QObject
{
    Q_OBJECT

private slots:
    /// Its minus sign is on no keyboard, and the file knows nothing of it.
    void initTestCase() { QLocale::setDefault(QLocale::Persian); }

    /// What is known, type and value, what is typed instead of what is shown before Return; and
    /// what was shown, what is shown then, what is stored, and the message. "*" is a long text.
    void writesWhatIsTypedAndNothingElse()
    {
        const QMap<QString, VariableInfo> infos{
            {u"integer"_s, infoOf(Kind::Integer)},   {u"small"_s, infoOf(Kind::Integer, 1, 10)},
            {u"unsigned"_s, infoOf(Kind::Unsigned)}, {u"real"_s, infoOf(Kind::Real, 0, 1)},
            {u"text"_s, infoOf(Kind::Text)},         {u"path"_s, infoOf(Kind::FilePath)}};
        const QString many(40'000, u'y');
        const auto outcome = [&](const QStringList& cells) {
            const Row f(
                infos[cells[0]],
                u"Tool/Key:%1=%2"_s.arg(cells[1][0]).arg(cells[1].mid(1).replace(u'*', many)));
            QString message;
            const auto note = [&message](const QString& text) {
                message = text;
            };
            connect(f.row, &SettingRow::rejected, f.row, note);
            connect(&f.model, &SettingsModel::editRejected, f.row, note);
            auto* line = f.part("editorHost")->findChild<QLineEdit*>();
            const QString shown = line->text();
            for (const QString& text : {u"1"_s, cells[2]}) {
                if (!line->isReadOnly() && !text.isEmpty()) {
                    QTest::keyClick(line, Qt::Key_Escape);
                    message += line->text() == shown ? u""_s : u"no escape"_s;
                    QTest::keyClick(line, Qt::Key_A, Qt::ControlModifier);
                    QTest::keyClicks(line, text);
                }
            }
            QTest::keyClick(line, cells[2].isEmpty() ? Qt::Key_Escape : Qt::Key_Return);
            QTest::keyClick(line, Qt::Key_Return);
            const QString texts = QStringList{shown, line->text(), f.value->value}.join(u'|');
            return QString(texts).replace(many, u"*"_s).replace(many.left(1000), u"~"_s) + message;
        };
        compareRows(
            {"integer > i7 > -12 > 7|-12|-12", "integer > imany >  > 0|0|many",
             "small > i0 >  > 0|0|0", "unsigned > u7 > 4294967295 > 7|4294967295|4294967295",
             "unsigned > u99999999999 >  > 99999999999|99999999999|99999999999",
             "real > F0.5 > 1 > 0.5|1|1",
             "real > F0.5 > -0.1 > 0.5|0.5|0.5A & B: -0.1 is outside the allowed range 0 to 1",
             "real > F0.5 > 1.0000001 > 0.5|0.5|0.5A & B: 1.0000001 is outside the allowed range 0 "
             "to 1",
             "real > F0.5 > x > 0.5|0.5|0.5Key: Expected a real number.",
             "real > F 1e0 >  >  1e0| "
             "1e0| 1e0",
             "text > sa > b > a|b|b", "path > sa\nb >  > a\nb|a\nb|a\nb",
             "text > s************************** > x > "
             "~|~|**************************",
             "text > ta\nb > x > a\u23CEb|a\u23CEb|a\nb",
             "text > Babc > x > (3 characters of encoded data)|(3 characters of encoded data)|abc"},
            outcome);
    }

    void keepsAValueWithoutAName()
    {
        const Row f(infoOf(Kind::Choice), u"Tool/Key:i=7"_s);
        auto* combo = f.part<QComboBox>("comboBox");
        QTest::keyClick(combo, Qt::Key_Up);
        QCOMPARE(f.value->value, u"2"_s);
        f.part<QToolButton>("revertButton")->click();
        QCOMPARE(combo->currentText(), u"Other (7)"_s);
        QCOMPARE(combo->count(), 3);
        f.value->value = u"<seven>"_s;
        f.row->refresh();
        QCOMPARE(combo->toolTip(), u"Stored text: <seven>"_s);
        emit combo->activated(2); // it stands for the value, which is no number
        QCOMPARE(f.value->value, u"<seven>"_s);
    }

    void writesNothingOnceReadOnly()
    {
        Row f(infoOf(Kind::Boolean), u"Tool/Key:b=false"_s);
        QSignalSpy rejected(f.row, &SettingRow::rejected);
        f.model.setReadOnly(true); // the poll tells the page of it later
        f.part<QCheckBox>("checkBox")->click();
        QVERIFY(f.value->value == u"false" && rejected.count() == 1);
        QVERIFY(!f.part<QCheckBox>("checkBox")->isChecked());
    }

    /// Path and type, whether it is documented as read-only, and the first words of the reason.
    void tellsWhyItIsLocked()
    {
        const auto reason = [](const QStringList& cells) {
            VariableInfo info = infoOf(Kind::Text);
            info.readOnly = !cells[1].isEmpty();
            const Row f(info, u"A:s=; B:B=; LastVersion:s=; Gone deleted; Gone/C:s="_s, cells[0]);
            f.value->value = u"new"_s;
            f.row->refresh();
            const auto* host = f.part("editorHost");
            return (host->isEnabled() ? u"enabled"_s : host->toolTip().section(u' ', 0, 1)) +
                   (f.part("revertButton")->isEnabled() ? u", reverts"_s : u""_s);
        };
        compareRows({"A >  > enabled, reverts", "A > read-only > Documented by, reverts",
                     "B >  > Protected value, reverts", "LastVersion >  > Module registry, reverts",
                     "Gone/C >  > "},
                    reason);
    }

    void wheelNeedsFocus()
    {
        const Row f(infoOf(Kind::Integer), u"Tool/Key:i=7"_s);
        QScrollArea page;
        page.setWidget(f.row);
        f.row->resize(700, 1000);
        page.show();
        auto* spin = f.part("spinBox");
        const auto turn = [&](int angle) {
            QWheelEvent wheel({5, 5}, spin->mapToGlobal(QPointF(5, 5)), {}, {0, angle}, {}, {},
                              Qt::NoScrollPhase, false);
            QApplication::sendEvent(spin, &wheel);
            return f.value->value + (page.verticalScrollBar()->value() > 0 ? u" below"_s : u""_s);
        };
        QCOMPARE(turn(-120), u"7 below"_s);
        QVERIFY(QTest::qWaitForWindowActive(&page));
        QTest::mouseClick(spin, Qt::LeftButton);
        QTRY_VERIFY(spin->hasFocus());
        QCOMPARE(turn(120), u"8 below"_s);
    }

    void picksFolderAndColor()
    {
        const QString folder = QDir::homePath() + u"/chosen"_s;
        QVERIFY(QDir().mkpath(folder));
        const Row f(infoOf(Kind::Directory), u"Tool/Key:s="_s + QDir::homePath());
        const DialogAnswerer<QFileDialog> file([&](QFileDialog& dialog) {
            QCOMPARE(dialog.directory().path(), QDir::homePath());
            dialog.findChild<QLineEdit*>()->setText(folder);
            static_cast<QDialog&>(dialog).accept();
        });
        f.part<QToolButton>("browseButton")->click();
        QCOMPARE(f.value->value, folder);

        const Row g(infoOf(Kind::Color), u"Tool/Key:u=2147549183"_s);
        const DialogAnswerer<QColorDialog> color([](QColorDialog& dialog) {
            QCOMPARE(dialog.currentColor(), QColor(0, 255, 255, 128));
            dialog.setCurrentColor(QColor(1, 2, 3, 4));
            dialog.accept();
        });
        g.part<QPushButton>("colorButton")->click();
        QCOMPARE(g.value->value, QString::number(0x04010203));
        QCOMPARE(g.part<QPushButton>("colorButton")->text(), u"#04010203"_s);
    }

    void touchesNoNodeOfAReplacedDocument()
    {
        for (const bool rowDies : {false, true}) {
            Row f(infoOf(Kind::FilePath), u"Tool/Key:s=old"_s);
            auto* line = f.part<QLineEdit>("lineEdit");
            const DialogAnswerer<QFileDialog> file([&](QFileDialog& dialog) {
                delete (rowDies ? f.row.data() : nullptr);
                f.model.setDocument(&f.document);
                dialog.findChild<QLineEdit*>()->setText(QCoreApplication::applicationFilePath());
                static_cast<QDialog&>(dialog).accept();
            });
            f.part<QToolButton>("browseButton")->click();
            QVERIFY(file.wasAsked() && f.value->value == u"old");
            if (!rowDies) {
                f.value->value = u"another's"_s;
                QTest::keyClicks(line, u"new "_s);
                QTest::keyClick(line, Qt::Key_Return);
                QTest::keyClick(line, Qt::Key_Escape);
                QVERIFY(f.value->value == u"another's" && line->text().contains(u"new "));
            }
        }
    }

    void matchesWhatItShows()
    {
        for (const QString& type : {u"s"_s, u"t"_s}) {
            const ModelOf f(u"Tool/Key:%1=Value"_s.arg(type));
            const auto matches = [&f](const QString& text) {
                return SettingRow::matches(*f.node(u"Tool/Key"_s), infoOf(Kind::Text), text);
            };
            QVERIFY(matches(u"a & b"_s) && matches(u"kEY"_s) && !matches(u"Tool"_s));
            QVERIFY(matches(u"vaLue"_s) == (type == u"s"));
        }
    }

    /// The path, what is so or happens meanwhile; then what the menu offers, in brackets what can't
    /// be chosen, and what the first that can does.
    void offersMenu()
    {
        const auto menu = [](const QStringList& cells) {
            Row f(infoOf(Kind::Text), u"Tool/Key:s=old; PixelClipboard; Global/X; Gone deleted; "
                                      "Gone/v:s=old"_s);
            XsdtNode* node = f.node(cells[0]);
            node->value = node->original.isEmpty() ? QString() : u"new"_s;
            f.row->refresh(); // or an editor that loses the focus writes what it shows
            QString done;
            const auto note = [&](const QString& what) {
                return [&done, what](const XsdtNode* target) {
                    done = what + target->key;
                };
            };
            QStringList entries;
            const DialogAnswerer<QMenu> answer([&](QMenu& shown) {
                for (QAction* action : shown.actions()) {
                    if (!action->isSeparator()) {
                        const QString text = action->text();
                        entries << (action->isEnabled() ? text : u"["_s + text + u"]"_s);
                    }
                }
                f.model.setReadOnly(cells[1] == u"starts");
                if (cells[1] == u"loads") {
                    f.model.setDocument(&f.document);
                }
                do { // on Windows the keys stop at the others too
                    QTest::keyClick(&shown, Qt::Key_Down);
                } while (shown.activeAction() && !shown.activeAction()->isEnabled());
                QTest::keyClick(&shown, Qt::Key_Return);
            });
            const DialogAnswerer<QMessageBox> box(
                [&](QMessageBox& shown) { done = shown.text().section(u'\n', 0, 0); });
            showNodeContextMenu(f.row, &f.model, node, {10, 10}, cells[1] == u"runs",
                                {note(u"delete "_s), note(u"undo "_s), note(u"reveal "_s)});
            entries.removeOne(u"Show in All settings"_s); // always the last
            return entries.join(u", "_s) + u": "_s + (done.isEmpty() ? node->value : done);
        };
        compareRows({"Tool/Key >  > Revert this value, Delete this setting...: old",
                     "Tool/Key > starts > Revert this value, Delete this setting...: new",
                     "Tool/Key > loads > Revert this value, Delete this setting...: new",
                     "Global/X >  > Why can't this be deleted?: Global/X",
                     "PixelClipboard >  > Delete this group: delete PixelClipboard",
                     "Tool > runs > [Delete this group...]: reveal Tool",
                     "Gone > runs > Undo deletion: undo Gone",
                     "Gone/v >  > [Revert this value], [Inside a group marked for deletion]: "
                     "reveal v"},
                    menu);
    }
};

KSE_TEST_MAIN(TestSettingRow)
#include "TestSettingRow.moc"
