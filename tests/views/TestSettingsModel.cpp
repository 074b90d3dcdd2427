// SPDX-License-Identifier: MIT
#include "views/SettingsModel.h"

#include "document/TreeWalk.h"
#include "document/XsdtDocument.h"
#include "schema/DeletePolicy.h"
#include "support/DocumentText.h"
#include "support/TestMain.h"
#include "views/SettingsFilterProxy.h"
#include "views/TreePosition.h"

#include <QAbstractItemModelTester>
#include <QApplication>
#include <QColor>
#include <QFont>
#include <QRandomGenerator>
#include <QScrollBar>
#include <QSignalSpy>
#include <QTest>
#include <QTreeView>

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
    void showsEachState();
    void cutsLongTexts();
    void writesOrRefusesValue_data();
    void writesOrRefusesValue();
    void marksAndRestores();
    void tellsOfManyChangesOnce();
    void staysWithinBounds();
    void filters_data();
    void filters();
    void filterFollowsChanges();
    void filterKeepsPlaceInView();
    void copesWithDeepFile();
};

void TestSettingsModel::showsEachState()
{
    Fixture f;
    QAbstractItemModelTester tester(&f.model);
    QVERIFY(f.edit(f.node(u"Alpha/Count"_s), u"8"_s));
    QVERIFY(f.edit(f.node(u"Old/%1<b>"_s), u"c"_s));
    QVERIFY(f.model.markForDeletion(f.node(u"Old"_s)));

    const auto describe = [&f](const QString& path) {
        const QModelIndex index = f.model.indexForNode(f.node(path));
        QStringList parts{index.siblingAtColumn(1).data().toString(),
                          index.siblingAtColumn(2).data().toString()};
        if (const QVariant font = index.data(Qt::FontRole); font.isValid()) {
            parts << QString::number(font.value<QFont>().weight()) +
                         (font.value<QFont>().strikeOut() ? u" struck"_s : u""_s);
        }
        if (const QVariant background = index.data(Qt::BackgroundRole); background.isValid()) {
            parts << background.value<QColor>().name(QColor::HexArgb);
        }
        if (const QVariant foreground = index.data(Qt::ForegroundRole); foreground.isValid()) {
            parts << (foreground.value<QColor>() ==
                              QApplication::palette().color(QPalette::Disabled, QPalette::Text)
                          ? u"dim"_s
                          : u"?"_s);
        }
        if (f.model.flags(index.siblingAtColumn(1)) & Qt::ItemIsEditable) {
            parts << u"editable"_s;
        }
        return QStringList{parts.join(u'|'), index.data(Qt::ToolTipRole).toString()};
    };
    using S = QStringList;
    QCOMPARE(describe(u"Alpha"_s), (S{u"|4 item(s)"_s, u"Alpha"_s}));
    QCOMPARE(describe(u"Top"_s), (S{u"count me|String|editable"_s, u"Top\nString"_s}));
    QCOMPARE(describe(u"Alpha/LastVersion"_s),
             (S{u"7|Integer"_s, u"Alpha/LastVersion\nInteger"_s}));
    QCOMPARE(describe(u"Alpha/Count"_s), (S{u"8|Integer|700|#46ffbe00|editable"_s,
                                            u"Alpha/Count\nInteger\nOriginal value: 7"_s}));
    QCOMPARE(describe(u"Alpha/Data"_s),
             (S{u"(5 characters of encoded data)|Block|dim"_s,
                u"Alpha/Data\nBlock - protected, shown for reference only"_s}));
    QCOMPARE(describe(u"Old"_s),
             (S{u"|Will be deleted|400 struck|#3ce63c3c|dim"_s,
                u"Old\nMarked for deletion (1 value(s)); removed when you save."_s}));
    QCOMPARE(describe(u"Old/Empty"_s), (S{u"|0 item(s)|400 struck|dim"_s,
                                          u"Old/Empty\nInside an entry marked for deletion."_s}));
    const QStringList edited = describe(u"Old/%1<b>"_s);
    QCOMPARE(edited.first(), u"c|String|700 struck|#46ffbe00|dim"_s);
    QVERIFY2(edited.last().contains(u"Old/%1&lt;b&gt;\nString\nOriginal value: a\nb\nInside"_s),
             qPrintable(edited.last()));
    f.model.undoDeletion(f.node(u"Old"_s));
    QCOMPARE(describe(u"Old"_s).last(), u"Old\nCan be deleted: Left behind."_s);
    f.model.setPolicy(nullptr);
    QCOMPARE(describe(u"Old"_s).last(), u"Old"_s);
}

void TestSettingsModel::cutsLongTexts()
{
    XsdtNode node;
    node.kind = XsdtNode::Kind::Value;
    node.typeCode = u's';
    QCOMPARE(displayValue(node, QString(200, u'\n'), 200), QString(200, QChar(0x23CE)));
    QCOMPARE(displayValue(node, QString(201, u'x'), 200), QString(200, u'x') + u'\u2026');
    const QString pair = u"\U0001F600"_s;
    QCOMPARE(displayValue(node, QString(199, u'x') + pair, 200), QString(199, u'x') + u'\u2026');

    Fixture f("<i k=\"" + QByteArray(1'000'000, 'k') + "\"/>");
    QCOMPARE(f.model.index(0, 0).data().toString(),
             QString(1000, u'k') + u"\u2026 (999000 more characters)"_s);
    QVERIFY(f.model.index(0, 0).data(Qt::ToolTipRole).toString().size() < 1100);
}

void TestSettingsModel::writesOrRefusesValue_data()
{
    QTest::addColumn<QString>("path");
    QTest::addColumn<QString>("text");
    QTest::addColumn<QString>("stored"); // the value afterwards, if it is another
    QTest::addColumn<QString>("message");
    const auto row = [](const char* name, const QString& path, const QString& text,
                        const QString& stored, const QString& message = {}) {
        QTest::newRow(name) << path << text << stored << message;
    };
    row("new", u"Alpha/Count"_s, u"12"_s, u"12"_s);
    row("the same", u"Alpha/Count"_s, u"7"_s, {});
    row("the same when normalised", u"Alpha/Count"_s, u" 007"_s, {});
    row("malformed", u"Alpha/Use"_s, u"maybe"_s, {}, u"Use: "_s);
    row("locked", u"Alpha/LastVersion"_s, u"8"_s, {},
        u"LastVersion is part of the module registry or version records and is locked against "
        u"editing."_s);
    row("encoded", u"Alpha/Data"_s, u"x"_s, {});
    row("group", u"Alpha"_s, u"x"_s, {});
    row("inside a deletion", u"Old/%1<b>"_s, u"x"_s, {});
}

void TestSettingsModel::writesOrRefusesValue()
{
    QFETCH(QString, path);
    QFETCH(QString, text);
    QFETCH(QString, stored);
    QFETCH(QString, message);
    Fixture f;
    QVERIFY(f.model.markForDeletion(f.node(u"Old"_s)));
    const QString before = f.node(path)->value;
    QSignalSpy edited(&f.model, &SettingsModel::edited);
    QSignalSpy rejected(&f.model, &SettingsModel::editRejected);

    QCOMPARE(f.edit(f.node(path), text), !stored.isEmpty());
    QCOMPARE(f.node(path)->value, stored.isEmpty() ? before : stored);
    QCOMPARE(edited.count(), stored.isEmpty() ? 0 : 1);
    QCOMPARE(rejected.count(), message.isEmpty() ? 0 : 1);
    if (!message.isEmpty()) {
        QVERIFY(rejected.first().first().toString().startsWith(message));
    }
    f.model.revertValue(f.node(path));
    QCOMPARE(f.node(path)->value, before);

    f.model.setReadOnly(true);
    QVERIFY(!f.edit(f.node(u"Top"_s), u"new"_s));
    QVERIFY(!(f.model.flags(f.model.indexForNode(f.node(u"Top"_s), 1)) & Qt::ItemIsEditable));
    QCOMPARE(rejected.count(), message.isEmpty() ? 0 : 1);
}

void TestSettingsModel::marksAndRestores()
{
    Fixture f;
    QSignalSpy edited(&f.model, &SettingsModel::edited);
    QString reason;
    QVERIFY(!f.model.markForDeletion(&f.document->root, &reason));
    QCOMPARE(reason, u"Nothing to delete."_s);
    QVERIFY(!f.model.markForDeletion(f.node(u"Top"_s), &reason));
    QCOMPARE(reason, u"Needed."_s);
    f.model.setReadOnly(true);
    QVERIFY(!f.model.markForDeletion(f.node(u"Old"_s), &reason));
    QCOMPARE(reason, u"PixInsight is running; nothing can be changed."_s);
    f.model.setReadOnly(false);
    QCOMPARE(edited.count(), 0);

    QVERIFY(f.model.markForDeletion(f.node(u"Old"_s), &reason));
    QVERIFY(f.model.markForDeletion(f.node(u"Old/Empty"_s), &reason)); // it is inside already
    QVERIFY(!f.node(u"Old/Empty"_s)->markedForDeletion);
    f.model.undoDeletion(f.node(u"Old/Empty"_s));
    QCOMPARE(edited.count(), 1);
    f.model.setReadOnly(true);
    f.model.undoDeletion(f.node(u"Old"_s));
    QCOMPARE(edited.count(), 2);
    QCOMPARE(f.document->pendingCount(), 0);
}

void TestSettingsModel::tellsOfManyChangesOnce()
{
    Fixture f;
    QSignalSpy edited(&f.model, &SettingsModel::edited);
    QSignalSpy changed(&f.model, &SettingsModel::dataChanged);
    QSignalSpy layout(&f.model, &SettingsModel::layoutChanged);
    {
        const SettingsModel::Batch outer(f.model);
        const SettingsModel::Batch inner(f.model);
    }
    QCOMPARE(edited.count() + changed.count() + layout.count(), 0);
    {
        const SettingsModel::Batch batch(f.model);
        QVERIFY(f.edit(f.node(u"Alpha/Count"_s), u"1"_s));
        QVERIFY(f.edit(f.node(u"Top"_s), u"1"_s));
        QVERIFY(f.model.markForDeletion(f.node(u"Old"_s)));
        f.model.revertValue(f.node(u"Top"_s));
        QCOMPARE(edited.count() + changed.count() + layout.count(), 0);
    }
    QCOMPARE(edited.count(), 1);
    QCOMPARE(layout.count(), 1);
    QCOMPARE(changed.count(), 3); // one for each group that has rows
    QCOMPARE(f.document->pendingCount(), 2);

    const quint64 generation = f.model.generation();
    QSignalSpy reset(&f.model, &SettingsModel::modelReset);
    f.model.revertAll();
    QCOMPARE(edited.count(), 2);
    QCOMPARE(reset.count(), 1);
    QCOMPARE(f.document->pendingCount(), 0);
    QCOMPARE(f.model.generation(), generation);
    f.model.setDocument(nullptr);
    QCOMPARE(f.model.generation(), generation + 1);
}

void TestSettingsModel::staysWithinBounds()
{
    Fixture f;
    const QModelIndex alpha = f.model.index(0, 0);
    QVERIFY(!f.model.index(3, 0).isValid());
    QVERIFY(!f.model.index(4, 0, alpha).isValid());
    QVERIFY(!f.model.index(0, 3, alpha).isValid());
    QCOMPARE(f.model.rowCount(alpha.siblingAtColumn(1)), 0);
    QVERIFY(!f.model.indexForNode(&f.document->root).isValid());
    QCOMPARE(f.model.nodeForIndex({}), &f.document->root);
    QCOMPARE(f.model.headerData(1, Qt::Horizontal).toString(), u"Value"_s);
    f.model.setDocument(nullptr);
    QAbstractItemModelTester tester(&f.model);
    QCOMPARE(f.model.rowCount(), 0);
    QCOMPARE(f.model.nodeForIndex({}), nullptr);
}

void TestSettingsModel::filters_data()
{
    QTest::addColumn<QString>("text");
    QTest::addColumn<bool>("changedOnly");
    QTest::addColumn<QString>("shown");
    const QString all = u"Alpha\n Use\n LastVersion\n Count\n Data\nOld\n %1<b>\n Empty\nTop\n"_s;
    QTest::newRow("nothing") << u""_s << false << all;
    QTest::newRow("blanks") << u"  "_s << false << all;
    QTest::newRow("key and value, but no encoded one")
        << u" count "_s << false << u"Alpha\n Count\nTop\n"_s;
    QTest::newRow("group") << u"ALPHA"_s << false
                           << u"Alpha\n Use\n LastVersion\n Count\n Data\n"_s;
    QTest::newRow("across levels") << u"a/d"_s << false << u"Alpha\n Data\n"_s;
    QTest::newRow("path is no value") << u"old/e"_s << false << u"Old\n Empty\n"_s;
    QTest::newRow("changed") << u""_s << true << u"Alpha\n Use\nOld\n"_s;
    QTest::newRow("changed and text") << u"fals"_s << true << u"Alpha\n Use\n"_s;
    QTest::newRow("no such") << u"zzz"_s << false << u""_s;
}

void TestSettingsModel::filters()
{
    QFETCH(QString, text);
    QFETCH(bool, changedOnly);
    Fixture f;
    QVERIFY(f.edit(f.node(u"Alpha/Use"_s), u"false"_s));
    QVERIFY(f.model.markForDeletion(f.node(u"Old"_s)));
    f.proxy.setFilterText(text);
    f.proxy.setChangedOnly(changedOnly);
    QTEST(shownKeys(f.proxy), "shown");
}

/// Whatever is changed under a filter, in whatever order, the proxy shows what the plain
/// definition says, and tells its views of every step.
void TestSettingsModel::filterFollowsChanges()
{
    QByteArray xml;
    for (int group = 0; group < 12; ++group) {
        xml += "<i k=\"g" + QByteArray::number(group) +
               "\"><i k=\"deep\"><v k=\"a\" t=\"s\">x</v></i>" +
               QByteArray("<v k=\"b\" t=\"s\">y</v>").repeated(2) + "</i>";
    }
    Fixture f("<i k=\"r\">" + xml + "</i>");
    QAbstractItemModelTester tester(&f.proxy);
    QTreeView view;
    view.setModel(&f.proxy);
    QList<XsdtNode*> nodes;
    walkTree(f.document->root, [&nodes](XsdtNode& node) {
        nodes.append(&node);
        return Walk::Into;
    });
    const QStringList texts{u""_s, u"g1"_s, u"zz"_s, u"deep/a"_s, u"Y"_s};
    QRandomGenerator random(4711);
    for (int step = 0; step < 1500; ++step) {
        XsdtNode* node = nodes.at(random.bounded(nodes.size()));
        switch (random.bounded(12)) {
        case 0:
            f.proxy.setFilterText(texts.at(random.bounded(texts.size())));
            break;
        case 1:
            f.proxy.setChangedOnly(random.bounded(3) > 0);
            break;
        case 2:
            view.expandAll();
            break;
        case 3: {
            const SettingsModel::Batch batch(f.model);
            for (XsdtNode* each : nodes) {
                f.edit(each, random.bounded(2) ? u"zz"_s : u"y"_s);
            }
            break;
        }
        case 4:
        case 5:
            (void)f.model.markForDeletion(node); // refused inside a deletion
            break;
        case 6:
        case 7:
            f.model.undoDeletion(node);
            break;
        case 8:
            f.model.revertValue(node);
            break;
        case 9:
            if (random.bounded(10) == 0) {
                f.model.revertAll();
            }
            break;
        default:
            f.edit(node, random.bounded(2) ? u"zz"_s : u"x"_s);
        }
        QCOMPARE(shownKeys(f.proxy),
                 expectedKeys(f.document->root, f.proxy.filterText(), f.proxy.isChangedOnly()));
    }
}

void TestSettingsModel::filterKeepsPlaceInView()
{
    QByteArray xml;
    for (int i = 0; i < 300; ++i) {
        const QByteArray number = QByteArray::number(i);
        xml += "<i k=\"group" + number + "\"><v k=\"" + (i % 3 ? "odd" : "even") +
               "\" t=\"b\" v=\"true\"/></i>";
    }
    Fixture f(xml);
    QTreeView view;
    view.setUniformRowHeights(true);
    view.setModel(&f.proxy);
    view.resize(400, 300);
    view.show();
    view.expandAll();
    const auto shown = [&f](const QString& path) {
        return f.proxy.mapFromSource(f.model.indexForNode(f.node(path)));
    };
    const auto key = [](const QModelIndex& index) {
        return index.data().toString();
    };
    view.setCurrentIndex(shown(u"group150/even"_s));
    view.scrollTo(shown(u"group120"_s), QAbstractItemView::PositionAtTop);

    for (const QString& text : {u"even"_s, u"eve"_s, u""_s}) {
        const TreePosition position(view, f.proxy);
        f.proxy.setFilterText(text);
        view.expandAll();
        position.restore();
        QCOMPARE(key(view.indexAt({0, 0})), u"group120"_s);
        QCOMPARE(view.currentIndex(), shown(u"group150/even"_s));
        QVERIFY(view.selectionModel()->isSelected(view.currentIndex()));
        QVERIFY(view.isExpanded(shown(u"group0"_s)));
    }
    view.scrollTo(shown(u"group120/even"_s), QAbstractItemView::PositionAtTop);
    const TreePosition position(view, f.proxy);
    view.collapseAll();
    position.restore();
    QCOMPARE(key(view.indexAt({0, 0})), u"group120"_s);
    QVERIFY(!view.isExpanded(shown(u"group120"_s)));
}

void TestSettingsModel::copesWithDeepFile()
{
    constexpr int depth = 1'000'000;
    Fixture f(QByteArray("<i k=\"r\">").repeated(depth) + "<v k=\"v\" t=\"s\">x</v>" +
              QByteArray("</i>").repeated(depth));
    XsdtNode* last = f.document->root.children.front().get();
    while (last->kind == XsdtNode::Kind::Group) {
        last = last->children.front().get();
    }
    QTreeView view;
    view.setModel(&f.proxy);
    view.show();
    view.expandAll();
    int shown = 0;
    for (QModelIndex index = f.proxy.index(0, 0); index.isValid(); index = view.indexBelow(index)) {
        ++shown;
    }
    QCOMPARE(shown, SettingsModel::maximumDepth);
    f.proxy.setFilterText(u"r/r/r"_s);
    view.expandAll();
    QCOMPARE(f.proxy.rowCount(), 1);
    f.proxy.setFilterText(u"x"_s); // the value lies beneath what is shown
    QCOMPARE(f.proxy.rowCount(), 0);
    f.proxy.setFilterText({});

    QVERIFY(!f.model.indexForNode(last).isValid());
    QVERIFY(f.model.markForDeletion(last->parent));
    QCOMPARE(f.document->pendingCount(), 1);
    QVERIFY(f.model.markForDeletion(f.document->root.findByPath(u"r/r"_s)));
    f.model.undoDeletion(f.document->root.findByPath(u"r/r"_s));
    f.model.revertAll();
    QCOMPARE(f.document->pendingCount(), 0);
}

} // namespace kse

KSE_TEST_MAIN(kse::TestSettingsModel)
#include "TestSettingsModel.moc"
