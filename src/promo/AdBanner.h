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

/// The strip at the bottom of the window: one ad, chosen once a run. A click opens its page.
/// Without a network, a picture or a writable cache folder it shows what it has, without a message.
class AdBanner : public QWidget
{
    Q_OBJECT

public:
    /// The largest reply, in bytes, and the largest picture, in pixels. Larger ones are ignored, so
    /// that no server can fill the memory or hold up the window.
    static constexpr qint64 replyLimit = qint64{4} * 1024 * 1024;
    static constexpr qint64 pixelLimit = qint64{4} * 1024 * 1024;

    /// The copies of manifest and pictures are kept in `cacheFolder`, which need not exist yet.
    explicit AdBanner(const QString& cacheFolder, const QUrl& site = AdManifest::defaultSite(),
                      QWidget* parent = nullptr);

    /// Chooses an ad and shows it, `delayMs` from now or, for 0, at once. Fetches nothing unless
    /// `allowNetwork`; then the manifest if its copy is older than that copy allows, and a picture
    /// if there is no copy of it.
    void start(bool allowNetwork, int delayMs);

    QSize sizeHint() const override { return minimumSizeHint(); }
    QSize minimumSizeHint() const override;

signals:
    /// Another ad is shown. Its picture may still be loading.
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

    /// Fetches `url` and calls back with the bytes, or with none if anything goes wrong. The
    /// request reveals nothing about the user: no cookies, and always the same language.
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
    QPixmap m_pixmap; ///< Null until loaded.
    QString m_lastId;
    bool m_allowNetwork = true;
    quint64 m_generation = 0; ///< Rises with each ad. Tells a late picture of a former one.
};

} // namespace kse
