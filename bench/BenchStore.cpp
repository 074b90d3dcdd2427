// SPDX-License-Identifier: MIT
#include "BenchSupport.h"
#include "session/DurableFile.h"
#include "session/SettingsStore.h"
#include "session/VerifiedFile.h"

#include <QSaveFile>
#include <QTemporaryDir>

#include <memory>

using namespace kse;
using namespace Qt::StringLiterals;

namespace {

/// A large file in a temporary folder. If TMPDIR names a folder in memory, the difference is the
/// disk's part of the time.
struct Fixture
{
    QTemporaryDir dir;
    QString path = dir.filePath(u"core-001-pxi.settings"_s);
    QByteArray bytes;

    explicit Fixture(const benchmark::State& state)
        : bytes(generateFile(state))
    {
        QFile file(path);
        require(file.open(QIODevice::WriteOnly) && file.write(bytes) == bytes.size());
    }
};

void report(benchmark::State& state, const Fixture& fixture)
{
    state.SetBytesProcessed(state.iterations() * fixture.bytes.size());
}

/// The minimum cost of opening.
void readAndHash(benchmark::State& state)
{
    const Fixture fixture(state);
    for (auto _ : state) {
        QByteArray bytes;
        require(readWhole(fixture.path, bytes));
        benchmark::DoNotOptimize(sha256(bytes));
    }
    report(state, fixture);
}

void open(benchmark::State& state)
{
    const Fixture fixture(state);
    for (auto _ : state) {
        auto store = std::make_unique<SettingsStore>();
        require(store->load(fixture.path));
        state.PauseTiming(); // destroying the tree isn't part of opening
        store.reset();
        state.ResumeTiming();
    }
    report(state, fixture);
}

/// The minimum cost of a save: four reads, four hashes, a copy and a replacement. Both are
/// flushed.
void saveFloor(benchmark::State& state)
{
    const Fixture fixture(state);
    const QString copy = fixture.path + u".bak"_s;
    for (auto _ : state) {
        QByteArray bytes;
        for (int i = 0; i < 4; ++i) {
            require(readWhole(fixture.path, bytes));
            benchmark::DoNotOptimize(sha256(bytes));
        }
        QFile copied(copy);
        require(QFile::copy(fixture.path, copy) && copied.open(QIODevice::ReadWrite) &&
                flushToDisk(copied));
        QSaveFile file(fixture.path);
        require(file.open(QIODevice::WriteOnly) && file.write(bytes) == bytes.size() &&
                file.flush() && flushToDisk(file) && file.commit());
        state.PauseTiming();
        require(QFile::remove(copy));
        state.ResumeTiming();
    }
    report(state, fixture);
}

void save(benchmark::State& state)
{
    const Fixture fixture(state);
    SettingsStore store;
    require(store.load(fixture.path));
    XsdtNode& node = firstInteger(store.document);
    for (auto _ : state) {
        node.value = node.value == u"1"_s ? u"2"_s : u"1"_s;
        QString error;
        QString backup;
        if (!store.save(&error, &backup)) {
            qFatal("%s", qPrintable(error));
        }
        state.PauseTiming();
        require(QFile::remove(backup));
        state.ResumeTiming();
    }
    report(state, fixture);
}

void sizes(benchmark::internal::Benchmark* benchmark)
{
    benchmark->Arg(10'000)->Arg(100'000)->Arg(1'000'000)->Unit(benchmark::kMillisecond);
    benchmark->UseRealTime();
}

BENCHMARK(readAndHash)->Apply(sizes);
BENCHMARK(open)->Apply(sizes);
BENCHMARK(saveFloor)->Apply(sizes);
BENCHMARK(save)->Apply(sizes);

} // namespace

BENCHMARK_MAIN();
