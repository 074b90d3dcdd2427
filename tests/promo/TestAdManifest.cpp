// SPDX-License-Identifier: MIT
#include "promo/AdManifest.h"
#include "support/TestMain.h"
#include "support/TextRows.h"

using namespace kse;
using namespace Qt::StringLiterals;

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

} // namespace

class TestAdManifest : public QObject
{
    Q_OBJECT

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

    /// The attributes of ads with | between them, which ad was the last one, and how many hundreds
    /// of 1000 choices are the ad "a".
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
};

KSE_GUILESS_TEST_MAIN(TestAdManifest)
#include "TestAdManifest.moc"
