// SPDX-License-Identifier: MIT
#include "schema/DeletePolicy.h"
#include "support/SettingsTree.h"
#include "support/TestMain.h"

class TestDeletePolicy : public QObject
{
    Q_OBJECT

private slots:
    /// A group or value, its level and the lists that hold it.
    void judgesByTheBuiltInTable()
    {
        DeletePolicy policy;
        QVERIFY(policy.load(builtInTable("overlay.json")));
        QCOMPARE(policy.cleanupGroups().size(), 6);
        const auto verdict = [&policy](const QStringList& cells) {
            XsdtDocument document;
            const XsdtNode* node = addNode(document, cells[1], cells[0] == u'G' ? QChar() : u's');
            QString text = QString::number(static_cast<int>(policy.decide(node).level));
            text += policy.isCompareNoise(node) ? u" noise"_s : QString();
            text += policy.isCompareNoCopy(node) ? u" noCopy"_s : QString();
            return text + (policy.isEditLocked(node) ? u" locked"_s : QString());
        };
        compareRows({"G > ModuleData/Foo > 1", "G > ModuleData > 0", "V > Foo/Bar > 1",
                     "V > Global/Preferences/P/X > 0", "V > Global/FeaturedScripts > 0",
                     "G > Global/UpdateManager/Repositories/R > 1 noise",
                     "G > ModuleData/M/Interfaces/P/Geometry > 2 noise",
                     "V > MainWindow/Layout > 0 noise noCopy",
                     "V > Modules/M/Path > 0 noise noCopy locked"},
                    verdict);
        QVERIFY(policy.isEditLocked(nullptr) && policy.isCompareNoCopy(nullptr));
    }

    /// The rules in file order, the keys of a node with | between them, and the rule that decides.
    void choosesOneOfSeveralRules()
    {
        const auto chosen = [](const QStringList& cells) {
            QStringList rules;
            for (const QString& path : cells[0].split(u' ')) {
                rules += QLatin1String(R"({"path":"%1","level":"safe","reason":"%1"})").arg(path);
            }
            const QLatin1String json(R"({"policy":{"defaultReason":5,"delete":[%1]}})");
            DeletePolicy policy;
            XsdtDocument document;
            return policy.load(json.arg(rules.join(u',')).toUtf8())
                       ? policy.decide(addNode(document, cells[1].split(u'|'))).reason
                       : u"not loaded"_s;
        };
        compareRows({"A/** A/* > A|B > A/*", "A/* A/** > A|B > A/*", "A/* */* > A|B > A/*",
                     "A/** */B/** > A|B|C > */B/**", "*/B A/* > A|B > A/*",
                     "A/*/C A/** > A|B|C > A/*/C", "X/** > X > ", "X * > X|a > ", "** / > X|a > **",
                     "** > |/ > ", "foo Foo* > Foob > ", "A/**/B > A|x|B > ",
                     "A/*/b > A||a/b > A/*/b"},
                    chosen);
    }

    void deletesNothingByABadTable()
    {
        DeletePolicy policy;
        QVERIFY(policy.load(builtInTable("overlay.json")));
        QString error;
        QVERIFY(!policy.load(
            R"({"policy":{"delete":[{"path":"**","level":"safe"},{"level":"Safe"}]}})", &error));
        QVERIFY2(error.endsWith(u" 'Safe'"_s), qPrintable(error));
        XsdtDocument document;
        const XsdtNode* node = addNode(document, u"LastVersion"_s);
        QCOMPARE(policy.decide(node).level, DeleteLevel::Never);
        QVERIFY(policy.decide(node).reason.contains("not on the list"_L1));
        QVERIFY(!policy.isEditLocked(node) && policy.cleanupGroups().isEmpty());
        QVERIFY(!policy.load("{"));
    }

    void findsNodesInFileOrder()
    {
        DeletePolicy policy;
        QVERIFY(policy.load(R"({"policy":{"delete":[{"path":"A/*","level":"warn"},
            {"path":"*/*/*/C","level":"warn"},{"path":"*/*/C","level":"warn"}]}})"));
        XsdtDocument document;
        addNodes(document, u"A/B; A/B/C; X/Y/C; X/Y/C; X/Y/Z/C"_s);
        QString paths;
        for (const XsdtNode* node : policy.warnCandidates(document) +
                                        policy.matchPattern(document, u"/*//*/C") +
                                        policy.matchPattern(document, u"X/**")) {
            paths += node->path() + u' ';
        }
        QCOMPARE(paths, u"A/B X/Y/C X/Y/C A/B/C X/Y/C X/Y/C "_s);
        const XsdtNode& b = *document.root.findByPath(u"A/B");
        QCOMPARE(policy.decide(&b).reason, policy.decide(&document.root).reason);
        QCOMPARE(policy.decide(&document.root).level, DeleteLevel::Never);
    }
};

KSE_GUILESS_TEST_MAIN(TestDeletePolicy)
#include "TestDeletePolicy.moc"
