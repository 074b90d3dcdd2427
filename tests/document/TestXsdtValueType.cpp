// SPDX-License-Identifier: MIT
#include "document/XsdtValueType.h"
#include "support/TestMain.h"
#include "support/TextRows.h"

using namespace kse;

class TestXsdtValueType : public QObject
{
    Q_OBJECT

private slots:
    /// The code of a type, texts that are entered, and the type's name with what is stored. Where
    /// they are refused that is a question mark, with the end of the message.
    void takesWhatFitsTheType()
    {
        QLocale::setDefault(QLocale(QLocale::German));
        const auto answer = [](const QStringList& cells) {
            const QChar code = cells[0][0];
            QStringList answers(typeName(code));
            for (const QString& input : cells.mid(1, cells.size() - 2)) {
                QString stored(u'?');
                QString error;
                const bool isGood = validateValue(code, input, stored, &error);
                answers += isGood && error.isEmpty() ? stored : stored + error.section(u' ', -1);
            }
            answers.removeDuplicates();
            return answers.join(u' ');
        };
        compareRows(
            {"b >  TRUE  > 1 > false > 0 > Boolean true false", "b > yes >  > Boolean ?false.",
             "i >   42  > +007 > -2147483648 > 2147483647 > Integer 42 7 -2147483648 2147483647",
             "i >  > x > 1,000 > 0x10 > -2147483649 > 2147483648 > 1.5 > 9223372036854775808 > "
             "Integer ?2147483647.",
             "u > 4294967295 > 0 > Unsigned 4294967295 0",
             "u >  > x > 1.000 > 4294967296 > -0 > 1e3 > Unsigned ?4294967295.",
             "F > 1.50 > 1e39 > 0.30000000000000004 > Real 1.5 1e+39 0.30000000000000004",
             "F >  > x > nan > inf > 1,000 > 1,5 > 1 000 > 0x10 > 1e999 > Real ?number.",
             "f > 0.1 > 16777217 > Real (single) 0.1 16777216",
             "f > 3.4028234663852886e+38 > 3.40282347e+38 > Real (single) 3.40282347e+38",
             "f >  > nan > inf > 1,000 > 3.4028235e38 > -1e39 > Real (single) ?range.",
             "s >   42  > String   42 ", "s >  > String ", "t > 2024-01-01 > Time ?edited.",
             "B >  > 1 > Block ?edited.", "x > 1 > Unknown (x) ?edited."},
            answer);
    }
};

KSE_GUILESS_TEST_MAIN(TestXsdtValueType)
#include "TestXsdtValueType.moc"
