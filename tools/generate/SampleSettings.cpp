// SPDX-License-Identifier: MIT
#include "SampleSettings.h"

#include "Element.h"
#include "Random.h"
#include "SampleTables.h"

#include <QList>

#include <array>

namespace kse {

namespace {

constexpr std::array registeredModules = {
    "Aldwater",  "Birkmoor",    "Corvane",  "Dunmere",   "Elmsworth", "Farrowby",
    "Glimmer",   "Hollinbrook", "Ironfell", "Jorvale",   "Kestmere",  "Larkfield",
    "Marrowin",  "Nethercote",  "Ostrand",  "Pellworth", "Quillon",   "Rathmoor",
    "Saltmarsh", "Thornwick",   "Umberley", "Vellacott", "Wexcombe",  "Yarrowdale",
};
/// Removed modules that left data behind.
constexpr std::array goneModules = {"Brackenfold", "Mossgate", "Oldharbour"};
/// Modules that keep their data at the top level of the file; the last one is gone.
constexpr std::array topLevelModules = {"Glimmer", "Thornwick", "Mossgate"};
/// A module's processes are named after it and after what they do.
constexpr std::array processTasks = {"Calibration", "Denoise", "Mask",
                                     "Merge",       "Profile", "Stretch"};
constexpr std::array scripts = {
    "AutoCrop",    "BatchRename",   "ColorCheck",   "DarkLibrary",   "FieldRotation",
    "FilterWheel", "FocusReport",   "HeaderEditor", "MosaicPlan",    "NightSummary",
    "PlateScale",  "Scintillation", "SkyQuality",   "Sortierläufer",
};
constexpr std::array words = {
    "",
    "Luminance",
    "H-alpha",
    "Oiii",
    "calibrated",
    "master_dark",
    "Größe",
    "sigma < 3.5",
    "R & G",
    "\"soft\"",
    "Andromède",
    "stars only",
    "Ana's standard",
    "星雲 🌌",
    "1/2",
};
constexpr std::array folders = {
    "/data/astro/2025/M 31",      "/data/astro/2026/NGC 7000 & IC 5070",
    "/home/ana/Bilder/Übersicht", "/media/ana/AURORA/old",
    "/data/astro/masters",
};

template <typename Array>
QByteArray pick(Random& random, const Array& texts)
{
    return texts[random.below(static_cast<quint32>(texts.size()))];
}

QByteArray number(quint32 n)
{
    return QByteArray::number(n);
}

QByteArray twoDigits(quint32 n)
{
    return QByteArray::number(n).rightJustified(2, '0');
}

QByteArray boolean(Random& random)
{
    return random.below(5) < 3 ? "true" : "false";
}

/// A number below `bound` with at most three decimals.
QByteArray real(Random& random, quint32 bound)
{
    return QByteArray::number(random.below(bound * 1000) / 1000.0, 'g', 7);
}

/// Reads a table in the form of `sampleTable`.
void readTable(Element& root, const QByteArray& table)
{
    Element* group = &root;
    for (const QByteArray& line : table.split('\n')) {
        if (line.startsWith('[')) {
            group = &root.group(line.mid(1, line.size() - 2));
        } else if (!line.isEmpty()) {
            // The name may contain spaces: the type is the first single letter.
            qsizetype at = line.indexOf(' ');
            while (at + 2 < line.size() && line[at + 2] != ' ') {
                at = line.indexOf(' ', at + 1);
            }
            group->set(line.left(at), line[at + 1], line.mid(at + 3));
        }
    }
}

void addGeometry(Element& process, Random& random)
{
    Element& geometry = process.group("Geometry");
    geometry.set("Height", 'i', number(200 + random.below(500)));
    geometry.set("Left", 'i', number(random.below(2200)));
    geometry.set("Rolled", 'b', boolean(random));
    geometry.set("Top", 'i', number(random.below(1100)));
    geometry.set("Width", 'i', number(300 + random.below(400)));
}

void addProcess(Element& interfaces, const QByteArray& name, Random& random)
{
    Element& process = interfaces.group(name);
    addGeometry(process, random);
    Element& parameters = process.group("Parameters");
    parameters.set("Amount", 'F', real(random, 2));
    parameters.set("Iterations", 'i', number(1 + random.below(60)));
    parameters.set("OverlayColor", 'u', number(0xFF000000U + random.below(0xFFFFFFU)));
    parameters.set("PreserveStars", 'b', boolean(random));
    parameters.set("Target", 's', pick(random, words));
    parameters.set("Threshold", 'f', real(random, 1));
    if (random.below(2) == 0) {
        parameters.set("OutputDirectory", 's', pick(random, folders));
        parameters.set("SampleSize", 'u', number(1U << random.below(10)));
    }
    if (random.below(3) == 0) {
        parameters.set("Curve", 'B',
                       sampleBlock(random, 120 + static_cast<int>(random.below(400))));
    }
    process.set("TrackView", 'b', boolean(random));
}

void addProcessRecords(Element& root, const QByteArray& process, Random& random)
{
    Element& options = root.group("Global/Preferences/ProcessInterface/" + process);
    options.set("AutoClose", 'b', boolean(random));
    options.set("Opacity", 'F', real(random, 1));
    if (random.below(4) != 0) {
        Element& counters = root.group("Global/Statistics/Process/" + process);
        counters.set("Executions", 'u', number(random.below(3000)));
        counters.set("LastExecuted", 't', sampleTime(random, 2025));
        counters.set("Launches", 'u', number(random.below(900)));
        counters.set("TotalSeconds", 'F', real(random, 90'000));
    }
}

/// Adds what a module saved under `container`, and to `root` the records about its processes.
void addModule(Element& root, const QByteArray& container, const QByteArray& name, Random& random)
{
    Element& module = container.isEmpty() ? root.group(name) : root.group(container + '/' + name);
    module.set("CacheLimit", 'u', number(64U << random.below(6)));
    module.set("LastUsed", 't', sampleTime(random, 2024));
    module.set("Profile", 's', pick(random, words));
    module.set("UseGPU", 'b', boolean(random));
    const quint32 first = random.below(processTasks.size());
    const quint32 count = 2 + random.below(4);
    for (quint32 i = 0; i < count; ++i) {
        const QByteArray process = name + processTasks[(first + i) % processTasks.size()];
        addProcess(module.group("Interfaces"), process, random);
        addProcessRecords(root, process, random);
    }
}

void addModules(Element& root, Random& random)
{
    Element& registry = root.group("Modules");
    for (const char* name : registeredModules) {
        registry.set(name, 's', QByteArray("@pxi_bin_dir/") + name + "-pxm.so");
        addModule(root, "ModuleData", name, random);
        Element& access = root.group("ModuleDataAccess").group(name);
        access.set("ReadGranted", 'b', boolean(random));
        access.set("Requested", 't', sampleTime(random, 2023));
    }
    registry.set("Wexcombe", 's', "/home/ana/src/modules/Wexcombe-pxm.so");
    for (const char* name : goneModules) {
        addModule(root, "ModuleData", name, random);
    }
    root.group("ModuleDataAccess/Oldharbour").set("ReadGranted", 'b', "true");
    for (const char* name : topLevelModules) {
        addModule(root, {}, name, random);
    }
    Element& ostrand = root.group("ModuleData/Ostrand");
    ostrand.set("TrainingModel", 'B', sampleBlock(random, 24'000));
    ostrand.set("Licence", 's', "Registered to: Ana <ana@example.org>\nSeats: 1\n\tvalid & paid\n");
}

void addScripts(Element& root, Random& random)
{
    for (const char* name : scripts) {
        Element& script = root.group("ScriptData").group(name);
        script.set("InputDirectory", 's', pick(random, folders));
        script.set("LastRun", 't', sampleTime(random, 2025));
        script.set("Pattern", 's', pick(random, words));
        script.set("Runs", 'u', number(random.below(200)));
        for (quint32 i = 1; i <= 6; ++i) {
            const QByteArray suffix = twoDigits(i);
            script.set("Filter" + suffix, 's', pick(random, words));
            script.set("Weight" + suffix, 'F', real(random, 4));
        }
    }
    root.group("ScriptData/AutoCrop").group("Presets");
    root.group("ScriptData/MosaicPlan").group("Panels").selfClosing = true;
    // The same key twice, as if a crash had left an old copy.
    Element& summary = root.group("ScriptData/NightSummary");
    summary.children.push_back({"Pattern", 's', "night_{date}.txt", {}, false});
}

void addHistories(Element& root, Random& random)
{
    Element& commands = root.group("CommandHistory");
    for (quint32 i = 1; i <= 80; ++i) {
        const QByteArray task = pick(random, processTasks);
        const QByteArray amount = real(random, 2);
        commands.set("Command" + twoDigits(i), 's',
                     task + " -a=" + amount + " --target=\"view&1\"");
    }
    commands.set("Command07", 's', "for x in <all> {\n\tprint 'x'\n}");
    Element& recent = root.group("MainWindow/RecentFiles");
    for (quint32 i = 1; i <= 24; ++i) {
        const QByteArray folder = pick(random, folders);
        recent.set("File" + twoDigits(i), 's', folder + "/light_" + number(1 + i * 7) + ".xisf");
    }
    Element& cache = root.group("Global/Preferences/ScriptEditor/Cache");
    for (quint32 i = 1; i <= 30; ++i) {
        Element& file = cache.group("File" + twoDigits(i));
        file.set("Bookmarks", 's', i % 5 == 0 ? "12,48,130" : "");
        file.set("Column", 'i', number(random.below(80)));
        file.set("Line", 'i', number(1 + random.below(900)));
        file.set("Path", 's', "/home/ana/src/scripts/tool_" + number(i) + ".js");
    }
}

void addLists(Element& root, Random& random)
{
    for (quint32 i = 0; i < 10; ++i) {
        const QByteArray module = registeredModules[(i * 5) % registeredModules.size()];
        Element& favorite = root.group("Global/FavoriteProcesses/" + twoDigits(i + 1));
        favorite.set("Icon", 's', "/opt/PixInsight/rsc/icons/" + module.toLower() + ".svg");
        favorite.set("Process", 's', module + pick(random, processTasks));
        Element& featured = root.group("Global/FeaturedScripts/" + twoDigits(i + 1));
        featured.set("Path", 's', QByteArray("@script_dir/") + scripts[i] + ".js");
        featured.set("Title", 's', scripts[i]);
    }
    root.group("MainWindow").set("Layout", 'B', sampleBlock(random, 1800));
    root.set("LastVersion", 's', "1.9.4");
    root.set("PixInsight", 's', "PixInsight Core (made-up build 1742)");
}

/// Another value of the same type, as if the user had worked on.
QByteArray changed(const Element& element, Random& random)
{
    switch (element.type) {
    case 'b':
        return element.value == "true" ? "false" : "true";
    case 'i':
        return QByteArray::number(element.value.toInt() + 1 + static_cast<int>(random.below(40)));
    case 'u':
        return number(element.value.toUInt() ^ (1U + random.below(200)));
    case 'F':
    case 'f':
        return real(random, 2);
    case 't':
        return sampleTime(random, 2026);
    case 'B':
        return sampleBlock(random, static_cast<int>(element.value.size()) * 3 / 4);
    default:
        return pick(random, words);
    }
}

/// Changes about one in `oneIn` of the values below `element`.
void goOnWorking(Element& element, quint32 oneIn, Random& random)
{
    for (Element& child : element.children) {
        if (child.type == 0) {
            goOnWorking(child, oneIn, random);
        } else if (random.below(oneIn) == 0) {
            child.value = changed(child, random);
        }
    }
}

void makeSecondInstance(Element& root)
{
    Random random(2);
    goOnWorking(root.group("ModuleData"), 9, random);
    goOnWorking(root.group("ScriptData"), 12, random);
    goOnWorking(root.group("Global/Statistics"), 2, random);
    goOnWorking(root.group("Global/Preferences/ProcessInterface"), 12, random);
    goOnWorking(root.group("CommandHistory"), 3, random);
    readTable(root, secondInstanceTable);
    root.group("ModuleData").remove("Brackenfold");
    root.group("ScriptData").remove("Scintillation");
    root.group("Global/UpdateManager/Repositories").remove("Kestmere nightly");
}

} // namespace

QByteArray sampleTime(Random& random, int year)
{
    QByteArray time = QByteArray::number(year);
    time += '-' + twoDigits(1 + random.below(12));
    time += '-' + twoDigits(1 + random.below(28));
    time += 'T' + twoDigits(random.below(24));
    time += ':' + twoDigits(random.below(60));
    time += ':' + twoDigits(random.below(60));
    return time + 'Z';
}

QByteArray sampleBlock(Random& random, int size)
{
    QByteArray bytes(size, '\0');
    for (char& byte : bytes) {
        byte = static_cast<char>(random.below(256));
    }
    return bytes.toBase64();
}

QByteArray sampleSettings(int instance)
{
    Random random(1);
    Element root;
    for (int i = 0; i < sampleTableSize; ++i) {
        readTable(root, sampleTable[i]);
    }
    addModules(root, random);
    addScripts(root, random);
    addHistories(root, random);
    addLists(root, random);
    QByteArray comment = "A made-up user's settings, for trying out the editor";
    if (instance == 2) {
        makeSecondInstance(root);
        comment.clear();
    }
    root.sort();

    QByteArray out = settingsHead(comment);
    for (const Element& child : root.children) {
        appendElement(out, child);
    }
    return out + settingsTail();
}

} // namespace kse
