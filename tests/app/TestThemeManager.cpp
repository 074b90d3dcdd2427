// SPDX-License-Identifier: MIT
#include "app/ThemeManager.h"
#include "support/TestMain.h"
#include "widgets/WrappingRow.h"

#include <QtWidgets>

/// Theme and text size, and the widgets that follow them.
class TestThemeManager : public QObject
{
    Q_OBJECT

private slots:
    /// The one start of this process: beside those, a font sized in pixels and a dark desktop.
    void startsFromUnusableSettings()
    {
        QFont font = QApplication::font();
        font.setPixelSize(20);
        QApplication::setFont(font);
        QApplication::setPalette(
            QPalette(Qt::white, Qt::black, Qt::white, Qt::black, Qt::gray, Qt::white, Qt::black));
        QSettings().setValue(u"Appearance/Theme"_s, 3);
        QSettings().setValue(u"Appearance/FontScale"_s, u"nan"_s);
        m_theme.apply(); // too early
        m_theme.init(true);
        QCOMPARE(m_theme.mode(), ThemeMode::System);
        QCOMPARE(QApplication::font().pointSizeF(), QFontInfo(font).pointSizeF() * 0.8);
#if QT_VERSION < QT_VERSION_CHECK(6, 5, 0)
        QVERIFY(m_theme.isDark());
#endif
    }

    void storesWhatIsChosen()
    {
        const auto state = [this] {
            const QSettings stored;
            return u"%1 %2, stored %3 %4"_s.arg(int(m_theme.mode()))
                .arg(m_theme.fontScale())
                .arg(stored.value(u"Appearance/Theme"_s).toString(),
                     stored.value(u"Appearance/FontScale"_s).toString());
        };
        m_theme.setMode(ThemeMode::Light, true);
        m_theme.resetFontScale();
        m_theme.overrideMode(u"sepia"_s); // for this run only
        m_theme.overrideFontScale(u"9"_s);
        QCOMPARE(state(), u"0 2.2, stored 1 1.25"_s);
        m_theme.overrideMode(u"DARK"_s);
        m_theme.overrideFontScale(u"1.33"_s);
        QCOMPARE(state(), u"2 1.33, stored 1 1.25"_s);
        m_theme.step(0.1); // on a grid of twentieths
        m_theme.toggle();
        QCOMPARE(state(), u"1 1.45, stored 1 1.45"_s);
    }

    void laysOutInBothDirections()
    {
        m_theme.setFontScale(2.2, false);
        QList<QImage> pictures;
        for (const auto direction : {Qt::RightToLeft, Qt::LeftToRight}) {
            QApplication::setLayoutDirection(direction);
            QWidget window;
            auto* row = new WrappingRow(Qt::AlignTrailing);
            window.resize(900, 50);
            window.setLayout(row);
            row->addWidget(new QPushButton(u"Text"_s));
            row->addWidget(new QPushButton(u"Text"_s));
            QCOMPARE(row->heightForWidth(1), 2 * row->heightForWidth(1000) + 6);
            window.show();
            const bool isMirrored = row->itemAt(0)->geometry().x() > row->itemAt(1)->geometry().x();
            QCOMPARE(isMirrored, direction == Qt::RightToLeft);
            QCOMPARE(row->itemAt(1)->geometry().right() == row->geometry().right(), !isMirrored);

            QPushButton button(u"-1/x..."_s);
            pictures += button.grab().toImage();
#ifndef Q_OS_WIN              // where Wine's fonts lack the marks that keep the order in lists
            QListWidget list; // what it shows reads from left to right in both
            list.addItem(button.text());
            list.item(0)->setTextAlignment(Qt::AlignCenter);
            pictures += list.grab().toImage();
#endif
        }
        QCOMPARE(pictures.mid(pictures.size() / 2), pictures.mid(0, pictures.size() / 2));
    }

private:
    ThemeManager& m_theme = ThemeManager::instance();
};

KSE_TEST_MAIN(TestThemeManager)
#include "TestThemeManager.moc"
