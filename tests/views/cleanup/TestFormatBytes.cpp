// SPDX-License-Identifier: MIT
#include "support/TestMain.h"
#include "views/cleanup/FormatBytes.h"

#include <QtTest>

class TestFormatBytes : public QObject
{
    Q_OBJECT

private slots:
    void changesUnitAt1024()
    {
        QCOMPARE(kse::formatBytes(1023), QStringLiteral("1023 B"));
        QCOMPARE(kse::formatBytes(1024), QStringLiteral("1.0 KiB"));
        QCOMPARE(kse::formatBytes(qint64(2) * 1024 * 1024), QStringLiteral("2048.0 KiB"));
    }
};

KSE_GUILESS_TEST_MAIN(TestFormatBytes)
#include "TestFormatBytes.moc"
