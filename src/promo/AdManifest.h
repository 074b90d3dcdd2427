// SPDX-License-Identifier: MIT
#pragma once

#include <QByteArray>
#include <QDateTime>
#include <QList>
#include <QString>
#include <QUrl>

class QRandomGenerator;

namespace kse {

/// One ad. All texts come from the manifest and are data.
struct AdRecord
{
    QString id;
    QString image; ///< URL of the picture, or a resource path if `embedded`.
    QString click; ///< URL to open, or empty.
    QString alt;
    QString minVersion; ///< Lowest and highest program version that shows it, or empty.
    QString maxVersion;
    QString start; ///< First and last day as "yyyy-MM-dd", or empty.
    QString end;
    double weight = 1.0;
    bool embedded = false;
};

struct ManifestData
{
    bool valid = false;
    double ttlHours = 24.0; ///< How long a copy is good.
    QList<AdRecord> ads;
};

struct ManifestCache
{
    QByteArray xml;    ///< As received.
    QDateTime fetched; ///< In UTC.
    bool valid = false;
};

/// Which ad to show: the manifest's format, its copy on disk, the choice, and the ads that are
/// built in. Nothing here keeps state or touches the network, and every failure ends in no manifest
/// or no picture, without a message.
namespace AdManifest {

/// No manifest is larger. The XML reader compares each attribute of an element with all others:
/// 64 KiB of them take a third of a second, 1 MiB over a minute.
inline constexpr qsizetype sizeLimit = qsizetype{64} * 1024;

/// The makers' web site, as this build was configured.
[[nodiscard]] QUrl defaultSite();

/// Not valid, and without ads, unless `bytes` are one whole XML document within the limit. One that
/// declares entities or attributes of its own counts as none: they expand without bound.
[[nodiscard]] ManifestData parse(const QByteArray& bytes);

/// The copy in `folder`; not valid unless both its text and its time can be read.
[[nodiscard]] ManifestCache loadCached(const QString& folder);

/// Keeps `bytes` in `folder`, made if need be, as fetched at `utcNow`. False if either file could
/// not be written; the copy then counts as old as the last one that could.
[[nodiscard]] bool saveCached(const QString& folder, const QByteArray& bytes,
                              const QDateTime& utcNow);

/// Whether the copy is younger than `ttlHours`. One from the future isn't.
[[nodiscard]] bool isFresh(const ManifestCache& cache, const QDateTime& utcNow, double ttlHours);

/// The ads that are for `today` and for this `version` of the program, in order.
[[nodiscard]] QList<AdRecord> eligible(const ManifestData& manifest, const QDate& today,
                                       const QString& version);

/// The ads that need no network. Their pages are on `site`.
[[nodiscard]] QList<AdRecord> builtIn(const QUrl& site = defaultSite());

/// Draws one of the eligible ads by weight, or of the built-in ones where there are none. Passes
/// over those with `lastId`, unless there are no others.
[[nodiscard]] AdRecord choose(const ManifestData& manifest, const QDate& today,
                              const QString& version, const QString& lastId, QRandomGenerator& rng,
                              const QUrl& site = defaultSite());

/// -1, 0 or 1, comparing number by number. What is missing or no number counts as 0, so that "1.2"
/// equals "1.2.0".
[[nodiscard]] int compareVersions(const QString& a, const QString& b);

/// The path in `folder` of the picture at `url`, without its extension.
[[nodiscard]] QString imageBasePath(const QString& folder, const QString& url);

/// The picture that was kept for `url`, or an empty path.
[[nodiscard]] QString findCachedImage(const QString& folder, const QString& url);

/// Keeps the picture's `bytes` in `folder`, made if need be. Its path, or an empty one on failure.
[[nodiscard]] QString cacheImage(const QString& folder, const QString& url,
                                 const QByteArray& bytes);

} // namespace AdManifest

} // namespace kse
