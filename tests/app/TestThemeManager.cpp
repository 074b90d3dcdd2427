// SPDX-License-Identifier: MIT
#include "app/ThemeManager.h"
#include "app/ToolbarIcons.h"
#include "support/TestMain.h"

#include <QtTest>
#include <QtWidgets>

using namespace Qt::StringLiterals;
using namespace kse;

class TestThemeManager : public QObject
{
    Q_OBJECT

private slots:
    void startsFromUnusableSettings();
    void paintsInColoursOfTheme();
    void overridesForThisRunOnly_data();
    void overridesForThisRunOnly();
    void stepsOnTheGridAndStoresBoth();

private:
    ThemeManager& m_theme = ThemeManager::instance();
};

// The one start of this process: beside those, a font sized in pixels and a dark desktop.
void TestThemeManager::startsFromUnusableSettings()
{
    QFont font = QApplication::font();
    font.setPixelSize(20);
    QApplication::setFont(font);
    QApplication::setPalette(
        QPalette(Qt::white, Qt::black, Qt::white, Qt::black, Qt::gray, Qt::white, Qt::black));
    QSettings().setValue(u"Appearance/Theme"_s, 3);
    QSettings().setValue(u"Appearance/FontScale"_s, u"nan"_s);
    const QSignalSpy changed(&m_theme, &ThemeManager::changed);
    m_theme.apply(); // too early
    m_theme.init(true);
    m_theme.init(true);
    QCOMPARE(changed.count(), 1);
    QCOMPARE(m_theme.mode(), ThemeMode::System);
    QCOMPARE(m_theme.fontScale(), 0.8);
    QCOMPARE(QApplication::font().pointSizeF(), QFontInfo(font).pointSizeF() * 0.8);
#if QT_VERSION < QT_VERSION_CHECK(6, 5, 0)
    QVERIFY(m_theme.isDark());
#endif
}

void TestThemeManager::paintsInColoursOfTheme()
{
    m_theme.setMode(ThemeMode::Dark, false);
    const QPalette palette = QApplication::palette();
    QCOMPARE(palette.color(QPalette::Inactive, QPalette::Highlight), QColor(42, 130, 218));
    QCOMPARE(palette.color(QPalette::Disabled, QPalette::Highlight), QColor(80, 80, 86));

    QList<QImage> seen;
    for (int kind = 0; kind <= 8; ++kind) {
        const auto icon =
            makeToolbarIcon(static_cast<ToolbarIconKind>(kind), Qt::red, Qt::blue, 18, 1.25);
        const QImage image = icon.pixmap(QSize(18, 18), 1.25).toImage();
        QCOMPARE(image.size(), QSize(23, 23));
        QVERIFY2(!seen.contains(image), qPrintable(QString::number(kind)));
        seen << image;
    }
    const QIcon icon = makeToolbarIcon(ToolbarIconKind::Theme, Qt::red, Qt::blue, 18, 1);
    const QPoint filledHalf(6, 9);
    QCOMPARE(icon.pixmap(18, QIcon::Active).toImage().pixelColor(filledHalf), QColor(Qt::red));
    QCOMPARE(icon.pixmap(18, QIcon::Disabled).toImage().pixelColor(filledHalf), QColor(Qt::blue));
}

void TestThemeManager::overridesForThisRunOnly_data()
{
    QTest::addColumn<QString>("theme");
    QTest::addColumn<QString>("scale");
    QTest::addColumn<QString>("expected");
    QTest::newRow("capitals") << u"DARK"_s << u"1.33"_s << u"2 1.33"_s;
    QTest::newRow("too large") << u"light"_s << u"9"_s << u"1 2.2"_s;
    QTest::newRow("other words") << u"sepia"_s << u"abc"_s << u"0 1.25"_s;
}

void TestThemeManager::overridesForThisRunOnly()
{
    QFETCH(QString, theme);
    QFETCH(QString, scale);
    m_theme.setMode(ThemeMode::Light, false);
    m_theme.resetFontScale();
    m_theme.overrideMode(theme);
    m_theme.overrideFontScale(scale);
    QTEST(u"%1 %2"_s.arg(int(m_theme.mode())).arg(m_theme.fontScale()), "expected");
    QCOMPARE(QSettings().value(u"Appearance/Theme"_s).toInt(), 1);
    QCOMPARE(QSettings().value(u"Appearance/FontScale"_s).toDouble(), 1.25);
}

void TestThemeManager::stepsOnTheGridAndStoresBoth()
{
    m_theme.overrideMode(u"dark"_s);
    m_theme.setFontScale(1.33, false);
    m_theme.step(0.1);
    QCOMPARE(QSettings().value(u"Appearance/FontScale"_s).toDouble(), 1.45);
    QCOMPARE(QSettings().value(u"Appearance/Theme"_s).toInt(), 2);
    m_theme.setFontScale(2.2, false);
    const QSignalSpy changed(&m_theme, &ThemeManager::changed);
    m_theme.step(0.1);
    QCOMPARE(m_theme.fontScale(), 2.2);
    QCOMPARE(changed.count(), 1);
    m_theme.toggle();
    QCOMPARE(QSettings().value(u"Appearance/Theme"_s).toInt(), 1);
}

KSE_TEST_MAIN(TestThemeManager)
#include "TestThemeManager.moc"
