// SPDX-License-Identifier: MIT
#include "BenchSupport.h"
#include "schema/DeletePolicy.h"
#include "views/model/SettingsFilterProxy.h"
#include "views/model/SettingsModel.h"
#include "views/model/TreePosition.h"

#include <QApplication>
#include <QTreeView>

#include <algorithm>
#include <vector>

using namespace kse;
using namespace Qt::StringLiterals;

namespace {

using Shape = GenerateOptions::Shape;

void settle()
{
    QApplication::processEvents();
}

/// The tree of all settings as the window shows it, everything expanded.
struct Tree
{
    explicit Tree(const benchmark::State& state)
    {
        const auto shape = state.range(1) ? Shape::Wide : Shape::Values;
        require(document.parse(generateFile(state, shape)));
        proxy.setSourceModel(&model);
        view.setModel(&proxy);
        view.setUniformRowHeights(true);
        view.resize(1000, 700);
        view.show();
        setDocumentAgain();
    }

    void setDocumentAgain()
    {
        model.setDocument(&document);
        view.expandAll();
        settle();
    }

    void filter(const QString& text)
    {
        const TreePosition position(view, proxy);
        proxy.setFilterText(text);
        view.expandAll();
        position.restore();
        settle();
    }

    /// Every `step`th value that can be edited.
    std::vector<XsdtNode*> values(int step)
    {
        std::vector<XsdtNode*> found;
        int count = 0;
        walkTree(document.root, [&](XsdtNode& node) {
            if (node.isEditableType() && count++ % step == 0) {
                found.push_back(&node);
            }
            return Walk::Into;
        });
        return found;
    }

    void flip(XsdtNode* node)
    {
        if (node->isModified()) {
            model.revertValue(node);
        } else {
            const QString text = node->value == "true"_L1 ? u"false"_s
                                 : node->value == "1"_L1  ? u"0"_s
                                                          : u"1"_s;
            model.setData(model.indexForNode(node, SettingsModel::ValueColumn), text);
        }
    }

    XsdtDocument document;
    SettingsModel model;
    SettingsFilterProxy proxy;
    QTreeView view;
};

/// The other figures are ratios to this one.
void setDocumentAndExpandAll(benchmark::State& state)
{
    Tree tree(state);
    for (auto _ : state) {
        tree.setDocumentAgain();
    }
}

/// Changes the filter to each of `texts` in turn, so that the number of rows falls and rises.
void changeFilter(benchmark::State& state, const QStringList& texts)
{
    Tree tree(state);
    qsizetype next = 0;
    for (auto _ : state) {
        tree.filter(texts.at(next++ % texts.size()));
    }
}

void filterByKey(benchmark::State& state)
{
    changeFilter(state, {u"o"_s, u"op"_s, u"opt"_s, u"op"_s});
}

void filterByValue(benchmark::State& state)
{
    changeFilter(state, {u"tru"_s, u"true"_s});
}

void filterToNothing(benchmark::State& state)
{
    changeFilter(state, {u"no such text"_s, u""_s});
}

void toggleChangedOnly(benchmark::State& state)
{
    Tree tree(state);
    for (XsdtNode* node : tree.values(2)) {
        node->value += u'x';
    }
    for (auto _ : state) {
        tree.proxy.setChangedOnly(!tree.proxy.isChangedOnly());
        tree.view.expandAll();
        settle();
    }
}

void editOne(benchmark::State& state)
{
    Tree tree(state);
    tree.proxy.setFilterText(u"o"_s);
    tree.view.expandAll();
    const std::vector<XsdtNode*> values = tree.values(1);
    for (auto _ : state) {
        tree.flip(values.at(values.size() / 2));
        settle();
    }
}

void revertOneOfManyChanged(benchmark::State& state)
{
    Tree tree(state);
    const std::vector<XsdtNode*> values = tree.values(1);
    for (XsdtNode* node : values) {
        node->value += u'x';
    }
    tree.proxy.setChangedOnly(true);
    tree.view.expandAll();
    auto next = values.begin();
    for (auto _ : state) {
        tree.model.revertValue(*next++);
        settle();
    }
}

void flipManyInABatch(benchmark::State& state)
{
    Tree tree(state);
    tree.proxy.setChangedOnly(true);
    const std::vector<XsdtNode*> values = tree.values(2);
    for (auto _ : state) {
        {
            const SettingsModel::Batch batch(tree.model);
            std::for_each(values.begin(), values.end(), [&](auto* node) { tree.flip(node); });
        }
        tree.view.expandAll();
        settle();
    }
}

/// Marks a group with all that it contains, and undoes that.
void deleteAndUndoGroup(benchmark::State& state)
{
    Tree tree(state);
    DeletePolicy policy;
    require(policy.load(
        R"({"policy": {"delete": [{"path": "**", "level": "safe", "reason": "Free."}]}})"));
    tree.model.setPolicy(&policy);
    for (auto _ : state) {
        XsdtNode* group = tree.document.root.children.back().get();
        require(tree.model.markForDeletion(group));
        settle();
        tree.model.undoDeletion(group);
        settle();
    }
}

void revertAll(benchmark::State& state)
{
    Tree tree(state);
    for (auto _ : state) {
        tree.model.revertAll();
        tree.view.expandAll();
        settle();
    }
}

void refreshAll(benchmark::State& state)
{
    Tree tree(state);
    for (auto _ : state) {
        tree.model.refreshAll();
        settle();
    }
}

void sizes(benchmark::internal::Benchmark* bench)
{
    bench->ArgNames({"values", "wide"})->Unit(benchmark::kMillisecond);
    for (const int values : {60'000, 100'000, 1'000'000}) {
        bench->Args({values, false});
    }
    bench->Args({100'000, true})->Args({1'000'000, true});
}

BENCHMARK(setDocumentAndExpandAll)->Apply(sizes);
BENCHMARK(filterByKey)->Apply(sizes);
BENCHMARK(filterByValue)->Apply(sizes);
BENCHMARK(filterToNothing)->Apply(sizes);
BENCHMARK(toggleChangedOnly)->Apply(sizes);
BENCHMARK(editOne)->Apply(sizes);
BENCHMARK(revertOneOfManyChanged)->Apply(sizes);
BENCHMARK(flipManyInABatch)->Apply(sizes);
BENCHMARK(deleteAndUndoGroup)->Apply(sizes);
BENCHMARK(revertAll)->Apply(sizes);
BENCHMARK(refreshAll)->Apply(sizes);

} // namespace

int main(int argc, char** argv)
{
    if (!qEnvironmentVariableIsSet("QT_QPA_PLATFORM")) {
        qputenv("QT_QPA_PLATFORM", "offscreen");
    }
    QApplication app(argc, argv);
    benchmark::Initialize(&argc, argv);
    benchmark::RunSpecifiedBenchmarks();
    return 0;
}
