// SPDX-License-Identifier: MIT
#include "schema/DeletePolicy.h"
#include "support/SettingsTree.h"
#include "support/TestMain.h"
#include "support/TextRows.h"

#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QMap>

using namespace Qt::StringLiterals;
using namespace kse;

class TestDeletePolicy : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase()
    {
        const QByteArray json = builtInTable("overlay.json");
        for (const QJsonValue& rule :
             QJsonDocument::fromJson(json)["policy"_L1]["delete"_L1].toArray()) {
            m_reasons.insert(rule["path"_L1].toString(), rule["reason"_L1].toString());
        }
        QVERIFY(m_policy.load(json));
        QCOMPARE(m_reasons.size(), 60);
        QCOMPARE(m_policy.cleanupGroups().size(), 6);
    }

    /// A group or value, the rule that decides, its level and the lists that hold the node.
    void judgesByTheBuiltInTable_data()
    {
        addTextRows({"G > ModuleData/Foo > ModuleData/* > 1", "G > ModuleData > ModuleData > 0",
                     "V > Foo/Bar > */** > 1",
                     "V > Global/Preferences/P/X > Global/Preferences/** > 0",
                     "V > Global/FeaturedScripts > Global/** > 0",
                     "G > Global/UpdateManager/Repositories/R > "
                     "Global/UpdateManager/Repositories/* > 1 noise",
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
        QCOMPARE(m_policy.decide(node).reason, m_reasons.value(cells[2]));
        QString verdict = QString::number(static_cast<int>(m_policy.decide(node).level));
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

    void refusesUnknownLevels()
    {
        for (const QByteArray& word : {QByteArray("Safe"), QByteArray("%1"), QByteArray()}) {
            DeletePolicy policy = m_policy;
            QString error;
            QByteArray json =
                R"({"policy":{"delete":[{"path":"**","level":"safe"},{"level":"?"}]}})";
            QVERIFY(!policy.load(json.replace("?", word), &error));
            QVERIFY2(error.endsWith(u" '%1'"_s.arg(QLatin1String(word))), qPrintable(error));
            XsdtDocument document;
            const XsdtNode* node = addNode(document, u"LastVersion"_s);
            QCOMPARE(policy.decide(node).level, DeleteLevel::Never);
            QVERIFY(policy.decide(node).reason.contains("not on the list"_L1));
            QVERIFY(!policy.isEditLocked(node) && policy.cleanupGroups().isEmpty());
        }
        QVERIFY(!DeletePolicy().load("{"));
    }

    void findsNodesInFileOrder()
    {
        DeletePolicy policy;
        QVERIFY(policy.load(R"({"policy":{"delete":[{"path":"A/*","level":"warn"},
            {"path":"*/*/*/C","level":"warn"},{"path":"*/*/C","level":"warn"}]}})"));
        XsdtDocument document;
        addNodes(document, u"A/B; A/B/C; X/Y/C; X/Y/C; X/Y/Z/C"_s);
        const XsdtNode& b = *document.root.findByPath(u"A/B");
        const auto paths = [](const QList<XsdtNode*>& nodes) {
            QString text;
            for (const XsdtNode* node : nodes) {
                text += node->path() + u' ';
            }
            return text;
        };
        QCOMPARE(paths(policy.warnCandidates(document)), u"A/B X/Y/C X/Y/C "_s);
        QCOMPARE(paths(policy.matchPattern(document, u"/*//*/C")), u"A/B/C X/Y/C X/Y/C "_s);
        QVERIFY(policy.matchPattern(document, u"X/**").isEmpty());
        QCOMPARE(policy.decide(&b).reason, policy.decide(&document.root).reason);
        QCOMPARE(policy.decide(&document.root).level, DeleteLevel::Never);
        QVERIFY(policy.isEditLocked(nullptr) && policy.isCompareNoCopy(nullptr));
    }

private:
    QMap<QString, QString> m_reasons; ///< By the rule's path.
    DeletePolicy m_policy;
};

KSE_GUILESS_TEST_MAIN(TestDeletePolicy)
#include "TestDeletePolicy.moc"
