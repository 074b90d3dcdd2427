// SPDX-License-Identifier: MIT
#include "BenchSupport.h"
#include "schema/SettingsSchema.h"
#include "views/health/HealthChecker.h"

using namespace kse;
using namespace Qt::StringLiterals;

namespace {

enum Place { Settings, ModuleData };

/// A file whose values are all settings, which are checked one by one, or all data of modules.
struct CheckedFile
{
    explicit CheckedFile(const benchmark::State& state)
    {
        QByteArray bytes = generateFile(state);
        if (state.range(1) == Settings) {
            bytes.replace("\"ModuleData\"", "\"Global\"");
        }
        require(document.parse(bytes) && schema.load(sourceFile("resources/schema/globals.json"),
                                                     sourceFile("resources/schema/overlay.json")));
    }

    XsdtDocument document;
    SettingsSchema schema;
};

/// The minimum for a check of every setting.
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
    reportTimePerValue(state);
}

void healthCheck(benchmark::State& state)
{
    const CheckedFile file(state);
    HealthEnv env = HealthEnv::system();
    env.exists = [](const QString&) {
        return true;
    }; // The disk isn't measured.
    measure(state, [&] { return HealthChecker::run(file.document, file.schema, env); });
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
