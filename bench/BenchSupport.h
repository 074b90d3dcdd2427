// SPDX-License-Identifier: MIT
#pragma once

#include "SettingsGenerator.h"
#include "document/XsdtDocument.h"

#include <benchmark/benchmark.h>

namespace kse {

/// Fills `document` with as many values as the benchmark's argument asks for.
inline void generateDocument(benchmark::State& state, XsdtDocument& document)
{
    const qsizetype values = state.range(0);
    if (!document.parse(generateSettings({GenerateOptions::Shape::Values, values}))) {
        state.SkipWithError("the file doesn't parse");
    }
}

/// Times `work`, and reports the time for each value.
template <typename Work>
void measure(benchmark::State& state, Work&& work)
{
    for (auto _ : state) {
        benchmark::DoNotOptimize(work());
    }
    using benchmark::Counter;
    state.counters["ns/value"] = Counter(static_cast<double>(state.range(0)) * 1e-9,
                                         Counter::kIsIterationInvariantRate | Counter::kInvert);
}

} // namespace kse

/// Runs `function` at 10,000, 100,000 and 1,000,000 values.
#define KSE_BENCHMARK(function) BENCHMARK(function)->RangeMultiplier(10)->Range(10'000, 1'000'000)
