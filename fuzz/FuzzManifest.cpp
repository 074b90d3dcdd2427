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
        require(!ad.image.isEmpty() || !ad.click.isEmpty() || !ad.alt.isEmpty(), "no empty ad");
        for (const QString& text :
             {ad.id, ad.image, ad.click, ad.alt, ad.minVersion, ad.maxVersion, ad.start, ad.end}) {
            require(text == text.trimmed(), "texts are trimmed");
        }
    }
}

void requireVersionOrder(const QString& a, const QString& b)
{
    const int order = AdManifest::compareVersions(a, b);
    require(order >= -1 && order <= 1 && order == -AdManifest::compareVersions(b, a), "order");
    require(AdManifest::compareVersions(a, a) == 0, "a version equals itself");
}

bool isOf(const QList<AdRecord>& pool, const AdRecord& ad)
{
    return std::any_of(pool.begin(), pool.end(), [&](const AdRecord& other) {
        return other.id == ad.id && other.image == ad.image && other.click == ad.click &&
               other.alt == ad.alt && other.embedded == ad.embedded;
    });
}

void requireChoice(const ManifestData& manifest, FuzzedDataProvider& provider)
{
    const QDate today = QDate::fromJulianDay(provider.ConsumeIntegralInRange(0, 5000000));
    const QString version = QString::fromStdString(provider.ConsumeRandomLengthString(20));
    const QList<AdRecord> eligible = AdManifest::eligible(manifest, today, version);
    for (const AdRecord& ad : eligible) {
        require(isOf(manifest.ads, ad), "what is eligible is an ad of the manifest");
        requireVersionOrder(version, ad.minVersion);
        requireVersionOrder(ad.minVersion, ad.maxVersion);
    }
    const QList<AdRecord> pool = eligible.isEmpty() ? AdManifest::builtIn() : eligible;
    const auto last = provider.ConsumeIntegralInRange<qsizetype>(0, pool.size() - 1);
    const QString lastId = pool[last].id;
    QRandomGenerator random(provider.ConsumeIntegral<quint32>());
    const AdRecord chosen = AdManifest::choose(manifest, today, version, lastId, random);
    require(isOf(pool, chosen), "what is chosen is eligible");
    const bool others =
        std::any_of(pool.begin(), pool.end(), [&](const AdRecord& ad) { return ad.id != lastId; });
    require(others == (chosen.id != lastId), "the last ad is passed over");
}

void requireFreshness(double ttlHours, FuzzedDataProvider& provider)
{
    // The stamp may be any number, the clock is in some year.
    const auto stamp = provider.ConsumeIntegral<qint64>();
    const auto time = provider.ConsumeIntegralInRange<qint64>(-1000000000000000, 1000000000000000);
    const ManifestCache cache{{}, QDateTime::fromMSecsSinceEpoch(stamp, Qt::UTC), true};
    const QDateTime now = QDateTime::fromMSecsSinceEpoch(time, Qt::UTC);
    const bool fresh = AdManifest::isFresh(cache, now, ttlHours);
    require(!fresh || (ttlHours > 0 && stamp <= time), "freshness");
    require(!AdManifest::isFresh({}, now, ttlHours), "no copy is not fresh");
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    const QByteArrayList input = parts(data, size, 2);
    const ManifestData manifest = AdManifest::parse(input[0]);
    requireSound(manifest);
    require(!manifest.valid || input[0].size() <= AdManifest::sizeLimit, "size limit");
    FuzzedDataProvider provider(reinterpret_cast<const std::uint8_t*>(input[1].constData()),
                                static_cast<std::size_t>(input[1].size()));
    requireChoice(manifest, provider);
    requireFreshness(manifest.ttlHours, provider);
    return 0;
}
