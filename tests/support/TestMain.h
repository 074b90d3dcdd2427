// SPDX-License-Identifier: MIT
#pragma once

#include "support/TextRows.h"

#if defined(__GNUC__) && QT_VERSION >= QT_VERSION_CHECK(6, 8, 0)
#pragma GCC diagnostic ignored "-Wconversion" // QTRY_VERIFY and its like narrow a number
#endif

namespace kse {

/// Runs the tests with a home, configuration, cache and data folder of their own, so that none
/// reads or writes the user's.
template <typename Application, typename Test>
int runTest(int argc, char** argv)
{
    const QTemporaryDir dir;
    const QByteArray home = dir.path().toLocal8Bit();
    qputenv("HOME", home);
    qputenv("XDG_CONFIG_HOME", home + "/.config");
    qputenv("XDG_CACHE_HOME", home + "/.cache");
    qputenv("XDG_DATA_HOME", home + "/.local/share");
    qputenv("APPDATA", home + "/AppData/Roaming");
    qputenv("LC_ALL", "C.UTF-8");
    // Nothing else is there for a test to answer.
    QCoreApplication::setAttribute(Qt::AA_DontUseNativeDialogs);
#ifdef Q_OS_WIN
    // The registry and the known folders, where variables lead nowhere.
    QSettings::setDefaultFormat(QSettings::IniFormat);
    QSettings::setPath(QSettings::IniFormat, QSettings::UserScope, dir.path());
    QStandardPaths::setTestModeEnabled(true);
#endif
    Application app(argc, argv);
    app.setOrganizationName(QStringLiteral("KestraneSettingsStudio"));
    app.setApplicationName(QStringLiteral("KestraneSettingsStudio"));
    Test test;
    return dir.isValid() ? QTest::qExec(&test, argc, argv) : 1;
}

} // namespace kse

// A program has one source, so these names meet nobody else's.
using namespace kse;
using namespace Qt::StringLiterals;

/// In place of QTEST_GUILESS_MAIN and QTEST_MAIN: the same with a home of the test's own.
#define KSE_TEST_MAIN_WITH(Application, Test)                                                      \
    int main(int argc, char** argv)                                                                \
    {                                                                                              \
        return kse::runTest<Application, Test>(argc, argv);                                        \
    }
#define KSE_GUILESS_TEST_MAIN(Test) KSE_TEST_MAIN_WITH(QCoreApplication, Test)
#define KSE_TEST_MAIN(Test) KSE_TEST_MAIN_WITH(QApplication, Test)
