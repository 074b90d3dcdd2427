// SPDX-License-Identifier: MIT
#include "support/RandomSession.h"
#include "support/TestMain.h"

#include <cstdio>

using namespace kse;
using namespace Qt::StringLiterals;

/// The window under long random sequences of steps. KSE_SESSION_SEEDS ("FIRST-LAST") and
/// KSE_SESSION_STEPS ask for others, or more, than those of every run.
class TestRandomSessions : public WindowFixture
{
    Q_OBJECT

private slots:
    void initTestCase() { prepareProgram(); }

    void looksLikeANewWindow_data()
    {
        QTest::addColumn<quint32>("seed");
        QTest::addColumn<int>("steps");
        QTest::addColumn<bool>("whole");
        const QString range = qEnvironmentVariable("KSE_SESSION_SEEDS", u"1-6"_s);
        const int steps = qEnvironmentVariable("KSE_SESSION_STEPS", u"100"_s).toInt();
        const quint32 last = range.section(u'-', 1, 1).toUInt();
        for (quint32 seed = range.section(u'-', 0, 0).toUInt(); seed <= last; ++seed) {
            QTest::addRow("seed %u", seed) << seed << steps << false;
        }
        QTest::newRow("the samples") << quint32(1) << 10 << true;
    }

    void looksLikeANewWindow()
    {
        QFETCH(quint32, seed);
        QFETCH(int, steps);
        QFETCH(bool, whole);
        const QString folder = QStringLiteral(KSE_SOURCE_DIR "/examples/");
        RandomSession session(seed,
                              {contentOf(folder + u"core-001-pxi.settings"_s),
                               contentOf(folder + u"core-002-pxi.settings"_s)},
                              whole);
        const QString fault = session.run(steps);
        if (!fault.isEmpty()) { // too long for a message of Qt Test
            std::fprintf(stderr, "seed %u: %s\n", seed, qPrintable(fault));
        }
        QVERIFY(fault.isEmpty());
    }
};

KSE_TEST_MAIN(TestRandomSessions)
#include "TestRandomSessions.moc"
