// SPDX-License-Identifier: MIT
#include "views/SettingRow.h"

#include "document/XsdtDocument.h"
#include "schema/DeletePolicy.h"
#include "support/DialogAnswerer.h"
#include "support/DocumentText.h"
#include "support/TestMain.h"
#include "views/NodeContextMenu.h"
#include "views/SettingsModel.h"

#include <QAccessible>
#include <QCheckBox>
#include <QColorDialog>
#include <QComboBox>
#include <QFileDialog>
#include <QLabel>
#include <QLineEdit>
#include <QMenu>
#include <QMessageBox>
#include <QPushButton>
#include <QSignalSpy>
#include <QSpinBox>
#include <QTest>
#include <QToolButton>
#include <QWheelEvent>

using namespace Qt::StringLiterals;

Q_DECLARE_METATYPE(kse::VariableKind)

namespace kse {

/// One row in a window of its own, over the value "Group/Sub/Key" of a real model.
class TestSettingRow : public QObject
{
    Q_OBJECT

private slots:
    void init();
    void cleanup();

    void writesWhatTheUserEnters_data();
    void writesWhatTheUserEnters();
    void refreshWritesNothing_data();
    void refreshWritesNothing();
    void marksValueWithoutName();
    void takesChangeBack();
    void tellsWhyItIsLocked_data();
    void tellsWhyItIsLocked();
    void wheelNeedsFocus();
    void picksFolderAndColor();
    void givesUpWhenDocumentIsReplacedUnderDialog();
    void namesItsParts();
    void followsThemeAndTextSize();
    void offersMenu_data();
    void offersMenu();
    void menuOutlivesDocument();

private:
    SettingRow* makeRow(char type, const QString& value, VariableInfo info);
    template <typename T>
    T* part(const char* name) const
    {
        return m_row->findChild<T*>(QLatin1String(name));
    }
    QString value() const { return m_node->value; }

    std::unique_ptr<XsdtDocument> m_document;
    std::unique_ptr<QWidget> m_window;
    std::unique_ptr<SettingsModel> m_model;
    DeletePolicy m_policy;
    XsdtNode* m_node = nullptr;
    QPointer<SettingRow> m_row;
};

namespace {

VariableInfo infoOf(VariableKind kind)
{
    VariableInfo info;
    info.label = u"A & B"_s;
    info.kind = kind;
    return info;
}

VariableInfo infoOf(VariableKind kind, double min, double max)
{
    VariableInfo info = infoOf(kind);
    info.hasRange = true;
    info.min = min;
    info.max = max;
    return info;
}

VariableInfo choiceInfo()
{
    VariableInfo info = infoOf(VariableKind::Choice);
    info.choices = {{1, u"one"_s}, {2, u"two"_s}};
    return info;
}

} // namespace

void TestSettingRow::init()
{
    const QByteArray rules = "{'policy': {'defaultReason': 'Needed <b>.', 'delete': ["
                             "{'path': 'Group/Sub', 'level': 'warn', 'reason': 'Saved data.'},"
                             "{'path': 'Group', 'level': 'safe', 'reason': 'Left behind.'}]},"
                             "'editLocked': ['Group/Sub/Locked']}";
    QVERIFY(m_policy.load(QByteArray(rules).replace('\'', '"')));
    m_document = documentFrom("<i k='Group'><i k='Sub'><v k='Key' t='s' v=''/></i></i>");
    m_node = m_document->root.findByPath(u"Group/Sub/Key");
    m_model = std::make_unique<SettingsModel>();
    m_model->setPolicy(&m_policy);
    m_model->setDocument(m_document.get());
    m_window = std::make_unique<QWidget>();
}

void TestSettingRow::cleanup()
{
    m_window.reset();
}

SettingRow* TestSettingRow::makeRow(char type, const QString& value, VariableInfo info)
{
    m_node->typeCode = QLatin1Char(type);
    m_node->value = m_node->original = value;
    m_row = new SettingRow(m_node, info, m_model.get(), m_window.get());
    m_row->resize(700, 100);
    m_window->show();
    m_window->activateWindow();
    return m_row;
}

void TestSettingRow::writesWhatTheUserEnters_data()
{
    QTest::addColumn<char>("type");
    QTest::addColumn<QString>("value");
    QTest::addColumn<VariableInfo>("info");
    QTest::addColumn<QString>("typed"); // instead of what is there; a blank is a click or Down
    QTest::addColumn<QString>("stored");
    QTest::addColumn<QString>("message");
    const auto row = [](const char* name, char type, const QString& value, const VariableInfo& info,
                        const QString& typed, const QString& stored, const QString& message = {}) {
        QTest::newRow(name) << type << value << info << typed << stored << message;
    };
    using K = VariableKind;
    row("check box", 'b', u"true"_s, infoOf(K::Boolean), u" "_s, u"false"_s);
    row("choice", 'i', u"1"_s, choiceInfo(), u" "_s, u"2"_s);
    row("integer", 'i', u"7"_s, infoOf(K::Integer), u"-12"_s, u"-12"_s);
    row("small unsigned", 'u', u"7"_s, infoOf(K::Unsigned, 0, 100), u"12"_s, u"12"_s);
    row("large unsigned", 'u', u"7"_s, infoOf(K::Unsigned), u"4294967295"_s, u"4294967295"_s);
    row("real", 'F', u"0.5"_s, infoOf(K::Real, 0, 1), u"1"_s, u"1"_s);
    row("real out of range", 'F', u"0.5"_s, infoOf(K::Real, 0, 1), u"1.5"_s, u"0.5"_s,
        u"A & B: 1.5 is outside the allowed range 0 to 1"_s);
    row("malformed real", 'F', u"0.5"_s, infoOf(K::Real, 0, 1), u"much"_s, u"0.5"_s, u"Key: "_s);
    row("text", 's', u"a"_s, infoOf(K::Text), u"b"_s, u"b"_s);
    row("path", 's', u"/a"_s, infoOf(K::FilePath), u"/b"_s, u"/b"_s);
}

void TestSettingRow::writesWhatTheUserEnters()
{
    QFETCH(char, type);
    QFETCH(QString, value);
    QFETCH(VariableInfo, info);
    QFETCH(QString, typed);
    QFETCH(QString, stored);
    QFETCH(QString, message);
    makeRow(type, value, info);
    QSignalSpy edited(m_model.get(), &SettingsModel::edited);
    QStringList messages;
    connect(m_row, &SettingRow::rejected, this, [&](const QString& text) { messages << text; });
    connect(m_model.get(), &SettingsModel::editRejected, this,
            [&](const QString& text) { messages << text; });

    auto* editor = part<QWidget>("editorHost")->findChild<QWidget*>();
    if (auto* box = qobject_cast<QCheckBox*>(editor)) {
        QTest::mouseClick(box, Qt::LeftButton, {}, {5, box->height() / 2});
    } else if (qobject_cast<QComboBox*>(editor)) {
        QTest::keyClick(editor, Qt::Key_Down);
    } else {
        QTest::keyClick(editor, Qt::Key_A, Qt::ControlModifier);
        QTest::keyClicks(editor, typed);
        QTest::keyClick(editor, Qt::Key_Return);
    }
    QCOMPARE(this->value(), stored);
    QCOMPARE(edited.count(), stored == value ? 0 : 1);
    QCOMPARE(messages.size(), message.isEmpty() ? 0 : 1);
    if (!message.isEmpty()) {
        QVERIFY2(messages.first().startsWith(message), qPrintable(messages.first()));
        QCOMPARE(part<QLineEdit>("lineEdit")->text(), value);
    }
}

void TestSettingRow::refreshWritesNothing_data()
{
    QTest::addColumn<char>("type");
    QTest::addColumn<QString>("value");
    QTest::addColumn<VariableInfo>("info");
    QTest::addColumn<QString>("shown");
    using K = VariableKind;
    const QString lines = u"one\ntwo"_s;
    QTest::newRow("integer below its range")
        << 'i' << u"0"_s << infoOf(K::Integer, 1, 10) << u"0"_s;
    QTest::newRow("no integer") << 'i' << u"many"_s << infoOf(K::Integer, 1, 10) << u"0"_s;
    QTest::newRow("unsigned above its range")
        << 'u' << u"99999999999"_s << infoOf(K::Unsigned) << u"99999999999"_s;
    QTest::newRow("no unsigned") << 'u' << u"inf"_s << infoOf(K::Unsigned) << u"0"_s;
    QTest::newRow("real in another form") << 'F' << u" 1e0"_s << infoOf(K::Real) << u" 1e0"_s;
    QTest::newRow("lines") << 's' << lines << infoOf(K::Text) << lines;
    QTest::newRow("long text") << 's' << QString(40'000, u'y') << infoOf(K::Text)
                               << QString(40'000, u'y');
    QTest::newRow("text too long to edit")
        << 's' << QString(1'000'001, u'y') << infoOf(K::Text) << QString(1000, u'y');
    QTest::newRow("time") << 't' << lines << infoOf(K::Text) << u"one\u23CEtwo"_s;
    QTest::newRow("block") << 'B' << u"abc"_s << infoOf(K::Text)
                           << u"(3 characters of encoded data)"_s;
}

void TestSettingRow::refreshWritesNothing()
{
    QFETCH(char, type);
    QFETCH(QString, value);
    QFETCH(VariableInfo, info);
    QFETCH(QString, shown);
    makeRow(type, value, info);
    QSignalSpy edited(m_model.get(), &SettingsModel::edited);
    auto* line = part<QWidget>("editorHost")->findChild<QLineEdit*>();
    QCOMPARE(line->text(), shown);
    line->setFocus();
    QTest::keyClick(line, Qt::Key_Return);
    m_row->refresh();
    line->clearFocus();
    QCOMPARE(edited.count(), 0);
    QCOMPARE(this->value(), value);
}

void TestSettingRow::marksValueWithoutName()
{
    makeRow('i', u"7"_s, choiceInfo());
    auto* combo = part<QComboBox>("comboBox");
    QCOMPARE(combo->currentText(), u"Other (7)"_s);
    QTest::keyClick(combo, Qt::Key_Up);
    QCOMPARE(value(), u"2"_s);
    QTest::mouseClick(part<QToolButton>("revertButton"), Qt::LeftButton);
    QCOMPARE(combo->currentText(), u"Other (7)"_s);
    QCOMPARE(combo->count(), 3);
    m_node->value = u"seven"_s;
    m_row->refresh();
    QCOMPARE(combo->currentText(), u"Other (seven)"_s);
    emit combo->activated(combo->currentIndex()); // the marker chosen again from the list
    QCOMPARE(value(), u"seven"_s);
}

void TestSettingRow::takesChangeBack()
{
    makeRow('b', u"true"_s, infoOf(VariableKind::Boolean));
    auto* revert = part<QToolButton>("revertButton");
    auto* name = part<QLabel>("nameLabel");
    QVERIFY(!revert->isEnabled());
    QCOMPARE(revert->toolTip(), u"Unchanged"_s);
    part<QCheckBox>("checkBox")->click();
    QVERIFY(revert->isEnabled());
    QCOMPARE(revert->toolTip(), u"Revert to the value on disk: true"_s);
    QCOMPARE(name->font().weight(), int(QFont::Bold));
    QVERIFY(m_row->autoFillBackground());
    QCOMPARE(m_row->palette().color(QPalette::Window), QColor(255, 190, 0, 55));
    m_row->setReadOnly(true);
    QVERIFY(!revert->isEnabled());
    QCOMPARE(revert->toolTip(), u"Revert to the value on disk: true"_s);
    m_row->setReadOnly(false);
    QTest::mouseClick(revert, Qt::LeftButton);
    QCOMPARE(value(), u"true"_s);
    QVERIFY(part<QCheckBox>("checkBox")->isChecked());
    QVERIFY(!m_row->autoFillBackground());
    QCOMPARE(name->font().weight(), int(QFont::Normal));
}

void TestSettingRow::tellsWhyItIsLocked_data()
{
    QTest::addColumn<char>("type");
    QTest::addColumn<QString>("key");
    QTest::addColumn<bool>("documentedReadOnly");
    QTest::addColumn<bool>("deleted");
    QTest::addColumn<QString>("toolTip");
    QTest::newRow("documented") << 's' << u"Key"_s << true << false
                                << u"Documented by PixInsight as read-only or write-only."_s;
    QTest::newRow("encoded") << 'B' << u"Key"_s << false << false
                             << u"Protected value type: shown for reference only."_s;
    QTest::newRow("locked") << 's' << u"Locked"_s << false << false
                            << u"Module registry and version records are locked against editing."_s;
    QTest::newRow("deleted") << 's' << u"Key"_s << false << true << u""_s;
}

void TestSettingRow::tellsWhyItIsLocked()
{
    QFETCH(QString, key);
    QFETCH(bool, documentedReadOnly);
    QFETCH(bool, deleted);
    QFETCH(char, type);
    m_node->key = key;
    m_node->parent->markedForDeletion = deleted;
    VariableInfo info = infoOf(VariableKind::Text);
    info.readOnly = documentedReadOnly;
    makeRow(type, u"abc"_s, info);
    QVERIFY(!part<QWidget>("editorHost")->isEnabled());
    QTEST(part<QWidget>("editorHost")->toolTip(), "toolTip");
    QCOMPARE(part<QLabel>("nameLabel")->font().strikeOut(), deleted);
}

void TestSettingRow::wheelNeedsFocus()
{
    makeRow('i', u"7"_s, infoOf(VariableKind::Integer));
    auto* spin = part<QSpinBox>("spinBox");
    const auto turn = [spin] {
        QWheelEvent wheel({5, 5}, spin->mapToGlobal(QPointF(5, 5)), {}, {0, 120}, {}, {},
                          Qt::NoScrollPhase, false);
        QApplication::sendEvent(spin, &wheel);
    };
    turn();
    QCOMPARE(value(), u"7"_s);
    QTest::mouseClick(spin, Qt::LeftButton);
    QTRY_VERIFY(spin->hasFocus());
    turn();
    QCOMPARE(value(), u"8"_s);
}

void TestSettingRow::picksFolderAndColor()
{
    const QString folder = QDir::homePath() + u"/chosen"_s;
    QVERIFY(QDir().mkpath(folder));
    makeRow('s', QDir::homePath(), infoOf(VariableKind::Directory));
    DialogAnswerer<QFileDialog> file([&](QFileDialog& dialog) {
        QCOMPARE(dialog.windowTitle(), u"A & B"_s);
        QCOMPARE(dialog.directory().path(), QDir::homePath());
        dialog.findChild<QLineEdit*>()->setText(folder);
        static_cast<QDialog&>(dialog).accept();
    });
    QTest::mouseClick(part<QToolButton>("browseButton"), Qt::LeftButton);
    QVERIFY(file.wasAsked());
    QCOMPARE(value(), folder);

    delete m_row;
    makeRow('u', u"2147549183"_s, infoOf(VariableKind::Color));
    auto* button = part<QPushButton>("colorButton");
    QCOMPARE(button->text(), u"#8000FFFF"_s);
    DialogAnswerer<QColorDialog> color([](QColorDialog& dialog) {
        QCOMPARE(dialog.currentColor(), QColor(0, 255, 255, 128));
        dialog.setCurrentColor(QColor(1, 2, 3, 4));
        dialog.accept();
    });
    QTest::mouseClick(button, Qt::LeftButton);
    QVERIFY(color.wasAsked());
    QCOMPARE(value(), QString::number(0x04010203));
    QCOMPARE(button->text(), u"#04010203"_s);
}

void TestSettingRow::givesUpWhenDocumentIsReplacedUnderDialog()
{
    for (const bool rowDies : {false, true}) {
        makeRow('s', u"old"_s, infoOf(VariableKind::FilePath));
        const auto other = documentFrom("");
        DialogAnswerer<QFileDialog> file([&](QFileDialog& dialog) {
            if (rowDies) {
                delete m_row;
            }
            m_model->setDocument(other.get());
            dialog.findChild<QLineEdit*>()->setText(QCoreApplication::applicationFilePath());
            static_cast<QDialog&>(dialog).accept();
        });
        part<QToolButton>("browseButton")->click();
        QVERIFY(file.wasAsked());
        QCOMPARE(value(), u"old"_s);
        m_model->setDocument(m_document.get());
        delete m_row;
    }
}

void TestSettingRow::namesItsParts()
{
    m_node->key = u"<b>Key"_s;
    VariableInfo info = infoOf(VariableKind::Directory);
    info.description = u"<i>Text</i>"_s;
    makeRow('s', u"value"_s, info);
    const auto name = [](QWidget* widget) {
        return QAccessible::queryAccessibleInterface(widget)->text(QAccessible::Name);
    };
    QCOMPARE(name(part<QWidget>("lineEdit")), u"A & B"_s);
    QCOMPARE(name(part<QWidget>("browseButton")), u"Browse for A & B"_s);
    QCOMPARE(name(part<QWidget>("revertButton")), u"Revert A & B"_s);
    QCOMPARE(part<QLabel>("nameLabel")->buddy(), part<QWidget>("lineEdit"));
    QCOMPARE(part<QLabel>("descriptionLabel")->textFormat(), Qt::PlainText);
    QVERIFY(m_row->toolTip().contains(u"Group/Sub/&lt;b&gt;Key\n(not documented"_s));
    QVERIFY(part<QLabel>("pathLabel")->isHidden());
    m_row->setShowPath(true);
    QVERIFY(!part<QLabel>("pathLabel")->isHidden());
    QCOMPARE(part<QLabel>("pathLabel")->text(), u"Group \u203A Sub"_s);

    QVERIFY(m_row->matches(u"a & b"_s) && m_row->matches(u">key"_s) && m_row->matches(u"TEXT"_s) &&
            m_row->matches(u"Val"_s) && m_row->matches({}));
    QVERIFY(!m_row->matches(u"Group"_s));
    m_node->typeCode = u't';
    QVERIFY(!m_row->matches(u"Val"_s));
}

void TestSettingRow::followsThemeAndTextSize()
{
    const QFont font = QApplication::font();
    const QPalette palette = QApplication::palette();
    makeRow('s', u"value"_s, infoOf(VariableKind::Text));
    m_row->setShowPath(true);
    QFont large = font;
    large.setPointSizeF(20);
    QApplication::setFont(large);
    QPalette dark = palette;
    dark.setColor(QPalette::Window, QColor(40, 40, 40));
    dark.setColor(QPalette::WindowText, QColor(203, 200, 200));
    QApplication::setPalette(dark);
    QCoreApplication::processEvents(); // both go round as events
    QCOMPARE(part<QLabel>("nameLabel")->font().pointSizeF(), 20.0);
    for (const auto& [name, red] : {std::pair("descriptionLabel", 162), {"pathLabel", 121}}) {
        QCOMPARE(part<QLabel>(name)->font().pointSizeF(), 18.0);
        QCOMPARE(part<QLabel>(name)->palette().color(QPalette::Disabled, QPalette::WindowText),
                 QColor(red, red == 162 ? 160 : 120, red == 162 ? 160 : 120));
    }
    QApplication::setFont(font);
    QApplication::setPalette(palette);
}

void TestSettingRow::offersMenu_data()
{
    QTest::addColumn<QString>("path");
    QTest::addColumn<bool>("readOnly");
    QTest::addColumn<QString>("marked");
    QTest::addColumn<QStringList>("entries"); // in brackets those that can't be chosen
    QTest::addColumn<QString>("chosen");
    QTest::addColumn<QString>("done");
    const QString revert = u"Revert this value"_s;
    const QString show = u"Show in All settings"_s;
    const auto row = [](const char* name, const QString& path, bool readOnly, const QString& marked,
                        const QStringList& entries, const QString& chosen, const QString& done) {
        QTest::newRow(name) << path << readOnly << marked << entries << chosen << done;
    };
    row("value", u"Group/Sub/Key"_s, false, {},
        {revert, u"-"_s, u"Why can't this be deleted?"_s, u"-"_s, show}, revert, u"reverted"_s);
    row("never", u"Group/Sub/Key"_s, false, {},
        {revert, u"-"_s, u"Why can't this be deleted?"_s, u"-"_s, show},
        u"Why can't this be deleted?"_s, u"Cannot delete: Group/Sub/Key\n\nNeeded <b>."_s);
    row("safe", u"Group"_s, false, {}, {u"Delete this group"_s, u"-"_s, show},
        u"Delete this group"_s, u"delete Group"_s);
    row("warn", u"Group/Sub"_s, true, {}, {u"[Delete this group...]"_s, u"-"_s, show}, show,
        u"reveal Sub"_s);
    row("marked", u"Group"_s, true, u"Group"_s, {u"Undo deletion"_s, u"-"_s, show},
        u"Undo deletion"_s, u"undo Group"_s);
    row("inside", u"Group/Sub/Key"_s, false, u"Group"_s,
        {u"["_s + revert + u"]"_s, u"-"_s, u"[Inside a group marked for deletion]"_s, u"-"_s, show},
        show, u"reveal Key"_s);
}

void TestSettingRow::offersMenu()
{
    QFETCH(QString, path);
    QFETCH(bool, readOnly);
    QFETCH(QString, marked);
    QFETCH(QString, chosen);
    makeRow('s', u"old"_s, infoOf(VariableKind::Text));
    m_node->value = u"new"_s;
    if (!marked.isEmpty()) {
        m_document->root.findByPath(marked)->markedForDeletion = true;
    }
    QString done;
    const auto note = [&done](const QString& what) {
        return [&done, what](const XsdtNode* node) {
            done = what + node->key;
        };
    };
    QStringList entries;
    DialogAnswerer<QMenu> menu([&](QMenu& shown) {
        for (QAction* action : shown.actions()) {
            const QString text = action->isSeparator() ? u"-"_s : action->text();
            entries << (action->isEnabled() ? text : u"["_s + text + u"]"_s);
            if (action->text() == chosen) {
                shown.setActiveAction(action);
            }
        }
        QTest::keyClick(&shown, Qt::Key_Return);
    });
    DialogAnswerer<QMessageBox> box(
        [&](QMessageBox& shown) { done = shown.windowTitle() + u": "_s + shown.text(); });
    showNodeContextMenu(m_row, m_model.get(), m_document->root.findByPath(path), {10, 10}, readOnly,
                        {note(u"delete "_s), note(u"undo "_s), note(u"reveal "_s)});
    if (value() == "old"_L1) {
        done = u"reverted"_s;
    }
    QTEST(entries, "entries");
    QTEST(done, "done");
}

void TestSettingRow::menuOutlivesDocument()
{
    makeRow('s', u"value"_s, infoOf(VariableKind::Text));
    bool deleted = false;
    connect(m_row, &SettingRow::menuRequested, this, [&](XsdtNode* node, const QPoint& position) {
        showNodeContextMenu(m_row, m_model.get(), node->parent, position, false,
                            {[&](XsdtNode*) { deleted = true; }, {}, {}});
    });
    DialogAnswerer<QMenu> menu([&](QMenu& shown) {
        QCOMPARE(shown.actions().size(), 1);
        m_model->setDocument(nullptr);
        m_row->deleteLater();
        m_document.reset();
        shown.setActiveAction(shown.actions().first());
        QTest::keyClick(&shown, Qt::Key_Return);
    });
    QContextMenuEvent event(QContextMenuEvent::Keyboard, {5, 5}, m_row->mapToGlobal(QPoint(5, 5)));
    QApplication::sendEvent(m_row, &event);
    QVERIFY(menu.wasAsked());
    QVERIFY(!deleted);
}

} // namespace kse

KSE_TEST_MAIN(kse::TestSettingRow)
#include "TestSettingRow.moc"
