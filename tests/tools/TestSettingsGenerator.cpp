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
    void committedExamplesAreItsOutput()
    {
        for (const int instance : {1, 2}) {
            QFile file(
                QStringLiteral(KSE_SOURCE_DIR "/examples/core-00%1-pxi.settings").arg(instance));
            QVERIFY2(file.open(QIODevice::ReadOnly), qPrintable(file.errorString()));
            QVERIFY(file.readAll() == generateSettings({Shape::Sample, instance}));
        }
    }

    void makesTheNumberAskedFor()
    {
        const std::pair<GenerateOptions, qsizetype> files[] = {{{Shape::Values, 0}, 0},
                                                               {{Shape::Values, 20}, 20},
                                                               {{Shape::Values, 10'007}, 10'007},
                                                               {{Shape::Wide, 5000}, 5000},
                                                               {{Shape::Deep, 100'000}, 1}};
        for (const auto& [options, values] : files) {
            XsdtDocument document;
            QVERIFY(document.parse(generateSettings(options)) && document.defaultLayout);
            QCOMPARE(document.root.valueCount(), values);
        }
    }
};

KSE_GUILESS_TEST_MAIN(TestSettingsGenerator)
#include "TestSettingsGenerator.moc"
