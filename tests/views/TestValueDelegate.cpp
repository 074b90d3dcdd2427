// SPDX-License-Identifier: MIT
#include "views/ValueDelegate.h"

#include "document/XsdtDocument.h"
#include "support/DocumentText.h"
#include "support/TestMain.h"
#include "views/SettingsModel.h"

#include <QtTest>
#include <QtWidgets>

using namespace Qt::StringLiterals;

namespace kse {

/// Edits the only value of a document in a real view.
class TestValueDelegate : public QObject
{
    Q_OBJECT

private slots:
    void init();
    void writesWhatWasTypedAndNothingElse_data();
    void writesWhatWasTypedAndNothingElse();
    void leavesBooleanInAnotherForm();

private:
    template <typename Editor>
    Editor* edit(char type, const QString& value);
    void press(QWidget* editor, Qt::Key key);

    std::unique_ptr<XsdtDocument> m_document;
    std::unique_ptr<SettingsModel> m_model;
    std::unique_ptr<QTreeView> m_view;
    ValueDelegate m_delegate;
};

void TestValueDelegate::init()
{
    m_document = documentFrom("<v k='Option' t='s' v=''/>");
    m_model = std::make_unique<SettingsModel>();
    m_model->setDocument(m_document.get());
    m_view = std::make_unique<QTreeView>();
    m_view->setModel(m_model.get());
    m_view->setItemDelegateForColumn(SettingsModel::ValueColumn, &m_delegate);
    m_view->show();
    QVERIFY(QTest::qWaitForWindowActive(m_view.get()));
}

template <typename Editor>
Editor* TestValueDelegate::edit(char type, const QString& value)
{
    XsdtNode* node = m_document->root.children.front().get();
    node->typeCode = QLatin1Char(type);
    node->value = node->original = value;
    m_view->edit(m_model->index(0, SettingsModel::ValueColumn));
    auto* editor = m_view->viewport()->findChild<Editor*>();
    return editor && editor->accessibleName() == u"Option"_s ? editor : nullptr;
}

/// Presses `key` and waits until the editor is gone.
void TestValueDelegate::press(QWidget* editor, Qt::Key key)
{
    const QPointer<QWidget> open(editor);
    QTest::keyClick(editor, key);
    QTRY_VERIFY(!open);
}

void TestValueDelegate::writesWhatWasTypedAndNothingElse_data()
{
    QTest::addColumn<char>("type");
    QTest::addColumn<QString>("value");
    QTest::addColumn<QString>("typed"); // in front of the text
    QTest::addColumn<QString>("stored");
    const QString tooMany(1'000'001, u'y');
    const QString lines = u"one\r\ntwo\u2028three\tfour"_s;
    const QString many = QString(40'000, u'y');
    QTest::newRow("lines") << 's' << lines << u"a"_s << u"a"_s + lines;
    QTest::newRow("long text") << 's' << many << u"a"_s << u"a"_s + many;
    QTest::newRow("too long to edit") << 's' << tooMany << u"a"_s << tooMany;
    QTest::newRow("untouched lines") << 's' << lines << u""_s << lines;
    QTest::newRow("untouched long text") << 's' << many << u""_s << many;
    QTest::newRow("untouched number in another form") << 'i' << u" 007"_s << u""_s << u" 007"_s;
    QTest::newRow("refused") << 'i' << u"7"_s << u"x"_s << u"7"_s;
}

void TestValueDelegate::writesWhatWasTypedAndNothingElse()
{
    QFETCH(char, type);
    QFETCH(QString, value);
    QFETCH(QString, typed);
    QFETCH(QString, stored);
    auto* line = edit<QLineEdit>(type, value);
    QVERIFY(line);
    QCOMPARE(line->text(), line->isReadOnly() ? value.left(1000) : value);
    QCOMPARE(!line->toolTip().isEmpty(), line->isReadOnly());
    QSignalSpy edited(m_model.get(), &SettingsModel::edited);
    QTest::keyClick(line, Qt::Key_Home);
    QTest::keyClicks(line, typed);
    press(line, Qt::Key_Return);
    QCOMPARE(m_document->root.children.front()->value, stored);
    QCOMPARE(edited.count(), stored == value ? 0 : 1);
}

void TestValueDelegate::leavesBooleanInAnotherForm()
{
    auto* combo = edit<QComboBox>('b', u"TRUE"_s);
    QVERIFY(combo);
    QCOMPARE(combo->currentIndex(), -1);
    press(combo, Qt::Key_Return);
    QCOMPARE(m_document->root.children.front()->value, u"TRUE"_s);
}

} // namespace kse

KSE_TEST_MAIN(kse::TestValueDelegate)
#include "TestValueDelegate.moc"
