// SPDX-License-Identifier: MIT
#include "SettingsGenerator.h"

#include <QCommandLineParser>
#include <QCoreApplication>
#include <QFile>

#include <cstdio>
#include <optional>

using namespace kse;

namespace {

/// The options on the command line; nothing unless they are exactly one shape with a valid number.
std::optional<GenerateOptions> readOptions(const QCommandLineParser& parser)
{
    using Shape = GenerateOptions::Shape;
    const QList<std::pair<QString, Shape>> shapes = {
        {QStringLiteral("sample"), Shape::Sample},
        {QStringLiteral("values"), Shape::Values},
        {QStringLiteral("wide"), Shape::Wide},
        {QStringLiteral("deep"), Shape::Deep},
    };
    std::optional<GenerateOptions> result;
    for (const auto& [name, shape] : shapes) {
        if (!parser.isSet(name)) {
            continue;
        }
        bool isNumber = false;
        const qlonglong count = parser.value(name).toLongLong(&isNumber);
        const bool isInRange =
            shape == Shape::Sample ? count == 1 || count == 2 : count >= 0 && count <= 100'000'000;
        if (result || !isNumber || !isInRange) {
            return std::nullopt;
        }
        result = GenerateOptions{shape, static_cast<qsizetype>(count)};
    }
    return result;
}

} // namespace

int main(int argc, char** argv)
{
    const QCoreApplication app(argc, argv);
    QCommandLineParser parser;
    parser.setApplicationDescription(
        QStringLiteral("Writes a made-up settings file, the same bytes at every run."));
    parser.addHelpOption();
    parser.addOptions({
        {QStringLiteral("sample"),
         QStringLiteral("The sample of a user's file, of instance 1 or 2."),
         QStringLiteral("instance")},
        {QStringLiteral("values"), QStringLiteral("A file of that many values."),
         QStringLiteral("number")},
        {QStringLiteral("wide"), QStringLiteral("One group of that many values."),
         QStringLiteral("number")},
        {QStringLiteral("deep"), QStringLiteral("That many groups, one inside the other."),
         QStringLiteral("number")},
    });
    parser.addPositionalArgument(QStringLiteral("file"), QStringLiteral("File to write."));
    parser.process(app);

    const std::optional<GenerateOptions> options = readOptions(parser);
    if (!options || parser.positionalArguments().size() != 1) {
        std::fputs("Give one of the options with its number, and one file. See --help.\n", stderr);
        return 2;
    }
    QFile file(parser.positionalArguments().constFirst());
    const QByteArray bytes = generateSettings(*options);
    if (!file.open(QIODevice::WriteOnly) || file.write(bytes) != bytes.size() || !file.flush()) {
        std::fprintf(stderr, "Cannot write %s: %s\n", qPrintable(file.fileName()),
                     qPrintable(file.errorString()));
        return 1;
    }
    return 0;
}
