// SPDX-License-Identifier: MIT
#include "SettingsGenerator.h"
#include "document/TreeWalk.h"
#include "document/XsdtValueType.h"
#include "session/DurableFile.h"
#include "session/SettingsStore.h"
#include "session/VerifiedFile.h"

#include <QCoreApplication>
#include <QFile>
#include <QSaveFile>
#include <QTemporaryDir>

#include <memory>

#include <benchmark/benchmark.h>

using namespace kse;
using namespace Qt::StringLiterals;

namespace {

/// A large file of `state.range(0)` values, in a folder of its own beneath the one that TMPDIR
/// names: the disk's part in a save can be seen by naming one in memory.
struct Fixture
{
    QTemporaryDir dir;
    QString path = dir.filePath(u"core-001-pxi.settings"_s);
    QByteArray bytes;

    explicit Fixture(const benchmark::State& state)
        : bytes(generateSettings({GenerateOptions::Shape::Values, state.range(0)}))
    {
        QFile file(path);
        require(file.open(QIODevice::WriteOnly) && file.write(bytes) == bytes.size());
    }

    static void require(bool done)
    {
        if (!done) {
            qFatal("A step failed, so its time means nothing.");
        }
    }
};

void report(benchmark::State& state, const Fixture& fixture)
{
    state.SetBytesProcessed(state.iterations() * fixture.bytes.size());
}

/// The least that opening can cost.
void readAndHash(benchmark::State& state)
{
    const Fixture fixture(state);
    for (auto _ : state) {
        QByteArray bytes;
        Fixture::require(readWhole(fixture.path, bytes));
        benchmark::DoNotOptimize(sha256(bytes));
    }
    report(state, fixture);
}

void open(benchmark::State& state)
{
    const Fixture fixture(state);
    for (auto _ : state) {
        auto store = std::make_unique<SettingsStore>();
        Fixture::require(store->load(fixture.path));
        state.PauseTiming(); // the end of the tree is none of its opening
        store.reset();
        state.ResumeTiming();
    }
    report(state, fixture);
}

/// The least that a save can cost: three reads, three hashes, a copy and a replacement, each of
/// the two with its flush.
void saveFloor(benchmark::State& state)
{
    const Fixture fixture(state);
    const QString copy = fixture.path + u".bak"_s;
    for (auto _ : state) {
        QByteArray bytes;
        for (int i = 0; i < 3; ++i) {
            Fixture::require(readWhole(fixture.path, bytes));
            benchmark::DoNotOptimize(sha256(bytes));
        }
        QFile copied(copy);
        Fixture::require(QFile::copy(fixture.path, copy) && copied.open(QIODevice::ReadWrite) &&
                         flushToDisk(copied));
        QSaveFile file(fixture.path);
        Fixture::require(file.open(QIODevice::WriteOnly) && file.write(bytes) == bytes.size() &&
                         file.flush() && flushToDisk(file) && file.commit());
        state.PauseTiming();
        Fixture::require(QFile::remove(copy));
        state.ResumeTiming();
    }
    report(state, fixture);
}

void save(benchmark::State& state)
{
    const Fixture fixture(state);
    SettingsStore store;
    Fixture::require(store.load(fixture.path));
    XsdtNode* const node = walkTree(store.document.root, [](const XsdtNode& candidate) {
        return candidate.typeCode == XsdtValueType::Integer ? Walk::Stop : Walk::Into;
    });
    Fixture::require(node);
    for (auto _ : state) {
        node->value = node->value == u"1"_s ? u"2"_s : u"1"_s;
        QString error;
        QString backup;
        if (!store.save(&error, &backup)) {
            qFatal("%s", qPrintable(error));
        }
        state.PauseTiming();
        Fixture::require(QFile::remove(backup));
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
