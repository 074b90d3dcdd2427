// SPDX-License-Identifier: MIT
#include "promo/AdBanner.h"

#include "widgets/Named.h"
#include "widgets/PlainText.h"

#include <QAbstractButton>
#include <QBuffer>
#include <QDesktopServices>
#include <QEvent>
#include <QFile>
#include <QImageReader>
#include <QKeyEvent>
#include <QLabel>
#include <QNetworkAccessManager>
#include <QNetworkReply>
#include <QNetworkRequest>
#include <QPainter>
#include <QTimer>
#include <qdrawutil.h>

#include <algorithm>
#include <memory>

using namespace Qt::StringLiterals;

namespace kse {

namespace {

constexpr int bannerHeight = 100;
constexpr QSize stripSize(532, 92);
constexpr QPoint captionPlace(10, 6);
constexpr int timeoutMs = 8000;
constexpr qsizetype shownCharacters = 500; // more than the strip has room for

// Checks the size before anything is decoded: a small file can unpack to a huge picture.
QPixmap loadPicture(QIODevice& device)
{
    QImageReader reader(&device);
    const QSize size = reader.size();
    if (size.isEmpty() || qint64{size.width()} * size.height() > AdBanner::pixelLimit) {
        return {};
    }
    return QPixmap::fromImageReader(&reader);
}

QPixmap loadPixmapFile(const QString& path)
{
    QFile file(path);
    return !path.isEmpty() && file.open(QIODevice::ReadOnly) ? loadPicture(file) : QPixmap();
}

QPixmap loadPixmapBytes(QByteArray bytes)
{
    QBuffer buffer(&bytes);
    return buffer.open(QIODevice::ReadOnly) ? loadPicture(buffer) : QPixmap();
}

} // namespace

// A button, so that the keyboard and screen readers can use it too.
class AdBanner::Strip : public QAbstractButton
{
public:
    explicit Strip(AdBanner* banner)
        : QAbstractButton(banner)
        , m_banner(banner)
    {
        setCursor(Qt::PointingHandCursor);
        setFixedSize(stripSize);
        setFocusPolicy(Qt::TabFocus); // the focus ring is for the keyboard; a click needs none
    }

    void describe(const QString& alt)
    {
        m_text = alt.isEmpty() ? AdBanner::tr("Click for our other PixInsight modules")
                               : abbreviated(alt, shownCharacters);
        setAccessibleName(m_text);
        setToolTip(alt.isEmpty() ? AdBanner::tr("Click for our other PixInsight modules.")
                                 : asToolTip(alt));
    }

protected:
    void paintEvent(QPaintEvent*) override
    {
        QPainter painter(this);
        painter.setRenderHint(QPainter::SmoothPixmapTransform);
        if (!m_banner->m_pixmap.isNull()) {
            painter.drawPixmap(rect(), m_banner->m_pixmap);
        } else {
            painter.fillRect(rect(), QColor(21, 35, 63));
            painter.setPen(QColor(52, 80, 127));
            painter.drawRect(rect().adjusted(0, 0, -1, -1));
            painter.setPen(QColor(188, 211, 255));
            painter.drawText(rect().adjusted(6, 0, -6, 0), Qt::AlignCenter | Qt::TextWordWrap,
                             m_text);
        }
        if (hasFocus()) {
            // On any picture and window, one of the two colours stands out.
            qDrawPlainRect(&painter, rect(), Qt::white, 4);
            qDrawPlainRect(&painter, rect(), palette().color(QPalette::Highlight), 2);
        }
    }

    void mousePressEvent(QMouseEvent*) override { m_banner->openPage(); }
    void mouseDoubleClickEvent(QMouseEvent*) override {} // the first click opened the page

    void keyPressEvent(QKeyEvent* event) override
    {
        const bool isEnter = event->key() == Qt::Key_Enter || event->key() == Qt::Key_Return;
        if (!isEnter) {
            QAbstractButton::keyPressEvent(event); // the space bar among them
        } else if (!event->isAutoRepeat()) {
            click();
        }
    }

private:
    AdBanner* m_banner;
    QString m_text; // shown without a picture
};

AdBanner::AdBanner(const QString& cacheFolder, const QUrl& site, QWidget* parent)
    : QWidget(parent)
    , m_cacheFolder(cacheFolder)
    , m_site(site)
    , m_network(new QNetworkAccessManager(this))
    , m_caption(named(u"caption"_s, new QLabel(tr("Ad:"), this)))
    , m_strip(named(u"strip"_s, new Strip(this)))
{
    m_caption->setForegroundRole(QPalette::PlaceholderText);
    m_caption->setBuddy(m_strip); // lets screen readers say that it is an ad
    m_strip->describe({});
    connect(m_strip, &QAbstractButton::clicked, this, &AdBanner::openPage);
    setFixedHeight(bannerHeight);
    fitCaption();
    place();
}

void AdBanner::start(bool allowNetwork, int delayMs)
{
    m_allowNetwork = allowNetwork;
    if (delayMs > 0) {
        QTimer::singleShot(delayMs, this, &AdBanner::load);
    } else {
        load();
    }
}

QSize AdBanner::minimumSizeHint() const
{
    // The strip is centred, so the room for the caption is needed on both sides.
    return {2 * m_caption->width() + m_strip->width() + 20, bannerHeight};
}

void AdBanner::changeEvent(QEvent* event)
{
    if (event->type() == QEvent::FontChange) {
        fitCaption();
    }
    QWidget::changeEvent(event);
}

void AdBanner::resizeEvent(QResizeEvent*)
{
    place();
}

void AdBanner::load()
{
    const ManifestCache cache = AdManifest::loadCached(m_cacheFolder);
    const double ttlHours =
        cache.valid ? AdManifest::parse(cache.xml).ttlHours : ManifestData().ttlHours;
    if (!m_allowNetwork || AdManifest::isFresh(cache, QDateTime::currentDateTimeUtc(), ttlHours)) {
        chooseAndShow(cache.xml);
        return;
    }
    fetch(m_site.resolved(QUrl(u"/astro/ads/apmf.xml"_s)), [this, cache](const QByteArray& bytes) {
        if (!AdManifest::parse(bytes).valid) {
            chooseAndShow(cache.xml);
            return;
        }
        // Without a copy, the next run just asks again.
        (void)AdManifest::saveCached(m_cacheFolder, bytes, QDateTime::currentDateTimeUtc());
        chooseAndShow(bytes);
    });
}

void AdBanner::fetch(const QUrl& url, const Callback& callback)
{
    // Other schemes never return an HTTP status, but could open local files that a manifest names
    // or, through a Windows share, log in to a stranger's computer.
    if (url.scheme() != "https"_L1 && url.scheme() != "http"_L1) {
        callback({});
        return;
    }
    QNetworkRequest request(url);
    request.setTransferTimeout(timeoutMs);
    request.setAttribute(QNetworkRequest::RedirectPolicyAttribute,
                         QNetworkRequest::NoLessSafeRedirectPolicy);
    request.setHeader(QNetworkRequest::UserAgentHeader,
                      QStringLiteral("KestraneSettingsEditor/" KSE_VERSION));
    request.setRawHeader("Accept-Language", "en");
    request.setAttribute(QNetworkRequest::CookieLoadControlAttribute, QNetworkRequest::Manual);
    request.setAttribute(QNetworkRequest::CookieSaveControlAttribute, QNetworkRequest::Manual);

    QNetworkReply* reply = m_network->get(request);
    const auto bytes = std::make_shared<QByteArray>();
    // False once the reply is too large.
    const auto drain = [reply, bytes] {
        *bytes += reply->read(replyLimit + 1 - bytes->size());
        return bytes->size() <= replyLimit;
    };
    connect(reply, &QNetworkReply::readyRead, this, [reply, drain] {
        if (!drain()) {
            reply->abort();
        }
    });
    connect(reply, &QNetworkReply::finished, this, [reply, bytes, drain, callback] {
        const QVariant status = reply->attribute(QNetworkRequest::HttpStatusCodeAttribute);
        const bool isGood =
            reply->error() == QNetworkReply::NoError && status.toInt() == 200 && drain();
        reply->deleteLater();
        callback(isGood ? *bytes : QByteArray());
    });
}

void AdBanner::chooseAndShow(const QByteArray& manifest)
{
    showAd(AdManifest::choose(AdManifest::parse(manifest), QDate::currentDate(),
                              QStringLiteral(KSE_VERSION), m_lastId, m_rng, m_site));
}

void AdBanner::showAd(const AdRecord& record)
{
    ++m_generation;
    m_current = record;
    m_lastId = record.id;
    m_strip->describe(record.alt);
    m_pixmap = loadPixmapFile(
        record.embedded ? record.image : AdManifest::findCachedImage(m_cacheFolder, record.image));
    if (m_pixmap.isNull() && !record.embedded && m_allowNetwork) {
        fetchPicture();
    }
    m_strip->update();
    emit adShown(record.id);
}

void AdBanner::fetchPicture()
{
    const QString url = m_current.image;
    fetch(QUrl(url), [this, url, generation = m_generation](const QByteArray& bytes) {
        const QPixmap picture = generation == m_generation ? loadPixmapBytes(bytes) : QPixmap();
        if (!picture.isNull()) {
            // Without a copy, the next run just asks again.
            (void)AdManifest::cacheImage(m_cacheFolder, url, bytes);
            m_pixmap = picture;
            m_strip->update();
        }
    });
}

void AdBanner::openPage() const
{
    QDesktopServices::openUrl(m_current.click.isEmpty()
                                  ? m_site.resolved(QUrl(u"/pixinsight/"_s))
                                  : QUrl(m_current.click, QUrl::TolerantMode));
}

void AdBanner::fitCaption()
{
    QFont smaller = font();
    smaller.setPointSizeF(0.8 * smaller.pointSizeF());
    m_caption->setFont(smaller);
    m_caption->adjustSize();
    updateGeometry();
}

void AdBanner::place()
{
    m_caption->move(captionPlace);
    m_strip->move(std::max(0, (width() - m_strip->width()) / 2),
                  std::max(0, (height() - m_strip->height()) / 2));
}

} // namespace kse
