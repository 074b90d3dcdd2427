// SPDX-License-Identifier: MIT
#include "support/FakePixInsight.h"
#include "support/TestMain.h"
#include "support/WindowFixture.h"
#include "views/cleanup/UnusedModulesView.h"
#include "widgets/CollapsibleSection.h"

#include <cmath>

using namespace kse;

namespace {

/// Those whose faint colours are wanted: what matters less.
const QStringList quietTexts{u"descriptionLabel"_s, u"pathLabel"_s, u"notice"_s, u"caption"_s};

/// In one menu, where the letter goes from one to the other, and Return chooses.
const QString sharedOnPurpose = u"&Manage backups... takes m again"_s;

bool isTabStop(const QWidget* widget)
{
    return (widget->focusPolicy() & Qt::TabFocus) && widget->isEnabled() && !widget->focusProxy();
}

/// Whether `b` is where who reads `a` comes afterwards: not above it, nor beside it to the left, in
/// the nearest widget that holds both.
bool isReadBefore(const QWidget* a, const QWidget* b)
{
    if (a->isAncestorOf(b) || b->isAncestorOf(a)) {
        return a->isAncestorOf(b);
    }
    while (!a->parentWidget()->isAncestorOf(b)) {
        a = a->parentWidget();
    }
    while (b->parentWidget() != a->parentWidget()) {
        b = b->parentWidget();
    }
    const QRect first = a->geometry();
    const QRect second = b->geometry();
    const int overlap = qMin(first.bottom(), second.bottom()) - qMax(first.top(), second.top()) + 1;
    const bool inOneLine = 2 * overlap >= qMin(first.height(), second.height());
    return inOneLine ? first.left() < second.left() : first.top() < second.top();
}

double luminance(const QColor& colour)
{
    const auto linear = [](double c) {
        return c <= 0.04045 ? c / 12.92 : std::pow((c + 0.055) / 1.055, 2.4);
    };
    return 0.2126 * linear(colour.redF()) + 0.7152 * linear(colour.greenF()) +
           0.0722 * linear(colour.blueF());
}

/// The contrast by WCAG 2 of the text of `widget`, from 1 to 21.
double contrast(const QWidget& widget)
{
    QImage ground(1, 1, QImage::Format_ARGB32_Premultiplied);
    const std::function<void(const QWidget&)> fill = [&](const QWidget& part) {
        const bool isFilled = part.isWindow() || part.autoFillBackground() ||
                              part.inherits("QAbstractButton") || part.inherits("QLineEdit") ||
                              part.inherits("QComboBox");
        if (!part.isWindow()) {
            fill(*part.parentWidget());
        }
        if (isFilled) {
            QPainter(&ground).fillRect(0, 0, 1, 1, part.palette().color(part.backgroundRole()));
        }
    };
    fill(widget);
    const auto [dark, light] =
        std::minmax({luminance(widget.palette().color(widget.foregroundRole())),
                     luminance(ground.pixelColor(0, 0))});
    return (light + 0.05) / (dark + 0.05);
}

/// What somebody without a mouse, or who hears a window instead of seeing it, would stumble over.
class AccessibilityWalk
{
public:
    explicit AccessibilityWalk(QWidget& window)
        : m_window(window)
        , m_shown(window.findChildren<QWidget*>())
    {
        m_shown.removeIf([&window](const QWidget* widget) {
            return widget->window() != &window || !widget->isVisibleTo(&window);
        });
    }

    /// Layouts of much content take a few turns.
    bool isLaidOut() const
    {
        return std::none_of(m_shown.begin(), m_shown.end(), [](const QWidget* widget) {
            return isTabStop(widget) && widget->height() == 0;
        });
    }

    QStringList faults()
    {
        checkWidgets();
        checkMnemonics();
        checkTabOrder();
        return m_faults;
    }

private:
    static QString nameOf(QWidget* widget)
    {
        return QAccessible::queryAccessibleInterface(widget)->text(QAccessible::Name);
    }

    void fault(QWidget* widget, const QString& what)
    {
        m_faults << u"%1 \"%2\" %3"_s.arg(widget->objectName(), nameOf(widget), what);
    }

    /// Whatever takes the focus has a name in words; texts in use stand out.
    void checkWidgets()
    {
        static const QRegularExpression word(u"\\w"_s,
                                             QRegularExpression::UseUnicodePropertiesOption);
        for (QWidget* widget : m_shown) {
            const QString name = nameOf(widget);
            if (isTabStop(widget) && (!name.contains(word) || Qt::mightBeRichText(name))) {
                fault(widget, u"has no name"_s);
            }
            const bool hasText = qobject_cast<QLabel*>(widget) || !qobject_cast<QFrame*>(widget);
            if (widget->isEnabled() && hasText && !quietTexts.contains(widget->objectName()) &&
                contrast(*widget) < 4.5) {
                fault(widget, u"is faint"_s);
            }
        }
    }

    /// No letter is underlined twice: in the window with its menu bar, or in one menu.
    void checkMnemonics()
    {
        QList<QStringList> scopes(1);
        for (const QWidget* widget : m_shown) {
            const auto* label = qobject_cast<const QLabel*>(widget);
            if (qobject_cast<const QAbstractButton*>(widget) || (label && label->buddy())) {
                scopes[0] << widget->property("text").toString();
            }
        }
        for (const QMenu* menu : m_window.findChildren<QMenu*>()) {
            scopes[0] << (qobject_cast<QMenuBar*>(menu->parent()) ? menu->title() : QString());
            scopes << QStringList();
            for (const QAction* action : menu->actions()) {
                scopes.last() << action->text();
            }
        }
        for (const QStringList& texts : scopes) {
            QSet<QString> taken;
            for (const QString& text : texts) {
                const QString key = QKeySequence::mnemonic(text).toString().right(1).toLower();
                if (!key.isEmpty() && taken.contains(key)) {
                    m_faults << u"%1 takes %2 again"_s.arg(text, key);
                }
                taken << key;
            }
        }
        m_faults.removeOne(sharedOnPurpose);
    }

    QList<QWidget*> ring(Qt::Key key)
    {
        QList<QWidget*> stops;
        QWidget* const start = m_window.focusWidget();
        QWidget* stop = start;
        for (; stop && !stops.contains(stop); stop = m_window.focusWidget()) {
            stops << stop;
            QTest::keyClick(stop, key);
        }
        if (!start || stop != start) {
            m_faults << u"The ring is broken"_s;
        }
        return stops;
    }

    /// Tab goes round all that takes the focus in the order of reading, and Shift+Tab back.
    void checkTabOrder()
    {
        const QList<QWidget*> forth = ring(Qt::Key_Tab);
        QList<QWidget*> back = ring(Qt::Key_Backtab);
        std::reverse(back.begin() + 1, back.end());
        if (back != forth) {
            m_faults << u"Shift+Tab doesn't go back the way that Tab came"_s;
        }
        int turns = 0;
        for (qsizetype i = 0; i < forth.size(); ++i) {
            QWidget* next = forth[(i + 1) % forth.size()];
            if (!isReadBefore(forth[i], next) && ++turns > 1) { // the last leads to the first
                fault(next, u"comes too late"_s);
            }
        }
        for (QWidget* widget : m_shown) {
            if (isTabStop(widget) && !forth.contains(widget)) {
                fault(widget, u"isn't reached"_s);
            }
        }
    }

    QWidget& m_window;
    QList<QWidget*> m_shown;
    QStringList m_faults;
};

} // namespace

/// Every page and dialog, as the keyboard and a screen reader meet them.
class TestAccessibility : public WindowFixture
{
    Q_OBJECT

private:
    QStringList m_faults;

    void look(QWidget& window, const QString& where)
    {
        QTest::qWait(0);
        QTRY_VERIFY(AccessibilityWalk(window).isLaidOut());
        const QStringList faults = AccessibilityWalk(window).faults();
        m_faults +=
            QStringList(faults).replaceInStrings(QRegularExpression(u"^"_s), where + u": "_s);
    }

    void lookAtDialog(const QString& where, const std::function<void()>& open)
    {
        const QStringList asked = answer({}, open, [&](QWidget& dialog) { look(dialog, where); });
        QVERIFY2(asked.size() == 1, qPrintable(where));
    }

    void press(const char* page, const char* button) const
    {
        auto* pressed = this->page(page)->findChild<QPushButton*>(QLatin1String(button));
        pressed->setFocus();
        QTest::keyClick(pressed, Qt::Key_Space);
    }

    /// Brings to light what the pages only show on demand, without a change of the file.
    void fillPages() const
    {
        find<QLineEdit>("queryEdit")->setText(u"font"_s);
        auto* files = find<QComboBox>("fileCombo");
        emit files->activated(files->findText(u"core-002"_s, Qt::MatchStartsWith));
        auto* entries = page("cleanupView")->findChild<QTreeWidget*>();
        entries->topLevelItem(0)->child(0)->setCheckState(0, Qt::Checked);
        entries->topLevelItem(1)->child(0)->setCheckState(0, Qt::Checked);
        auto* unused = static_cast<UnusedModulesView*>(page("unusedModulesView"));
        unused->expandCard(unused->moduleNames().constFirst());
        unused->findChild<QCheckBox*>(u"tick"_s)->setChecked(true);
        tree()->expandAll();
        for (auto* section :
             find<QWidget>("preferencesView")->findChildren<CollapsibleSection*>()) {
            section->setExpanded(true);
        }
    }

    void change() const
    {
        model()->setValue(node(u"Global/Preferences/ProcessIcon/Prefix"_s), u"other"_s);
        for (const char* path : {"Global/Statistics", "ModuleData/Ostrand", "Thornwick"}) {
            QVERIFY(model()->markForDeletion(node(QLatin1String(path))));
        }
    }

private slots:
    void initTestCase()
    {
        QAccessible::setActive(true);
        prepareProgram();
    }
    void init()
    {
        openSample();
        // Names that are none: of a group, and of a value in it.
        const QByteArray group = "<i k=\"ProcessIcon\">";
        write(m_file,
              contentOf(m_file).replace(group, group + "<i k=\"\"><v k=\"_\" t=\"s\">x</v></i>"));
        QVERIFY(m_window->openFile(m_file));
        QTest::qWait(0); // the former pages go
        m_faults.clear();
    }
    void cleanup()
    {
        m_window.reset();
        QVERIFY2(m_faults.isEmpty(), qPrintable(m_faults.join(u'\n')));
    }

    void looksAtEveryPage_data()
    {
        QTest::addColumn<ThemeMode>("theme");
        QTest::addColumn<bool>("changed");
        QTest::addColumn<bool>("running");
        QTest::newRow("light") << ThemeMode::Light << false << false;
        QTest::newRow("light, view only") << ThemeMode::Light << true << true;
        QTest::newRow("dark, changed") << ThemeMode::Dark << true << false;
    }

    void looksAtEveryPage()
    {
        QFETCH(ThemeMode, theme);
        QFETCH(bool, changed);
        QFETCH(bool, running);
        ThemeManager::instance().setMode(theme, false);
        FakePixInsight pixInsight;
        if (changed) {
            change();
        }
        fillPages();
        QVERIFY(running ? pixInsight.start() : pixInsight.stop());
        poll();
        auto* tabs = find<QTabWidget>("tabs");
        auto* pages = find<QListWidget>("pageList");
        for (int i = 0; i < pages->count() + tabs->count() - 1; ++i) {
            tabs->setCurrentIndex(qMax(0, i - pages->count() + 1));
            pages->setCurrentRow(qMin(i, pages->count() - 1));
            look(*m_window, u"page %1"_s.arg(i));
        }
    }

    void looksAtEveryDialog()
    {
        ThemeManager::instance().setMode(ThemeMode::Dark, false);
        write(m_file + u".bak-20250101-000000"_s, "<xsdt/>");
        fillPages();
        for (const auto& [page, button] : {std::pair("cleanupView", "queueButton"),
                                           std::pair("unusedModulesView", "queueButton"),
                                           std::pair("compareView", "copyAllButton")}) {
            lookAtDialog(QLatin1String(page), [&, this] { press(page, button); });
        }
        page("advancedPage");
        lookAtDialog(u"delete"_s, [this] { pressDelete(u"ModuleData/Ostrand"_s); });
        change();
        for (const char* command : {"actSave", "actRestore", "actBackups", "actRevert",
                                    "actFindModule", "actAbout", "actReload"}) {
            lookAtDialog(QLatin1String(command), [&, this] { action(command)->trigger(); });
        }
        lookAtDialog(u"close"_s, [this] { m_window->close(); });
    }

    void keepsTheFocusNear()
    {
        fillPages();
        // The confirmed command ends what the button was for.
        (void)answer({u"Yes"_s}, [this] { press("cleanupView", "queueButton"); });
        QCOMPARE(m_window->focusWidget()->objectName(), u"tree"_s);
        auto* results = page("searchView")->findChild<QScrollArea*>();
        QTRY_VERIFY(results->findChild<QLineEdit*>());
        m_window->activateWindow(); // which a box that closed here doesn't do
        QVERIFY(QTest::qWaitForWindowActive(m_window.get()));
        results->findChild<QLineEdit*>()->setFocus();
        find<QLineEdit>("queryEdit")->setText(u"console"_s);
        QTRY_COMPARE(m_window->focusWidget(), results);
    }
};

KSE_TEST_MAIN(TestAccessibility)
#include "TestAccessibility.moc"
