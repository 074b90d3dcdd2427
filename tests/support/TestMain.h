// SPDX-License-Identifier: MIT
#pragma once

#include <QCoreApplication>
#include <QSettings>
#include <QStandardPaths>
#include <QTemporaryDir>
#include <QtGlobal>

#if defined(__GNUC__) && QT_VERSION >= QT_VERSION_CHECK(6, 8, 0)
#pragma GCC diagnostic ignored "-Wconversion" // QTRY_VERIFY and its like narrow a number
#endif

namespace kse {

/// Gives the process a home, configuration, cache and data folder of its own for as long as it
/// lives, so that no test reads or writes the user's. Made before the application object.
class TestHome
{
public:
    TestHome()
    {
        const QByteArray home = m_dir.path().toLocal8Bit();
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
        QSettings::setPath(QSettings::IniFormat, QSettings::UserScope, m_dir.path());
        QStandardPaths::setTestModeEnabled(true);
#endif
    }

    bool isValid() const
    {
        return m_dir.isValid();
    }

private:
    QTemporaryDir m_dir;
};

} // namespace kse

/// In place of QTEST_GUILESS_MAIN and QTEST_MAIN: the same with a home of the test's own.
#define KSE_TEST_MAIN_WITH(Application, TestClass)                                                 \
    int main(int argc, char** argv)                                                                \
    {                                                                                              \
        const kse::TestHome home;                                                                  \
        if (!home.isValid()) {                                                                     \
            return 1;                                                                              \
        }                                                                                          \
        Application app(argc, argv);                                                               \
        app.setOrganizationName(QStringLiteral("KestraneSettingsStudio"));                         \
        app.setApplicationName(QStringLiteral("KestraneSettingsStudio"));                          \
        TestClass test;                                                                            \
        return QTest::qExec(&test, argc, argv);                                                    \
    }
#define KSE_GUILESS_TEST_MAIN(TestClass) KSE_TEST_MAIN_WITH(QCoreApplication, TestClass)
#define KSE_TEST_MAIN(TestClass) KSE_TEST_MAIN_WITH(QApplication, TestClass)
