// SPDX-License-Identifier: MIT
#include "BenchSupport.h"
#include "document/Leaves.h"
#include "schema/DeletePolicy.h"
#include "schema/SettingsSchema.h"
#include "views/cleanup/CleanupView.h"
#include "views/cleanup/UnusedModulesView.h"
#include "views/compare/CompareView.h"
#include "views/health/HealthView.h"
#include "views/model/SettingsFilterProxy.h"
#include "views/model/SettingsModel.h"
#include "views/preferences/PreferencesView.h"
#include "views/search/SearchView.h"

#include <QApplication>
#include <QFile>
#include <QTemporaryDir>
#include <QTreeView>

#include <memory>

using namespace kse;
using namespace Qt::StringLiterals;

namespace {

/// All pages of the window on one document, which is compared with a copy of it.
struct Pages
{
    explicit Pages(const benchmark::State& state)
    {
        const QByteArray overlay = sourceFile("resources/schema/overlay.json");
        require(schema.load(sourceFile("resources/schema/globals.json"), overlay) &&
                policy.load(overlay));
        generateDocument(state, document);
        model.setPolicy(&policy);
        model.setDocument(&document);
        proxy.setSourceModel(&model);
        tree.setModel(&proxy);
        tree.setUniformRowHeights(true);
        preferences.setDocument(&document);
        search.setDocument(&document);
        search.setQuery(u"a"_s);
        unused.setDocument(&document);
        health.setDocument(&document);
        health.run();
        cleanup.setDocument(&document);
        compare.setDocument(&document, QString());
        const QString other = folder.filePath(u"other.settings"_s);
        QFile file(other);
        require(file.open(QIODevice::WriteOnly) && file.write(document.serialize()) > 0);
        file.close();
        require(compare.compareWith(other));
        for (XsdtNode* node : valuesOf(document.root)) {
            if (node->typeCode == u's') {
                texts.append(node);
            }
        }
    }

    QTemporaryDir folder;
    SettingsSchema schema;
    DeletePolicy policy;
    XsdtDocument document;
    SettingsModel model;
    SettingsFilterProxy proxy;
    QTreeView tree;
    PreferencesView preferences{&model, &schema};
    SearchView search{&model, &schema};
    UnusedModulesView unused{&model, &schema};
    HealthView health{&model, &schema};
    CleanupView cleanup{&model};
    CompareView compare{&model};
    QList<XsdtNode*> texts;
};

void plainWalk(benchmark::State& state)
{
    Pages pages(state);
    measure(state, [&] {
        qsizetype changed = 0;
        walkTree(pages.document.root, [&](const XsdtNode& node) {
            changed += node.isModified() || node.markedForDeletion;
            return Walk::Into;
        });
        return changed;
    });
}

/// Without the work that the event loop does later: painting, and the new comparison.
void oneEdit(benchmark::State& state)
{
    Pages pages(state);
    int number = 0;
    measure(state,
            [&] { return pages.model.setValue(pages.texts.first(), QString::number(++number)); });
}

void manyEdits(benchmark::State& state)
{
    Pages pages(state);
    const qsizetype count = std::min<qsizetype>(100'000, pages.texts.size());
    int number = 0;
    measure(state, [&] {
        const SettingsModel::Batch batch(pages.model);
        ++number;
        for (qsizetype i = 0; i < count; ++i) {
            (void)pages.model.setValue(pages.texts.at(i), QString::number(number));
        }
        return number;
    });
    state.counters["edits"] = double(count);
}

/// Marks up to 10,000 entries and undoes the marks.
void manyMarks(benchmark::State& state)
{
    Pages pages(state);
    QList<XsdtNode*> entries;
    walkTree(pages.document.root, [&](XsdtNode& node) {
        const bool isEntry = entries.size() < 10'000 &&
                             pages.policy.decide(&node).level != DeleteLevel::Never &&
                             node.kind == XsdtNode::Kind::Value;
        if (isEntry) {
            entries.append(&node);
        }
        return entries.size() < 10'000 ? Walk::Into : Walk::Stop;
    });
    measure(state, [&] {
        {
            const SettingsModel::Batch batch(pages.model);
            for (XsdtNode* node : entries) {
                (void)pages.model.markForDeletion(node);
            }
        }
        const SettingsModel::Batch batch(pages.model);
        for (XsdtNode* node : entries) {
            pages.model.undoDeletion(node);
        }
        return entries.size();
    });
    state.counters["marks"] = double(entries.size());
}

/// An edit, and what the page of the comparison then does, while the two files differ in one value
/// of each of many groups.
void editBesideDifferences(benchmark::State& state)
{
    const auto content = [&state](const char* value) {
        QByteArray bytes = "<xsdt>\n";
        for (qint64 i = 0; i < state.range(0); ++i) {
            bytes +=
                R"(<i k=")" + QByteArray::number(i) + R"("><v k="a" t="s">)" + value + "</v></i>\n";
        }
        return bytes + "</xsdt>";
    };
    QTemporaryDir folder;
    const QString other = folder.filePath(u"other.settings"_s);
    QFile file(other);
    require(file.open(QIODevice::WriteOnly) && file.write(content("other")) > 0);
    file.close();
    XsdtDocument document;
    require(document.parse(content("this")));
    SettingsModel model;
    model.setDocument(&document);
    CompareView view(&model);
    view.setDocument(&document, QString());
    view.show();
    require(view.compareWith(other));
    XsdtNode* node = valuesOf(document.root).constFirst();
    int number = 0;
    measure(state, [&] {
        require(model.setValue(node, QString::number(++number)));
        QCoreApplication::processEvents();
        return number;
    });
}

KSE_BENCHMARK(plainWalk)->Unit(benchmark::kMillisecond);
KSE_BENCHMARK(oneEdit)->Unit(benchmark::kMillisecond);
KSE_BENCHMARK(manyEdits)->Unit(benchmark::kMillisecond);
KSE_BENCHMARK(manyMarks)->Unit(benchmark::kMillisecond);
BENCHMARK(editBesideDifferences)->Arg(10'000)->Arg(80'000)->Unit(benchmark::kMillisecond);

} // namespace

int main(int argc, char** argv)
{
    qputenv("QT_QPA_PLATFORM", "offscreen");
    QApplication application(argc, argv);
    benchmark::Initialize(&argc, argv);
    benchmark::RunSpecifiedBenchmarks();
    return 0;
}
