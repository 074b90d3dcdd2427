// SPDX-License-Identifier: MIT
#include "BenchSupport.h"
#include "document/Leaves.h"
#include "views/compare/CompareEngine.h"

#include <QHash>

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

/// The obvious way, which the quick one has to outrun.
QList<CompareEntry> plainCompare(const XsdtDocument& here, const XsdtDocument& there)
{
    QHash<QString, XsdtNode*> others;
    for (XsdtNode* other : unmarkedValues(there.root)) {
        others.insert(other->path(), other);
    }
    QHash<QString, XsdtNode*> missing = others;
    QList<CompareEntry> entries;
    for (XsdtNode* node : unmarkedValues(here.root)) {
        const QString path = node->path();
        XsdtNode* other = others.value(path);
        missing.remove(path);
        if (!other) {
            entries.append({path, CompareState::OnlyThis, node, nullptr});
        } else if (node->typeCode != other->typeCode || node->value != other->value) {
            entries.append({path, CompareState::Different, node, other});
        }
    }
    for (XsdtNode* other : unmarkedValues(there.root)) {
        if (missing.contains(other->path())) {
            entries.append({other->path(), CompareState::OnlyOther, nullptr, other});
        }
    }
    return entries;
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
