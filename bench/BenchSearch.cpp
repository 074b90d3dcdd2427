// SPDX-License-Identifier: MIT
#include "BenchSupport.h"
#include "document/LowerCase.h"
#include "schema/SettingsSchema.h"
#include "views/search/SearchIndex.h"

#include <algorithm>
#include <random>

using namespace kse;

namespace {

/// A document with its index, and a query that finds every value.
struct Searched
{
    explicit Searched(const benchmark::State& state)
    {
        generateDocument(state, document);
        require(schema.load(sourceFile("resources/schema/globals.json"),
                            sourceFile("resources/schema/overlay.json")));
        index = buildSearchIndex(document, schema);
        query.includeProtected = true;
    }

    /// Puts the children of every group in random order, and reads the file again, so that
    /// neighbours in the file are neighbours in memory.
    void shuffle()
    {
        std::mt19937 random(1);
        const auto shuffleChildren = [&](XsdtNode& group) {
            std::shuffle(group.children.begin(), group.children.end(), random);
            return Walk::Into;
        };
        shuffleChildren(document.root);
        walkTree(document.root, shuffleChildren);
        require(document.parse(document.serialize()));
        index = buildSearchIndex(document, schema);
    }

    XsdtDocument document;
    SettingsSchema schema;
    QList<SearchIndexEntry> index;
    SearchQuery query;
};

void buildIndex(benchmark::State& state)
{
    const Searched searched(state);
    measure(state, [&] { return buildSearchIndex(searched.document, searched.schema); });
}

void describeAll(benchmark::State& state)
{
    const Searched searched(state);
    measure(state, [&] {
        for (const SearchIndexEntry& entry : searched.index) {
            benchmark::DoNotOptimize(searched.schema.describe(*entry.node));
        }
        return 0;
    });
}

void indexPaths(benchmark::State& state)
{
    Searched searched(state);
    measure(state, [&] {
        QList<SearchIndexEntry> index;
        LowerCasePath path(searched.document.root);
        walkTree(searched.document.root, [&](XsdtNode& node) {
            const QString& here = path.moveTo(node);
            if (node.kind == XsdtNode::Kind::Value) {
                index.append({&node, {}, QString(here.data(), here.size()), here.size(), {}});
            }
            return Walk::Into;
        });
        return index;
    });
}

void indexPathsPlainly(benchmark::State& state)
{
    Searched searched(state);
    measure(state, [&] {
        QList<SearchIndexEntry> index;
        walkTree(searched.document.root, [&](XsdtNode& node) {
            if (node.kind == XsdtNode::Kind::Value) {
                index.append({&node, {}, node.path().toLower(), 0, {}});
            }
            return Walk::Into;
        });
        return index;
    });
}

const QString absent = QStringLiteral("tangerine");

void searchInVain(benchmark::State& state)
{
    Searched searched(state);
    searched.query.terms = {absent};
    measure(state, [&] { return search(searched.index, searched.query); });
}

void scan(benchmark::State& state)
{
    const Searched searched(state);
    measure(state, [&] {
        return std::count_if(
            searched.index.begin(), searched.index.end(), [](const SearchIndexEntry& entry) {
                const XsdtNode& node = *entry.node;
                return entry.haystack.contains(absent) || entry.description.contains(absent) ||
                       (node.typeCode != u'B' && node.value.contains(absent, Qt::CaseInsensitive));
            });
    });
}

/// Without terms every value is found, and the time goes into sorting them.
void order(benchmark::State& state)
{
    const Searched searched(state);
    measure(state, [&] { return search(searched.index, searched.query); });
}

/// The same in a file whose groups have their children in random order.
void orderShuffled(benchmark::State& state)
{
    Searched searched(state);
    searched.shuffle();
    measure(state, [&] { return search(searched.index, searched.query); });
}

void searchEverywhere(benchmark::State& state)
{
    Searched searched(state);
    searched.query.terms = {QStringLiteral("module")};
    measure(state, [&] { return search(searched.index, searched.query); });
}

} // namespace

KSE_BENCHMARK(buildIndex);
KSE_BENCHMARK(describeAll);
KSE_BENCHMARK(indexPaths);
KSE_BENCHMARK(indexPathsPlainly);
KSE_BENCHMARK(searchInVain);
KSE_BENCHMARK(scan);
KSE_BENCHMARK(order);
KSE_BENCHMARK(orderShuffled);
KSE_BENCHMARK(searchEverywhere);

BENCHMARK_MAIN();
