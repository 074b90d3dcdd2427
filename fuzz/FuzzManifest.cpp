// SPDX-License-Identifier: MIT
// An input is a manifest.
#include "FuzzInput.h"
#include "promo/AdManifest.h"

#include <cmath>

using namespace kse;

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    const ManifestData manifest = AdManifest::parse(
        QByteArray(reinterpret_cast<const char*>(data), static_cast<qsizetype>(size)));
    require(manifest.valid || manifest.ads.isEmpty(), "nothing of a manifest that isn't valid");
    require(std::isfinite(manifest.ttlHours) && manifest.ttlHours >= 0, "time to live");
    for (const AdRecord& ad : manifest.ads) {
        require(std::isfinite(ad.weight) && ad.weight > 0 && !ad.embedded, "weight");
        require(!(ad.image + ad.click + ad.alt).isEmpty(), "no empty ad");
    }
    return 0;
}
