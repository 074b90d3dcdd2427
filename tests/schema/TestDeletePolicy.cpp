// SPDX-License-Identifier: MIT
#include "schema/DeletePolicy.h"
#include "support/SettingsTree.h"
#include "support/TestMain.h"
#include "support/TextRows.h"

#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>

using namespace Qt::StringLiterals;
using namespace kse;

class TestDeletePolicy : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase()
    {
        const QByteArray json = builtInTable("overlay.json");
        m_rules = QJsonDocument::fromJson(json)["policy"_L1]["delete"_L1].toArray();
        QVERIFY(m_policy.load(json));
        QCOMPARE(m_rules.size(), 60);
        QCOMPARE(m_policy.cleanupGroups().size(), 6);
    }

    /// A group or value, the rule that decides, its level and the lists that hold the node.
    void judgesByTheBuiltInTable_data()
    {
        addTextRows({"G > ModuleData/Foo > ModuleData/* > 1",
                     "V > ModuleData/Foo > ModuleData/** > 1", "G > ModuleData > ModuleData > 0",
                     "G > Foo > * > 1", "V > Foo/Bar > */** > 1", "G > Global/Foo > Global/** > 0",
                     "V > Global/Preferences/Process/X > Global/Preferences/** > 0",
                     "V > Global/Preferences/ProcessInterface/X > "
                     "Global/Preferences/ProcessInterface/** > 2 noise",
                     "G > Global/FeaturedScripts > Global/FeaturedScripts > 1",
                     "V > Global/FeaturedScripts > Global/** > 0",
                     "G > Global/UpdateManager/Repositories/R > "
                     "Global/UpdateManager/Repositories/* > 1 noise",
                     "V > Global/UpdateManager/Repositories/R > Global/** > 0 noise",
                     "G > MainWindow/RecentFiles > MainWindow/RecentFiles > 2 noise",
                     "G > ModuleData/M/Interfaces/P/Geometry > "
                     "ModuleData/*/Interfaces/*/Geometry > 2 noise",
                     "V > MainWindow/Layout > MainWindow/** > 0 noise noCopy",
                     "V > Modules/M/Path > Modules/** > 0 noise noCopy locked"});
    }

    void judgesByTheBuiltInTable()
    {
        QFETCH(QStringList, cells);
        XsdtDocument document;
        const XsdtNode* node = addNode(document, cells[1], cells[0] == u'G' ? QChar() : u's');
        const DeleteDecision decision = m_policy.decide(node);
        for (const QJsonValue& rule : std::as_const(m_rules)) {
            if (rule["path"_L1].toString() == cells[2]) {
                QCOMPARE(decision.reason, rule["reason"_L1].toString());
            }
        }
        QString verdict = QString::number(static_cast<int>(decision.level));
        verdict += m_policy.isCompareNoise(node) ? u" noise"_s : QString();
        verdict += m_policy.isCompareNoCopy(node) ? u" noCopy"_s : QString();
        verdict += m_policy.isEditLocked(node) ? u" locked"_s : QString();
        QCOMPARE(verdict, cells[3]);
    }

    /// The rules in file order, the keys of a node separated by |, and the rule that decides.
    void choosesOneOfSeveralRules_data()
    {
        addTextRows({"A/** A/* > A|B > A/*", "A/* A/** > A|B > A/*", "A/** */B/** > A|B|C > */B/**",
                     "*/B A/* > A|B > A/*", "A/*/C A/** > A|B|C > A/*/C", "X/** > X > ",
                     "X * > X|a > ", "** / > X|a > **", "** > |/ > ", "foo Foo* > Foob > ",
                     "A/**/B > A|x|B > ", "A/*/b > A||a/b > A/*/b"});
    }

    void choosesOneOfSeveralRules()
    {
        QFETCH(QStringList, cells);
        QStringList rules;
        for (const QString& path : cells[0].split(u' ')) {
            rules += QLatin1String(R"({"path":"%1","level":"safe","reason":"%1"})").arg(path);
        }
        const QLatin1String json(R"({"policy":{"defaultReason":5,"delete":[%1]}})");
        DeletePolicy policy;
        QVERIFY(policy.load(json.arg(rules.join(u',')).toUtf8()));
        XsdtDocument document;
        QCOMPARE(policy.decide(addNode(document, cells[1].split(u'|'))).reason, cells[2]);
    }

    void refusesUnknownLevels_data() { addTextRows({"Safe", "%1", ""}); }

    void refusesUnknownLevels()
    {
        QFETCH(QStringList, cells);
        QByteArray json = R"({"policy":{"delete":[{"path":"**","level":"safe"},{"level":"?"}]}})";
        json.replace("?", cells[0].toUtf8());
        DeletePolicy policy = m_policy;
        QString error;
        QVERIFY(!policy.load("{") && !policy.load(json, &error));
        QCOMPARE(error, u"overlay.json: unknown delete level '"_s + cells[0] + u'\'');
        XsdtDocument document;
        const XsdtNode* node = addNode(document, u"LastVersion"_s);
        QCOMPARE(policy.decide(node).level, DeleteLevel::Never);
        QCOMPARE(policy.decide(node).reason,
                 u"This entry is not on the list of entries known to be safe to remove."_s);
        QVERIFY(!policy.isEditLocked(node) && policy.cleanupGroups().isEmpty());
    }

    void findsNodesInFileOrder()
    {
        const QByteArray json =
            R"({"policy":{"delete":[{"path":"A/*","level":"warn"},)"
            R"({"path":"*/*/*/C","level":"warn"},{"path":"*/*/C","level":"warn"}]}})";
        DeletePolicy policy;
        QVERIFY(policy.load(json));
        XsdtDocument document;
        XsdtNode* const second = addNode(document, u"A/B"_s);
        XsdtNode* const first = addNode(document, u"A/B/C"_s);
        XsdtNode* const third = addNode(document, u"X/Y/C"_s);
        XsdtNode* const twin = addNode(document, u"X/Y/C"_s);
        addNode(document, u"X/Y/Z/C"_s);
        QCOMPARE(policy.warnCandidates(document), (QList<XsdtNode*>{second, third, twin}));
        QCOMPARE(policy.matchPattern(document, u"/*//*/C"), (QList<XsdtNode*>{first, third, twin}));
        QVERIFY(policy.matchPattern(document, u"X/**").isEmpty());
        QCOMPARE(policy.decide(second).reason, policy.decide(&document.root).reason);
        QCOMPARE(policy.decide(&document.root).level, DeleteLevel::Never);
        QVERIFY(policy.isEditLocked(nullptr) && policy.isCompareNoCopy(nullptr));
    }

private:
    QJsonArray m_rules;
    DeletePolicy m_policy;
};

KSE_GUILESS_TEST_MAIN(TestDeletePolicy)
#include "TestDeletePolicy.moc"
