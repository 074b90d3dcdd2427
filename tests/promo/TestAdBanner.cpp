// SPDX-License-Identifier: MIT
#include "promo/AdBanner.h"
#include "support/LoopbackServer.h"
#include "support/TestMain.h"

#include <QAccessible>
#include <QBuffer>
#include <QDesktopServices>
#include <QLabel>
#include <QNetworkReply>
#include <QSignalSpy>
#include <QTemporaryDir>
#include <QTest>

#include <algorithm>

using namespace kse;
using namespace Qt::StringLiterals;

namespace {

using Answer = LoopbackServer::Answer;

const QByteArray manifestPath = "/astro/ads/apmf.xml";
const QColor red = Qt::red;
const QColor noPicture(52, 80, 127); // the outline of what stands in for one

QByteArray manifest(const QByteArray& id, const QUrl& image = {})
{
    return "<ads ttl='1h'><ad id='" + id + "'><alt>&lt;b></alt><image>" + image.toEncoded() +
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

bool keepManifest(const QString& folder, const QByteArray& bytes, qint64 age = 0)
{
    return AdManifest::saveCached(folder, bytes, QDateTime::currentDateTimeUtc().addSecs(-age));
}

class Banner : public AdBanner
{
public:
    using AdBanner::AdBanner;

    QWidget* strip() const { return findChild<QWidget*>(u"strip"_s); }
    QString shownId() const { return shown.isEmpty() ? QString() : shown.last().at(0).toString(); }
    bool isWaiting() const { return findChild<QNetworkReply*>() != nullptr; }
    QColor corner() const { return strip()->grab().toImage().pixelColor(0, 0); }

    QSignalSpy shown{this, &AdBanner::adShown};
};

} // namespace

Q_DECLARE_METATYPE(kse::LoopbackServer::Answer)

class TestAdBanner : public QObject
{
    Q_OBJECT

public slots:
    void open(const QUrl& url) { m_opened.append(url.toString()); }

private slots:
    void showsWhatTheAnswerLeaves_data();
    void showsWhatTheAnswerLeaves();
    void refusesRedirectFromTls();
    void asksOnceAndTellsNothing();
    void showsAndKeepsPicturesOnly_data();
    void showsAndKeepsPicturesOnly();
    void dropsLatePicture();
    void opensPage();
    void placesStripAndCaption();

private:
    QStringList m_opened;
};

void TestAdBanner::showsWhatTheAnswerLeaves_data()
{
    const QByteArray found = manifest("new");
    QTest::addColumn<Answer>("answer");
    QTest::addColumn<bool>("isGood");
    QTest::newRow("good") << Answer{found} << true;
    QTest::newRow("packed") << Answer{qCompress(found).mid(4), "200 OK",
                                      "Content-Encoding: deflate\r\n"}
                            << true;
    QTest::newRow("moved") << Answer{{}, "302 Found", "Location: /moved\r\n"} << true;
    QTest::newRow("bad XML") << Answer{found + "<"} << false;
    QTest::newRow("empty") << Answer{} << false;
    QTest::newRow("truncated") << Answer{found.chopped(1)} << false;
    QTest::newRow("not found") << Answer{found, "404 Not Found"} << false;
    QTest::newRow("not 200") << Answer{found, "203 Non-Authoritative"} << false;
    QTest::newRow("too slow") << Answer{found, "200 OK", {}, true} << false;
    QTest::newRow("nobody there") << Answer{{}, {}} << false;
}

void TestAdBanner::showsWhatTheAnswerLeaves()
{
    QFETCH(const Answer, answer);
    QFETCH(const bool, isGood);
    LoopbackServer server;
    server.answers = {{manifestPath, answer}, {"/moved", {manifest("new")}}};
    const QTemporaryDir dir;
    const QString noFolderYet = dir.filePath(u"ads"_s);
    QVERIFY(keepManifest(dir.path(), manifest("old"), 7200));
    Banner withCopy(dir.path(), server.url());
    Banner withoutCopy(noFolderYet, server.url());
    if (answer.status.isEmpty()) {
        server.close();
    }
    withCopy.start(true, 0);
    withoutCopy.start(true, 1);
    QTRY_COMPARE_WITH_TIMEOUT(withoutCopy.shown.size() + withCopy.shown.size(), 2, 12000);
    QCOMPARE(withCopy.shownId(), isGood ? u"new"_s : u"old"_s);
    QCOMPARE(withCopy.corner(), noPicture);
    QCOMPARE(withoutCopy.shownId().startsWith(u"emb-"_s), !isGood);
    QCOMPARE(withoutCopy.corner() == noPicture, isGood);

    const ManifestCache copy = AdManifest::loadCached(dir.path());
    QCOMPARE(copy.xml, manifest(isGood ? "new" : "old"));
    QCOMPARE(AdManifest::isFresh(copy, QDateTime::currentDateTimeUtc(), 1), isGood);
    QCOMPARE(AdManifest::loadCached(noFolderYet).valid, isGood);
}

void TestAdBanner::refusesRedirectFromTls()
{
    const QTemporaryDir dir;
    auto sockets = trustedTlsSockets(dir.path());
    if (!sockets) {
        QSKIP("No openssl to make a certificate with.");
    }
    LoopbackServer unsafe;
    LoopbackServer safe(std::move(sockets));
    const QByteArray location = "Location: " + unsafe.url(u"/"_s).toEncoded() + "\r\n";
    safe.answers = {{manifestPath, {{}, "302 Found", location}}};
    Banner banner(dir.path(), safe.url());
    banner.start(true, 0);
    QTRY_VERIFY(banner.shownId().startsWith(u"emb-"_s));
    QCOMPARE(safe.requests.size(), 1);
    QVERIFY(unsafe.requests.isEmpty());
}

void TestAdBanner::asksOnceAndTellsNothing()
{
    LoopbackServer server;
    const QByteArray found = manifest("new", server.url(u"/a.png"_s));
    server.answers = {{manifestPath, {found, "200 OK", "Set-Cookie: user=1; path=/\r\n"}},
                      {"/a.png", {redPng(532, 92)}}};
    const QTemporaryDir dir;
    Banner first(dir.path(), server.url());
    first.start(true, 1);
    QTRY_COMPARE(first.corner(), red);
    Banner second(dir.path(), server.url());
    second.start(true, 0);
    QCOMPARE(second.corner(), red);
    QVERIFY(keepManifest(dir.path(), manifest("old", server.url(u"/b.png"_s)), 7200));
    Banner forbidden(dir.path(), server.url());
    forbidden.start(false, 0);
    QCOMPARE(forbidden.shownId(), u"old"_s);
    QCOMPARE(forbidden.corner(), noPicture);
    QVERIFY(!second.isWaiting() && !forbidden.isWaiting());

    QCOMPARE(server.requests.size(), 2);
    for (const QByteArray& path : {manifestPath, QByteArray("/a.png")}) {
        QByteArrayList lines = server.requests.takeFirst().replace('\r', "").trimmed().split('\n');
        QCOMPARE(lines.takeFirst(), "GET " + path + " HTTP/1.1");
        for (QByteArray& line : lines) { // the case of names changed with Qt 6.8
            const qsizetype size = line.indexOf(':');
            line.replace(0, size, line.left(size).toLower());
        }
        std::sort(lines.begin(), lines.end());
        QVERIFY(lines.takeFirst().startsWith("accept-encoding: ")); // what this Qt can unpack
        QCOMPARE(lines.join('\n'), "accept-language: en\nconnection: Keep-Alive\nhost: " +
                                       server.url().authority().toLatin1() +
                                       "\nuser-agent: KestraneSettingsEditor/0.1.0");
    }
}

void TestAdBanner::showsAndKeepsPicturesOnly_data()
{
    const QByteArray png = redPng(9, 9);
    QTest::addColumn<QByteArray>("bytes");
    QTest::addColumn<QString>("folder");
    QTest::addColumn<bool>("isShown");
    QTest::addColumn<bool>("isKept");
    QTest::newRow("picture") << png << u"ads"_s << true << true;
    QTest::newRow("cache in the way") << png << u"file/ads"_s << true << false;
    QTest::newRow("no picture") << QByteArray("<html/>") << u"ads"_s << false << false;
    QTest::newRow("pixels") << redPng(4097, 1024) << u"ads"_s << false << false;
    QTest::newRow("bytes") << png.leftJustified(AdBanner::replyLimit + 1) << u"ads"_s << false
                           << false;
}

void TestAdBanner::showsAndKeepsPicturesOnly()
{
    QFETCH(const QByteArray, bytes);
    QFETCH(const QString, folder);
    QFETCH(const bool, isShown);
    const QTemporaryDir dir;
    QVERIFY(QFile::copy(u":/ads/Vellumix.png"_s, dir.filePath(u"file"_s)));
    LoopbackServer server;
    const QUrl image = server.url(u"/a"_s);
    server.answers = {{manifestPath, {manifest("new", image)}}, {"/a", {bytes}}};
    Banner banner(dir.filePath(folder), server.url());
    banner.start(true, 0);
    QTRY_VERIFY(server.requests.size() == 2 && !banner.isWaiting());
    QCOMPARE(banner.corner(), isShown ? red : noPicture);
    const QString kept = AdManifest::findCachedImage(dir.filePath(folder), image.toString());
    QTEST(!kept.isEmpty(), "isKept");
}

void TestAdBanner::dropsLatePicture()
{
    LoopbackServer server;
    const QUrl image = server.url(u"/late"_s);
    server.answers = {{"/late", {redPng(9, 9), "200 OK", {}, true}}};
    const QTemporaryDir dir;
    Banner banner(dir.path(), server.url());
    QVERIFY(keepManifest(dir.path(), manifest("old", image)));
    banner.start(true, 0);
    QTRY_COMPARE(server.requests.size(), 1);
    QVERIFY(keepManifest(dir.path(), manifest("new")));
    banner.start(true, 0);
    server.releaseHeld();
    QTRY_VERIFY(!banner.isWaiting());
    QCOMPARE(banner.shownId(), u"new"_s);
    QCOMPARE(banner.corner(), noPicture);
    QVERIFY(AdManifest::findCachedImage(dir.path(), image.toString()).isEmpty());
}

void TestAdBanner::opensPage()
{
    QDesktopServices::setUrlHandler(u"http"_s, this, "open");
    const QTemporaryDir dir;
    Banner banner(dir.path(), QUrl(u"http://site.example"_s));
    QWidget* const strip = banner.strip();
    QVERIFY(keepManifest(dir.path(), "<a><ad><click>http://a.example/b c</click></ad></a>"));
    banner.start(true, 0);
    QTest::mouseClick(strip, Qt::RightButton);
    QTest::mouseDClick(strip, Qt::LeftButton); // one more than the click that it begins with
    QTest::keyClick(strip, Qt::Key_Enter);
    QCOMPARE(m_opened, QStringList(2, u"http://a.example/b c"_s));
    QCOMPARE(strip->toolTip(), u"Click for our other PixInsight modules."_s);
    QCOMPARE(strip->accessibleName(), u"Click for our other PixInsight modules"_s);

    m_opened.clear();
    QVERIFY(keepManifest(dir.path(), manifest("new", QUrl(u"file:///dev/zero"_s))));
    banner.start(true, 0);
    QTest::mouseClick(strip, Qt::LeftButton);
    QTest::keyClick(strip, Qt::Key_Return);
    QTest::keyClick(strip, Qt::Key_Space);
    QAccessible::queryAccessibleInterface(strip)->actionInterface()->doAction(
        QAccessibleActionInterface::pressAction());
    QTRY_COMPARE(m_opened, QStringList(4, u"http://site.example/pixinsight/"_s));
    QCOMPARE(strip->toolTip(), u"<span style=\"white-space:pre-wrap\">&lt;b&gt;</span>"_s);
    QCOMPARE(strip->accessibleName(), u"<b>"_s);
    QDesktopServices::unsetUrlHandler(u"http"_s);
}

void TestAdBanner::placesStripAndCaption()
{
    Banner banner{QString(), QUrl()};
    const auto* caption = banner.findChild<QLabel*>(u"caption"_s);
    QFont font;
    font.setPointSizeF(20);
    banner.setFont(font);
    QCOMPARE(caption->font().pointSizeF(), 16.0);
    QCOMPARE(banner.minimumSizeHint(), QSize(2 * caption->sizeHint().width() + 552, 100));
    banner.resize(732, 100);
    banner.show();
    QCOMPARE(caption->geometry(), QRect(QPoint(10, 6), caption->sizeHint()));
    QCOMPARE(banner.strip()->geometry(), QRect(100, 4, 532, 92));
    banner.resize(300, 100);
    QCOMPARE(banner.strip()->geometry(), QRect(0, 4, 532, 92));
    banner.activateWindow();
    banner.strip()->setFocus();
    QTRY_VERIFY(banner.strip()->hasFocus());
    QCOMPARE(banner.corner(), banner.palette().color(QPalette::Highlight));
}

KSE_TEST_MAIN(TestAdBanner)
#include "TestAdBanner.moc"
