// SPDX-License-Identifier: MIT
#include "BenchSupport.h"
#include "schema/DeletePolicy.h"
#include "schema/SettingsSchema.h"
#include "views/health/HealthView.h"
#include "views/model/SettingsModel.h"
#include "views/search/SearchView.h"

#include <QtWidgets>

using namespace kse;
using namespace Qt::StringLiterals;

namespace {

/// Lays out and paints everything that has changed in `page`, which may create more rows later.
void paint(QWidget& page)
{
    QCoreApplication::sendPostedEvents();
    benchmark::DoNotOptimize(page.grab());
}

/// Destroys what was deleted later, outside the measured time.
void deleteDeferred(benchmark::State& state)
{
    state.PauseTiming();
    QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    state.ResumeTiming();
}

/// The minimum of a row: a name, an editor and a button, with their own colours.
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

/// A file with the tables that describe it.
struct OpenFile
{
    explicit OpenFile(const QByteArray& bytes)
    {
        const QByteArray overlay = sourceFile("resources/schema/overlay.json");
        require(document.parse(bytes) &&
                schema.load(sourceFile("resources/schema/globals.json"), overlay) &&
                policy.load(overlay));
        model.setPolicy(&policy);
        model.setDocument(&document);
    }

    XsdtDocument document;
    SettingsSchema schema;
    DeletePolicy policy;
    SettingsModel model;
};

/// Shows the best hundred of the sample's settings that contain an "e".
void searchPage(benchmark::State& state)
{
    OpenFile file(sourceFile("examples/core-001-pxi.settings"));
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
        deleteDeferred(state);
    }
}

/// Checks a file with one finding for every two settings.
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
        deleteDeferred(state);
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
