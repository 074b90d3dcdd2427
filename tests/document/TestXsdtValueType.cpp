// SPDX-License-Identifier: MIT
#include "document/XsdtNode.h"
#include "document/XsdtValueType.h"
#include "support/TestMain.h"
#include "support/TextRows.h"

#include <QLocale>
#include <QMap>

using namespace Qt::StringLiterals;
using namespace kse;

class TestXsdtValueType : public QObject
{
    Q_OBJECT

private slots:
    void describesTypes()
    {
        QString types;
        XsdtNode node;
        node.kind = XsdtNode::Kind::Value;
        for (const QChar code : u"biuFfstBxI"_s) {
            node.typeCode = code;
            types += typeName(code) + (node.isEditableType() ? u'+' : u'-');
        }
        QCOMPARE(types, u"Boolean+Integer+Unsigned+Real+Real (single)+String+Time-Block-"
                        "Unknown (x)-Unknown (I)-"_s);
    }

    /// The code, what is typed, and what is stored.
    void acceptsInput_data()
    {
        addTextRows({"b >  TRUE  > true", "b > 1 > true", "b > 0 > false", "i >   42  > 42",
                     "i > +007 > 7", "i > -2147483648 > -2147483648", "i > 2147483647 > 2147483647",
                     "u > 4294967295 > 4294967295", "F > 1.50 > 1.5", "F > 1e39 > 1e+39",
                     "F > 0.30000000000000004 > 0.30000000000000004", "f > 0.1 > 0.1",
                     "f > 16777217 > 16777216", "f > 3.4028234663852886e+38 > 3.40282347e+38",
                     "f > -3.40282347e+38 > -3.40282347e+38", "s >   42  >   42 ", "s >  > "});
    }

    void acceptsInput()
    {
        QFETCH(const QStringList, cells);
        QString stored = u"before"_s;
        QString error;
        QVERIFY(validateValue(cells[0][0], cells[1], stored, &error) && error.isNull());
        QCOMPARE(stored, cells[2]);
    }

    /// The codes, then what is typed.
    void refusesInput_data()
    {
        addTextRows({"iuFf >  > x > nan > inf > 1,000 > 1,5 > 1 000 > 0x10 > 1e999", "b > yes > ",
                     "i > -2147483649 > 2147483648 > 1.5 > 9223372036854775808",
                     "u > 4294967296 > -0 > 1e3", "f > 3.4028235e38 > -1e39",
                     "tBx > 2024-01-01 >  > 1"});
    }

    void refusesInput()
    {
        QFETCH(QStringList, cells);
        const QMap<QChar, QString> messages{{u'b', u"true or false"_s},
                                            {u'i', u"between -2147483648 and 2147483647"_s},
                                            {u'u', u"between 0 and 4294967295"_s},
                                            {u'F', u"a real number."_s},
                                            {u'f', u"single-precision"_s}};
        const QLocale before;
        QLocale::setDefault(QLocale(QLocale::German));
        for (const QChar code : cells.takeFirst()) {
            for (const QString& input : std::as_const(cells)) {
                QString stored = u"before"_s;
                QString error;
                QVERIFY2(!validateValue(code, input, stored, &error), qPrintable(input));
                QCOMPARE(stored, u"before"_s);
                QVERIFY2(error.contains(messages.value(code, u"protected"_s)), qPrintable(error));
            }
        }
        QLocale::setDefault(before);
    }
};

KSE_GUILESS_TEST_MAIN(TestXsdtValueType)
#include "TestXsdtValueType.moc"
