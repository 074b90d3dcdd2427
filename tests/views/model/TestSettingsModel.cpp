// SPDX-License-Identifier: MIT
#include "views/model/SettingsModel.h"

#include "document/Depth.h"
#include "document/TreeWalk.h"
#include "support/DocumentText.h"
#include "support/SettingsPage.h"
#include "views/model/NodeLooks.h"
#include "views/model/SettingsFilterProxy.h"
#include "views/model/TreePosition.h"

using namespace kse;

namespace {

/// A view of the filtered tree of all nodes.
struct Filtered : ModelOf
{
    explicit Filtered(const QString& nodes)
        : ModelOf(nodes)
    {
        proxy.setSourceModel(&model);
        view.setModel(&proxy);
    }

    SettingsFilterProxy proxy;
    QTreeView view;
};

/// Whether the filter shows `node`, by its plain definition.
bool isWanted(const XsdtNode& node, const QString& filter, bool changedOnly)
{
    const bool holds = node.path().contains(filter, Qt::CaseInsensitive) ||
                       (node.isEditableType() && node.value.contains(filter, Qt::CaseInsensitive));
    return (holds && (!changedOnly || node.isModified() || node.markedForDeletion)) ||
           std::any_of(node.children.begin(), node.children.end(),
                       [&](const auto& child) { return isWanted(*child, filter, changedOnly); });
}

} // namespace

class TestSettingsModel : public QObject
{
    Q_OBJECT

private slots:
    void cutsLongTexts()
    {
        XsdtNode node;
        QCOMPARE(displayValue(node, QString(199, u'\n') + u"\U0001F600"_s, 200),
                 QString(199, QChar(0x23CE)) + u'\u2026');
        const ModelOf f(QString(1'000'000, u'k'));
        const QModelIndex row = f.model.index(0, 0);
        QVERIFY(row.data().toString().endsWith(u"k\u2026 (999000 more characters)"));
        QVERIFY(row.data(Qt::ToolTipRole).toString().size() < 2000);
    }

    void marksAndRestores()
    {
        ModelOf f(u"Tool/a:i=7; Tool/b; Global/v:s=; PixelClipboard"_s);
        QSignalSpy edited(&f.model, &SettingsModel::edited);
        XsdtNode* tool = f.node(u"Tool"_s);
        const auto mark = [&f](const QString& path) {
            QString reason;
            return f.model.markForDeletion(f.node(path), &reason) ? u"marked"_s : reason;
        };
        QVERIFY(mark(u"Global/v"_s).startsWith(u"Core PixInsight data"));
        f.model.setReadOnly(true);
        QVERIFY(mark(u"Tool"_s).startsWith(u"PixInsight is running"));
        f.model.setReadOnly(false);
        const auto toolTip = [&f](const QString& path) {
            return f.model.indexForNode(f.node(path)).data(Qt::ToolTipRole).toString();
        };
        QVERIFY(toolTip(u"PixelClipboard"_s).contains(u"\nCan be deleted: "));
        QVERIFY(toolTip(u"Tool"_s).contains(u"\nCan be deleted: "));
        QVERIFY(!f.model.setValue(f.node(u"Tool/a"_s), u" 7 "_s)); // the same number
        QCOMPARE(mark(u"Tool"_s), u"marked"_s);
        QVERIFY(!f.model.setValue(f.node(u"Tool/a"_s), u"8"_s));
        QCOMPARE(mark(u"Tool/b"_s), u"marked"_s); // it is inside already
        f.model.undoDeletion(f.node(u"Tool/b"_s));
        QCOMPARE(f.document.pendingCount(), 1);
        const QModelIndex inside = f.model.indexForNode(f.node(u"Tool/b"_s));
        QVERIFY(inside.data(Qt::FontRole).value<QFont>().strikeOut());
        f.model.setReadOnly(true);
        const QSignalSpy changed(&f.model, &SettingsModel::dataChanged);
        f.model.undoDeletion(tool);
        QCOMPARE(changed.count(), 2); // what is in it looks different, too
        QCOMPARE(f.document.pendingCount(), 0);
        QCOMPARE(edited.count(), 2);
    }

    void tellsOfManyChangesOnce()
    {
        ModelOf f(u"A/a:i=7; B/b:i=7"_s);
        QString told;
        connect(&f.model, &SettingsModel::edited, this, [&] { told += u'e'; });
        connect(&f.model, &SettingsModel::dataChanged, this, [&] { told += u'd'; });
        connect(&f.model, &SettingsModel::layoutChanged, this, [&] { told += u'l'; });
        connect(&f.model, &SettingsModel::modelReset, this, [&] { told += u'r'; });
        {
            const SettingsModel::Batch batch(f.model);
            QVERIFY(f.model.setValue(f.node(u"A/a"_s), u"1"_s));
            QVERIFY(f.model.markForDeletion(f.node(u"B"_s)));
            f.model.revertValue(f.node(u"A/a"_s));
            QCOMPARE(told, QString());
        }
        QCOMPARE(told, u"lddde"_s); // one for each group that has rows
        f.model.revertAll();
        f.model.setReadOnly(true); // nothing can be edited any more
        QCOMPARE(told, u"lddderelddd"_s);
    }

    /// Whatever is changed under a filter, in whatever order, the proxy shows what the plain
    /// definition says, and tells its views of every step.
    void filterFollowsChanges()
    {
        QString text;
        for (const char key : QByteArray("abcdefgh")) {
            text += u"r/%1/deep/1:s=x; r/%1/2:B=zz; r/%1/2:s=y; "_s.arg(QLatin1Char(key));
        }
        Filtered f(text);
        const QAbstractItemModelTester tester(&f.proxy);
        QList<XsdtNode*> nodes;
        walkTree(f.document.root, [&nodes](XsdtNode& node) {
            nodes.append(&node);
            return Walk::Into;
        });
        const QStringList filters = u"  , B/DEEP ,c/,zz,p/1,Y,none,2/"_s.split(u',');
        QString filter;
        QRandomGenerator random(4711);
        XsdtNode* node = nodes[0];
        const auto value = [&random] {
            return random.bounded(2) ? u"zz"_s : u"x"_s;
        };
        const QList<std::function<void()>> steps{
            [&] { f.proxy.setFilterText(filter = filters.at(random.bounded(filters.size()))); },
            [&] { f.proxy.setChangedOnly(random.bounded(3) > 0); },
            [&] { f.view.expandAll(); },
            [&] {
                const SettingsModel::Batch batch(f.model);
                for (XsdtNode* each : nodes) {
                    f.model.setValue(each, value());
                }
            },
            [&] { (void)f.model.markForDeletion(node); },
            [&] { f.model.undoDeletion(node); },
            [&] { f.model.revertValue(node); },
            [&] { f.model.setValue(node, value()); },
            [&] { f.model.setValue(node, value()); },
            [&] {
                random.bounded(20) > 0 ? f.model.undoDeletion(node) : f.model.revertAll();
            }};
        for (int i = 0; i < 1500; ++i) {
            node = nodes.at(random.bounded(nodes.size()));
            steps.at(random.bounded(steps.size()))();
            QString shown;
            QString wanted;
            for (const XsdtNode* each : nodes) {
                const QModelIndex row = f.proxy.mapFromSource(f.model.indexForNode(each));
                shown += row.isValid() ? each->path() + u'\n' : QString();
                wanted += isWanted(*each, filter.trimmed(), f.proxy.isChangedOnly())
                              ? each->path() + u'\n'
                              : QString();
            }
            QCOMPARE(shown, wanted);
        }
    }

    void filterKeepsPlaceInView()
    {
        QString nodes;
        for (int i = 0; i < 300; ++i) {
            nodes += u"group%1/%2:b=true; "_s.arg(i).arg(i % 3 ? u"odd"_s : u"even"_s);
        }
        Filtered f(nodes);
        f.view.resize(400, 300);
        f.view.show();
        f.view.expandAll();
        const auto shown = [&f](const QString& path) {
            return f.proxy.mapFromSource(f.model.indexForNode(f.node(path)));
        };
        f.view.setCurrentIndex(shown(u"group150/even"_s));
        f.view.scrollTo(shown(u"group120/even"_s), QAbstractItemView::PositionAtTop);
        for (const QString& text : {u"even"_s, u"e"_s, u""_s}) {
            const TreePosition position(f.view, f.proxy);
            f.proxy.setFilterText(text);
            f.view.expandAll();
            position.restore();
            QCOMPARE(f.view.indexAt({0, 0}), shown(u"group120/even"_s));
            QCOMPARE(f.view.currentIndex(), shown(u"group150/even"_s));
            QVERIFY(f.view.selectionModel()->isSelected(f.view.currentIndex()));
        }
    }

    void copesWithDeepFile()
    {
        Filtered f({});
        f.model.setDocument(nullptr);
        QVERIFY(f.document.parse(fileBytes(deepFile(100'000).replace("v=\"1\"", "v=\"x\""))));
        f.model.setDocument(&f.document);
        f.view.expandAll();
        int shown = 0;
        for (QModelIndex row = f.proxy.index(0, 0); row.isValid(); row = f.view.indexBelow(row)) {
            ++shown;
        }
        QCOMPARE(shown, 2 * deepestShownLevel - 1);
        f.proxy.setFilterText(u"level/level/level"_s);
        QCOMPARE(f.proxy.rowCount(), 1);
    }
};

KSE_TEST_MAIN(TestSettingsModel)
#include "TestSettingsModel.moc"
