// SPDX-License-Identifier: MIT
#include "views/model/ValueDelegate.h"

#include "document/XsdtDocument.h"
#include "support/DocumentText.h"
#include "support/TestMain.h"
#include "views/model/SettingsModel.h"

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
    void choosesBooleanFromOpenList_data();
    void choosesBooleanFromOpenList();
    void closesListWithItsDocument();

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
    const QString lines = u"one\r\ntwo\u2028three\tfour"_s;
    const QString tooMany(1'000'001, u'y');
    QTest::newRow("lines") << 's' << lines << u"a"_s << u"a"_s + lines;
    QTest::newRow("long text") << 's' << tooMany.left(40'000) << u""_s << tooMany.left(40'000);
    QTest::newRow("too long to edit") << 's' << tooMany << u"a"_s << tooMany;
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

void TestValueDelegate::choosesBooleanFromOpenList_data()
{
    QTest::addColumn<QString>("value");
    QTest::addColumn<QList<Qt::Key>>("keys");
    QTest::addColumn<QString>("stored");
    using Keys = QList<Qt::Key>;
    QTest::newRow("return") << u"true"_s << Keys{Qt::Key_Down, Qt::Key_Return} << u"false"_s;
    QTest::newRow("tab") << u"false"_s << Keys{Qt::Key_Up, Qt::Key_Tab} << u"true"_s;
    QTest::newRow("escape") << u"true"_s << Keys{Qt::Key_Down, Qt::Key_Escape} << u"true"_s;
    QTest::newRow("other form") << u"TRUE"_s << Keys{Qt::Key_Return} << u"TRUE"_s;
}

void TestValueDelegate::choosesBooleanFromOpenList()
{
    QFETCH(QString, value);
    QFETCH(QList<Qt::Key>, keys);
    const QPointer<QComboBox> combo = edit<QComboBox>('b', value);
    QVERIFY(combo);
    QTRY_VERIFY(combo->view()->isVisible());
    for (const Qt::Key key : std::as_const(keys)) {
        QVERIFY(combo);
        QTest::keyClick(combo->view(), key);
    }
    QTRY_VERIFY(!combo);
    QTEST(m_document->root.children.front()->value, "stored");
}

/// Also that a closed list isn't changed by the wheel.
void TestValueDelegate::closesListWithItsDocument()
{
    const QPointer<QComboBox> combo = edit<QComboBox>('b', u"true"_s);
    QTRY_VERIFY(combo->view()->isVisible());
    combo->hidePopup();
    QWheelEvent wheel({5, 5}, combo->mapToGlobal(QPointF(5, 5)), {}, {0, -120}, {}, {},
                      Qt::NoScrollPhase, false);
    QApplication::sendEvent(combo, &wheel);
    QCOMPARE(combo->currentText(), u"true"_s);
    combo->showPopup();
    m_model->setDocument(nullptr);
    QVERIFY(!QApplication::activePopupWidget());
    QTRY_VERIFY(!combo);
}

} // namespace kse

KSE_TEST_MAIN(kse::TestValueDelegate)
#include "TestValueDelegate.moc"
