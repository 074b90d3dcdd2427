// SPDX-License-Identifier: MIT
#include "SettingsGenerator.h"
#include "document/TreeWalk.h"
#include "document/XsdtDocument.h"
#include "schema/SettingsSchema.h"
#include "views/health/HealthChecker.h"

#include <QFile>
#include <benchmark/benchmark.h>

using namespace kse;
using namespace Qt::StringLiterals;

namespace {

enum Place { Settings, ModuleData };

/// A file with all its values below the settings that are checked one by one, or below the data of
/// modules.
struct CheckedFile
{
    explicit CheckedFile(const benchmark::State& state)
    {
        QByteArray bytes = generateSettings({GenerateOptions::Shape::Values, state.range(0)});
        if (state.range(1) == Settings) {
            bytes.replace("\"ModuleData\"", "\"Global\"");
        }
        const auto table = [](const char* name) {
            QFile file(QStringLiteral(KSE_SOURCE_DIR "/resources/schema/") + QLatin1String(name));
            return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
        };
        if (!document.parse(bytes) || !schema.load(table("globals.json"), table("overlay.json"))) {
            qFatal("the file or the tables don't parse");
        }
    }

    XsdtDocument document;
    SettingsSchema schema;
};

void report(benchmark::State& state)
{
    using benchmark::Counter;
    state.counters["ns/value"] = Counter(static_cast<double>(state.range(0)) * 1e-9,
                                         Counter::kIsIterationInvariantRate | Counter::kInvert);
}

/// The least that a check of every setting takes.
void describeOnly(benchmark::State& state)
{
    const CheckedFile file(state);
    for (auto _ : state) {
        walkTree(file.document.root, [&](const XsdtNode& node) {
            if (node.isEditableType() && node.path().startsWith("Global/"_L1)) {
                benchmark::DoNotOptimize(file.schema.describe(node));
            }
            return Walk::Into;
        });
    }
    report(state);
}

void healthCheck(benchmark::State& state)
{
    const CheckedFile file(state);
    HealthEnv env = HealthEnv::system();
    env.exists = [](const QString&) {
        return true;
    }; // the disk isn't what is measured
    for (auto _ : state) {
        benchmark::DoNotOptimize(HealthChecker::run(file.document, file.schema, env));
    }
    report(state);
}

void sizes(benchmark::internal::Benchmark* bench)
{
    bench->ArgNames({"values", "place"})->Unit(benchmark::kMillisecond);
    bench->ArgsProduct({{10'000, 100'000, 1'000'000}, {Settings, ModuleData}});
}

BENCHMARK(describeOnly)->Apply(sizes);
BENCHMARK(healthCheck)->Apply(sizes);

} // namespace

BENCHMARK_MAIN();
