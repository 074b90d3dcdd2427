// SPDX-License-Identifier: MIT
#include "BenchSupport.h"
#include "session/SettingsStore.h"

#include <QCoreApplication>
#include <QFile>
#include <QLocale>
#include <QTemporaryDir>
#include <malloc.h>
#include <pugixml.hpp>
#include <sys/wait.h>
#include <unistd.h>

#include <cstdio>

// Measures the resident memory of processes, for which it needs Linux. Prints a Markdown table.

using namespace kse;
using namespace Qt::StringLiterals;

namespace {

/// An entry of /proc/self/status, in bytes.
double statusOf(QByteArrayView name)
{
    QFile file(u"/proc/self/status"_s);
    require(file.open(QIODevice::ReadOnly));
    for (const QByteArray& line : file.readAll().split('\n')) {
        if (line.startsWith(name)) {
            return line.simplified().split(' ').value(1).toDouble() * 1024;
        }
    }
    return 0;
}

struct Memory
{
    double atRest = 0; ///< In use after the work, once the allocator has freed what it can.
    double peak = 0;   ///< The most in use at any time.
};

/// The memory that `work` adds to a separate process. Its result is kept until that is measured.
template <typename Work>
Memory measure(Work&& work)
{
    int ends[2];
    require(pipe(ends) == 0);
    const pid_t child = fork();
    if (child == 0) {
        const double before = statusOf("VmRSS:");
        const auto kept = work();
        malloc_trim(0);
        const Memory memory{statusOf("VmRSS:") - before, statusOf("VmHWM:") - before};
        require(write(ends[1], &memory, sizeof memory) == sizeof memory);
        _exit(0);
    }
    Memory memory;
    require(child > 0 && read(ends[0], &memory, sizeof memory) == sizeof memory &&
            waitpid(child, nullptr, 0) == child);
    close(ends[0]);
    close(ends[1]);
    return memory;
}

std::unique_ptr<SettingsStore> open(const QString& path)
{
    auto store = std::make_unique<SettingsStore>();
    require(store->load(path));
    return store;
}

void measureTree(const QString& path, qsizetype values)
{
    const Memory peer = measure([&] {
        auto document = std::make_unique<pugi::xml_document>();
        require(bool(document->load_file(path.toLocal8Bit().constData())));
        return document;
    });
    const Memory opened = measure([&] { return open(path); });
    const Memory saved = measure([&] {
        auto store = open(path);
        firstInteger(store->document).value += u'1';
        QString backup;
        require(store->save(nullptr, &backup) && QFile::remove(backup));
        return store;
    });
    const auto bytes = [&](double all) {
        return all / double(values);
    };
    std::printf("| %s | %.0f B | %.0f B | %.2f | %.0f B | %.2f | %.0f B | %.2f |\n",
                qPrintable(QLocale(QLocale::English).toString(values)), bytes(peer.atRest),
                bytes(opened.atRest), opened.atRest / peer.atRest, bytes(opened.peak),
                opened.peak / peer.atRest, bytes(saved.peak), saved.peak / peer.atRest);
}

} // namespace

int main(int argc, char** argv)
{
    const QCoreApplication application(argc, argv);
    const QTemporaryDir folder;
    const QString path = folder.filePath(u"core-001-pxi.settings"_s);
    std::puts("| Values | pugixml's tree | Tree | to pugixml | Peak while opening | to pugixml | "
              "Peak while saving | to pugixml |\n|---|---|---|---|---|---|---|---|");
    for (const qsizetype values : {10'000, 100'000, 1'000'000}) {
        {
            QFile file(path);
            require(file.open(QIODevice::WriteOnly) &&
                    file.write(generateSettings({GenerateOptions::Shape::Values, values})) > 0);
        }
        malloc_trim(0);
        std::fflush(stdout); // before the fork, or both processes would print it
        measureTree(path, values);
    }
    return 0;
}
