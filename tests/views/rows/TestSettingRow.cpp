// SPDX-License-Identifier: MIT
#include "views/rows/SettingRow.h"

#include "schema/DeletePolicy.h"
#include "support/DialogAnswerer.h"
#include "support/DocumentText.h"
#include "support/TestMain.h"
#include "views/model/SettingsModel.h"
#include "views/rows/NodeContextMenu.h"

#include <QtTest>
#include <QtWidgets>

using namespace Qt::StringLiterals;

namespace kse {

namespace {

/// What is known of the setting; a range only where `max` isn't 0.
VariableInfo infoOf(VariableKind kind, double min = 0, double max = 0)
{
    return {u"A & B"_s, {}, kind, false, false, max != 0, min, max, {{1, u"one"_s}, {2, u"two"_s}}};
}

} // namespace

/// One row in a window of its own, over the value "Group/Sub/Key" of a real model.
class TestSettingRow : public QObject
{
    Q_OBJECT

private slots:
    /// Its minus sign is on no keyboard, and the file knows nothing of it.
    void initTestCase() { QLocale::setDefault(QLocale::Persian); }
    void init();
    void cleanup() { m_window.reset(); }
    void writesWhatIsTypedAndNothingElse_data();
    void writesWhatIsTypedAndNothingElse();
    void keepsAValueWithoutAName();
    void tellsWhyItIsLocked();
    void wheelNeedsFocus();
    void picksFolderAndColor();
    void givesUpWhenDocumentIsReplacedUnderDialog();
    void readsNoNodeOfAReplacedDocument();
    void namesItsPartsAndMatches();
    void offersMenu();

private:
    void makeRow(char type, const QString& value, const VariableInfo& info);
    template <typename T>
    T* part(const char* name)
    {
        return m_row->findChild<T*>(QLatin1String(name));
    }

    std::unique_ptr<XsdtDocument> m_document;
    std::unique_ptr<QWidget> m_window;
    std::unique_ptr<SettingsModel> m_model;
    DeletePolicy m_policy;
    XsdtNode* m_node = nullptr;
    QPointer<SettingRow> m_row;
};

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

void TestSettingRow::makeRow(char type, const QString& value, const VariableInfo& info)
{
    m_node->typeCode = QLatin1Char(type);
    m_node->value = m_node->original = value;
    delete m_row;
    m_row = new SettingRow(m_node, info, m_model.get(), m_window.get());
    m_row->resize(700, 100);
    m_window->show();
    m_window->activateWindow();
}

void TestSettingRow::writesWhatIsTypedAndNothingElse_data()
{
    QTest::addColumn<QString>("typeAndValue");
    QTest::addColumn<VariableInfo>("info");
    QTest::addColumn<QString>("shown");
    QTest::addColumn<QString>("typed"); // instead of what is shown; nothing: the Enter key alone
    QTest::addColumn<QString>("stored");
    const auto row = [](const char* name, const VariableInfo& info, const QString& typeAndValue,
                        const QString& shown, const QString& typed, const QString& stored) {
        QTest::newRow(name) << typeAndValue << info << shown << typed << stored;
    };
    using K = VariableKind;
    const QString many(40'000, u'y');
    const QString tooMany(1'000'001, u'y');
    const VariableInfo small = infoOf(K::Integer, 1, 10);
    row("integer", infoOf(K::Integer), u"i7"_s, u"7"_s, u"-12"_s, u"-12"_s);
    row("zero over no integer", infoOf(K::Integer), u"imany"_s, u"0"_s, u"00"_s, u"0"_s);
    row("below its range", small, u"i0"_s, u"0"_s, {}, u"0"_s);
    row("no integer", small, u"imany"_s, u"0"_s, {}, u"many"_s);
    row("unsigned", infoOf(K::Unsigned), u"u7"_s, u"7"_s, u"4294967295"_s, u"4294967295"_s);
    row("above its range", infoOf(K::Unsigned), u"u99999999999"_s, u"99999999999"_s, {},
        u"99999999999"_s);
    row("real", infoOf(K::Real, 0, 1), u"F0.5"_s, u"0.5"_s, u"1"_s, u"1"_s);
    row("real too small", infoOf(K::Real, 0, 1), u"F0.5"_s, u"0.5"_s, u"-0.1"_s,
        u"A & B: -0.1 is outside the allowed range 0 to 1"_s);
    row("real just out of range", infoOf(K::Real, 0, 1), u"F0.5"_s, u"0.5"_s, u"1.0000001"_s,
        u"A & B: 1.0000001 is outside the allowed range 0 to 1"_s);
    row("other form", infoOf(K::Real), u"F 1e0"_s, u" 1e0"_s, {}, u" 1e0"_s);
    row("text", infoOf(K::Text), u"sa"_s, u"a"_s, u"b"_s, u"b"_s);
    row("lines", infoOf(K::FilePath), u"sa\nb"_s, u"a\nb"_s, {}, u"a\nb"_s);
    row("long", infoOf(K::Text), u"s"_s + many, many, {}, many);
    row("too long", infoOf(K::Text), u"s"_s + tooMany, many.left(1000), {}, tooMany);
    row("time", infoOf(K::Text), u"ta\nb"_s, u"a\u23CEb"_s, {}, u"a\nb"_s);
    row("block", infoOf(K::Text), u"Babc"_s, u"(3 characters of encoded data)"_s, {}, u"abc"_s);
}

void TestSettingRow::writesWhatIsTypedAndNothingElse()
{
    QFETCH(QString, typeAndValue);
    QFETCH(VariableInfo, info);
    QFETCH(QString, shown);
    QFETCH(QString, typed);
    QFETCH(QString, stored); // or the message of a refusal
    const QString value = typeAndValue.mid(1);
    makeRow(typeAndValue.at(0).toLatin1(), value, info);
    QSignalSpy edited(m_model.get(), &SettingsModel::edited);
    QString message;
    const auto note = [&message](const QString& text) {
        message += text;
    };
    connect(m_row, &SettingRow::rejected, m_row, note);
    connect(m_model.get(), &SettingsModel::editRejected, m_row, note);

    auto* line = part<QWidget>("editorHost")->findChild<QLineEdit*>();
    QCOMPARE(line->text(), shown);
    if (!typed.isEmpty() && !line->isReadOnly()) {
        QTest::keyClick(line, Qt::Key_A, Qt::ControlModifier);
        QTest::keyClicks(line, u"1"_s);
        QTest::keyClick(line, Qt::Key_Escape);
        QCOMPARE(line->text(), shown);
        QTest::keyClick(line, Qt::Key_A, Qt::ControlModifier);
        QTest::keyClicks(line, typed);
    }
    QTest::keyClick(line, Qt::Key_Return);
    const bool refused = m_node->value == value && stored != value;
    QVERIFY2(refused ? message.startsWith(stored) : m_node->value == stored, qPrintable(message));
    QCOMPARE(message.isEmpty(), !refused);
    QCOMPARE(line->text(), refused || typed.isEmpty() || stored == value ? shown : stored);
    QCOMPARE(edited.count(), m_node->value == value ? 0 : 1);
}

void TestSettingRow::keepsAValueWithoutAName()
{
    makeRow('i', u"7"_s, infoOf(VariableKind::Choice));
    auto* combo = part<QComboBox>("comboBox");
    QTest::keyClick(combo, Qt::Key_Up);
    QCOMPARE(m_node->value, u"2"_s);
    QTest::mouseClick(part<QToolButton>("revertButton"), Qt::LeftButton);
    QCOMPARE(combo->currentText(), u"Other (7)"_s);
    m_model->setReadOnly(true); // the poll tells the page of it later
    QSignalSpy rejected(m_row, &SettingRow::rejected);
    QTest::keyClick(combo, Qt::Key_Up);
    m_model->setReadOnly(false);
    QCOMPARE(m_node->value + QString::number(rejected.count()), u"71"_s);
    QCOMPARE(combo->count(), 3);
    m_node->value = u"<seven>"_s;
    m_row->refresh();
    QCOMPARE(combo->currentText(), u"Other (<seven>)"_s);
    QCOMPARE(combo->toolTip(), u"Stored text: <seven>"_s);
    emit combo->activated(2); // it stands for the value, which is no number
    QCOMPARE(m_node->value, u"<seven>"_s);
}

void TestSettingRow::tellsWhyItIsLocked()
{
    const auto toolTip = [this](char type, bool documentedReadOnly) {
        VariableInfo info = infoOf(VariableKind::Text);
        info.readOnly = documentedReadOnly;
        makeRow(type, u"abc"_s, info);
        auto* host = part<QWidget>("editorHost");
        return host->isEnabled() ? u"enabled"_s : host->toolTip();
    };
    QCOMPARE(toolTip('s', false), u"enabled"_s);
    QCOMPARE(toolTip('s', true), u"Documented by PixInsight as read-only or write-only."_s);
    QCOMPARE(toolTip('B', false), u"Protected value type: shown for reference only."_s);
    m_node->parent->markedForDeletion = true;
    QCOMPARE(toolTip('s', false), QString());
    QVERIFY(part<QLabel>("nameLabel")->font().strikeOut());
    m_node->value = u"edited"_s;
    m_row->refresh();
    QVERIFY(!part<QToolButton>("revertButton")->isEnabled());
    m_node->key = u"Locked"_s;
    QCOMPARE(toolTip('s', false),
             u"Module registry and version records are locked against editing."_s);
}

void TestSettingRow::wheelNeedsFocus()
{
    makeRow('i', u"7"_s, infoOf(VariableKind::Integer));
    QScrollArea page;
    page.setWidget(m_row);
    m_row->resize(700, 1000);
    page.show();
    auto* spin = part<QSpinBox>("spinBox");
    const auto turn = [spin](int angle) {
        QWheelEvent wheel({5, 5}, spin->mapToGlobal(QPointF(5, 5)), {}, {0, angle}, {}, {},
                          Qt::NoScrollPhase, false);
        QApplication::sendEvent(spin, &wheel);
    };
    turn(-120);
    QCOMPARE(m_node->value, u"7"_s);
    const int scrolled = page.verticalScrollBar()->value();
    QVERIFY(scrolled > 0);
    QVERIFY(QTest::qWaitForWindowActive(&page));
    QTest::mouseClick(spin, Qt::LeftButton);
    QTRY_VERIFY(spin->hasFocus());
    turn(120);
    QCOMPARE(m_node->value, u"8"_s);
    QCOMPARE(page.verticalScrollBar()->value(), scrolled);
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
    part<QToolButton>("browseButton")->click();
    QCOMPARE(m_node->value, folder);

    makeRow('u', u"2147549183"_s, infoOf(VariableKind::Color));
    auto* button = part<QPushButton>("colorButton");
    QCOMPARE(button->text(), u"#8000FFFF"_s);
    DialogAnswerer<QColorDialog> color([](QColorDialog& dialog) {
        QCOMPARE(dialog.currentColor(), QColor(0, 255, 255, 128));
        dialog.setCurrentColor(QColor(1, 2, 3, 4));
        dialog.accept();
    });
    QTest::mouseClick(button, Qt::LeftButton);
    QCOMPARE(m_node->value, QString::number(0x04010203));
    QCOMPARE(button->text(), u"#04010203"_s);
}

void TestSettingRow::givesUpWhenDocumentIsReplacedUnderDialog()
{
    for (const bool rowDies : {false, true}) {
        makeRow('s', u"old"_s, infoOf(VariableKind::FilePath));
        DialogAnswerer<QFileDialog> file([&](QFileDialog& dialog) {
            if (rowDies) {
                delete m_row;
            }
            m_model->setDocument(m_document.get());
            dialog.findChild<QLineEdit*>()->setText(QCoreApplication::applicationFilePath());
            static_cast<QDialog&>(dialog).accept();
        });
        part<QToolButton>("browseButton")->click();
        QVERIFY(file.wasAsked());
        QCOMPARE(m_node->value, u"old"_s);
    }
}

void TestSettingRow::readsNoNodeOfAReplacedDocument()
{
    makeRow('s', u"old"_s, infoOf(VariableKind::Text));
    connect(m_model.get(), &SettingsModel::edited, m_row, [this] {
        m_model->setDocument(m_document.get());
        m_node->value = u"another's"_s;
    });
    auto* line = part<QLineEdit>("lineEdit");
    QTest::keyClicks(line, u"new "_s);
    QTest::keyClick(line, Qt::Key_Return);
    QTest::keyClick(line, Qt::Key_Escape);
    QVERIFY(m_node->value == u"another's"_s);
    QVERIFY(line->text().contains(u"new "_s));
}

void TestSettingRow::namesItsPartsAndMatches()
{
    m_node->key = u"<b>Key"_s;
    makeRow('s', u"value"_s, infoOf(VariableKind::Directory));
    QCOMPARE(part<QWidget>("lineEdit")->accessibleName(), u"A & B"_s);
    QCOMPARE(part<QWidget>("revertButton")->accessibleName(), u"Revert A & B"_s);
    QVERIFY(m_row->toolTip().contains(u"Group/Sub/&lt;b&gt;Key\n(not documented"_s));
    m_row->setShowPath(true);
    QCOMPARE(part<QLabel>("pathLabel")->text(), u"Group \u203A Sub"_s);
    QVERIFY(m_row->matches(u"a & b"_s) && m_row->matches(u">key"_s) && m_row->matches(u"Val"_s));
    QVERIFY(!m_row->matches(u"Group"_s));
    m_node->typeCode = u't';
    QVERIFY(!m_row->matches(u"Val"_s));
}

void TestSettingRow::offersMenu()
{
    makeRow('s', u"old"_s, infoOf(VariableKind::Text));
    XsdtNode* group = m_document->root.children.front().get();
    group->append(std::make_unique<XsdtNode>())->key = u"Other"_s;
    QString done;
    const auto note = [&done](const QString& what) {
        return [&done, what](const XsdtNode* target) {
            done = what + target->key;
        };
    };
    // What the menu of `path` offers, in brackets what can't be chosen, and what the first
    // entry that can be chosen does.
    const auto menu = [&](const QString& path, bool readOnly, bool replaceDocument = false) {
        m_node->value = u"new"_s;
        m_row->refresh(); // or an editor that loses the focus writes what it shows
        done.clear();
        QStringList entries;
        DialogAnswerer<QMenu> answer([&](QMenu& shown) {
            for (QAction* action : shown.actions()) {
                const QString text = action->isSeparator() ? u"-"_s : action->text();
                entries << (action->isEnabled() ? text : u"["_s + text + u"]"_s);
            }
            if (replaceDocument) {
                m_model->setDocument(m_document.get());
            }
            do { // on Windows the keys stop at the others too
                QTest::keyClick(&shown, Qt::Key_Down);
            } while (shown.activeAction() && !shown.activeAction()->isEnabled());
            QTest::keyClick(&shown, Qt::Key_Return);
        });
        DialogAnswerer<QMessageBox> box(
            [&](QMessageBox& shown) { done = shown.windowTitle() + u": "_s + shown.text(); });
        showNodeContextMenu(m_row, m_model.get(), m_document->root.findByPath(path), {10, 10},
                            readOnly, {note(u"delete "_s), note(u"undo "_s), note(u"reveal "_s)});
        entries.removeOne(u"Show in All settings"_s); // always the last
        return entries.join(u'|') + (done.isEmpty() ? m_node->value : done);
    };
    const QString key = u"Group/Sub/Key"_s;
    QCOMPARE(menu(key, false), u"Revert this value|-|Why can't this be deleted?|-old"_s);
    QCOMPARE(menu(key, false, true), u"Revert this value|-|Why can't this be deleted?|-new"_s);
    QCOMPARE(menu(u"Group/Other"_s, false), u"Why can't this be deleted?|-Cannot delete: "
                                            u"Group/Other\n\nNeeded <b>."_s);
    QCOMPARE(menu(u"Group"_s, false), u"Delete this group|-delete Group"_s);
    QCOMPARE(menu(u"Group/Sub"_s, true), u"[Delete this group...]|-reveal Sub"_s);
    group->markedForDeletion = true;
    QCOMPARE(menu(u"Group"_s, true), u"Undo deletion|-undo Group"_s);
    QCOMPARE(menu(key, false), u"[Revert this value]|-|[Inside a group marked for deletion]|-"
                               u"reveal Key"_s);
}

} // namespace kse

KSE_TEST_MAIN(kse::TestSettingRow)
#include "TestSettingRow.moc"
