// SPDX-License-Identifier: MIT
// An input is a manifest, then, after a byte FF, what is asked about it.
#include "FuzzInput.h"
#include "promo/AdManifest.h"

#include <QRandomGenerator>

#include <algorithm>
#include <cmath>

#include <fuzzer/FuzzedDataProvider.h>

using namespace kse;

namespace {

void requireSound(const ManifestData& manifest)
{
    require(manifest.valid || (manifest.ads.isEmpty() && manifest.ttlHours == 24.0),
            "nothing of a manifest that isn't valid");
    require(std::isfinite(manifest.ttlHours) && manifest.ttlHours >= 0, "time to live");
    for (const AdRecord& ad : manifest.ads) {
        require(std::isfinite(ad.weight) && ad.weight > 0 && !ad.embedded, "weight");
        require(!(ad.image + ad.click + ad.alt).isEmpty(), "no empty ad");
        for (const QString& text : {ad.id, ad.image, ad.click, ad.alt, ad.minVersion, ad.start}) {
            require(text == text.trimmed(), "texts are trimmed");
        }
    }
}

bool hasId(const QList<AdRecord>& ads, const QString& id)
{
    return std::any_of(ads.begin(), ads.end(), [&](const AdRecord& ad) { return ad.id == id; });
}

void requireChoice(const ManifestData& manifest, FuzzedDataProvider& provider)
{
    const QDate today = QDate::fromJulianDay(provider.ConsumeIntegralInRange(0, 5000000));
    const QString version = QString::fromStdString(provider.ConsumeRandomLengthString(20));
    const QList<AdRecord> eligible = AdManifest::eligible(manifest, today, version);
    for (const AdRecord& ad : eligible) {
        require(hasId(manifest.ads, ad.id), "what is eligible is an ad of the manifest");
        require(AdManifest::compareVersions(version, ad.minVersion) ==
                    -AdManifest::compareVersions(ad.minVersion, version),
                "order of versions");
    }
    QList<AdRecord> pool = eligible.isEmpty() ? AdManifest::builtIn() : eligible;
    const QString last = pool[provider.ConsumeIntegralInRange<qsizetype>(0, pool.size() - 1)].id;
    QRandomGenerator random(provider.ConsumeIntegral<quint32>());
    const AdRecord chosen = AdManifest::choose(manifest, today, version, last, random);
    require(hasId(pool, chosen.id) && chosen.embedded == eligible.isEmpty(), "one is chosen");
    pool.removeIf([&](const AdRecord& ad) { return ad.id == last; });
    require(pool.isEmpty() == (chosen.id == last), "the last ad is passed over");
}

void requireFreshness(double ttlHours, FuzzedDataProvider& provider)
{
    // The stamp may be any number, the clock is in some year.
    const auto stamp = provider.ConsumeIntegral<qint64>();
    const auto time = provider.ConsumeIntegralInRange<qint64>(-1000000000000000, 1000000000000000);
    const QDateTime now = QDateTime::fromMSecsSinceEpoch(time, Qt::UTC);
    const ManifestCache cache{{}, QDateTime::fromMSecsSinceEpoch(stamp, Qt::UTC), true};
    require(!AdManifest::isFresh(cache, now, ttlHours) || (ttlHours > 0 && stamp <= time), "fresh");
    require(!AdManifest::isFresh({}, now, ttlHours), "no copy is not fresh");
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    const QByteArrayList input = parts(data, size, 2);
    const ManifestData manifest = AdManifest::parse(input[0]);
    requireSound(manifest);
    FuzzedDataProvider provider(reinterpret_cast<const std::uint8_t*>(input[1].constData()),
                                static_cast<std::size_t>(input[1].size()));
    requireChoice(manifest, provider);
    requireFreshness(manifest.ttlHours, provider);
    return 0;
}
