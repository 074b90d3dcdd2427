// SPDX-License-Identifier: MIT
#include "views/model/SettingsModel.h"

#include "support/DocumentText.h"
#include "support/SettingsPage.h"
#include "views/model/SettingsFilterProxy.h"
#include "views/model/ValueDelegate.h"

namespace {

/// A view of the filtered tree of all nodes, in which values can be edited.
struct Filtered : ModelOf
{
    explicit Filtered(const QString& nodes)
        : ModelOf(nodes)
    {
        proxy.setSourceModel(&model);
        view.setModel(&proxy);
        view.setItemDelegateForColumn(SettingsModel::ValueColumn, &delegate);
        view.resize(400, 300);
        view.show();
    }

    /// The editor on the only value.
    template <typename Widget>
    QPointer<Widget> edit()
    {
        (void)QTest::qWaitForWindowActive(&view);
        view.edit(proxy.index(0, SettingsModel::ValueColumn));
        return view.viewport()->findChild<Widget*>();
    }
    QString value() const { return document.root.children.front()->value; }

    SettingsFilterProxy proxy;
    ValueDelegate delegate;
    QTreeView view;
};

} // namespace

class TestSettingsModel : public QObject
{
    Q_OBJECT

private slots:
    void copesWithDeepFile()
    {
        Filtered f({});
        f.model.setDocument(nullptr);
        QVERIFY(f.document.parse(fileBytes(deepFile(100'000))));
        f.model.setDocument(&f.document);
        f.view.expandAll();
        f.proxy.setFilterText(u"level/level/level/"_s);
        QCOMPARE(f.proxy.rowCount(), 1);
        f.proxy.setFilterText(u"level/"_s.repeated(1001)); // deeper than what is shown
        QCOMPARE(f.proxy.rowCount(), 0);
    }

    /// Columns: type and value, what is typed in front of it; the stored value. "*" is a long text.
    void writesWhatWasTypedAndNothingElse()
    {
        const QString many(40'000, u'y');
        const auto stored = [&many](const QStringList& cells) {
            Filtered f(u"Option:%1=%2"_s.arg(cells[0][0]).arg(cells[0].mid(1).replace(u'*', many)));
            const QSignalSpy rejected(&f.model, &SettingsModel::editRejected);
            const auto line = f.edit<QLineEdit>();
            const QString was = f.value().left(line->isReadOnly() ? 1000 : -1);
            QString text = line->text() == was ? u""_s : u"shown otherwise"_s;
            QTest::keyClick(line, Qt::Key_Home);
            QTest::keyClicks(line, cells[1]);
            QTest::keyClick(line, Qt::Key_Return);
            text += QTest::qWaitFor([&line] { return !line; }) ? f.value() : u"open"_s;
            return text.replace(many, u"*"_s) + (rejected.isEmpty() ? u""_s : u" rejected"_s);
        };
        compareRows({"sone\r\ntwo\u2028three\tfour > a > aone\r\ntwo\u2028three\tfour", "s* >  > *",
                     "s************************** > a > **************************",
                     "i 007 >  >  007", "i7 > x > 7 rejected", "i7 > 1 > 17"},
                    stored);
    }

    void choosesBooleanFromOpenList()
    {
        const auto stored = [&](const QStringList& cells) {
            Filtered f(u"Option:b="_s + cells[0]);
            const auto combo = f.edit<QComboBox>();
            (void)QTest::qWaitFor([&combo] { return combo->view()->isVisible(); });
            for (const QString& key : cells[1].split(u' ')) {
                QTest::keyClick(combo->view(), QKeySequence(key)[0].key());
            }
            return QTest::qWaitFor([&combo] { return !combo; }) ? f.value() : u"open"_s;
        };
        compareRows({"true > Down Return > false", "false > Up Tab > true",
                     "true > Down Esc > true", "TRUE > Return > TRUE"},
                    stored);
    }
};

KSE_TEST_MAIN(TestSettingsModel)
#include "TestSettingsModel.moc"
