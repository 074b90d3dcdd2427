// SPDX-License-Identifier: MIT
#include "schema/PrettyName.h"
#include "schema/SettingsSchema.h"
#include "support/SettingsTree.h"
#include "support/TestMain.h"

namespace {

/// All that is known of a variable of type `code`: its label, its kind as a number, its flags,
/// range and choices, and its description.
QString described(const SettingsSchema& schema, const QString& path, QChar code)
{
    XsdtDocument document;
    const VariableInfo info = schema.describe(*addNode(document, path, code));
    QString line = info.label + u'|' + QString::number(static_cast<int>(info.kind));
    line += info.documented ? u" documented"_s : QString();
    line += info.readOnly ? u" readOnly"_s : QString();
    line += info.hasRange ? u" %1..%2"_s.arg(info.min).arg(info.max) : QString();
    for (const VariableChoice& choice : info.choices) {
        line += u' ' + QString::number(choice.value) + u'=' + choice.text;
    }
    return line + u'|' + info.description;
}

} // namespace

class TestSettingsSchema : public QObject
{
    Q_OBJECT

private slots:
    void init()
    {
        QVERIFY(m_schema.load(builtInTable("globals.json"), builtInTable("overlay.json")));
    }

    void describesByTheBuiltInTables()
    {
        compareRows(
            {"i > Global/ColorManagement/ProofingIntent > Proofing intent|1 documented "
             "0=Perceptual 1=Saturation 2=Relative colorimetric 3=Absolute colorimetric|",
             "s > Global/Preferences/Application/CoreDirectory > Core directory|7 documented "
             "readOnly|Folder that holds the core executable. Read-only.",
             "F > Global/Preferences/MainWindow/ActiveWindowOpacity > Active window opacity|4 "
             "documented 0..1|Window opacity in the [0,1] range.",
             "F > Global/RGBWorkingSpace/Gamma > Gamma|4 0.1..10|",
             "u > X/Foreground23 > Foreground 23|8|", "s > X/Foreground2 > Foreground 2|5|",
             "i > X/Color > Color|2|", "t > X/WallpaperFile01 > Wallpaper file 01|6|",
             "s > X/SomeFiles > Some files|5|", "u > Preferences/ScriptEditor/Count > Count|3|"},
            [this](const QStringList& cells) {
                return described(m_schema, cells[1], cells[0][0]);
            });
    }

    /// What refines a variable that is documented with a range, its type, and what comes of it.
    void mergesTheTables()
    {
        const auto merged = [](const QStringList& cells) {
            const QByteArray globals = R"({"variables":{"A/Key":{"readOnly":1,"description":
            " See the A/B global variable. In [ -5, 2.5 ], not [7,8]. See the pcl::X namespace"}}})";
            SettingsSchema schema;
            return schema.load(globals, R"({"variables":{"A/Key":)" + cells[0].toUtf8() + "}}")
                       ? described(schema, u"Global/A/Key"_s, cells[1][0])
                       : u"not loaded"_s;
        };
        compareRows(
            {R"({} > u > Key|3 documented -5..2.5|In [ -5, 2.5 ], not [7,8].)",
             R"({"max":3,"description":"See [7,8] "} > i > Key|2 documented -5..3|See [7,8] )",
             R"({"max":3,"description":""} > s > Key|5 documented -1.79769e+308..3|)",
             R"({"min":"1","label":1,"description":[]} > s > |5 documented 0..1.79769e+308|)",
             R"({"choices":[[9223372036854775808,"a"],[-1e300,"b"],[-1.9,"c"],7],)"
             R"("label":"%1","description":""} > i > %1|1 documented -5..2.5 )"
             R"(9223372036854775807=a -9223372036854775808=b -1=c 0=|)",
             R"({"choices":[[1,"a"]],"description":""} > b > Key|0 documented|)"},
            merged);
    }

    void keepsNothingOfBadTables()
    {
        QString error;
        QVERIFY(!m_schema.load("[1]", "{", &error) && error.startsWith("globals.json: "_L1));
        QVERIFY(!m_schema.load(builtInTable("globals.json"), QByteArray(100'000, '['), &error));
        QVERIFY2(error.startsWith("overlay.json: "_L1), qPrintable(error));
        QCOMPARE(described(m_schema, u"Process/MaxProcessors"_s, u'i'), u"Max processors|2|"_s);
    }

    void makesLabels()
    {
        compareRows({"MaxModuleThreadPriority > Max module thread priority",
                     "sRGBGamma > S RGB gamma", "ProxyURLs > Proxy URLs",
                     "OpenURLsWithInternalBrowser > Open URLs with internal browser",
                     "Default24BitLUT > Default 24 bit LUT",
                     "CIP_ITRSDataFile > CIP ITRS data file", "__a_1 > A 1", " > "},
                    [](const QStringList& cells) { return prettyName(cells[0]); });
    }

    void showsPagesOfTheDocument()
    {
        XsdtDocument document;
        addNodes(document, u"Global/ColorManagement; Global/Preferences/ProcessInterface; "
                           "Global/Preferences/NewGroup; Global/Preferences/GUI; "
                           "Global/Preferences/Process; Global/Preferences/Lone:s=x; "
                           "Global/Preferences/ScriptEditor/Cache/X"_s);
        QString pages;
        for (const PageSpec& page : m_schema.decoratedPages(document)) {
            pages += page.title + u'=' + page.nodes.constFirst()->path().section(u'/', 1) + u' ';
        }
        QCOMPARE(
            pages,
            u"Processes=Preferences/Process Color Management=ColorManagement Script Editor=Preferences/ScriptEditor Identifiers and GUI=Preferences/GUI New group=Preferences/NewGroup "_s);
        const XsdtNode* cache = document.root.findByPath(u"Global/Preferences/ScriptEditor/Cache");
        QVERIFY(m_schema.isHidden(*cache) && !m_schema.isHidden(*cache->children.front()));
    }

private:
    SettingsSchema m_schema;
};

KSE_GUILESS_TEST_MAIN(TestSettingsSchema)
#include "TestSettingsSchema.moc"
