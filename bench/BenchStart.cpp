// SPDX-License-Identifier: MIT
#include "SettingsGenerator.h"
#include "SettingsHome.h"
#include "app/MainWindow.h"
#include "app/ThemeManager.h"
#include "schema/DeletePolicy.h"
#include "schema/SettingsSchema.h"

#include <QApplication>
#include <QEvent>
#include <QProcess>
#include <QTimer>

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <ctime>
#include <memory>

// Starts itself many times, as the program and as an empty window, and prints Markdown tables. It
// needs Linux.

using namespace kse;
using namespace Qt::StringLiterals;

namespace {

double now()
{
    using namespace std::chrono;
    return duration<double, std::milli>(steady_clock::now().time_since_epoch()).count();
}

/// When each step ended, in milliseconds.
struct Steps
{
    double started = 0; ///< Taken by the process that started this one.
    double main = now();
    double application = 0;
    double window = 0;
};

/// Takes the time when the first window has been painted.
class Application : public QApplication
{
public:
    using QApplication::QApplication;

    bool notify(QObject* receiver, QEvent* event) override
    {
        // Checked first, because the event may delete the receiver.
        const auto* widget = qobject_cast<QWidget*>(receiver);
        m_sawPaint |= event->type() == QEvent::Paint && widget && widget->isWindow();
        ++m_depth;
        const bool handled = QApplication::notify(receiver, event);
        --m_depth;
        if (m_sawPaint && painted == 0 && m_depth == 0) {
            painted = now();
            used = 1e3 * double(std::clock()) / CLOCKS_PER_SEC;
        }
        return handled;
    }

    double painted = 0;
    double used = 0; ///< Processor time until then, in milliseconds.

private:
    int m_depth = 0;
    bool m_sawPaint = false;
};

QByteArray resource(const QString& path)
{
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

/// How long the tables take to load, in milliseconds.
double loadTables()
{
    const double start = now();
    SettingsSchema schema;
    DeletePolicy policy;
    const QByteArray overlay = resource(u":/schema/overlay.json"_s);
    if (!schema.load(resource(u":/schema/globals.json"_s), overlay) || !policy.load(overlay)) {
        qFatal("the tables don't load");
    }
    return now() - start;
}

/// An entry of /proc/self/smaps_rollup, in KiB.
double occupied(QByteArrayView name)
{
    const QList<QByteArray> lines = resource(u"/proc/self/smaps_rollup"_s).split('\n');
    for (const QByteArray& line : lines) {
        if (line.startsWith(name)) {
            return line.simplified().split(' ').value(1).toDouble();
        }
    }
    return 0;
}

/// Runs as the program, or as an empty window, and prints one line of figures.
int runStarted(int argc, char** argv, bool isProgram)
{
    Steps steps;
    steps.started = QByteArray(argv[2]).toDouble();
    Application application(argc, argv);
    steps.application = now();
    std::unique_ptr<QWidget> window;
    if (isProgram) {
        QApplication::setOrganizationName(u"KestraneSettingsStudio"_s);
        QApplication::setApplicationName(u"KestraneSettingsStudio"_s);
        ThemeManager::instance().init(true);
        auto main = std::make_unique<MainWindow>();
        main->startBanner(false, 100);
        window = std::move(main);
    } else {
        window = std::make_unique<QWidget>();
        window->resize(1100, 760);
    }
    steps.window = now();
    window->show();
    QTimer::singleShot(1000, &application, [&] {
        std::printf("%f %f %f %f %f %f %f %f %f\n", steps.main - steps.started,
                    steps.application - steps.main, steps.window - steps.application,
                    application.painted - steps.window, application.painted - steps.started,
                    application.used, occupied("Pss:"), occupied("Rss:"),
                    isProgram ? loadTables() : 0.0);
        QCoreApplication::exit(application.painted > 0 ? 0 : 1);
    });
    return QApplication::exec();
}

using Figures = QList<double>;

Figures start(const QString& mode)
{
    QProcess process;
    process.setStandardErrorFile(QProcess::nullDevice()); // warnings of the platform
    process.start(QCoreApplication::applicationFilePath(), {mode, QString::number(now(), 'f', 3)});
    if (!process.waitForFinished() || process.exitCode() != 0) {
        qFatal("the started process failed");
    }
    Figures figures;
    const QList<QByteArray> words = process.readAllStandardOutput().simplified().split(' ');
    for (const QByteArray& word : words) {
        figures.append(word.toDouble());
    }
    return figures;
}

/// The median of each figure.
Figures medians(const QList<Figures>& runs)
{
    Figures result;
    for (qsizetype i = 0; i < runs.constFirst().size(); ++i) {
        Figures all;
        for (const Figures& run : runs) {
            all.append(run.at(i));
        }
        std::sort(all.begin(), all.end());
        result.append(all.at(all.size() / 2));
    }
    return result;
}

} // namespace

int main(int argc, char** argv)
{
    if (argc == 3) {
        return runStarted(argc, argv, qstrcmp(argv[1], "program") == 0);
    }
    const QCoreApplication application(argc, argv);
    const QTemporaryDir home;
    useAsHome(home);
    if (!qEnvironmentVariableIsSet("QT_QPA_PLATFORM")) {
        qputenv("QT_QPA_PLATFORM", "offscreen");
    }
    placeSettings(generateSettings({}));
    constexpr int runs = 15;
    QList<Figures> programs;
    QList<Figures> empties;
    start(u"program"_s); // the first start brings the files into memory
    for (int i = 0; i < runs; ++i) {
        programs.append(start(u"program"_s));
        empties.append(start(u"empty"_s));
    }
    const Figures program = medians(programs);
    const Figures empty = medians(empties);
    std::puts("| | Program | Empty window | Ratio |\n|---|---|---|---|");
    const char* const rows[] = {
        "Start to `main`",   "`QApplication`",           "Window made, sample opened",
        "Shown and painted", "**Start to first paint**", "Processor's time until then"};
    for (int i = 0; i < 6; ++i) {
        const QByteArray ratio =
            empty[i] < 1 ? "-" : QByteArray::number(program[i] / empty[i], 'f', 1);
        std::printf("| %s | %.1f ms | %.1f ms | %s |\n", rows[i], program[i], empty[i],
                    ratio.constData());
    }
    std::printf("| Memory at rest, PSS | %.1f MB | %.1f MB | %.1f |\n", program[6] / 1024,
                empty[6] / 1024, program[6] / empty[6]);
    std::printf("| Memory at rest, RSS | %.1f MB | %.1f MB | %.1f |\n", program[7] / 1024,
                empty[7] / 1024, program[7] / empty[7]);
    std::printf("\nLoading the tables again takes %.1f ms.\n", program[8]);
    return 0;
}
