// SPDX-License-Identifier: MIT
#include "promo/AdManifest.h"
#include "support/TestMain.h"

#include <QFile>
#include <QRandomGenerator>
#include <QTemporaryDir>
#include <QTest>

using namespace kse;
using namespace Qt::StringLiterals;

namespace {

const QDate today(2026, 3, 11);
const QString version = u"0.1.0"_s;

// How many of 1000 choices are the ad "a".
int choicesOfA(const QByteArray& ads, const QString& lastId)
{
    const ManifestData manifest = AdManifest::parse("<ads>" + ads + "</ads>");
    QRandomGenerator rng(1);
    int count = 0;
    for (int i = 0; i < 1000; ++i) {
        count += AdManifest::choose(manifest, today, version, lastId, rng).id == u'a' ? 1 : 0;
    }
    return count;
}

} // namespace

class TestAdManifest : public QObject
{
    Q_OBJECT

private slots:
    void readsRoot()
    {
        const std::pair<const char*, double> documents[] = {
            {"<a ttl='2d'/>", 48},
            {"<!DOCTYPE any><any ttl=' 30 M'/>", 0.5},
            {"<a ttl='0.5w' ttlHours='6'/>", 84},
            {"<a ttl='' ttlHours='6H'/>", 6},
            {"<a ttl='0'/>", 0},
            {"<a ttl='2d ' ttlHours='6'/>", 24},
            {"<a ttl='-1'/>", 24},
            {"<a ttl='nan'/>", 24},
            {"<!-- no root -->", -1}, // counts as none
            {"<a><ad><alt>cut off</alt></ad>", -1},
            {"<!DOCTYPE a [<!ENTITY e 'e'>]><a><ad><alt>&e;</alt></ad></a>", -1}};
        for (const auto& [document, hours] : documents) {
            const ManifestData manifest = AdManifest::parse(document);
            QVERIFY2((manifest.valid ? manifest.ttlHours : -1.0) == hours, document);
            QVERIFY(manifest.ads.isEmpty());
            const QByteArray large = document + QByteArray(AdManifest::sizeLimit, '\n');
            QVERIFY(!AdManifest::parse(large).valid);
        }
    }

    void readsAds()
    {
        const ManifestData manifest = AdManifest::parse(R"(<ads>
            <ad id=" a " start=" 2026-01-01 " end="2026-12-31" minVersion="0.1" maxVersion="9 "
                weight=" 2.5 "> <image> i <!-- --></image><x>no</x><click> c&amp;<b>d</b>
                </click><alt><![CDATA[ <t> ]]></alt> </ad>
            <ad weight="-1"><alt>1</alt></ad> <ad weight="0"><click>2</click></ad>
            <ad weight="inf"><image>3</image></ad> <ad weight="much"><alt>4</alt></ad>
            <ad id="empty"><alt> </alt></ad> <other><alt>no</alt></other> <alt>no</alt>
            <x><ad><alt>no</alt></ad></x></ads>)");
        QString text;
        for (const AdRecord& ad : manifest.ads) {
            text += QStringList{ad.id, ad.image, ad.click, ad.alt, ad.start, ad.end}.join(u',') +
                    ad.minVersion + ad.maxVersion + QString::number(ad.weight) + u'\n';
        }
        QCOMPARE(text, u"a,i,c&d,<t>,2026-01-01,2026-12-310.192.5\n"
                       ",,,1,,1\n,,2,,,1\n,3,,,,1\n,,,4,,1\n"_s);
    }

    void showsAdsInTheirTime()
    {
        const std::pair<const char*, bool> ads[] = {{"start='2026-03-11' end='2026-03-11'", true},
                                                    {"start='2026-03-12'", false},
                                                    {"end='2026-03-10'", false},
                                                    {"minVersion='0.1.0.0'", true},
                                                    {"minVersion='0.1.0.1'", false},
                                                    {"maxVersion='0.1'", true},
                                                    {"minVersion='0.10'", false},
                                                    {"maxVersion='.0x9.9'", false}};
        for (const auto& [times, isShown] : ads) {
            const ManifestData manifest =
                AdManifest::parse(QByteArray("<ads><ad ") + times + "><alt>a</alt></ad></ads>");
            QVERIFY2(AdManifest::eligible(manifest, today, version).isEmpty() != isShown, times);
            QRandomGenerator rng(1);
            const AdRecord chosen = AdManifest::choose(manifest, today, version, {}, rng);
            QCOMPARE(chosen.embedded, !isShown); // with nothing to show there is what is built in
        }
    }

    void choosesByWeight()
    {
        const QByteArray a = "<ad id='a'><alt>a</alt></ad>";
        const QByteArray b = "<ad id='b' weight='3'><alt>b</alt></ad>";
        const QByteArray huge = "<ad id='c' weight='1e308'><alt>c</alt></ad>";
        const int quarter = choicesOfA(a + b, {});
        QVERIFY2(quarter > 200 && quarter < 300, QByteArray::number(quarter).constData());
        QCOMPARE(choicesOfA(a + a + b, u"a"_s), 0);
        QCOMPARE(choicesOfA(a + a, u"a"_s), 1000);       // there is no other
        QCOMPARE(choicesOfA(huge + huge + a, {}), 1000); // their sum is no number: the last
    }

    void keepsManifest()
    {
        const QTemporaryDir dir;
        const QString folder = dir.filePath(u"cache/ads"_s);
        const QDateTime then = QDateTime::fromMSecsSinceEpoch(1773187200123).toUTC();
        QVERIFY(!AdManifest::loadCached(folder).valid);
        QVERIFY(AdManifest::saveCached(folder, "<a/>", then));
        const ManifestCache cache = AdManifest::loadCached(folder);
        QVERIFY(cache.valid && cache.xml == "<a/>" && cache.fetched == then);
        QVERIFY(!AdManifest::isFresh(cache, then, 0));
        QVERIFY(!AdManifest::isFresh(cache, then.addMSecs(-1), 24));
        QVERIFY(AdManifest::isFresh(cache, then.addMSecs(7199999), 2));
        QVERIFY(!AdManifest::isFresh(cache, then.addMSecs(7200000), 2));
        for (const QByteArray& stamp : QByteArrayList{"9223372036854775807", "1x", ""}) {
            QFile file(folder + u"/manifest.fetched"_s);
            QVERIFY(file.open(QIODevice::WriteOnly) && file.write(stamp) == stamp.size());
            file.close();
            QVERIFY(!AdManifest::isFresh(AdManifest::loadCached(folder), then, 24));
            QVERIFY(!AdManifest::saveCached(file.fileName(), "<b/>", then)); // a file, no folder
        }
    }

    void keepsPictures()
    {
        const QString url = u"https://kestrane.example/ä.png"_s;
        const QTemporaryDir dir;
        const QString folder = dir.filePath(u"ads"_s);
        const QString base = folder + u"/img_b1710e8f55c2a818"_s; // the URL's SHA-1
        QCOMPARE(AdManifest::findCachedImage(folder, url), QString());
        QCOMPARE(AdManifest::cacheImage(folder, url, "GIF89a"), base + u".img"_s);
        QCOMPARE(AdManifest::cacheImage(folder, url, "\xFF\xD8\xFF\xE0"), base + u".jpg"_s);
        QCOMPARE(AdManifest::findCachedImage(folder, url), base + u".jpg"_s);
        QCOMPARE(AdManifest::cacheImage(folder, url, "\x89PNG\r\n"), base + u".png"_s);
        QCOMPARE(AdManifest::cacheImage(base + u".png"_s, url, "GIF89a"), QString());
    }
};

KSE_GUILESS_TEST_MAIN(TestAdManifest)
#include "TestAdManifest.moc"
