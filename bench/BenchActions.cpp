// SPDX-License-Identifier: MIT
#include "BenchSupport.h"
#include "Element.h"
#include "SettingsHome.h"
#include "app/MainWindow.h"
#include "app/ThemeManager.h"
#include "document/Leaves.h"
#include "views/cleanup/UnusedModulesView.h"
#include "views/compare/CompareView.h"
#include "views/model/SettingsModel.h"
#include "views/preferences/PreferencesView.h"
#include "views/search/SearchView.h"
#include "views/tree/AllSettingsView.h"
#include "widgets/CollapsibleSection.h"

#include <QtWidgets>

#include <cstdio>
#include <ctime>

// Opens a generated file of 60,000 values, or of as many as the argument says, in the real window,
// does what a user does, and prints as a Markdown table how long each action held up the event
// loop: the longest time of the processor in which the window took no input.

using namespace kse;
using namespace Qt::StringLiterals;

namespace {

/// Does `action` and everything that follows from it, and prints the longest time without input.
void measure(const char* name, const std::function<void()>& action)
{
    std::clock_t longest = 0;
    const auto time = [&longest](const std::function<void()>& work) {
        const std::clock_t start = std::clock();
        work();
        longest = std::max(longest, std::clock() - start);
    };
    time(action);
    QElapsedTimer sinceAction;
    sinceAction.start();
    while (sinceAction.elapsed() < 400) { // more than the search waits for the next key
        time([] {
            QCoreApplication::processEvents();
            QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
        });
        QThread::msleep(1);
    }
    std::printf("| %s | %.1f ms |\n", name, 1e3 * double(longest) / CLOCKS_PER_SEC);
    std::fflush(stdout);
}

/// Types the two letters of `text` into the line edit `edit` of `page`, and clears it.
void measureTyping(const char* name, QWidget* page, const QString& edit,
                   const QString& text = u"al"_s)
{
    auto* line = page->findChild<QLineEdit*>(edit);
    measure(name, [&] { line->setText(text.first(1)); });
    measure("- a second letter", [&] { line->setText(text); });
    measure("- clear", [line] { line->clear(); });
}

/// A file with `values` values, and a page of preferences that has as many as a page shows.
QByteArray settingsWithPage(qsizetype values)
{
    Element global{"Global", 0, {}, {}};
    Element& page = global.group("Preferences/Bench");
    for (int i = 0; i < 1000; ++i) {
        Element& group = i < 500 ? page : page.group("Inner");
        group.set("Value" + QByteArray::number(i), "bis"[i % 3], i % 3 == 0 ? "true" : "1");
    }
    QByteArray element;
    appendElement(element, global);
    QByteArray bytes = generateSettings({GenerateOptions::Shape::Values, values});
    return bytes.insert(bytes.indexOf("<i "), element);
}

class Session
{
public:
    explicit Session(const QByteArray& bytes)
        : m_path(placeSettings(bytes))
    {
        XsdtDocument document;
        require(document.parse(bytes));
        const QList<XsdtNode*> nodes = valuesOf(document.root);
        for (qsizetype i = 0; i < nodes.size(); i += 100) {
            nodes.at(i)->value += u'1';
        }
        QFile file(m_other);
        require(file.open(QIODevice::WriteOnly) && file.write(document.serialize()) > 0);
    }

    void run()
    {
        std::puts("| Action | Held up |\n|---|---|");
        measure("Open", [this] {
            m_window = std::make_unique<MainWindow>(MainWindow::Messages::StandardError);
            m_window->resize(1200, 820);
            m_window->show();
        });
        visitPages();
        useTree();
        measure("Page \"Preferences\" again",
                [this] { m_tabs->setCurrentWidget(page<PreferencesView>()); });
        measureTyping("Preferences: search, first letter", page<PreferencesView>(), u"searchEdit"_s,
                      u"12"_s); // in the half of the names
        m_tabs->setCurrentWidget(page<SearchView>());
        measureTyping("Search: first letter", page<SearchView>(), u"queryEdit"_s);
        compare();
        change();
        look();
    }

private:
    template <typename Page>
    Page* page() const
    {
        return m_window->findChild<Page*>();
    }

    void visitPages()
    {
        m_tabs = m_window->findChild<QTabWidget*>(u"tabs"_s);
        for (int i = 0; i < m_tabs->count(); ++i) {
            const QByteArray name = u"Page \"%1\""_s.arg(m_tabs->tabText(i)).toUtf8();
            measure(name.constData(), [&] { m_tabs->setCurrentIndex(i); });
        }
        auto* list = m_window->findChild<QListWidget*>(u"pageList"_s);
        measure("Preferences: another page", [&] { list->setCurrentRow(1); });
        measure("- one of 1,000 settings", [&] { list->setCurrentRow(0); });
        measure("- a section of 500", [this] { open(page<PreferencesView>()); });
        m_tabs->setCurrentWidget(page<UnusedModulesView>());
        measure("Unused modules: a module's settings", [this] { open(page<UnusedModulesView>()); });
    }

    /// Opens the first section of `view` that hasn't been open.
    static void open(QWidget* view)
    {
        for (auto* section : view->findChildren<CollapsibleSection*>()) {
            if (section->bodyLayout()->isEmpty()) {
                section->setExpanded(true);
                return;
            }
        }
        require(false);
    }

    void useTree()
    {
        auto* view = page<AllSettingsView>();
        auto* tree = view->findChild<QTreeView*>();
        m_tabs->setCurrentWidget(view);
        measure("Tree: expand all",
                [this] { m_window->findChild<QAction*>(u"actExpandAll"_s)->trigger(); });
        measure("Tree: last row", [&] {
            QKeyEvent end(QEvent::KeyPress, Qt::Key_End, Qt::NoModifier);
            QApplication::sendEvent(tree, &end);
        });
        measureTyping("Tree: filter, first letter", view, u"treeFilter"_s);
        auto* changedOnly = view->findChild<QCheckBox*>(u"changedOnly"_s);
        measure("Tree: \"Changed only\"", [&] { changedOnly->setChecked(true); });
        measure("- off", [&] { changedOnly->setChecked(false); });
    }

    void compare()
    {
        auto* view = page<CompareView>();
        m_tabs->setCurrentWidget(view);
        measure("Compare with a copy, 1 % different", [&] { require(view->compareWith(m_other)); });
        measureTyping("Compare: filter, first letter", view, u"filterEdit"_s);
    }

    /// With all pages built and the comparison open.
    void change()
    {
        auto* model = m_window->findChild<SettingsModel*>();
        XsdtNode* text = nullptr;
        XsdtNode* group = nullptr;
        walkTree(model->document()->root, [&](XsdtNode& node) {
            if (node.kind == XsdtNode::Kind::Group) {
                group = &node;
            } else if (node.typeCode == XsdtValueType::String) {
                text = &node;
            }
            return Walk::Into;
        });
        measure("Edit a value", [&] { require(model->setValue(text, u"changed"_s)); });
        measure("Queue a group for deletion", [&] { (void)model->markForDeletion(group); });
        measure("Undo", [&] { model->undoDeletion(group); });
        measure("Revert all", [this] { page<AllSettingsView>()->revertAll(); }); // after its box
    }

    void look()
    {
        ThemeManager& theme = ThemeManager::instance();
        measure("Switch the theme", [&] { theme.toggle(); });
        measure("Larger text", [&] { theme.step(0.1); });
        measure("Poll", [this] { QMetaObject::invokeMethod(m_window.get(), "pollEnvironment"); });
        measure("Reload", [this] { m_window->findChild<QAction*>(u"actReload"_s)->trigger(); });
        measure("Page \"Search\" again, in memory that was used before",
                [this] { m_tabs->setCurrentWidget(page<SearchView>()); });
    }

    const QString m_path;
    const QString m_other = m_path + u".other"_s;
    std::unique_ptr<MainWindow> m_window;
    QTabWidget* m_tabs = nullptr;
};

} // namespace

int main(int argc, char** argv)
{
    qputenv("QT_QPA_PLATFORM", "offscreen");
    const QTemporaryDir home;
    useAsHome(home);
    const QApplication application(argc, argv);
    QApplication::setApplicationName(u"BenchActions"_s);
    Session(settingsWithPage(argc > 1 ? QByteArray(argv[1]).toLongLong() : 60'000)).run();
    return 0;
}
