// SPDX-License-Identifier: MIT
#include "promo/AdManifest.h"

#include <QCryptographicHash>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QRandomGenerator>
#include <QSaveFile>
#include <QStringList>
#include <QXmlStreamReader>

#include <algorithm>
#include <cmath>

using namespace Qt::StringLiterals;

namespace kse {

namespace {

constexpr QLatin1String manifestName("manifest.xml");
constexpr QLatin1String fetchedName("manifest.fetched");
constexpr QLatin1String imageExtensions[] = {".png"_L1, ".jpg"_L1, ".img"_L1};

constexpr struct
{
    QChar suffix;
    double hours;
} ttlUnits[] = {{u'm', 1.0 / 60.0}, {u'h', 1.0}, {u'd', 24.0}, {u'w', 168.0}};

double readTtl(QStringView text)
{
    double hoursPerUnit = 1.0;
    for (const auto& unit : ttlUnits) {
        if (text.endsWith(unit.suffix, Qt::CaseInsensitive)) {
            hoursPerUnit = unit.hours;
            text.chop(1);
            break;
        }
    }
    bool ok = false;
    const double hours = text.trimmed().toDouble(&ok) * hoursPerUnit;
    return ok && std::isfinite(hours) && hours >= 0 ? hours : ManifestData().ttlHours;
}

AdRecord readAttributes(const QXmlStreamAttributes& attributes)
{
    const auto text = [&](QLatin1String name) {
        return attributes.value(name).trimmed().toString();
    };
    AdRecord record;
    record.id = text("id"_L1);
    record.start = text("start"_L1);
    record.end = text("end"_L1);
    record.minVersion = text("minVersion"_L1);
    record.maxVersion = text("maxVersion"_L1);
    bool ok = false;
    const double weight = text("weight"_L1).toDouble(&ok);
    if (ok && std::isfinite(weight) && weight > 0) {
        record.weight = weight;
    }
    return record;
}

// Appends the text of the current element and of all elements in it to `text`. Qt's own
// `readElementText` would recurse over their depth.
void readText(QXmlStreamReader& reader, QString& text)
{
    for (int depth = 1; depth > 0 && !reader.atEnd();) {
        reader.readNext();
        if (reader.isStartElement()) {
            ++depth;
        } else if (reader.isEndElement()) {
            --depth;
        } else if (reader.isCharacters()) {
            text += reader.text();
        }
    }
    text = text.trimmed();
}

AdRecord readAd(QXmlStreamReader& reader)
{
    AdRecord ad = readAttributes(reader.attributes());
    while (reader.readNextStartElement()) {
        const QStringView name = reader.name();
        QString ignored;
        readText(reader, name == "image"_L1   ? ad.image
                         : name == "click"_L1 ? ad.click
                         : name == "alt"_L1   ? ad.alt
                                              : ignored);
    }
    return ad;
}

bool writeFile(const QString& path, const QByteArray& bytes)
{
    QSaveFile file(path);
    return file.open(QIODevice::WriteOnly) && file.write(bytes) == bytes.size() && file.commit();
}

} // namespace

namespace AdManifest {

QUrl defaultSite()
{
    return QUrl(QStringLiteral(KSE_SITE_URL));
}

ManifestData parse(const QByteArray& bytes)
{
    if (bytes.size() > sizeLimit) {
        return {};
    }
    QXmlStreamReader reader(bytes);
    while (!reader.atEnd() && !reader.isStartElement()) {
        if (reader.readNext() == QXmlStreamReader::DTD && reader.text().contains(u'[')) {
            return {};
        }
    }
    ManifestData manifest;
    manifest.valid = true;
    const QXmlStreamAttributes attributes = reader.attributes();
    const QStringView ttl = attributes.value("ttl"_L1);
    manifest.ttlHours = readTtl(ttl.isEmpty() ? attributes.value("ttlHours"_L1) : ttl);
    while (reader.readNextStartElement()) {
        if (reader.name() != "ad"_L1) {
            reader.skipCurrentElement();
            continue;
        }
        const AdRecord ad = readAd(reader);
        if (!ad.click.isEmpty() || !ad.image.isEmpty() || !ad.alt.isEmpty()) {
            manifest.ads.append(ad);
        }
    }
    while (!reader.atEnd()) { // an error may follow
        reader.readNext();
    }
    return reader.hasError() ? ManifestData() : manifest;
}

ManifestCache loadCached(const QString& folder)
{
    QFile manifest(QDir(folder).filePath(manifestName));
    QFile fetched(QDir(folder).filePath(fetchedName));
    if (!manifest.open(QIODevice::ReadOnly) || !fetched.open(QIODevice::ReadOnly)) {
        return {};
    }
    ManifestCache cache;
    cache.xml = manifest.readAll();
    const qint64 stamp = QString::fromUtf8(fetched.readAll()).trimmed().toLongLong(&cache.valid);
    if (!cache.valid || cache.xml.isEmpty()) {
        return {};
    }
    cache.fetched = QDateTime::fromMSecsSinceEpoch(stamp).toUTC();
    return cache;
}

bool saveCached(const QString& folder, const QByteArray& bytes, const QDateTime& utcNow)
{
    const QDir dir(folder);
    return dir.mkpath(u"."_s) && writeFile(dir.filePath(manifestName), bytes) &&
           writeFile(dir.filePath(fetchedName), QByteArray::number(utcNow.toMSecsSinceEpoch()));
}

bool isFresh(const ManifestCache& cache, const QDateTime& utcNow, double ttlHours)
{
    // In doubles: a stamp may be any number, so the difference may not fit into an integer.
    const double age = static_cast<double>(utcNow.toMSecsSinceEpoch()) -
                       static_cast<double>(cache.fetched.toMSecsSinceEpoch());
    return cache.valid && age >= 0 && age / 3600000.0 < ttlHours;
}

int compareVersions(const QString& a, const QString& b)
{
    const QStringList left = a.split(u'.');
    const QStringList right = b.split(u'.');
    for (qsizetype i = 0; i < std::max(left.size(), right.size()); ++i) {
        const int l = left.value(i).toInt();
        const int r = right.value(i).toInt();
        if (l != r) {
            return l < r ? -1 : 1;
        }
    }
    return 0;
}

QList<AdRecord> eligible(const ManifestData& manifest, const QDate& today, const QString& version)
{
    const QString day = today.toString(Qt::ISODate);
    QList<AdRecord> records;
    for (const AdRecord& ad : manifest.ads) {
        const bool isForToday =
            (ad.start.isEmpty() || day >= ad.start) && (ad.end.isEmpty() || day <= ad.end);
        if (isForToday &&
            (ad.minVersion.isEmpty() || compareVersions(version, ad.minVersion) >= 0) &&
            (ad.maxVersion.isEmpty() || compareVersions(version, ad.maxVersion) <= 0)) {
            records.append(ad);
        }
    }
    return records;
}

QList<AdRecord> builtIn(const QUrl& site)
{
    const auto record = [&](const QString& id, const QString& image, const QString& page,
                            const QString& alt) {
        AdRecord ad;
        ad.id = id;
        ad.image = u":/ads/"_s + image;
        ad.click = site.resolved(QUrl(page)).toString();
        ad.alt = alt;
        ad.embedded = true;
        return ad;
    };
    return {record(u"emb-vellumix"_s, u"Vellumix.png"_s, u"/pixinsight/vellumix/"_s,
                   u"Vellumix - Full-featured layer composition for PixInsight"_s),
            record(u"emb-torvane"_s, u"Torvane.png"_s, u"/pixinsight/torvane/"_s,
                   u"Torvane - turn one photo into a real-depth 3D image"_s),
            record(u"emb-quorrel"_s, u"Quorrel.png"_s, u"/pixinsight/quorrel/"_s,
                   u"Quorrel - Selecting our best frames was never this easy."_s)};
}

AdRecord choose(const ManifestData& manifest, const QDate& today, const QString& version,
                const QString& lastId, QRandomGenerator& rng, const QUrl& site)
{
    QList<AdRecord> pool = manifest.valid ? eligible(manifest, today, version) : QList<AdRecord>();
    if (pool.isEmpty()) {
        pool = builtIn(site);
    }
    const auto weightOf = [](const AdRecord& ad) {
        return ad.weight > 0 ? ad.weight : 1.0;
    };
    QList<AdRecord> candidates;
    double total = 0;
    for (const AdRecord& ad : std::as_const(pool)) {
        if (ad.id != lastId) {
            candidates.append(ad);
            total += weightOf(ad);
        }
    }
    if (candidates.isEmpty()) {
        return pool.first();
    }
    double rest = rng.generateDouble() * total; // 53 random bits, below 1
    for (const AdRecord& ad : std::as_const(candidates)) {
        rest -= weightOf(ad);
        if (rest <= 0) {
            return ad;
        }
    }
    return candidates.last();
}

QString imageBasePath(const QString& folder, const QString& url)
{
    const QByteArray hash = QCryptographicHash::hash(url.toUtf8(), QCryptographicHash::Sha1);
    return folder + u"/img_"_s + QString::fromLatin1(hash.toHex().first(16));
}

QString findCachedImage(const QString& folder, const QString& url)
{
    if (url.isEmpty()) {
        return {};
    }
    const QString base = imageBasePath(folder, url);
    for (const QLatin1String extension : imageExtensions) {
        if (QFileInfo::exists(base + extension)) {
            return base + extension;
        }
    }
    return {};
}

QString cacheImage(const QString& folder, const QString& url, const QByteArray& bytes)
{
    if (url.isEmpty() || bytes.isEmpty() || !QDir(folder).mkpath(u"."_s)) {
        return {};
    }
    const QLatin1String extension = bytes.startsWith("\x89PNG")        ? ".png"_L1
                                    : bytes.startsWith("\xFF\xD8\xFF") ? ".jpg"_L1
                                                                       : ".img"_L1;
    const QString path = imageBasePath(folder, url) + extension;
    return writeFile(path, bytes) ? path : QString();
}

} // namespace AdManifest

} // namespace kse
