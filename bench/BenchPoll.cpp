// SPDX-License-Identifier: MIT
#include "SettingsGenerator.h"
#include "app/MainWindow.h"
#include "app/ThemeManager.h"
#include "session/PixInsightEnv.h"
#include "session/VerifiedFile.h"

#include <QApplication>
#include <QDir>
#include <QFile>
#include <QTemporaryDir>
#include <benchmark/benchmark.h>

using namespace kse;
using namespace Qt::StringLiterals;

namespace {

/// Puts a file of `state.range(0)` values where the window looks for one, and returns its path.
QString placeFile(const benchmark::State& state)
{
    const QString folder = PixInsightEnv::settingsFolders().value(0);
    QFile file(folder + u"/core-001-pxi.settings"_s);
    if (!QDir().mkpath(folder) || !file.open(QIODevice::WriteOnly) ||
        file.write(generateSettings({GenerateOptions::Shape::Values, state.range(0)})) < 0) {
        qFatal("the file can't be written");
    }
    return file.fileName();
}

/// The least that a poll can cost, without its look at the processes.
void readAndHash(benchmark::State& state)
{
    const QString path = placeFile(state);
    for (auto _ : state) {
        QByteArray bytes;
        if (!readWhole(path, bytes)) {
            state.SkipWithError("the file can't be read");
        }
        benchmark::DoNotOptimize(sha256(bytes));
    }
}

void processScan(benchmark::State& state)
{
    for (auto _ : state) {
        benchmark::DoNotOptimize(PixInsightEnv::runningProcessIds());
    }
}

/// What the window does every three seconds, nothing having changed. No other event is processed
/// meanwhile, or its own timer would poll too.
void poll(benchmark::State& state)
{
    placeFile(state);
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
    for (const char* name : {"HOME", "XDG_CONFIG_HOME", "XDG_CACHE_HOME", "XDG_DATA_HOME"}) {
        qputenv(name, home.path().toLocal8Bit());
    }
    qputenv("QT_QPA_PLATFORM", "offscreen");
    const QApplication application(argc, argv);
    ThemeManager::instance().init(false);
    benchmark::Initialize(&argc, argv);
    benchmark::RunSpecifiedBenchmarks();
    return 0;
}
