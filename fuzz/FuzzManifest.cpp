// SPDX-License-Identifier: MIT
// An input is a manifest, then, after a byte FF, when an ad is chosen from it and for which
// version.
#include "FuzzInput.h"
#include "promo/AdManifest.h"

#include <QRandomGenerator>

#include <algorithm>
#include <cmath>

#include <fuzzer/FuzzedDataProvider.h>

using namespace kse;

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    const QByteArrayList input = parts(data, size, 2);
    const ManifestData manifest = AdManifest::parse(input[0]);
    require(manifest.valid || manifest.ads.isEmpty(), "nothing of a manifest that isn't valid");
    require(std::isfinite(manifest.ttlHours) && manifest.ttlHours >= 0, "time to live");
    for (const AdRecord& ad : manifest.ads) {
        require(std::isfinite(ad.weight) && ad.weight > 0 && !ad.embedded, "weight");
        require(!(ad.image + ad.click + ad.alt).isEmpty(), "no empty ad");
    }
    FuzzedDataProvider provider(reinterpret_cast<const std::uint8_t*>(input[1].constData()),
                                static_cast<std::size_t>(input[1].size()));
    const QDate today = QDate::fromJulianDay(provider.ConsumeIntegralInRange(0, 5000000));
    const QString version = QString::fromStdString(provider.ConsumeRandomLengthString(20));
    const QList<AdRecord> pool = AdManifest::eligible(manifest, today, version);
    QRandomGenerator random(provider.ConsumeIntegral<quint32>());
    const QString last = pool.isEmpty() ? QString() : pool[random.bounded(pool.size())].id;
    const AdRecord chosen = AdManifest::choose(manifest, today, version, last, random);
    require(chosen.embedded == pool.isEmpty(), "one of the manifest's, unless none is for today");
    const bool isChoice =
        std::any_of(pool.begin(), pool.end(), [&](const AdRecord& ad) { return ad.id != last; });
    require(!isChoice || chosen.id != last, "the last ad is passed over");
    return 0;
}
