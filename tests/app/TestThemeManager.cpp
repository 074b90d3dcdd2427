// SPDX-License-Identifier: MIT
#include "app/ThemeManager.h"
#include "app/ToolbarIcons.h"
#include "support/TestMain.h"
#include "widgets/WidgetColumn.h"
#include "widgets/WrappingRow.h"

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
    void leavesRoom_data();
    void leavesRoom();
    void ringsListsReachedByTab();

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

void TestThemeManager::leavesRoom_data()
{
    QTest::addColumn<double>("scale");
    for (const double scale : {0.8, 1.25, 2.2}) {
        QTest::addRow("%g", scale) << scale;
    }
}

void TestThemeManager::leavesRoom()
{
    QFETCH(double, scale);
    m_theme.setMode(ThemeMode::Dark, false);
    m_theme.setFontScale(scale, false);
    QTabWidget tabs;
    auto* tree = new QTreeWidget;
    tree->setHeaderLabels({u"H"_s, u"H"_s, QString()});
    new QTreeWidgetItem(tree, {u"H"_s, u"H"_s});
    tabs.addTab(tree, u"Page"_s);
    tabs.resize(tabs.minimumSizeHint().expandedTo({500, 300}));
    tabs.show();
    QVERIFY(QTest::qWaitForWindowExposed(&tabs));
    const QPoint corner = tree->mapTo(&tabs, QPoint());
    QVERIFY(corner.x() >= 6 && corner.y() >= tabs.tabBar()->geometry().bottom() + 4);
    QCOMPARE(tabs.grab().toImage().pixelColor(corner - QPoint(3, 3)), QColor(45, 45, 48));

    // Where the stem of the letter begins, in the header and in the cell beneath.
    const auto textStart = [](QWidget* widget, const QRect& cell) {
        const QImage image = widget->grab(cell.adjusted(3, 0, -3, 0)).toImage();
        const auto lightnessAt = [&](int x) {
            return image.pixelColor(x, image.height() / 2 - 2).lightness();
        };
        int x = 0;
        while (x < image.width() && lightnessAt(x) <= (lightnessAt(0) + 228) / 2) {
            ++x;
        }
        return x;
    };
    const QRect cell = tree->visualItemRect(tree->topLevelItem(0));
    const QRect column(tree->columnViewportPosition(1), 0, tree->columnWidth(1), cell.height());
    const QRect section(column.topLeft(), QSize(column.width(), tree->header()->height()));
    QCOMPARE(textStart(tree->header()->viewport(), section),
             textStart(tree->viewport(), column.translated(0, cell.y())));

    const QPushButton button(u"Use the other file's value"_s);
    const QFontMetrics text = button.fontMetrics();
    QVERIFY(button.sizeHint().width() > text.horizontalAdvance(button.text()) + text.height());
    QCOMPARE(QCheckBox().sizeHint().height(), QLineEdit().sizeHint().height());

    for (const auto direction :
         {Qt::LeftToRight, Qt::RightToLeft}) { // arrows grow, the field gives way
        QStyleOptionSpinBox box;
        box.initFrom(&button);
        box.frame = true;
        box.direction = direction;
        box.rect = QRect(0, 0, 200, 40);
        const auto rectOf = [&box](QStyle::SubControl part) {
            return QApplication::style()->subControlRect(QStyle::CC_SpinBox, &box, part);
        };
        const QRect up = rectOf(QStyle::SC_SpinBoxUp);
        QVERIFY(up.width() > text.ascent() / 2 + 4 && box.rect.contains(up));
        QVERIFY(!up.intersects(rectOf(QStyle::SC_SpinBoxEditField)));
    }

    QWidget window;
    auto* row = new WrappingRow;
    window.setLayout(row);
    for (int i = 0; i < 2; ++i) {
        row->addWidget(new QPushButton(u"Text"_s));
    }
    QCOMPARE(row->heightForWidth(1), 2 * row->heightForWidth(1000) + 6);
    QCOMPARE(row->sizeHint().width(), 2 * row->minimumSize().width() + 6);
}

void TestThemeManager::ringsListsReachedByTab()
{
    QWidget window;
    auto* layout = new QVBoxLayout(&window);
    auto* edit = new QLineEdit;
    auto* column = new WidgetColumn(0);
    layout->addWidget(edit);
    layout->addWidget(column);
    window.show();
    QVERIFY(QTest::qWaitForWindowActive(&window));
    const auto* ring = window.findChild<QFocusFrame*>();
    column->setFocus();
    QVERIFY(!ring->widget());
    edit->setFocus();
    QTest::keyClick(edit, Qt::Key_Tab);
    QVERIFY(column->hasFocus() && ring->isVisible());
    QCOMPARE(ring->geometry(), column->geometry());
    QVERIFY(!ring->mask().contains(ring->rect().center()));
    QCOMPARE(window.grab().toImage().pixelColor(column->pos()),
             QApplication::palette().color(QPalette::Highlight));
    edit->setFocus();
    QVERIFY(!ring->widget());
}

KSE_TEST_MAIN(TestThemeManager)
#include "TestThemeManager.moc"
