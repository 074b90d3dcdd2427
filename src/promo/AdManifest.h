// SPDX-License-Identifier: MIT
#pragma once

#include <QByteArray>
#include <QDateTime>
#include <QList>
#include <QString>
#include <QUrl>

class QRandomGenerator;

namespace kse {

/// One ad. Its texts come from the manifest and are shown letter for letter.
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
    double ttlHours = 24.0; ///< How long a copy is fresh.
    QList<AdRecord> ads;
};

struct ManifestCache
{
    QByteArray xml;    ///< As received.
    QDateTime fetched; ///< In UTC.
    bool valid = false;
};

/// Decides which ad to show: parses manifests, keeps copies of them and of pictures on disk, has
/// built-in ads and makes the choice. Keeps no state and never touches the network. Every failure
/// means no manifest or no picture, without a message.
namespace AdManifest {

/// The largest manifest, in bytes. The XML reader compares each attribute of an element with all
/// others: 64 KiB of attributes take a third of a second, 1 MiB over a minute.
inline constexpr qsizetype sizeLimit = qsizetype{64} * 1024;

/// The makers' web site, as this build was configured.
[[nodiscard]] QUrl defaultSite();

/// Not valid, and without ads, unless `bytes` are one complete XML document within the limit. Nor
/// is a document valid that declares entities or attributes: these can expand without bound.
[[nodiscard]] ManifestData parse(const QByteArray& bytes);

/// The copy in `folder`; not valid unless both its text and its time can be read.
[[nodiscard]] ManifestCache loadCached(const QString& folder);

/// Saves `bytes` in `folder`, which is created if necessary, as fetched at `utcNow`. False if
/// either file couldn't be written; the copy then keeps the time of the last one saved.
[[nodiscard]] bool saveCached(const QString& folder, const QByteArray& bytes,
                              const QDateTime& utcNow);

/// Whether the copy is younger than `ttlHours`. One from the future isn't.
[[nodiscard]] bool isFresh(const ManifestCache& cache, const QDateTime& utcNow, double ttlHours);

/// The ads that are for `today` and for this `version` of the program, in order.
[[nodiscard]] QList<AdRecord> eligible(const ManifestData& manifest, const QDate& today,
                                       const QString& version);

/// The ads that come with the program. Their pages are on `site`.
[[nodiscard]] QList<AdRecord> builtIn(const QUrl& site = defaultSite());

/// Picks one of the eligible ads at random, by weight, or of the built-in ones if there are none.
/// Skips those with `lastId` unless there are no others.
[[nodiscard]] AdRecord choose(const ManifestData& manifest, const QDate& today,
                              const QString& version, const QString& lastId, QRandomGenerator& rng,
                              const QUrl& site = defaultSite());

/// -1, 0 or 1, comparing number by number. A part that is missing or isn't a number counts as 0, so
/// "1.2" equals "1.2.0".
[[nodiscard]] int compareVersions(const QString& a, const QString& b);

/// The path in `folder` for the copy of the picture at `url`, without its extension.
[[nodiscard]] QString imageBasePath(const QString& folder, const QString& url);

/// The path of the copy of the picture at `url`; empty if there is none.
[[nodiscard]] QString findCachedImage(const QString& folder, const QString& url);

/// Saves the `bytes` of the picture at `url` in `folder`, which is created if necessary. Returns
/// the path of the copy; empty on failure.
[[nodiscard]] QString cacheImage(const QString& folder, const QString& url,
                                 const QByteArray& bytes);

} // namespace AdManifest

} // namespace kse
