// SPDX-License-Identifier: MIT
#include "support/FakePixInsight.h"
#include "support/TestMain.h"
#include "support/WindowFixture.h"
#include "views/cleanup/UnusedModulesView.h"
#include "widgets/CollapsibleSection.h"

namespace {

/// Labels that may be faint, because they are secondary.
const QStringList quietTexts{u"descriptionLabel"_s, u"pathLabel"_s, u"notice"_s, u"caption"_s};

bool isTabStop(const QWidget* widget)
{
    return (widget->focusPolicy() & Qt::TabFocus) && widget->isEnabled() && !widget->focusProxy();
}

/// Whether `b` comes after `a` in reading order, in the nearest widget that holds both.
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

/// Fills `ground` as the window does behind the text of `widget`.
void paintGround(QImage& ground, const QWidget& widget)
{
    if (!widget.isWindow()) {
        paintGround(ground, *widget.parentWidget());
    }
    if (widget.isWindow() || widget.autoFillBackground() || widget.inherits("QAbstractButton") ||
        widget.inherits("QLineEdit") || widget.inherits("QComboBox")) {
        const QColor colour = widget.palette().color(widget.backgroundRole());
        QPainter(&ground).fillRect(0, 0, 1, 1, colour);
    }
}

/// Whether text and ground are too much alike, as gray, for a text in use.
bool isFaint(const QWidget& widget)
{
    QImage ground(1, 1, QImage::Format_ARGB32_Premultiplied);
    paintGround(ground, widget);
    const QColor text = widget.palette().color(widget.foregroundRole());
    return qAbs(qGray(text.rgb()) - qGray(ground.pixel(0, 0))) < 95;
}

/// The widgets that `key` leads to, from the one with the focus round to it; none if it isn't
/// reached again.
QList<QWidget*> ring(const QWidget& window, Qt::Key key)
{
    QList<QWidget*> stops;
    QWidget* stop = window.focusWidget();
    for (; stop && !stops.contains(stop); stop = window.focusWidget()) {
        stops << stop;
        QTest::keyClick(stop, key);
    }
    return stops.indexOf(stop) == 0 ? stops : QList<QWidget*>();
}

/// What breaks these rules: Tab goes through all widgets that take the focus in reading order, and
/// Shift+Tab back; each of them has a name in words; texts in use stand out.
QStringList faultsOf(const QWidget& window)
{
    static const QRegularExpression word(u"\\w"_s, QRegularExpression::UseUnicodePropertiesOption);
    QStringList faults;
    const QList<QWidget*> forth = ring(window, Qt::Key_Tab);
    QList<QWidget*> back = ring(window, Qt::Key_Backtab);
    std::reverse(back.begin() + qMin<qsizetype>(back.size(), 1), back.end());
    if (forth.isEmpty() || back != forth) {
        faults << u"Shift+Tab doesn't go back the way that Tab came round"_s;
    }
    int turns = 0;
    for (qsizetype i = 1; i < forth.size(); ++i) {
        if (!isReadBefore(forth[i - 1], forth[i]) && ++turns > 1) { // once to the first
            faults << forth[i]->objectName() + u" comes too late"_s;
        }
    }
    for (QWidget* widget : window.findChildren<QWidget*>()) {
        if (widget->window() != &window || !widget->isVisibleTo(&window)) {
            continue;
        }
        const QString name = QAccessible::queryAccessibleInterface(widget)->text(QAccessible::Name);
        const QString said = u"%1 \"%2\""_s.arg(widget->objectName(), name);
        if (isTabStop(widget) && (!name.contains(word) || Qt::mightBeRichText(name))) {
            faults << said + u" has no name"_s;
        }
        if (isTabStop(widget) && !forth.contains(widget)) {
            faults << said + u" isn't reached"_s;
        }
        const bool hasText = qobject_cast<QLabel*>(widget) || !qobject_cast<QFrame*>(widget);
        if (widget->isEnabled() && hasText && !quietTexts.contains(widget->objectName()) &&
            isFaint(*widget)) {
            faults << said + u" is faint"_s;
        }
    }
    return faults;
}

} // namespace

/// Every page and dialog, as the keyboard and a screen reader meet them.
class TestAccessibility : public WindowFixture
{
    Q_OBJECT

private:
    QStringList m_faults;

    void look(const QWidget& window, const QString& where)
    {
        settle();
        const QStringList faults = faultsOf(window);
        if (!faults.isEmpty()) {
            m_faults << where + u": "_s + faults.join(u"; "_s);
        }
    }

    void lookAtPages(const QString& where)
    {
        auto* tabs = find<QTabWidget>("tabs");
        auto* pages = find<QListWidget>("pageList");
        for (int i = 0; i < pages->count() + tabs->count() - 1; ++i) {
            tabs->setCurrentIndex(qMax(0, i - pages->count() + 1));
            pages->setCurrentRow(qMin(i, pages->count() - 1));
            look(*m_window, where + u", page %1"_s.arg(i));
        }
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

    /// Shows what the pages only show on demand, without a change of the file.
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

    void looksAtEveryPage()
    {
        FakePixInsight pixInsight;
        fillPages();
        for (const auto theme : {ThemeMode::Light, ThemeMode::Dark}) {
            ThemeManager::instance().setMode(theme, false);
            lookAtPages(u"unchanged"_s);
            change();
            lookAtPages(u"changed"_s);
            QVERIFY(pixInsight.start());
            poll();
            lookAtPages(u"view only"_s);
            QVERIFY(pixInsight.stop());
            poll();
            model()->revertAll();
        }
    }

    void looksAtEveryDialog()
    {
        ThemeManager::instance().setMode(ThemeMode::Dark, false);
        write(m_file + u".bak-20250101-000000"_s, "<xsdt/>");
        fillPages();
        for (const auto& asked : {std::pair("cleanupView", "queueButton"),
                                  std::pair("unusedModulesView", "queueButton"),
                                  std::pair("compareView", "copyAllButton")}) {
            lookAtDialog(QLatin1String(asked.first), [&] { press(asked.first, asked.second); });
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
        const auto* frame = results->findChild<QFocusFrame*>();
        QTest::keyClick(results, Qt::Key_Backtab);
        QTest::keyClick(m_window->focusWidget(), Qt::Key_Tab);
        QCOMPARE(frame->widget(), results);
    }
};

KSE_TEST_MAIN(TestAccessibility)
#include "TestAccessibility.moc"
