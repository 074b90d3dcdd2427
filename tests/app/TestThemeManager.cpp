// SPDX-License-Identifier: MIT
#include "app/ThemeManager.h"
#include "app/ToolbarIcons.h"
#include "support/TestMain.h"

#include <QApplication>
#include <QFontInfo>
#include <QImage>
#include <QSettings>
#include <QSignalSpy>
#include <QStyle>
#include <QTest>
#include <QToolTip>

#include <limits>

using namespace Qt::StringLiterals;
using namespace kse;

namespace {

// "mode scale" as the next run would find them.
QString stored()
{
    const QSettings settings;
    return u"%1 %2"_s.arg(settings.value(u"Appearance/Theme"_s).toString(),
                          settings.value(u"Appearance/FontScale"_s).toString());
}

} // namespace

class TestThemeManager : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase();
    void startsFromUnusableSettings();
    void setsPaletteOfTheme_data();
    void setsPaletteOfTheme();
    void keepsScaleWithinLimits_data();
    void keepsScaleWithinLimits();
    void overridesForThisRunOnly_data();
    void overridesForThisRunOnly();
    void stepsOnTheGridAndStoresBoth();
    void paintsIcons_data();
    void paintsIcons();

private:
    ThemeManager& m_theme = ThemeManager::instance();
    double m_basePointSize = 0;
};

// The one start of this process: unusable stored values, a font sized in pixels, a dark desktop.
void TestThemeManager::initTestCase()
{
    QFont font = QApplication::font();
    font.setPixelSize(20);
    QApplication::setFont(font);
    m_basePointSize = QFontInfo(font).pointSizeF();
    QApplication::setPalette(
        QPalette(Qt::white, Qt::black, Qt::white, Qt::black, Qt::gray, Qt::white, Qt::black));
    QSettings settings;
    settings.setValue(u"Appearance/Theme"_s, 3);
    settings.setValue(u"Appearance/FontScale"_s, u"nan"_s);

    QSignalSpy changed(&m_theme, &ThemeManager::changed);
    m_theme.apply();
    QCOMPARE(changed.count(), 0);
    m_theme.init(true);
    m_theme.init(true);
    QCOMPARE(changed.count(), 1);
}

void TestThemeManager::startsFromUnusableSettings()
{
    QCOMPARE(m_theme.mode(), ThemeMode::System);
    QCOMPARE(m_theme.fontScale(), 0.8);
    QCOMPARE(QApplication::font().pointSizeF(), m_basePointSize * 0.8);
    QCOMPARE(QApplication::style()->name(), u"fusion"_s);
#if QT_VERSION < QT_VERSION_CHECK(6, 5, 0)
    QVERIFY(m_theme.isDark());
    m_theme.toggle();
    QCOMPARE(m_theme.mode(), ThemeMode::Light);
#endif
}

void TestThemeManager::setsPaletteOfTheme_data()
{
    QTest::addColumn<ThemeMode>("mode");
    QTest::addColumn<QColor>("window");
    QTest::addColumn<QColor>("toolTip");
    QTest::addColumn<QColor>("disabledText");
    QTest::addColumn<QColor>("disabledHighlight");
    QTest::newRow("light") << ThemeMode::Light << QColor(240, 240, 240) << QColor(255, 255, 235)
                           << QColor(140, 140, 140) << QColor(190, 190, 190);
    QTest::newRow("dark") << ThemeMode::Dark << QColor(45, 45, 48) << QColor(62, 62, 66)
                          << QColor(128, 128, 132) << QColor(80, 80, 86);
}

void TestThemeManager::setsPaletteOfTheme()
{
    QFETCH(ThemeMode, mode);
    QFETCH(QColor, window);
    QFETCH(QColor, toolTip);
    m_theme.setMode(mode, false);
    const QPalette palette = QApplication::palette();
    for (const auto group : {QPalette::Active, QPalette::Inactive, QPalette::Disabled}) {
        QCOMPARE(palette.color(group, QPalette::Window), window);
    }
    QCOMPARE(QToolTip::palette().color(QPalette::ToolTipBase), toolTip);
    QTEST(palette.color(QPalette::Disabled, QPalette::ButtonText), "disabledText");
    QTEST(palette.color(QPalette::Disabled, QPalette::Highlight), "disabledHighlight");
    QVERIFY(palette.color(QPalette::Inactive, QPalette::Highlight) !=
            palette.color(QPalette::Disabled, QPalette::Highlight));
}

void TestThemeManager::keepsScaleWithinLimits_data()
{
    QTest::addColumn<double>("scale");
    QTest::addColumn<double>("expected");
    QTest::newRow("off the grid") << 1.33 << 1.33;
    QTest::newRow("small") << 0.1 << 0.8;
    QTest::newRow("large") << 5.0 << 2.2;
    QTest::newRow("infinite") << std::numeric_limits<double>::infinity() << 2.2;
    QTest::newRow("none") << std::numeric_limits<double>::quiet_NaN() << 0.8;
}

void TestThemeManager::keepsScaleWithinLimits()
{
    QFETCH(double, scale);
    m_theme.setFontScale(scale, false);
    QTEST(m_theme.fontScale(), "expected");
}

void TestThemeManager::overridesForThisRunOnly_data()
{
    QTest::addColumn<QString>("theme");
    QTest::addColumn<QString>("scale");
    QTest::addColumn<ThemeMode>("expectedMode");
    QTest::addColumn<double>("expectedScale");
    QTest::newRow("capitals") << u"DARK"_s << u"1.5"_s << ThemeMode::Dark << 1.5;
    QTest::newRow("light") << u"light"_s << u"9"_s << ThemeMode::Light << 2.2;
    QTest::newRow("unknown") << u"sepia"_s << u"abc"_s << ThemeMode::System << 1.25;
    QTest::newRow("not a number") << u"system"_s << u"nan"_s << ThemeMode::System << 1.25;
}

void TestThemeManager::overridesForThisRunOnly()
{
    QFETCH(QString, theme);
    QFETCH(QString, scale);
    m_theme.setMode(ThemeMode::Light, false);
    m_theme.resetFontScale();
    QCOMPARE(stored(), u"1 1.25"_s);
    m_theme.overrideMode(theme);
    m_theme.overrideFontScale(scale);
    QTEST(m_theme.mode(), "expectedMode");
    QTEST(m_theme.fontScale(), "expectedScale");
    QCOMPARE(stored(), u"1 1.25"_s);
}

void TestThemeManager::stepsOnTheGridAndStoresBoth()
{
    m_theme.overrideMode(u"dark"_s);
    m_theme.setFontScale(1.33, false);
    m_theme.step(0.1);
    QCOMPARE(stored(), u"2 1.45"_s);
    m_theme.setFontScale(2.2, false);
    const QSignalSpy changed(&m_theme, &ThemeManager::changed);
    m_theme.step(0.1);
    QCOMPARE(m_theme.fontScale(), 2.2);
    QCOMPARE(changed.count(), 1);
    m_theme.toggle();
    m_theme.toggle();
    QCOMPARE(stored(), u"2 2.2"_s);
}

void TestThemeManager::paintsIcons_data()
{
    QTest::addColumn<qreal>("ratio");
    QTest::addColumn<int>("side");
    QTest::newRow("plain") << 1.0 << 18;
    QTest::newRow("between") << 1.25 << 23;
    QTest::newRow("tiny") << 0.25 << 8;
}

void TestThemeManager::paintsIcons()
{
    QFETCH(qreal, ratio);
    QFETCH(int, side);
    QList<QImage> seen;
    for (int kind = 0; kind <= 8; ++kind) {
        const QPixmap pixmap =
            renderToolbarPixmap(static_cast<ToolbarIconKind>(kind), Qt::red, 18, ratio);
        const QImage image = pixmap.toImage().convertToFormat(QImage::Format_ARGB32);
        QCOMPARE(image.size(), QSize(side, side));
        QCOMPARE(image.pixelColor(0, 0).alpha(), 0);
        QVERIFY2(!seen.contains(image), qPrintable(u"picture %1 repeats another"_s.arg(kind)));
        seen << image;
    }
    const QIcon icon = makeToolbarIcon(ToolbarIconKind::Theme, Qt::red, Qt::blue, 18, 1);
    const auto colourAt = [&icon](QIcon::Mode mode, QPoint at) {
        return icon.pixmap(QSize(18, 18), 1, mode).toImage().pixelColor(at);
    };
    QCOMPARE(colourAt(QIcon::Normal, {6, 9}), QColor(Qt::red)); // the filled half
    QCOMPARE(colourAt(QIcon::Active, {6, 9}), QColor(Qt::red));
    QCOMPARE(colourAt(QIcon::Disabled, {6, 9}), QColor(Qt::blue));
    QCOMPARE(colourAt(QIcon::Normal, {12, 9}).alpha(), 0);
}

KSE_TEST_MAIN(TestThemeManager)
#include "TestThemeManager.moc"
