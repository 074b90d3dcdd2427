// SPDX-License-Identifier: MIT
#include "promo/AdBanner.h"
#include "support/TestMain.h"

#include <QAccessible>
#include <QBuffer>
#include <QDesktopServices>
#include <QKeyEvent>
#include <QLabel>
#include <QNetworkReply>
#include <QPointer>
#include <QScreen>
#include <QTcpServer>
#include <QTcpSocket>
#include <QTemporaryDir>
#include <QTest>

using namespace kse;
using namespace Qt::StringLiterals;

namespace {

const QByteArray manifestPath = "/astro/ads/apmf.xml";
const QColor red = Qt::red;
const QColor noPicture(21, 35, 63); // the ground of what stands in for one

/// A web server on the loopback that answers GET requests, one a connection.
class Site : public QTcpServer
{
public:
    struct Answer
    {
        QByteArray body = {};
        QByteArray status = "200 OK";
        QByteArray headers = {}; ///< Whole lines, each with its end.
    };

    Site()
    {
        connect(this, &QTcpServer::pendingConnectionAvailable, this, [this] {
            QTcpSocket* socket = nextPendingConnection();
            connect(socket, &QTcpSocket::readyRead, this, [this, socket] { serve(socket); });
            connect(socket, &QTcpSocket::disconnected, socket, &QObject::deleteLater);
        });
        listen(QHostAddress::LocalHost);
    }

    QUrl at(const QString& path = {}) const
    {
        return QUrl(u"http://127.0.0.1:%1%2"_s.arg(serverPort()).arg(path));
    }

    void serve(QTcpSocket* socket)
    {
        const QByteArray head = socket->peek(qint64{64} * 1024);
        const QByteArray path = head.split(' ').value(1);
        if (!head.contains("\r\n\r\n") || !answers.contains(path)) {
            waiting = socket;
            return;
        }
        requests.append(socket->readAll());
        const Answer answer = answers.value(path);
        socket->write("HTTP/1.1 " + answer.status +
                      "\r\nContent-Length: " + QByteArray::number(answer.body.size()) +
                      "\r\nConnection: close\r\n" + answer.headers + "\r\n" + answer.body);
        socket->disconnectFromHost();
    }

    QHash<QByteArray, Answer> answers;
    QList<QByteArray> requests;   ///< The heads of those that were answered.
    QPointer<QTcpSocket> waiting; ///< One for which there is no answer yet.
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
    bool isWaiting() const { return findChild<QNetworkReply*>() != nullptr; }

    /// Near the strip's corner as it stands on the screen, within the ring that tells its focus.
    QColor corner(int inset = 6) const
    {
        const QPoint place = strip()->pos() + QPoint(inset, inset);
        return screen()->grabWindow(winId(), place.x(), place.y(), 1, 1).toImage().pixelColor(0, 0);
    }
};

} // namespace

class TestAdBanner : public QObject
{
    Q_OBJECT

public slots:
    void open(const QUrl& url) { m_opened.append(url.toString()); }

private slots:
    void showsWhatTheAnswerLeaves()
    {
        const QByteArray found = manifest("new");
        const QByteArray packed = qCompress(found).mid(4);
        const std::pair<Site::Answer, bool> answers[] = {
            {{found}, true},
            {{packed, "200 OK", "Content-Encoding: deflate\r\n"}, true},
            {{{}, "302 Found", "Location: /moved\r\n"}, true},
            {{found.chopped(1)}, false},
            {{found, "404 Not Found"}, false},
            {{found, "203 Non-Authoritative"}, false},
            {{{}, {}}, false}}; // never comes
        for (const auto& [answer, isGood] : answers) {
            Site site;
            site.answers.insert("/moved", {found});
            if (!answer.status.isEmpty()) {
                site.answers.insert(manifestPath, answer);
            }
            const QTemporaryDir dir;
            const QString noFolderYet = dir.filePath(u"ads"_s);
            QVERIFY(keepManifest(dir.path(), manifest("old"), 7200));
            Banner withCopy(dir.path(), site.at());
            Banner withoutCopy(noFolderYet, site.at());
            withCopy.start(true, 0);
            withoutCopy.start(true, 1);
            const QString shown = isGood ? u"new"_s : u"old"_s;
            QTRY_COMPARE_WITH_TIMEOUT(withCopy.strip()->accessibleName(), shown, 12000);
            QTRY_VERIFY((isGood && withoutCopy.strip()->accessibleName() == shown) ||
                        (!isGood && withoutCopy.corner() != noPicture)); // what is built in
            QCOMPARE(withCopy.corner(), noPicture);
            const ManifestCache copy = AdManifest::loadCached(dir.path());
            QCOMPARE(copy.xml, isGood ? found : manifest("old"));
            QCOMPARE(AdManifest::isFresh(copy, QDateTime::currentDateTimeUtc(), 1), isGood);
            QCOMPARE(AdManifest::loadCached(noFolderYet).valid, isGood);
        }
    }

    void asksOnceAndTellsNothing()
    {
        Site site;
        const QByteArray found = manifest("new", site.at(u"/a.png"_s));
        site.answers = {{manifestPath, {found, "200 OK", "Set-Cookie: user=1; path=/\r\n"}},
                        {"/a.png", {redPng(532, 92)}}};
        const QTemporaryDir dir;
        Banner first(dir.path(), site.at());
        first.start(true, 1);
        QTRY_COMPARE(first.corner(), red);
        Banner second(dir.path(), site.at());
        second.start(true, 0);
        QTRY_COMPARE(second.corner(), red);
        QVERIFY(keepManifest(dir.path(), manifest("old", site.at(u"/b.png"_s)), 7200));
        Banner forbidden(dir.path(), site.at());
        forbidden.start(false, 0);
        QCOMPARE(forbidden.strip()->accessibleName(), u"old"_s);
        QVERIFY(!second.isWaiting() && !forbidden.isWaiting());
        QCOMPARE(site.requests.size(), 2);
        for (const QByteArray& request : std::as_const(site.requests)) {
            const QByteArray head = request.trimmed().toLower();
            QCOMPARE(head.count('\n'), 5); // host, connection, accept-encoding and these
            QVERIFY2(head.contains("\naccept-language: en\r"), head.constData());
            QVERIFY2(head.contains("\nuser-agent: kestranesettingseditor/"), head.constData());
        }
    }

    void showsAndKeepsPicturesOnly()
    {
        const QByteArray png = redPng(9, 9);
        const std::tuple<QByteArray, QString, bool> pictures[] = {
            {png, u"ads"_s, true},
            {png, u"file/ads"_s, true}, // no cache can be made there
            {"<html/>", u"ads"_s, false},
            {redPng(4097, 1024), u"ads"_s, false},
            {png.leftJustified(AdBanner::replyLimit + 1), u"ads"_s, false}};
        for (const auto& [bytes, folder, isShown] : pictures) {
            const QTemporaryDir dir;
            QVERIFY(QFile::copy(u":/ads/Vellumix.png"_s, dir.filePath(u"file"_s)));
            Site site;
            const QUrl image = site.at(u"/a"_s);
            site.answers = {{manifestPath, {manifest("new", image)}}, {"/a", {bytes}}};
            Banner banner(dir.filePath(folder), site.at());
            banner.start(true, 0);
            QTRY_VERIFY(site.requests.size() == 2 && !banner.isWaiting());
            QTRY_COMPARE(banner.corner(), isShown ? red : noPicture);
            const QString kept =
                AdManifest::findCachedImage(dir.filePath(folder), image.toString());
            QCOMPARE(!kept.isEmpty(), isShown && folder == u"ads"_s);
        }
    }

    void dropsLatePicture()
    {
        Site site;
        const QUrl image = site.at(u"/late"_s);
        const QTemporaryDir dir;
        Banner banner(dir.path(), site.at());
        QVERIFY(keepManifest(dir.path(), manifest("old", image)));
        banner.start(true, 0);
        QTRY_VERIFY(site.waiting);
        QVERIFY(keepManifest(dir.path(), manifest("new")));
        banner.start(true, 0);
        site.answers.insert("/late", {redPng(9, 9)});
        site.serve(site.waiting);
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
        QVERIFY(keepManifest(dir.path(), manifest("&lt;b>", QUrl(u"file:///dev/zero"_s))));
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
