// SPDX-License-Identifier: MIT
#pragma once

#include "SettingsGenerator.h"
#include "document/TreeWalk.h"
#include "document/XsdtDocument.h"
#include "document/XsdtValueType.h"

#include <QByteArray>
#include <QFile>
#include <QString>
#include <benchmark/benchmark.h>

namespace kse {

/// Ends the program if a step failed, since its time or memory would mean nothing.
inline void require(bool done)
{
    if (!done) {
        qFatal("A step failed, so its figures mean nothing.");
    }
}

/// The content of a file of the source tree. `path` is relative to its top.
inline QByteArray sourceFile(const char* path)
{
    QFile file(QStringLiteral(KSE_SOURCE_DIR "/") + QLatin1String(path));
    require(file.open(QIODevice::ReadOnly));
    return file.readAll();
}

/// A file with as many values as the first argument of the benchmark says.
inline QByteArray generateFile(const benchmark::State& state,
                               GenerateOptions::Shape shape = GenerateOptions::Shape::Values)
{
    return generateSettings({shape, static_cast<qsizetype>(state.range(0))});
}

/// Fills `document` with the values of such a file.
inline void generateDocument(const benchmark::State& state, XsdtDocument& document)
{
    require(document.parse(generateFile(state)));
}

/// The first integer of `document`.
inline XsdtNode& firstInteger(XsdtDocument& document)
{
    XsdtNode* node = walkTree(document.root, [](const XsdtNode& candidate) {
        return candidate.typeCode == XsdtValueType::Integer ? Walk::Stop : Walk::Into;
    });
    require(node != nullptr);
    return *node;
}

/// Makes the benchmark report the time for each value.
inline void reportTimePerValue(benchmark::State& state)
{
    using benchmark::Counter;
    state.counters["ns/value"] = Counter(static_cast<double>(state.range(0)) * 1e-9,
                                         Counter::kIsIterationInvariantRate | Counter::kInvert);
}

/// Times `work`, and reports the time for each value.
template <typename Work>
void measure(benchmark::State& state, Work&& work)
{
    for (auto _ : state) {
        benchmark::DoNotOptimize(work());
    }
    reportTimePerValue(state);
}

} // namespace kse

/// Runs `function` at 10,000, 100,000 and 1,000,000 values.
#define KSE_BENCHMARK(function) BENCHMARK(function)->RangeMultiplier(10)->Range(10'000, 1'000'000)
