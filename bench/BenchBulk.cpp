// SPDX-License-Identifier: MIT
#include "GeneratedDocument.h"
#include "document/Leaves.h"
#include "document/TreeWalk.h"
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

QByteArray table(const char* name)
{
    QFile file(QStringLiteral(KSE_SOURCE_DIR "/resources/schema/") + QLatin1String(name));
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

/// Every page of the window on one document, compared with a copy of it.
struct Pages
{
    explicit Pages(benchmark::State& state)
    {
        if (!schema.load(table("globals.json"), table("overlay.json")) ||
            !policy.load(table("overlay.json"))) {
            state.SkipWithError("the tables can't be read");
        }
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
        if (!file.open(QIODevice::WriteOnly) || file.write(document.serialize()) < 0) {
            state.SkipWithError("the copy can't be written");
        }
        file.close();
        if (!compare.compareWith(other)) {
            state.SkipWithError("the copy can't be compared");
        }
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

/// Without what the event loop does later: painting, and the page that compares anew.
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

/// Marks up to 10,000 entries and takes the marks back.
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

KSE_BENCHMARK(plainWalk)->Unit(benchmark::kMillisecond);
KSE_BENCHMARK(oneEdit)->Unit(benchmark::kMillisecond);
KSE_BENCHMARK(manyEdits)->Unit(benchmark::kMillisecond);
KSE_BENCHMARK(manyMarks)->Unit(benchmark::kMillisecond);

} // namespace

int main(int argc, char** argv)
{
    qputenv("QT_QPA_PLATFORM", "offscreen");
    QApplication application(argc, argv);
    benchmark::Initialize(&argc, argv);
    benchmark::RunSpecifiedBenchmarks();
    return 0;
}
