// SPDX-License-Identifier: MIT
#include "document/XsdtNode.h"
#include "document/XsdtValueType.h"
#include "support/TestMain.h"

#include <QLocale>
#include <QTest>

using namespace kse;

class TestXsdtValueType : public QObject
{
    Q_OBJECT

private slots:
    void describesTypes();
    void validatesInput_data();
    void validatesInput();
};

void TestXsdtValueType::describesTypes()
{
    QString types;
    XsdtNode node;
    node.kind = XsdtNode::Kind::Value;
    const QString codes = QStringLiteral("biuFfstBxI");
    for (const QChar code : codes) {
        node.typeCode = code;
        types += typeName(code) + (node.isEditableType() ? u'+' : u'-');
    }
    QCOMPARE(types, QStringLiteral("Boolean+Integer+Unsigned+Real+Real (single)+String+Time-Block-"
                                   "Unknown (x)-Unknown (I)-"));
}

void TestXsdtValueType::validatesInput_data()
{
    QTest::addColumn<char>("code");
    QTest::addColumn<QString>("input");
    QTest::addColumn<QString>("stored"); // null: refused

    const auto row = [](char code, const char* input, const char* stored) {
        QTest::addRow("%c '%s'", code, input)
            << code << QString::fromUtf8(input) << QString::fromUtf8(stored);
    };
    struct Accepted
    {
        char code;
        const char* input;
        const char* stored;
    };
    const Accepted accepted[] = {{'b', " TRUE ", "true"},
                                 {'b', "1", "true"},
                                 {'b', "0", "false"},
                                 {'i', "  42 ", "42"},
                                 {'i', "+007", "7"},
                                 {'i', "-2147483648", "-2147483648"},
                                 {'i', "2147483647", "2147483647"},
                                 {'u', "4294967295", "4294967295"},
                                 {'F', "1.50", "1.5"},
                                 {'F', "1e39", "1e+39"},
                                 {'F', "0.30000000000000004", "0.30000000000000004"},
                                 {'f', "0.1", "0.1"},
                                 {'f', "16777217", "16777216"},
                                 {'f', "3.4028234663852886e+38", "3.40282347e+38"},
                                 {'f', "-3.40282347e+38", "-3.40282347e+38"},
                                 {'s', "  42 ", "  42 "},
                                 {'s', "", ""}};
    for (const auto& [code, input, stored] : accepted) {
        row(code, input, stored);
    }
    const std::pair<char, const char*> refused[] = {{'b', "yes"},
                                                    {'b', ""},
                                                    {'i', "-2147483649"},
                                                    {'i', "2147483648"},
                                                    {'i', "1.5"},
                                                    {'i', "9223372036854775808"},
                                                    {'u', "4294967296"},
                                                    {'u', "-0"},
                                                    {'u', "1e3"},
                                                    {'f', "3.4028235e38"},
                                                    {'f', "-1e39"},
                                                    {'t', "2024-01-01"},
                                                    {'B', ""},
                                                    {'x', "1"}};
    for (const auto& [code, input] : refused) {
        row(code, input, nullptr);
    }
    for (const char code : {'i', 'u', 'F', 'f'}) {
        for (const char* input :
             {"", "x", "nan", "inf", "1,000", "1,5", "1 000", "0x10", "1e999"}) {
            row(code, input, nullptr);
        }
    }
}

void TestXsdtValueType::validatesInput()
{
    QFETCH(const char, code);
    QFETCH(const QString, input);
    QFETCH(const QString, stored);
    const QMap<char, QString> refusals = {
        {'b', QStringLiteral("Expected true or false.")},
        {'i', QStringLiteral("Expected an integer between -2147483648 and 2147483647.")},
        {'u', QStringLiteral("Expected an integer between 0 and 4294967295.")},
        {'F', QStringLiteral("Expected a real number.")},
        {'f', QStringLiteral("Expected a real number in single-precision range.")}};
    const QString isProtected =
        QStringLiteral("This value type is protected and cannot be edited.");

    const QLocale before;
    QLocale::setDefault(QLocale(QLocale::German));
    QString normalised = QStringLiteral("as it was");
    QString error = normalised;
    const bool accepted = validateValue(QLatin1Char(code), input, normalised, &error);
    QLocale::setDefault(before);
    QCOMPARE(accepted, !stored.isNull());
    QCOMPARE(normalised, accepted ? stored : QStringLiteral("as it was"));
    QCOMPARE(error, accepted ? QStringLiteral("as it was") : refusals.value(code, isProtected));
    QString unused;
    QCOMPARE(validateValue(QLatin1Char(code), input, unused), accepted);
}

KSE_GUILESS_TEST_MAIN(TestXsdtValueType)
#include "TestXsdtValueType.moc"
