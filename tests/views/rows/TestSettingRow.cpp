// SPDX-License-Identifier: MIT
#include "views/rows/SettingRow.h"

#include "support/SettingsPage.h"
#include "views/rows/NodeContextMenu.h"

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
        const auto note = [this](const QString& text) {
            message = text;
        };
        QObject::connect(row, &SettingRow::rejected, row, note);
        QObject::connect(&model, &SettingsModel::editRejected, row, note);
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
    QString message; ///< Why values were refused.
};

} // namespace

class TestSettingRow : public QObject
{
    Q_OBJECT

private slots:
    /// Persian: its minus sign can't be typed here and isn't valid in a file.
    void initTestCase() { QLocale::setDefault(QLocale::Persian); }

    /// Columns: the setting, type and value, input; then the text before and after it, the stored
    /// value and the message. "*" is a long text.
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
            auto* line = f.part("editorHost")->findChild<QLineEdit*>();
            const QString shown = line->text();
            QTest::keyClicks(line, u"1"_s);
            QTest::keyClick(line, Qt::Key_Escape);
            QString texts = shown + (line->text() == shown ? u"|"_s : u" can't be cancelled|"_s);
            QTest::keyClick(line, Qt::Key_A, Qt::ControlModifier);
            QTest::keyClicks(line, cells[2]);
            QTest::keyClick(line, Qt::Key_Return);
            texts += line->text() + u'|' + f.value->value;
            return texts.replace(many, u"*"_s).replace(many.left(1000), u"~"_s) + f.message;
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
             "real > F 1e0 >  >  1e0| 1e0| 1e0", "text > sa > b > a|b|b",
             "path > sa\nb >  > a\nb|a\nb|a\nb",
             "text > s************************** > x > ~|~|**************************",
             "text > Babc > x > (3 characters of encoded data)|(3 characters of encoded data)|abc"},
            outcome);
    }

    void keepsAValueWithoutAName()
    {
        const Row f(infoOf(Kind::Choice), u"Tool/Key:i=7"_s);
        auto* combo = f.part<QComboBox>("comboBox");
        QTest::keyClick(combo, Qt::Key_Up);
        QCOMPARE(f.value->value, u"2"_s);
        const QSignalSpy changed(&f.model, &SettingsModel::dataChanged);
        f.part<QToolButton>("revertButton")->click();
        QCOMPARE(changed[0][1].toModelIndex().column(), int(SettingsModel::ValueColumn));
        QCOMPARE(combo->currentText(), u"Other (7)"_s);
        f.value->value = u"<seven>"_s;
        f.row->refresh();
        QCOMPARE(combo->count(), 3);
        QCOMPARE(combo->toolTip(), u"Stored text: <seven>"_s);
        emit combo->activated(2); // it stands for the value, which is no number
        QCOMPARE(f.value->value, u"<seven>"_s);
        QTest::keyClick(combo, Qt::Key_Up);
        QVERIFY(f.value->value == "2"_L1 && combo->toolTip().isEmpty());
    }

    /// Columns: path, documented as read-only or not; the first words of the reason.
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
        Row f(infoOf(Kind::Integer), u"Tool/Key:i=7"_s);
        auto* spin = f.part("spinBox");
        QScrollArea page;
        page.setWidget(f.row);
        page.resize(99, 9);
        page.show();
        for (const QString& outcome : {u"7"_s, u"6"_s}) {
            QWheelEvent wheel({5, 5}, spin->mapToGlobal(QPointF(5, 5)), {}, {0, -120}, {}, {},
                              Qt::NoScrollPhase, false);
            QApplication::sendEvent(spin, &wheel);
            QCOMPARE(f.value->value, outcome);
            QVERIFY(page.verticalScrollBar()->value() > 0);
            QVERIFY(QTest::qWaitForWindowActive(&page));
            spin->setFocus();
        }
    }

    void picksColor()
    {
        const Row f(infoOf(Kind::Color), u"Tool/Key:u=2147549183"_s);
        const DialogAnswerer<QColorDialog> color([](QColorDialog& dialog) {
            QCOMPARE(dialog.currentColor(), QColor(0, 255, 255, 128));
            dialog.setCurrentColor(QColor(1, 2, 3, 4));
            dialog.accept();
        });
        f.part<QPushButton>("colorButton")->click();
        QCOMPARE(f.value->value, QString::number(0x04010203));
        QCOMPARE(f.part<QPushButton>("colorButton")->text(), u"#04010203"_s);
    }

    /// Columns: what is asked for, what happens meanwhile; the value afterwards and after typing.
    /// A node of another document isn't touched.
    void browses()
    {
        const QDir home = QDir::home();
        QVERIFY(home.mkpath(u"chosen"_s));
        const auto stored = [&home](const QStringList& cells) {
            Row f(infoOf(cells[0] == u"folder" ? Kind::Directory : Kind::FilePath),
                  u"Tool/Key:s="_s + home.path());
            const DialogAnswerer<QFileDialog> file([&](QFileDialog& dialog) {
                delete (cells[1] == u"row dies" ? f.row.data() : nullptr);
                f.model.setReadOnly(cells[1] == u"PixInsight starts");
                if (cells[1] == u"another document") {
                    f.model.setDocument(&f.document);
                }
                dialog.findChild<QLineEdit*>()->setText(
                    cells[0] == u"folder" ? u"chosen"_s : QCoreApplication::applicationFilePath());
                static_cast<QDialog&>(dialog).accept();
            });
            f.part<QToolButton>("browseButton")->click();
            const QString chosen = home.relativeFilePath(f.value->value);
            if (f.row) {
                QTest::keyClicks(f.part<QLineEdit>("lineEdit"), u"new "_s);
                QTest::keyClick(f.part<QLineEdit>("lineEdit"), Qt::Key_Return);
            }
            return chosen + (f.value->value.startsWith(u"new ") ? u", new"_s : u""_s) + f.message;
        };
        compareRows(
            {"folder >  > chosen, new", "file > another document > .", "file > row dies > .",
             "folder > PixInsight starts > .PixInsight is running; nothing can be changed."},
            stored);
    }

    /// Columns: path, state or event; the menu's entries, those that are disabled in brackets, and
    /// what the first of the others does.
    void offersMenu()
    {
        const auto menu = [](const QStringList& cells) {
            Row f(infoOf(Kind::Text), u"Tool/Key:s=old; PixelClipboard; Global/X; Gone deleted; "
                                      "Gone/v:s=old"_s);
            XsdtNode* node = f.node(cells[0]);
            node->value = node->original.isEmpty() ? QString() : u"new"_s;
            f.row->refresh(); // or an editor that loses the focus writes what it shows
            QStringList told;
            const auto note = [&](const QString& what) {
                return [&told, what](const XsdtNode* target) {
                    told << what + target->key;
                };
            };
            const DialogAnswerer<QMenu> answer([&](QMenu& shown) {
                for (QAction* action : shown.actions()) {
                    told << (action->isEnabled() ? u"%1"_s : u"[%1]"_s).arg(action->text());
                    if (action->isEnabled() && !action->isSeparator() && !shown.activeAction()) {
                        shown.setActiveAction(action);
                    }
                }
                f.model.setReadOnly(cells[1] == u"starts");
                if (cells[1] == u"loads") {
                    f.model.setDocument(&f.document);
                }
                QTest::keyClick(&shown, Qt::Key_Return);
            });
            const DialogAnswerer<QMessageBox> box(
                [&](QMessageBox& shown) { told << shown.text().section(u'\n', 0, 0); });
            showNodeContextMenu(f.row, &f.model, node, {10, 10}, cells[1] == u"runs",
                                {note(u"delete "_s), note(u"undo "_s), note(u"reveal "_s)});
            told.removeAll(QString());                 // separators
            told.removeOne(u"Show in All settings"_s); // always the last
            return told.join(u", "_s) + u": "_s + node->value;
        };
        compareRows({"Tool/Key >  > Revert this value, Delete this setting...: old",
                     "Tool/Key > starts > Revert this value, Delete this setting...: new",
                     "Tool/Key > loads > Revert this value, Delete this setting...: new",
                     "Global/X >  > Why can't this be deleted?, Global/X: ",
                     "PixelClipboard >  > Delete this group, delete PixelClipboard: ",
                     "Tool > runs > [Delete this group...], reveal Tool: ",
                     "Gone > runs > Undo deletion, undo Gone: ",
                     "Gone/v >  > [Revert this value], [Inside a group marked for deletion], "
                     "reveal v: new"},
                    menu);
    }
};

KSE_TEST_MAIN(TestSettingRow)
#include "TestSettingRow.moc"
