// SPDX-License-Identifier: MIT
#include "views/model/SettingsModel.h"

#include "document/TreeWalk.h"
#include "document/XsdtDocument.h"
#include "schema/DeletePolicy.h"
#include "support/DocumentText.h"
#include "support/TestMain.h"
#include "views/model/NodeLooks.h"
#include "views/model/SettingsFilterProxy.h"
#include "views/model/TreePosition.h"

#include <QtTest>
#include <QtWidgets>

using namespace Qt::StringLiterals;

namespace kse {

namespace {

const QByteArray content =
    "<i k='Alpha'><v k='Use' t='b' v='true'/><v k='LastVersion' t='i' v='7'/>"
    "<v k='Count' t='i' v='7'/><v k='Data' t='B'>Count</v></i>"
    "<i k='Old'><v k='%1&lt;b&gt;' t='s'>a&#10;b</v><i k='Empty'/></i>"
    "<v k='Top' t='s'>count me</v>";

const QByteArray rules = QByteArray("{'policy': {'defaultReason': 'Needed.', 'delete': ["
                                    "{'path': 'Old', 'level': 'safe', 'reason': 'Left behind.'},"
                                    "{'path': 'Old/**', 'level': 'warn', 'reason': 'Part of it.'},"
                                    "{'path': 'r/**', 'level': 'safe', 'reason': 'Free.'}]},"
                                    "'editLocked': ['Alpha/LastVersion']}")
                             .replace('\'', '"');

/// A model of `content`, or of another document, with a policy.
struct Fixture
{
    explicit Fixture(const QByteArray& xml = content)
        : document(documentFrom(xml))
    {
        if (!policy.load(rules)) {
            qFatal("the policy doesn't load");
        }
        model.setPolicy(&policy);
        model.setDocument(document.get());
        proxy.setSourceModel(&model);
    }

    XsdtNode* node(const QString& path) { return document->root.findByPath(path); }
    bool edit(XsdtNode* node, const QString& text)
    {
        return model.setData(model.indexForNode(node, SettingsModel::ValueColumn), text);
    }

    std::unique_ptr<XsdtDocument> document;
    DeletePolicy policy;
    SettingsModel model;
    SettingsFilterProxy proxy;
};

/// The keys that `model` shows, one line a row, indented by level.
QString shownKeys(const QAbstractItemModel& model, const QModelIndex& parent = {}, int level = 0)
{
    QString text;
    for (int row = 0; row < model.rowCount(parent); ++row) {
        const QModelIndex index = model.index(row, 0, parent);
        text += QString(level, u' ') + index.data().toString() + u'\n' +
                shownKeys(model, index, level + 1);
    }
    return text;
}

/// The same by the plain definition of the filter.
QString expectedKeys(const XsdtNode& group, const QString& filter, bool changedOnly, int level = 0)
{
    QString text;
    for (const auto& node : group.children) {
        const QString below = expectedKeys(*node, filter, changedOnly, level + 1);
        const bool found =
            node->path().contains(filter, Qt::CaseInsensitive) ||
            (node->isEditableType() && node->value.contains(filter, Qt::CaseInsensitive));
        const bool changed = node->isModified() || node->markedForDeletion;
        if (!below.isEmpty() || (found && (changed || !changedOnly))) {
            text += QString(level, u' ') + node->key + u'\n' + below;
        }
    }
    return text;
}

} // namespace

class TestSettingsModel : public QObject
{
    Q_OBJECT

private slots:
    void cutsLongTexts();
    void marksAndRestores();
    void tellsOfManyChangesOnce();
    void filterFollowsChanges();
    void filterKeepsPlaceInView();
    void copesWithDeepFile();
};

void TestSettingsModel::cutsLongTexts()
{
    XsdtNode node;
    node.typeCode = u's';
    QCOMPARE(displayValue(node, QString(199, u'\n') + u"\U0001F600"_s, 200),
             QString(199, QChar(0x23CE)) + u'\u2026');
    Fixture f("<i k='" + QByteArray(1'000'000, 'k') + "'/>");
    QVERIFY(f.model.index(0, 0).data().toString().endsWith(u"k\u2026 (999000 more characters)"));
    QVERIFY(f.model.index(0, 0).data(Qt::ToolTipRole).toString().size() < 1100);
}

void TestSettingsModel::marksAndRestores()
{
    Fixture f;
    QSignalSpy edited(&f.model, &SettingsModel::edited);
    const auto mark = [&f](XsdtNode* node) {
        QString reason;
        return f.model.markForDeletion(node, &reason) ? u"marked"_s : reason;
    };
    QCOMPARE(mark(f.node(u"Top"_s)), u"Needed."_s);
    f.model.setReadOnly(true);
    QVERIFY(mark(f.node(u"Old"_s)).startsWith(u"PixInsight is running"));
    f.model.setReadOnly(false);
    const QModelIndex old = f.model.indexForNode(f.node(u"Old"_s));
    QVERIFY(old.data(Qt::ToolTipRole).toString().endsWith(u"\nCan be deleted: Left behind."));
    QVERIFY(!f.edit(f.node(u"Alpha/Count"_s), u" 7 "_s)); // the same number
    QCOMPARE(mark(f.node(u"Old"_s)), u"marked"_s);
    QVERIFY(!f.edit(f.node(u"Old/%1<b>"_s), u"x"_s));
    QCOMPARE(mark(f.node(u"Old/Empty"_s)), u"marked"_s); // it is inside already
    f.model.undoDeletion(f.node(u"Old/Empty"_s));
    QCOMPARE(f.document->pendingCount(), 1);
    f.model.setReadOnly(true);
    const QSignalSpy changed(&f.model, &SettingsModel::dataChanged);
    f.model.undoDeletion(f.node(u"Old"_s));
    QCOMPARE(changed.count(), 2); // what is in it looks different, too
    QCOMPARE(f.document->pendingCount(), 0);
    QCOMPARE(edited.count(), 2);
}

void TestSettingsModel::tellsOfManyChangesOnce()
{
    Fixture f;
    QString told;
    connect(&f.model, &SettingsModel::edited, this, [&] { told += u'e'; });
    connect(&f.model, &SettingsModel::dataChanged, this, [&] { told += u'd'; });
    connect(&f.model, &SettingsModel::layoutChanged, this, [&] { told += u'l'; });
    connect(&f.model, &SettingsModel::modelReset, this, [&] { told += u'r'; });
    {
        const SettingsModel::Batch outer(f.model);
        {
            const SettingsModel::Batch inner(f.model);
        }
        QVERIFY(f.edit(f.node(u"Alpha/Count"_s), u"1"_s));
        QVERIFY(f.model.markForDeletion(f.node(u"Old"_s)));
        f.model.revertValue(f.node(u"Alpha/Count"_s));
        QCOMPARE(told, QString());
    }
    QCOMPARE(told, u"lddde"_s); // one for each group that has rows
    {
        const SettingsModel::Batch nothing(f.model);
    }
    f.model.revertAll();
    QCOMPARE(told, u"ldddere"_s);
    QCOMPARE(f.document->pendingCount(), 0);
}

/// Whatever is changed under a filter, in whatever order, the proxy shows what the plain
/// definition says, and tells its views of every step.
void TestSettingsModel::filterFollowsChanges()
{
    QByteArray xml;
    for (const char key : QByteArray("abcdefgh")) {
        xml += QByteArray("<i k='") + key + "'><i k='deep'><v k='1' t='s'>x</v></i>" +
               "<v k='2' t='B'>zz</v><v k='2' t='s'>y</v></i>";
    }
    Fixture f("<i k='r'>" + xml + "</i>");
    QAbstractItemModelTester tester(&f.proxy);
    QTreeView view;
    view.setModel(&f.proxy);
    QList<XsdtNode*> nodes;
    walkTree(f.document->root, [&nodes](XsdtNode& node) {
        nodes.append(&node);
        return Walk::Into;
    });
    const QStringList texts{u"  "_s, u" B/DEEP "_s, u"c/"_s, u"zz"_s, u"p/1"_s, u"Y"_s, u"none"_s};
    QString filter;
    QRandomGenerator random(4711);
    for (int step = 0; step < 1500; ++step) {
        XsdtNode* node = nodes.at(random.bounded(nodes.size()));
        const int action = random.bounded(10);
        if (action == 0) {
            filter = texts.at(random.bounded(texts.size()));
            f.proxy.setFilterText(filter);
        } else if (action == 1) {
            f.proxy.setChangedOnly(random.bounded(3) > 0);
        } else if (action == 2) {
            view.expandAll();
        } else if (action == 3) {
            const SettingsModel::Batch batch(f.model);
            for (XsdtNode* each : nodes) {
                f.edit(each, random.bounded(2) ? u"zz"_s : u"y"_s);
            }
        } else if (action <= 5) {
            (void)f.model.markForDeletion(node); // the top of the tree stays
        } else if (action == 6) {
            f.model.undoDeletion(node);
        } else if (action == 7) {
            f.model.revertValue(node);
        } else if (random.bounded(40) > 0) {
            f.edit(node, random.bounded(2) ? u"zz"_s : u"x"_s);
        } else {
            f.model.revertAll();
        }
        QCOMPARE(shownKeys(f.proxy),
                 expectedKeys(f.document->root, filter.trimmed(), f.proxy.isChangedOnly()));
    }
}

void TestSettingsModel::filterKeepsPlaceInView()
{
    QByteArray xml;
    for (int i = 0; i < 300; ++i) {
        xml += "<i k='group" + QByteArray::number(i) + "'><v k='" + (i % 3 ? "odd" : "even") +
               "' t='b' v='true'/></i>";
    }
    Fixture f(xml);
    QTreeView view;
    view.setModel(&f.proxy);
    view.resize(400, 300);
    view.show();
    view.expandAll();
    const auto shown = [&f](const QString& path) {
        return f.proxy.mapFromSource(f.model.indexForNode(f.node(path)));
    };
    view.setCurrentIndex(shown(u"group150/even"_s));
    view.scrollTo(shown(u"group120/even"_s), QAbstractItemView::PositionAtTop);
    for (const QString& text : {u"even"_s, u"e"_s, u""_s}) {
        const TreePosition position(view, f.proxy);
        f.proxy.setFilterText(text);
        view.expandAll();
        position.restore();
        QCOMPARE(view.indexAt({0, 0}), shown(u"group120/even"_s));
        QCOMPARE(view.currentIndex(), shown(u"group150/even"_s));
        QVERIFY(view.selectionModel()->isSelected(view.currentIndex()));
    }
}

void TestSettingsModel::copesWithDeepFile()
{
    constexpr int depth = 1'000'000;
    Fixture f(QByteArray("<i k='r'>").repeated(depth) + "<v k='v' t='s'>x</v>" +
              QByteArray("</i>").repeated(depth));
    QTreeView view;
    view.setModel(&f.proxy);
    view.show();
    view.expandAll();
    int shown = 0;
    for (QModelIndex row = f.proxy.index(0, 0); row.isValid(); row = view.indexBelow(row)) {
        ++shown;
    }
    QCOMPARE(shown, SettingsModel::maximumDepth);
    f.proxy.setFilterText(u"r/r/r"_s);
    QCOMPARE(f.proxy.rowCount(), 1);
    f.proxy.setFilterText(u"x"_s); // the value lies beneath what is shown
    QCOMPARE(f.proxy.rowCount(), 0);
    f.proxy.setFilterText({});

    XsdtNode* last = f.document->root.children.front().get();
    while (!last->children.empty()) {
        last = last->children.front().get();
    }
    QVERIFY(!f.model.indexForNode(last).isValid());
    QVERIFY(f.model.markForDeletion(last));
    QVERIFY(f.model.markForDeletion(f.node(u"r/r"_s)));
    QCOMPARE(f.document->pendingCount(), 1);
    f.model.revertAll();
    QCOMPARE(f.document->pendingCount(), 0);
}

} // namespace kse

KSE_TEST_MAIN(kse::TestSettingsModel)
#include "TestSettingsModel.moc"
