// SPDX-License-Identifier: MIT
#include "document/XsdtDocument.h"
#include "schema/DeletePolicy.h"
#include "schema/SettingsSchema.h"
#include "views/health/HealthView.h"
#include "views/model/SettingsModel.h"
#include "views/search/SearchView.h"

#include <QtWidgets>
#include <benchmark/benchmark.h>

using namespace kse;
using namespace Qt::StringLiterals;

namespace {

/// Lays out and paints everything that has changed in `page`, as the user gets to see it.
void paint(QWidget& page)
{
    QCoreApplication::processEvents();
    benchmark::DoNotOptimize(page.grab());
}

/// Outside the measured time: what was let go of dies.
void bury(benchmark::State& state)
{
    state.PauseTiming();
    QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    state.ResumeTiming();
}

/// The least that a row needs: a name, an editor and a button, in colours of their own.
QWidget* makePlainRow(int number, QWidget* parent)
{
    auto* row = new QWidget(parent);
    QPalette palette;
    palette.setColor(QPalette::WindowText, Qt::darkGray);
    auto* name = new QLabel(u"Setting %1"_s.arg(number), row);
    name->setPalette(palette);
    auto* edit = new QLineEdit(u"value %1"_s.arg(number), row);
    auto* button = new QPushButton(u"\u21BA"_s, row);
    button->setPalette(palette);
    auto* layout = new QHBoxLayout(row);
    layout->addWidget(name, 3);
    layout->addWidget(edit, 2);
    layout->addWidget(button);
    return row;
}

void plainRows(benchmark::State& state)
{
    QScrollArea page;
    page.setWidgetResizable(true);
    page.resize(1200, 820);
    page.show();
    for (auto _ : state) {
        auto* container = new QWidget;
        auto* layout = new QVBoxLayout(container);
        for (int i = 0; i < state.range(0); ++i) {
            layout->addWidget(makePlainRow(i, container));
        }
        page.setWidget(container);
        paint(page);
        state.PauseTiming();
        delete page.takeWidget();
        state.ResumeTiming();
    }
}

QByteArray contentOf(const char* path)
{
    QFile file(QStringLiteral(KSE_SOURCE_DIR) + QLatin1String(path));
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

/// A file with the tables that describe it.
struct OpenFile
{
    explicit OpenFile(const QByteArray& bytes)
    {
        const QByteArray overlay = contentOf("/resources/schema/overlay.json");
        if (!document.parse(bytes) ||
            !schema.load(contentOf("/resources/schema/globals.json"), overlay) ||
            !policy.load(overlay)) {
            qFatal("the file or the tables don't parse");
        }
        model.setPolicy(&policy);
        model.setDocument(&document);
    }

    XsdtDocument document;
    SettingsSchema schema;
    DeletePolicy policy;
    SettingsModel model;
};

/// The best hundred of all settings of the sample that hold an "e".
void searchPage(benchmark::State& state)
{
    OpenFile file(contentOf("/examples/core-001-pxi.settings"));
    SearchView view(&file.model, &file.schema);
    view.setDocument(&file.document);
    view.resize(1200, 820);
    view.show();
    for (auto _ : state) {
        view.setQuery(u"e"_s);
        paint(view);
        state.PauseTiming();
        view.setQuery({});
        state.ResumeTiming();
        bury(state);
    }
}

/// A check with one finding for each two settings.
void healthPage(benchmark::State& state)
{
    QByteArray content;
    for (int i = 0; i < state.range(0); ++i) {
        const QByteArray value = R"(<v k="Key)" + QByteArray::number(i) + R"(" t="s" v=""/>)";
        content += value + value;
    }
    OpenFile file(R"(<xsdt version="1.0">)" + content + "</xsdt>");
    HealthView view(&file.model, &file.schema);
    view.setDocument(&file.document);
    view.resize(1200, 820);
    view.show();
    for (auto _ : state) {
        view.run();
        paint(view);
        bury(state);
    }
}

BENCHMARK(plainRows)->Arg(100)->Unit(benchmark::kMillisecond);
BENCHMARK(searchPage)->Unit(benchmark::kMillisecond);
BENCHMARK(healthPage)->Arg(200)->Arg(10'000)->Unit(benchmark::kMillisecond);

} // namespace

int main(int argc, char** argv)
{
    qputenv("QT_QPA_PLATFORM", "offscreen");
    const QApplication application(argc, argv);
    QApplication::setStyle(u"Fusion"_s);
    benchmark::Initialize(&argc, argv);
    benchmark::RunSpecifiedBenchmarks();
    return 0;
}
