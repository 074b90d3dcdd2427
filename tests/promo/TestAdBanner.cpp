// SPDX-License-Identifier: MIT
#include "promo/AdBanner.h"
#include "support/LoopbackServer.h"
#include "support/TestMain.h"

#include <QAccessible>
#include <QBuffer>
#include <QDesktopServices>
#include <QKeyEvent>
#include <QLabel>
#include <QNetworkReply>
#include <QScreen>
#include <QSignalSpy>
#include <QTemporaryDir>
#include <QTest>

using namespace kse;
using namespace Qt::StringLiterals;

namespace {

using Answer = LoopbackServer::Answer;

const QByteArray manifestPath = "/astro/ads/apmf.xml";
const QColor red = Qt::red;
const QColor noPicture(21, 35, 63); // the ground of what stands in for one

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
    explicit Banner(const QString& folder, const QUrl& site = {})
        : AdBanner(folder, site)
    {
        show();
    }

    QWidget* strip() const { return findChild<QWidget*>(u"strip"_s); }
    QString shownId() const { return shown.isEmpty() ? QString() : shown.last().at(0).toString(); }
    bool isWaiting() const { return findChild<QNetworkReply*>() != nullptr; }

    /// Near the strip's corner as it stands on the screen, within the ring that tells its focus.
    QColor corner(int inset = 6) const
    {
        const QPoint place = strip()->pos() + QPoint(inset, inset);
        return screen()->grabWindow(winId(), place.x(), place.y(), 1, 1).toImage().pixelColor(0, 0);
    }

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
    void showsWhatTheAnswerLeaves_data()
    {
        const QByteArray found = manifest("new");
        const QByteArray packed = qCompress(found).mid(4);
        QTest::addColumn<Answer>("answer");
        QTest::addColumn<bool>("isGood");
        QTest::newRow("good") << Answer{found} << true;
        QTest::newRow("packed") << Answer{packed, "200 OK", "Content-Encoding: deflate\r\n"}
                                << true;
        QTest::newRow("moved") << Answer{{}, "302 Found", "Location: /moved\r\n"} << true;
        QTest::newRow("truncated") << Answer{found.chopped(1)} << false;
        QTest::newRow("empty") << Answer{} << false;
        QTest::newRow("not found") << Answer{found, "404 Not Found"} << false;
        QTest::newRow("not 200") << Answer{found, "203 Non-Authoritative"} << false;
        QTest::newRow("too slow") << Answer{found, "200 OK", {}, true} << false;
        QTest::newRow("nobody there") << Answer{{}, {}} << false;
    }

    void showsWhatTheAnswerLeaves()
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
        QTRY_COMPARE(withCopy.corner(), noPicture);
        QCOMPARE(withoutCopy.shownId().startsWith(u"emb-"_s), !isGood);
        QTRY_COMPARE(withoutCopy.corner() == noPicture, isGood);
        const ManifestCache copy = AdManifest::loadCached(dir.path());
        QCOMPARE(copy.xml, manifest(isGood ? "new" : "old"));
        QCOMPARE(AdManifest::isFresh(copy, QDateTime::currentDateTimeUtc(), 1), isGood);
        QCOMPARE(AdManifest::loadCached(noFolderYet).valid, isGood);
    }

    void asksOnceAndTellsNothing()
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
        QTRY_COMPARE(second.corner(), red);
        QVERIFY(keepManifest(dir.path(), manifest("old", server.url(u"/b.png"_s)), 7200));
        Banner forbidden(dir.path(), server.url());
        forbidden.start(false, 0);
        QCOMPARE(forbidden.shownId(), u"old"_s);
        QVERIFY(!second.isWaiting() && !forbidden.isWaiting());
        QCOMPARE(server.requests.size(), 2);
        for (const QByteArray& request : std::as_const(server.requests)) {
            const QByteArray head = request.trimmed().toLower();
            QCOMPARE(head.count('\n'), 5); // host, connection, accept-encoding and these
            QVERIFY2(head.contains("\naccept-language: en\r"), head.constData());
            QVERIFY2(head.contains("\nuser-agent: kestranesettingseditor/"), head.constData());
        }
    }

    void showsAndKeepsPicturesOnly_data()
    {
        const QByteArray png = redPng(9, 9);
        QTest::addColumn<QByteArray>("bytes");
        QTest::addColumn<QString>("folder");
        QTest::addColumn<bool>("isShown");
        QTest::newRow("picture") << png << u"ads"_s << true;
        QTest::newRow("cache in the way") << png << u"file/ads"_s << true;
        QTest::newRow("no picture") << QByteArray("<html/>") << u"ads"_s << false;
        QTest::newRow("pixels") << redPng(4097, 1024) << u"ads"_s << false;
        QTest::newRow("bytes") << png.leftJustified(AdBanner::replyLimit + 1) << u"ads"_s << false;
    }

    void showsAndKeepsPicturesOnly()
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
        QTRY_COMPARE(banner.corner(), isShown ? red : noPicture);
        const QString kept = AdManifest::findCachedImage(dir.filePath(folder), image.toString());
        QCOMPARE(!kept.isEmpty(), isShown && folder == u"ads"_s);
    }

    void dropsLatePicture()
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
        QTRY_COMPARE(banner.corner(), noPicture);
        QVERIFY(AdManifest::findCachedImage(dir.path(), image.toString()).isEmpty());
    }

    void opensPage()
    {
        QDesktopServices::setUrlHandler(u"http"_s, this, "open");
        const QTemporaryDir dir;
        Banner banner(dir.path(), QUrl(u"http://site.example"_s));
        QWidget* const strip = banner.strip();
        QVERIFY(keepManifest(dir.path(), "<a><ad><click>http://a.example/b c</click></ad></a>"));
        banner.start(true, 0);
        QTest::mouseDClick(strip, Qt::LeftButton); // one more than the click that it begins with
        QTest::keyClick(strip, Qt::Key_Enter);
        QKeyEvent repeat(QEvent::KeyPress, Qt::Key_Enter, Qt::NoModifier, {}, true);
        QCoreApplication::sendEvent(strip, &repeat);
        QCOMPARE(m_opened, QStringList(1, u"http://a.example/b c"_s));
        QCOMPARE(strip->accessibleName(), u"Click for our other PixInsight modules"_s);

        m_opened.clear();
        QVERIFY(keepManifest(dir.path(), manifest("new", QUrl(u"file:///dev/zero"_s))));
        banner.start(true, 0);
        QTest::mouseClick(strip, Qt::LeftButton);
        QTest::keyClick(strip, Qt::Key_Space);
        QAccessible::queryAccessibleInterface(strip)->actionInterface()->doAction(
            QAccessibleActionInterface::pressAction());
        QTRY_COMPARE(m_opened, QStringList(3, u"http://site.example/pixinsight/"_s));
        QVERIFY(strip->toolTip().endsWith(u"&lt;b&gt;</span>"_s));
        QCOMPARE(strip->accessibleName(), u"<b>"_s);
        QDesktopServices::unsetUrlHandler(u"http"_s);
    }

    void placesStripAndCaption()
    {
        Banner banner({});
        const auto* caption = banner.findChild<QLabel*>(u"caption"_s);
        QFont font;
        font.setPointSizeF(20);
        banner.setFont(font);
        QCOMPARE(caption->font().pointSizeF(), 16.0);
        QCOMPARE(banner.minimumSizeHint(), QSize(2 * caption->sizeHint().width() + 552, 100));
        banner.resize(732, 100);
        QTRY_COMPARE(banner.strip()->geometry(), QRect(100, 4, 532, 92));
        QCOMPARE(caption->geometry(), QRect(QPoint(10, 6), caption->sizeHint()));
        banner.activateWindow();
        banner.strip()->setFocus();
        QTRY_COMPARE(banner.corner(0), banner.palette().color(QPalette::Highlight));
    }

private:
    QStringList m_opened;
};

KSE_TEST_MAIN(TestAdBanner)
#include "TestAdBanner.moc"
