// SPDX-License-Identifier: MIT
#pragma once

#include "promo/AdManifest.h"

#include <QPixmap>
#include <QRandomGenerator>
#include <QString>
#include <QUrl>
#include <QWidget>

#include <functional>

class QLabel;
class QNetworkAccessManager;

namespace kse {

/// The strip at the foot of the window: one ad, chosen once a run, that opens its page. Without a
/// network, a picture or a cache folder that can be written it shows what it has, silently.
class AdBanner : public QWidget
{
    Q_OBJECT

public:
    /// No reply is larger, and no picture has more pixels: what is, counts as none. Both keep a
    /// server from filling the memory or holding up the window.
    static constexpr qint64 replyLimit = qint64{4} * 1024 * 1024;
    static constexpr qint64 pixelLimit = qint64{4} * 1024 * 1024;

    /// The copies of manifest and pictures are kept in `cacheFolder`, which need not exist yet.
    explicit AdBanner(const QString& cacheFolder, const QUrl& site = AdManifest::defaultSite(),
                      QWidget* parent = nullptr);

    /// Chooses an ad and shows it, `delayMs` from now or, for 0, at once. The site is asked for the
    /// manifest only if the copy is older than it says itself, for a picture only if there is no
    /// copy, and for neither without `allowNetwork`.
    void start(bool allowNetwork, int delayMs);

    QSize sizeHint() const override;
    QSize minimumSizeHint() const override;

signals:
    /// After every change of the ad; its picture may still be on its way.
    void adShown(const QString& id);

protected:
    void changeEvent(QEvent* event) override;
    void resizeEvent(QResizeEvent* event) override;

private:
    class Strip;
    using Callback = std::function<void(const QByteArray&)>;

    void load();
    void chooseAndShow(const QByteArray& manifest);
    void showAd(const AdRecord& record);
    void fetchPicture();
    void openPage() const;

    /// Gets `url` and calls back with the bytes, empty for whatever went wrong. The request tells
    /// nothing of the user: no cookies, no language but a fixed one.
    void fetch(const QUrl& url, const Callback& callback);

    void fitCaption();
    void place();

    QString m_cacheFolder;
    QUrl m_site;
    QRandomGenerator m_rng{QRandomGenerator64::securelySeeded()};
    QNetworkAccessManager* m_network = nullptr;
    QLabel* m_caption = nullptr;
    Strip* m_strip = nullptr;
    AdRecord m_current;
    QPixmap m_pixmap; ///< Null until known.
    QString m_lastId;
    bool m_allowNetwork = true;
    quint64 m_generation = 0; ///< Rises with each ad, so that a late picture of another is told.
};

} // namespace kse
