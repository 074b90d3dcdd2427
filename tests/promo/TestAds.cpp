// SPDX-License-Identifier: MIT
#include "promo/AdBanner.h"
#include "promo/AdManifest.h"
#include "support/TestMain.h"

#include <QtNetwork>
#include <QtWidgets>

namespace {

/// How many hours a copy of `xml` is good for, and its ads, a line each. Nothing if it is invalid.
QString parsed(const QByteArray& xml)
{
    const ManifestData manifest = AdManifest::parse(xml);
    QString text = manifest.valid ? QString::number(manifest.ttlHours) : QString();
    for (const AdRecord& ad : manifest.ads) {
        text += u'\n' + QStringList{ad.id, ad.image, ad.click, ad.alt, ad.start, ad.end}.join(u',');
        text += ad.minVersion + ad.maxVersion + u',' + QString::number(ad.weight);
    }
    return text;
}

const QByteArray manifestPath = "/astro/ads/apmf.xml";
const QColor red = Qt::red;
const QColor noPicture(21, 35, 63); // the ground of what stands in for one

/// A web server on the loopback that answers GET requests, one a connection.
class Site : public QTcpServer
{
public:
    Site()
    {
        connect(this, &QTcpServer::pendingConnectionAvailable, this, [this] {
            QTcpSocket* socket = nextPendingConnection();
            connect(socket, &QTcpSocket::readyRead, this, [this, socket] {
                const QByteArray head = socket->peek(qint64{64} * 1024);
                const QByteArray answer = answers.value(head.split(' ').value(1));
                if (head.contains("\r\n\r\n") && !answer.isEmpty()) {
                    requests.append(head);
                    socket->write("HTTP/1.1 " + answer);
                    socket->disconnectFromHost();
                }
            });
            connect(socket, &QTcpSocket::disconnected, socket, &QObject::deleteLater);
        });
        listen(QHostAddress::LocalHost);
        url = QUrl(u"http://127.0.0.1:%1"_s.arg(serverPort()));
    }

    QUrl url;
    QHash<QByteArray, QByteArray> answers; ///< From the status on; empty if none comes.
    QByteArrayList requests;               ///< The heads of those that were answered.
};

QByteArray manifest(const QByteArray& alt, const QUrl& image = {})
{
    return "<ads ttl='1h'><ad id='" + alt + "'><alt>" + alt + "</alt><image>" + image.toEncoded() +
           "</image></ad></ads>";
}

QByteArray redPng(int width, int height)
{
    QImage image(width, height, QImage::Format_RGB32);
    image.fill(red);
    QBuffer buffer;
    image.save(&buffer, "PNG");
    return buffer.data();
}

void keepManifest(const QString& folder, const QByteArray& bytes, qint64 age = 0)
{
    QVERIFY(AdManifest::saveCached(folder, bytes, QDateTime::currentDateTimeUtc().addSecs(-age)));
}

class Banner : public AdBanner
{
public:
    using AdBanner::AdBanner;

    QWidget* strip() const { return findChild<QWidget*>(u"strip"_s); }
    bool isWaiting() const { return findChild<QNetworkReply*>() != nullptr; }

    /// Near the strip's corner as it stands on the screen, within the ring that tells its focus.
    QColor corner() const
    {
        const QPoint place = strip()->pos() + QPoint(6, 6);
        return screen()->grabWindow(winId(), place.x(), place.y(), 1, 1).toImage().pixelColor(0, 0);
    }

    /// Starts it, and says what it shows once nothing is under way.
    QString shown(bool mayAsk)
    {
        const QSignalSpy spy(this, &AdBanner::adShown);
        show();
        start(mayAsk, 1);
        const bool isDone = QTest::qWaitForWindowExposed(this) &&
                            QTest::qWaitFor([&] { return spy.size() == 1 && !isWaiting(); }, 30000);
        QCoreApplication::processEvents(); // the painting
        const QString name = strip()->accessibleName();
        const QString look = corner() == red         ? u" red"_s
                             : corner() == noPicture ? u" plain"_s
                                                     : u" picture"_s;
        return (isDone ? QString() : u"unfinished "_s) +
               (name.contains(u" - "_s) ? u"built-in"_s : name) + look;
    }
};

} // namespace

/// The manifest of ads, and the strip that shows one.
class TestAds : public QObject
{
    Q_OBJECT

public slots:
    void open(const QUrl& url) { m_opened += u' ' + url.toString(); }

private slots:
    void readsTimeToLive()
    {
        compareRows({"<a ttl='2d'/> > 48", "<!DOCTYPE any><any ttl=' 30 M'/> > 0.5",
                     "<a ttl='0.5w' ttlHours='6'/> > 84", "<a ttl='' ttlHours='6H'/> > 6",
                     "<a ttl='0'/> > 0", "<a ttl='2d ' ttlHours='6'/> > 24", "<a ttl='-1'/> > 24",
                     "<a ttl='nan'/> > 24", "<!-- no root --> > ",
                     "<a><ad><alt>cut off</alt></ad> > ",
                     "<!DOCTYPE a [<!ENTITY e 'e'>]><a><ad><alt>&e;</alt></ad></a> > "},
                    [](const QStringList& cells) { return parsed(cells[0].toUtf8()); });
        QCOMPARE(parsed("<a/>" + QByteArray(AdManifest::sizeLimit, '\n')), QString());
    }

    void readsAds()
    {
        QCOMPARE(parsed(R"(<ads>
            <ad id=" a " start=" 2026-01-01 " end="2026-12-31" minVersion="0.1" maxVersion="9 "
                weight=" 2.5 "> <image> i <!-- --></image><x>no</x><click> c&amp;<b>d</b>
                </click><alt><![CDATA[ <t> ]]></alt> </ad>
            <ad weight="-1"><alt>1</alt></ad> <ad weight="0"><click>2</click></ad>
            <ad weight="inf"><image>3</image></ad> <ad weight="much"><alt>4</alt></ad>
            <ad id="empty"><alt> </alt></ad> <other><alt>no</alt></other> <alt>no</alt>
            <x><ad><alt>no</alt></ad></x> <ad><alt>5</alt><ad/></ad></ads>)"),
                 u"24\na,i,c&d,<t>,2026-01-01,2026-12-310.19,2.5\n,,,1,,,1\n,,2,,,,1\n,3,,,,,1\n"
                 ",,,4,,,1\n,,,5,,,1"_s);
    }

    /// Columns: the attributes of ads, between bars, and the last ad; how many hundreds of 1000
    /// choices are the ad "a".
    void choosesByTimeVersionAndWeight()
    {
        const auto hundreds = [](const QStringList& cells) {
            QString ads = cells[0];
            ads.replace(u"|"_s, u"><alt>x</alt></ad><ad "_s);
            const ManifestData manifest =
                AdManifest::parse("<ads><ad " + ads.toUtf8() + "><alt>x</alt></ad></ads>");
            QRandomGenerator random(1);
            int count = 0;
            for (int i = 0; i < 1000; ++i) {
                const AdRecord ad =
                    AdManifest::choose(manifest, QDate(2026, 3, 11), u"0.1.0"_s, cells[1], random);
                count += ad.id == u'a' ? 1 : 0;
            }
            return QString::number(count / 100);
        };
        compareRows({"id='a' start='2026-03-11' end='2026-03-11' >  > 10",
                     "id='a' start='2026-03-12' >  > 0", "id='a' end='2026-03-10' >  > 0",
                     "id='a' minVersion='0.1.0.0' >  > 10", "id='a' minVersion='0.1.0.1' >  > 0",
                     "id='a' maxVersion='0.1' >  > 10", "id='a' minVersion='0.10' >  > 0",
                     "id='a' maxVersion='.0x9.9' >  > 0", "id='a'|id='b' weight='3' >  > 2",
                     "id='a'|id='a'|id='b' > a > 0", "id='a'|id='a' > a > 10",
                     // Their sum is no number: the last one.
                     "id='c' weight='1e308'|id='c' weight='1e308'|id='a' >  > 10"},
                    hundreds);
    }

    void keepsManifest()
    {
        const QTemporaryDir dir;
        const QDateTime then = QDateTime::fromMSecsSinceEpoch(1773187200123).toUTC();
        QVERIFY(AdManifest::saveCached(dir.path(), "<a/>", then));
        const ManifestCache cache = AdManifest::loadCached(dir.path());
        QVERIFY(cache.xml == "<a/>" && cache.fetched == then);
        QVERIFY(!AdManifest::isFresh(cache, then.addMSecs(-1), 24));
        QVERIFY(AdManifest::isFresh(cache, then.addMSecs(7199999), 2));
        QVERIFY(!AdManifest::isFresh(cache, then.addMSecs(7200000), 2));
    }

    /// Columns: the age of the stored manifest, the site's answers for manifest and picture; what
    /// is shown and the number of requests, in one run and in the next.
    void showsWhatTheSiteAnswers()
    {
        Site site;
        const QUrl image = site.url.resolved(QUrl(u"/picture"_s));
        const QByteArray found = manifest("new", image);
        const QByteArray png = redPng(532, 92);
        const QByteArray good = "200 OK\r\n\r\n";
        const QHash<QString, QByteArray> answers{
            {u"good"_s, "200 OK\r\nSet-Cookie: user=1; path=/\r\n\r\n" + found},
            {u"packed"_s, "200 OK\r\nContent-Encoding: deflate\r\n\r\n" + qCompress(found).mid(4)},
            {u"moved"_s, "302 Found\r\nLocation: /moved\r\n\r\n"},
            {u"cut off"_s, good + found.chopped(1)},
            {u"not asked"_s, good + found},
            {u"missing"_s, "404 Not Found\r\n\r\n" + found},
            {u"second-hand"_s, "203 Non-Authoritative\r\n\r\n" + found},
            {u"red"_s, good + png},
            {u"text"_s, good + "<html/>"},
            {u"huge"_s, good + redPng(4097, 1024)},
            {u"long"_s, good + png.leftJustified(AdBanner::replyLimit + 1)}};
        site.answers.insert("/moved", good + found);
        compareRows(
            {"none > good > red > new red 2, new red 0",
             "7200 > packed > red > new red 2, new red 0",
             "7200 > moved > red > new red 3, new red 0",
             "none > good > text > new plain 2, new plain 1",
             "none > good > huge > new plain 2, new plain 1",
             "none > good > long > new plain 2, new plain 1",
             "impossible > good > red > new red 2, new red 2",
             "7200 > cut off > red > old red 2, old red 1",
             "7200 > second-hand > red > old red 2, old red 1",
             "none > missing > red > built-in picture 1, built-in picture 1",
             "7200 > never > red > old red 1, old red 0", "0 > good > red > old red 1, old red 0",
             "7200 > not asked > red > old plain 0, old plain 0",
             "none > not asked > red > built-in picture 0, built-in picture 0"},
            [&](const QStringList& cells) {
                const QTemporaryDir dir;
                const QString program = QCoreApplication::applicationFilePath(); // no folder
                const QString folder =
                    (cells[0] == u"impossible" ? program : dir.path()) + u"/ads"_s;
                bool isKept = false;
                if (const int age = cells[0].toInt(&isKept); isKept) {
                    keepManifest(folder, manifest("old", image), age);
                }
                site.answers.insert(manifestPath, answers.value(cells[1]));
                site.answers.insert("/picture", answers[cells[2]]);
                QStringList runs;
                for (int run = 0; run < 2; ++run) {
                    const qsizetype before = site.requests.size();
                    Banner banner(folder, site.url);
                    const QString shown = banner.shown(cells[1] != u"not asked");
                    runs << shown + u' ' + QString::number(site.requests.size() - before);
                }
                return runs.join(u", "_s);
            });
        for (const QByteArray& request : std::as_const(site.requests)) {
            const QByteArray head = request.trimmed().toLower();
            QCOMPARE(head.count('\n'), 5); // host, connection, accept-encoding and these
            QVERIFY2(head.contains("\naccept-language: en\r"), head.constData());
            QVERIFY2(head.contains("\nuser-agent: kestranesettingseditor/"), head.constData());
        }
    }

    void dropsLatePicture()
    {
        Site site;
        site.answers.insert("/late", "200 OK\r\n\r\n" + redPng(9, 9));
        const QUrl image = site.url.resolved(QUrl(u"/late"_s));
        const QTemporaryDir dir;
        Banner banner(dir.path(), site.url);
        banner.show();
        keepManifest(dir.path(), manifest("old", image));
        banner.start(true, 0);
        keepManifest(dir.path(), manifest("new"));
        banner.start(true, 0);
        QTRY_VERIFY(site.requests.size() == 1 && !banner.isWaiting());
        QTRY_COMPARE(banner.corner(), noPicture);
        QVERIFY(AdManifest::findCachedImage(dir.path(), image.toString()).isEmpty());
    }

    void opensPage()
    {
        QDesktopServices::setUrlHandler(u"http"_s, this, "open");
        const QTemporaryDir dir;
        Banner banner(dir.path(), QUrl(u"http://site.example"_s));
        banner.show();
        QWidget* const strip = banner.strip();
        keepManifest(dir.path(), "<a><ad><click>http://a.example/b c</click></ad></a>");
        banner.start(true, 0);
        QCOMPARE(strip->accessibleName(), u"Click for our other PixInsight modules"_s);
        QTest::keyClick(strip, Qt::Key_Enter);
        keepManifest(dir.path(), manifest("&lt;b>", QUrl(u"file:///dev/zero"_s)));
        banner.start(true, 0);
        QVERIFY(strip->accessibleName() == "<b>"_L1 && !banner.isWaiting());
        QVERIFY(QTest::qWaitForWindowActive(&banner));
        strip->setFocus();
        QCOMPARE(strip->grab().toImage().pixelColor(1, 1),
                 strip->palette().color(QPalette::Highlight));
        QVERIFY(strip->toolTip().endsWith(u"&lt;b&gt;</span>"_s));
        QAccessible::queryAccessibleInterface(strip)->actionInterface()->doAction(
            QAccessibleActionInterface::pressAction());
        const QString page = u" http://site.example/pixinsight/"_s;
        QTRY_COMPARE(m_opened, u" http://a.example/b c"_s + page);
        QTest::mouseClick(strip, Qt::LeftButton);
        QTest::mouseDClick(strip, Qt::LeftButton); // one more than the click that it begins with
        QTest::keyClick(strip, Qt::Key_Space);
        QKeyEvent repeat(QEvent::KeyPress, Qt::Key_Enter, Qt::NoModifier, {}, true);
        QCoreApplication::sendEvent(strip, &repeat);
        QCOMPARE(m_opened, u" http://a.example/b c"_s + page + page + page);
        QDesktopServices::unsetUrlHandler(u"http"_s);
        banner.resize(2 * banner.width(), banner.height());
        QVERIFY(qAbs(strip->geometry().center().x() - banner.rect().center().x()) <= 1);
    }

private:
    QString m_opened;
};

KSE_TEST_MAIN(TestAds)
#include "TestAds.moc"
