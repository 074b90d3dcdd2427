// SPDX-License-Identifier: MIT
#include "SettingsGenerator.h"
#include "document/XsdtDocument.h"
#include "support/TestMain.h"

#include <QFile>
#include <QTest>

using namespace kse;
using Shape = GenerateOptions::Shape;

class TestSettingsGenerator : public QObject
{
    Q_OBJECT

private slots:
    void committedExamplesAreItsOutput_data();
    void committedExamplesAreItsOutput();
    void makesTheNumberAskedFor_data();
    void makesTheNumberAskedFor();
};

void TestSettingsGenerator::committedExamplesAreItsOutput_data()
{
    QTest::addColumn<int>("instance");
    QTest::newRow("first") << 1;
    QTest::newRow("second") << 2;
}

void TestSettingsGenerator::committedExamplesAreItsOutput()
{
    QFETCH(const int, instance);
    QFile file(QStringLiteral(KSE_SOURCE_DIR "/examples/core-00%1-pxi.settings").arg(instance));
    QVERIFY2(file.open(QIODevice::ReadOnly), qPrintable(file.errorString()));
    QVERIFY(file.readAll() == generateSettings({Shape::Sample, instance}));
}

void TestSettingsGenerator::makesTheNumberAskedFor_data()
{
    QTest::addColumn<int>("shape");
    QTest::addColumn<qsizetype>("count");
    QTest::addColumn<qsizetype>("leastValues");
    QTest::addColumn<qsizetype>("mostValues");
    const auto row = [](const char* name, Shape shape, qsizetype count, qsizetype least,
                        qsizetype most) {
        QTest::newRow(name) << static_cast<int>(shape) << count << least << most;
    };
    row("first sample", Shape::Sample, 1, 2800, 3200);
    row("second sample", Shape::Sample, 2, 2800, 3200);
    row("no values", Shape::Values, 0, 0, 0);
    row("whole processes", Shape::Values, 20, 20, 20);
    row("part of a process", Shape::Values, 10'007, 10'007, 10'007);
    row("wide", Shape::Wide, 5000, 5000, 5000);
    row("deep", Shape::Deep, 100'000, 1, 1);
}

void TestSettingsGenerator::makesTheNumberAskedFor()
{
    QFETCH(const int, shape);
    QFETCH(const qsizetype, count);
    QFETCH(const qsizetype, leastValues);
    QFETCH(const qsizetype, mostValues);
    XsdtDocument document;
    QString error;
    QVERIFY2(document.parse(generateSettings({static_cast<Shape>(shape), count}), &error),
             qPrintable(error));
    QVERIFY(document.defaultLayout);
    QCOMPARE_GE(document.root.valueCount(), leastValues);
    QCOMPARE_LE(document.root.valueCount(), mostValues);
}

KSE_GUILESS_TEST_MAIN(TestSettingsGenerator)
#include "TestSettingsGenerator.moc"
