// SPDX-License-Identifier: MIT
#include "BenchSupport.h"
#include "document/Leaves.h"
#include "support/PlainWays.h"
#include "views/compare/CompareEngine.h"

using namespace kse;

namespace {

using Compare = QList<CompareEntry> (*)(const XsdtDocument&, const XsdtDocument&);

/// Compares two files in which one value in a hundred has another text and one has another key.
void measureCompare(benchmark::State& state, Compare compare)
{
    XsdtDocument here;
    XsdtDocument there;
    generateDocument(state, here);
    generateDocument(state, there);
    const QList<XsdtNode*> values = unmarkedValues(there.root);
    for (qsizetype i = 0; i + 50 < values.size(); i += 100) {
        values[i]->value += u'x';
        values[i + 50]->key += u'x';
    }
    measure(state, [&] { return compare(here, there); });
}

void compare(benchmark::State& state)
{
    measureCompare(state, compareDocuments);
}

void compareByStrings(benchmark::State& state)
{
    measureCompare(state, plainCompare);
}

} // namespace

KSE_BENCHMARK(compare);
KSE_BENCHMARK(compareByStrings);

BENCHMARK_MAIN();
