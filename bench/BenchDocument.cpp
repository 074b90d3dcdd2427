// SPDX-License-Identifier: MIT
#include "BenchSupport.h"
#include "document/XsdtReader.h"
#include "document/XsdtWriter.h"

#include <QXmlStreamReader>
#ifdef KSE_HAVE_PUGIXML
#include <pugixml.hpp>
#endif
#ifdef __GLIBC__
#include <malloc.h>
#endif

#include <limits>
#include <optional>

using namespace kse;

namespace {

using Shape = GenerateOptions::Shape;

void report(benchmark::State& state, const QByteArray& file)
{
    using benchmark::Counter;
    const auto values = static_cast<double>(state.range(0));
    state.counters["s/value"] =
        Counter(values, Counter::kIsIterationInvariantRate | Counter::kInvert);
    state.counters["file B/value"] = static_cast<double>(file.size()) / values;
}

/// Bytes on the heap at the moment; 0 if the system can't tell.
double heapBytes()
{
#ifdef __GLIBC__
    const auto info = mallinfo2();
    return static_cast<double>(info.uordblks + info.hblkhd);
#else
    return 0;
#endif
}

/// Makes the allocator join small freed pieces, for which the next large request would pay.
void settleHeap()
{
    benchmark::DoNotOptimize(QByteArray(1'000'000, Qt::Uninitialized).data());
}

/// Times `read` on a new tree each time, without destroying it, and reports the tree's size.
template <typename Tree, typename Read>
void measureRead(benchmark::State& state, const QByteArray& file, Read&& read)
{
    double treeBytes = 0;
    for (auto _ : state) {
        state.PauseTiming();
        const double before = heapBytes();
        std::optional<Tree> tree(std::in_place);
        state.ResumeTiming();
        require(read(*tree));
        state.PauseTiming();
        treeBytes = heapBytes() - before;
        tree.reset();
        settleHeap();
        state.ResumeTiming();
    }
    report(state, file);
    state.counters["tree B/value"] = treeBytes / static_cast<double>(state.range(0));
}

void measureReadTree(benchmark::State& state, const QByteArray& file)
{
    measureRead<XsdtDocument>(state, file, [&](XsdtDocument& document) {
        return readXsdt(QString::fromUtf8(file), document, nullptr);
    });
}

void readTree(benchmark::State& state)
{
    measureReadTree(state, generateFile(state));
}

void readWide(benchmark::State& state)
{
    measureReadTree(state, generateFile(state, Shape::Wide));
}

void parseWithLayoutCheck(benchmark::State& state)
{
    const QByteArray file = generateFile(state);
    measureRead<XsdtDocument>(state, file, [&](XsdtDocument& document) {
        return document.parse(file) && document.defaultLayout;
    });
}

/// Times `work` on the parsed file.
template <typename Work>
void measureParsed(benchmark::State& state, const QByteArray& file, Work&& work)
{
    XsdtDocument document;
    require(document.parse(file));
    for (auto _ : state) {
        benchmark::DoNotOptimize(work(document));
    }
    report(state, file);
}

void write(benchmark::State& state)
{
    measureParsed(state, generateFile(state),
                  [](const XsdtDocument& document) { return document.serialize(); });
}

void writeWide(benchmark::State& state)
{
    measureParsed(state, generateFile(state, Shape::Wide),
                  [](const XsdtDocument& document) { return document.serialize(); });
}

void walkPendingCount(benchmark::State& state)
{
    measureParsed(state, generateFile(state),
                  [](const XsdtDocument& document) { return document.pendingCount(); });
}

void measureDestroy(benchmark::State& state, const QByteArray& file)
{
    for (auto _ : state) {
        state.PauseTiming();
        std::optional<XsdtDocument> document(std::in_place);
        require(document->parse(file));
        state.ResumeTiming();
        document.reset();
        settleHeap();
    }
    report(state, file);
}

void destroy(benchmark::State& state)
{
    measureDestroy(state, generateFile(state));
}

void destroyWide(benchmark::State& state)
{
    measureDestroy(state, generateFile(state, Shape::Wide));
}

void readAndWrite(benchmark::State& state)
{
    const QByteArray file = generateFile(state);
    measureRead<XsdtDocument>(state, file, [&](XsdtDocument& document) {
        return readXsdt(QString::fromUtf8(file), document, nullptr) &&
               document.serialize().size() == file.size();
    });
}

/// Fills the same nodes as our reader.
bool readByQt(const QByteArray& file, XsdtDocument& document)
{
    QXmlStreamReader xml(file);
    XsdtNode* group = &document.root;
    while (!xml.atEnd()) {
        const auto token = xml.readNext();
        if (token == QXmlStreamReader::EndElement) {
            group = group->parent;
        }
        if (token != QXmlStreamReader::StartElement || xml.name() == u"xsdt") {
            continue;
        }
        const QXmlStreamAttributes attributes = xml.attributes();
        auto node = std::make_unique<XsdtNode>();
        node->key = attributes.value(QLatin1String("k")).toString();
        if (xml.name() == u"i") {
            group = group->append(std::move(node));
            continue;
        }
        node->kind = XsdtNode::Kind::Value;
        node->typeCode = attributes.value(QLatin1String("t")).front();
        node->selfClosing = attributes.hasAttribute(QLatin1String("v"));
        node->textForm = !node->selfClosing;
        node->value = attributes.value(QLatin1String("v")).toString();
        const QString text = xml.readElementText();
        if (node->textForm) {
            node->value = text;
        }
        node->original = node->value;
        group->append(std::move(node));
    }
    return !xml.hasError();
}

void readQXmlStreamReader(benchmark::State& state)
{
    const QByteArray file = generateFile(state);
    measureRead<XsdtDocument>(state, file,
                              [&](XsdtDocument& document) { return readByQt(file, document); });
}

#ifdef KSE_HAVE_PUGIXML
pugi::xml_parse_result loadPugixml(const QByteArray& file, pugi::xml_document& document)
{
    return document.load_buffer(file.constData(), static_cast<std::size_t>(file.size()));
}

void readPugixml(benchmark::State& state)
{
    const QByteArray file = generateFile(state);
    measureRead<pugi::xml_document>(state, file, [&](pugi::xml_document& document) {
        return bool(loadPugixml(file, document));
    });
}

void readAndWritePugixml(benchmark::State& state)
{
    struct Writer : pugi::xml_writer
    {
        QByteArray bytes;
        void write(const void* data, std::size_t size) override
        {
            bytes.append(static_cast<const char*>(data), static_cast<qsizetype>(size));
        }
    };
    const QByteArray file = generateFile(state);
    measureRead<pugi::xml_document>(state, file, [&](pugi::xml_document& document) {
        Writer writer;
        const bool loaded = bool(loadPugixml(file, document));
        document.save(writer, "", pugi::format_raw);
        return loaded && !writer.bytes.isEmpty();
    });
}
#endif

void sizes(benchmark::internal::Benchmark* bench)
{
    bench->Arg(10000)->Arg(100000)->Arg(1000000)->Unit(benchmark::kMillisecond);
}

BENCHMARK(readTree)->Apply(sizes);
BENCHMARK(readQXmlStreamReader)->Apply(sizes);
#ifdef KSE_HAVE_PUGIXML
BENCHMARK(readPugixml)->Apply(sizes);
BENCHMARK(readAndWritePugixml)->Apply(sizes);
#endif
BENCHMARK(readAndWrite)->Apply(sizes);
BENCHMARK(parseWithLayoutCheck)->Apply(sizes);
BENCHMARK(write)->Apply(sizes);
BENCHMARK(destroy)->Apply(sizes);
BENCHMARK(walkPendingCount)->Apply(sizes);
BENCHMARK(readWide)->Apply(sizes);
BENCHMARK(writeWide)->Apply(sizes);
BENCHMARK(destroyWide)->Apply(sizes);

} // namespace

int main(int argc, char** argv)
{
#ifdef __GLIBC__
    // Keep freed memory in all benchmarks: the kernel takes longer to provide clean pages than any
    // of them takes to fill the pages.
    mallopt(M_MMAP_MAX, 0);
    mallopt(M_TRIM_THRESHOLD, std::numeric_limits<int>::max());
#endif
    benchmark::Initialize(&argc, argv);
    benchmark::RunSpecifiedBenchmarks();
    return 0;
}
