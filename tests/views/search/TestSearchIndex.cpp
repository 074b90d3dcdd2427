// SPDX-License-Identifier: MIT
#include "schema/SettingsSchema.h"
#include "support/DocumentText.h"
#include "support/TestMain.h"
#include "support/TextRows.h"
#include "views/search/SearchIndex.h"

#include <QtTest>

using namespace kse;

class TestSearchIndex : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase()
    {
        QVERIFY(m_schema.load({}, R"({"variables": {
            "Alpha": {"label": "Speed of Light", "description": "How FAST it is. Zoom!"}}})"));
    }

    void splitsTerms_data()
    {
        addTextRows({" Two  words  > two|words", "\"One Phrase\" x > one phrase|x",
                     "a\"b c\" \"open > a\"b|c\"|\"open", "\"\" \t > \"\""});
    }
    void splitsTerms()
    {
        QFETCH(QStringList, cells);
        QCOMPARE(searchTerms(cells[0]).join(u'|'), cells[1]);
    }

    /// Where to look (names, values, descriptions; changed, protected, restricted), what for, and
    /// the keys of what is found.
    void findsBestFirst_data()
    {
        addTextRows({"nvd >  > a-b a/b Alpha Gone Mask b MaskOn sMask Top ÉT\u00C9 ét\u00E9",
                     "nvd > MASK > Mask MaskOn sMask b Top", "nvd > light > Alpha b",
                     "d > fast > Alpha", "d > zoom > Alpha", "v > mask > b Top",
                     "nvp > block > Block", "nvd > fast 12 > Alpha", "nvd > mask light > b",
                     "nvd > mask light light > b", "nvd > \"light speed\" > ", " > mask > ",
                     "nvdc >  > Alpha Gone", "nvdc > gone > Gone", "nvdr >  > Block Mask",
                     "nvdrc >  > ", "nvd > \u00C9t\u00E9 > ÉT\u00C9 ét\u00E9"});
    }
    void findsBestFirst()
    {
        const auto document = documentFrom(
            R"(<v k="Top" t="s" v="unMASKed"/><v k="Block" t="B" v="mask"/>)"
            R"(<v k="Alpha" t="i" v="0"/><i k="G"><v k="Gone" t="b" v="1"/></i>)"
            R"(<i k="Mask"><v k="b" t="s" v="Light Mask"/></i><v k="sMask" t="i" v="0"/>)"
            R"(<v k="a/b" t="i" v="0"/><v k="a-b" t="i" v="0"/><v k="ÉTÉ" t="i" v="0"/>)"
            R"(<v k="été" t="i" v="0"/><v k="MaskOn" t="i" v="0"/><v k="Mask" t="i" v="0"/>)");
        XsdtNode& root = document->root;
        root.childByKey(u"Alpha")->value = QStringLiteral("12");
        root.childByKey(u"G")->markedForDeletion = true;
        const QSet<XsdtNode*> some = {root.childByKey(u"Block"), root.children.back().get()};

        QFETCH(QStringList, cells);
        const auto has = [&](char16_t scope) {
            return cells[0].contains(scope);
        };
        const SearchQuery query{
            searchTerms(cells[1]),      has(u'n'), has(u'v'), has(u'd'), has(u'c'), has(u'p'),
            has(u'r') ? &some : nullptr};
        const QList<SearchIndexEntry> index = buildSearchIndex(*document, m_schema);
        QStringList keys;
        for (const qsizetype place : search(index, query)) {
            keys.append(index[place].node->key);
        }
        QCOMPARE(keys.join(u' '), cells[2]);
    }

    void keepsTheEndOfDeepPaths()
    {
        const int levels = 20'000; // the paths of all values are 2 GB
        const auto document = documentFrom(deepFile(levels));
        const QList<SearchIndexEntry> index = buildSearchIndex(*document, m_schema);
        QCOMPARE(index[900].haystack, index[900].node->path() + QStringLiteral(" value"));
        QVERIFY(index.constLast().haystack.endsWith(QStringLiteral("/level/value value")));
        SearchQuery query{searchTerms(QStringLiteral("level value"))};
        QCOMPARE(search(index, query).size(), levels);
        query.changedOnly = true;
        index[10'000].node->parent->markedForDeletion = true;
        QCOMPARE(search(index, query).size(), levels - 10'000);
    }

private:
    SettingsSchema m_schema;
};

KSE_GUILESS_TEST_MAIN(TestSearchIndex)
#include "TestSearchIndex.moc"
