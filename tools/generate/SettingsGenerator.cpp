// SPDX-License-Identifier: MIT
#include "SettingsGenerator.h"

#include "Element.h"
#include "Random.h"
#include "SampleSettings.h"

#include <array>

namespace kse {

namespace {

QByteArray padded(qsizetype number)
{
    return QByteArray::number(number).rightJustified(7, '0');
}

/// What one process of a large file saves, by key. Real files repeat the same few hundred keys,
/// with mostly short values and a few long ones.
struct Slot
{
    const char* key;
    char type;
};

constexpr std::array processSlots = {
    Slot{"AutoRange", 'b'},   Slot{"BackgroundColor", 'u'}, Slot{"ClipLow", 'F'},
    Slot{"Enabled", 'b'},     Slot{"GridColumns", 'i'},     Slot{"GridRows", 'i'},
    Slot{"Invert", 'b'},      Slot{"LastDirectory", 's'},   Slot{"LastRun", 't'},
    Slot{"Left", 'i'},        Slot{"MaskName", 's'},        Slot{"Notes", 's'},
    Slot{"PreviewZoom", 'f'}, Slot{"SampleCount", 'u'},     Slot{"ShowGraph", 'b'},
    Slot{"State", 'B'},       Slot{"Strength", 'F'},        Slot{"Top", 'i'},
    Slot{"TrackView", 'b'},   Slot{"Width", 'i'},
};

QByteArray largeText(Random& random)
{
    static constexpr std::array texts = {
        "",
        "integration",
        "L-RGB & H\xCE\xB1 <final>",
        "/data/astro/2025/M 31/calibrated/light_0123.xisf",
        "Andromeda's core, \"short\" exposures",
        "/home/ana/Bilder/Aufnahmen/\xC3\x9C"
        "bersicht.fit",
    };
    return texts[random.below(texts.size())];
}

QByteArray largeValue(Random& random, char type)
{
    switch (type) {
    case 'b':
        return random.below(3) == 0 ? "true" : "false";
    case 'i':
        return QByteArray::number(static_cast<int>(random.below(4000)) - 1000);
    case 'u':
        return QByteArray::number(random.below(0xFFFFFFFFU));
    case 'F':
    case 'f':
        return QByteArray::number(random.below(1'000'000) / 1e5, 'g', 7);
    case 't':
        return sampleTime(random, 2025);
    case 'B':
        return sampleBlock(random, random.below(20) == 0 ? 1500 : 60);
    default:
        return largeText(random);
    }
}

void appendValues(QByteArray& out, qsizetype count)
{
    constexpr qsizetype processesPerModule = 50;
    Random random(20260311);
    appendGroupStart(out, "ModuleData");
    qsizetype process = 0;
    while (count > 0) {
        if (process % processesPerModule == 0) {
            out += process == 0 ? "" : "</i>";
            appendGroupStart(out, "Module" + padded(process / processesPerModule));
        }
        appendGroupStart(out, "Process" + padded(process++));
        for (const Slot& slot : processSlots) {
            if (count-- == 0) {
                count = 0;
                break;
            }
            appendValue(out, slot.key, slot.type, largeValue(random, slot.type));
        }
        out += "</i>";
    }
    out += process == 0 ? "</i>" : "</i></i>";
}

void appendWide(QByteArray& out, qsizetype count)
{
    Random random(2);
    appendGroupStart(out, "Wide");
    for (qsizetype i = 0; i < count; ++i) {
        appendValue(out, "Value" + padded(i), 'i', QByteArray::number(random.below(1000)));
    }
    out += "</i>";
}

void appendDeep(QByteArray& out, qsizetype count)
{
    for (qsizetype i = 0; i < count; ++i) {
        appendGroupStart(out, "Deep");
    }
    appendValue(out, "Bottom", 's', "Reached.");
    for (qsizetype i = 0; i < count; ++i) {
        out += "</i>";
    }
}

} // namespace

QByteArray generateSettings(const GenerateOptions& options)
{
    if (options.shape == GenerateOptions::Shape::Sample) {
        return sampleSettings(options.count == 2 ? 2 : 1);
    }
    QByteArray out = settingsHead({});
    switch (options.shape) {
    case GenerateOptions::Shape::Wide:
        appendWide(out, options.count);
        break;
    case GenerateOptions::Shape::Deep:
        appendDeep(out, options.count);
        break;
    default:
        appendValues(out, options.count);
    }
    return out + settingsTail();
}

} // namespace kse
