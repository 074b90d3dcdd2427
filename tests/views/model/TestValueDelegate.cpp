// SPDX-License-Identifier: MIT
#include "views/model/ValueDelegate.h"

#include "support/SettingsPage.h"

using namespace kse;

namespace {

/// An editor on the only value of a document, in a real view.
struct Editing : ModelOf
{
    Editing(QChar type, const QString& value)
        : ModelOf(u"Option:"_s + type + u'=' + value)
    {
        view.setModel(&model);
        view.setItemDelegateForColumn(SettingsModel::ValueColumn, &delegate);
        view.show();
        (void)QTest::qWaitForWindowActive(&view);
        view.edit(model.index(0, SettingsModel::ValueColumn));
        line = view.viewport()->findChild<QLineEdit*>();
        combo = view.viewport()->findChild<QComboBox*>();
    }

    QString value() const { return document.root.children.front()->value; }

    ValueDelegate delegate;
    QTreeView view;
    QPointer<QLineEdit> line;
    QPointer<QComboBox> combo;
};

} // namespace

class TestValueDelegate : public QObject
{
    Q_OBJECT

private slots:
    /// Type and value, what is typed in front of it before Return, and what is stored. "*" is a
    /// long text.
    void writesWhatWasTypedAndNothingElse()
    {
        const QString many(40'000, u'y');
        const auto stored = [&many](const QStringList& cells) {
            const Editing f(cells[0].at(0), cells[0].mid(1).replace(u'*', many));
            const QSignalSpy rejected(&f.model, &SettingsModel::editRejected);
            const QString was = f.value().left(f.line->isReadOnly() ? 1000 : -1);
            QString text = f.line->text() == was ? u""_s : u"shown otherwise"_s;
            QTest::keyClick(f.line, Qt::Key_Home);
            QTest::keyClicks(f.line, cells[1]);
            QTest::keyClick(f.line, Qt::Key_Return);
            text += QTest::qWaitFor([&f] { return !f.line; }) ? f.value() : u"open"_s;
            return text.replace(many, u"*"_s) + (rejected.isEmpty() ? u""_s : u" rejected"_s);
        };
        compareRows({"sone\r\ntwo\u2028three\tfour > a > aone\r\ntwo\u2028three\tfour", "s* >  > *",
                     "s************************** > a > **************************",
                     "i 007 >  >  007", "i7 > x > 7 rejected", "i7 > 1 > 17"},
                    stored);
    }

    void choosesBooleanFromOpenList()
    {
        const QMap<QString, Qt::Key> keys{{u"Down"_s, Qt::Key_Down},
                                          {u"Up"_s, Qt::Key_Up},
                                          {u"Return"_s, Qt::Key_Return},
                                          {u"Tab"_s, Qt::Key_Tab},
                                          {u"Escape"_s, Qt::Key_Escape}};
        const auto stored = [&](const QStringList& cells) {
            const Editing f(u'b', cells[0]);
            (void)QTest::qWaitFor([&f] { return f.combo->view()->isVisible(); });
            for (const QString& key : cells[1].split(u' ')) {
                QTest::keyClick(f.combo->view(), keys[key]);
            }
            return QTest::qWaitFor([&f] { return !f.combo; }) ? f.value() : u"open"_s;
        };
        compareRows({"true > Down Return > false", "false > Up Tab > true",
                     "true > Down Escape > true", "TRUE > Return > TRUE"},
                    stored);
    }
};

KSE_TEST_MAIN(TestValueDelegate)
#include "TestValueDelegate.moc"
