// SPDX-License-Identifier: MIT
#include "BenchSupport.h"
#include "SettingsHome.h"
#include "app/MainWindow.h"
#include "app/ThemeManager.h"
#include "session/VerifiedFile.h"

#include <QApplication>

using namespace kse;

namespace {

/// The minimum cost of a poll, without its process scan.
void readAndHash(benchmark::State& state)
{
    const QString path = placeSettings(generateFile(state));
    for (auto _ : state) {
        QByteArray bytes;
        require(readWhole(path, bytes));
        benchmark::DoNotOptimize(sha256(bytes));
    }
}

void processScan(benchmark::State& state)
{
    for (auto _ : state) {
        benchmark::DoNotOptimize(PixInsightEnv::runningProcessIds());
    }
}

/// The window's poll every three seconds when nothing has changed. No events are processed in
/// between, or the window's own timer would poll as well.
void poll(benchmark::State& state)
{
    placeSettings(generateFile(state));
    MainWindow window;
    window.show();
    QCoreApplication::processEvents();
    for (auto _ : state) {
        QMetaObject::invokeMethod(&window, "pollEnvironment");
    }
}

void sizes(benchmark::internal::Benchmark* bench)
{
    bench->Arg(10'000)->Arg(100'000)->Arg(1'000'000)->Unit(benchmark::kMillisecond);
}

BENCHMARK(readAndHash)->Apply(sizes);
BENCHMARK(processScan)->Unit(benchmark::kMillisecond);
BENCHMARK(poll)->Apply(sizes);

} // namespace

int main(int argc, char** argv)
{
    const QTemporaryDir home;
    useAsHome(home);
    qputenv("QT_QPA_PLATFORM", "offscreen");
    const QApplication application(argc, argv);
    ThemeManager::instance().init(false);
    benchmark::Initialize(&argc, argv);
    benchmark::RunSpecifiedBenchmarks();
    return 0;
}
