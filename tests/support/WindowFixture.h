// SPDX-License-Identifier: MIT
#pragma once

#include "app/MainWindow.h"
#include "app/ThemeManager.h"
#include "document/TreeWalk.h"
#include "document/XsdtDocument.h"
#include "session/PixInsightEnv.h"
#include "support/TextRows.h"
#include "views/model/SettingsModel.h"
#include "widgets/WidgetColumn.h"

#include <QtWidgets>

namespace kse {

using namespace Qt::StringLiterals;

/// Null bytes are no file. One that holds `bytes` stays as old as it is.
inline void write(const QString& path, const QByteArray& bytes)
{
    if (bytes.isNull()) {
        QFile::remove(path);
    } else if (bytes != contentOf(path)) {
        QVERIFY(writeFile(path, bytes));
    }
}

/// The document's nodes in file order.
inline QList<XsdtNode*> nodesOf(XsdtDocument* document)
{
    QList<XsdtNode*> nodes;
    if (document) {
        walkTree(document->root, [&nodes](XsdtNode& node) {
            nodes.append(&node);
            return Walk::Into;
        });
    }
    return nodes;
}

/// Lets everything posted happen, what is to die later die, and columns get all their rows. Fails
/// if something goes on for ever.
inline void settle()
{
    for (QWidget* widget : QApplication::allWidgets()) {
        if (auto* column = qobject_cast<WidgetColumn*>(widget)) {
            column->complete();
        }
    }
    int turns = 0;
    while (QAbstractEventDispatcher::instance()->processEvents(QEventLoop::AllEvents)) {
        QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
        QVERIFY(++turns < 1000);
    }
}

/// Calls `command`, and in each dialog that it opens calls `meanwhile` and presses the next of
/// `buttons`, or closes it. Gives the title of each with its texts.
inline QStringList answer(
    const QStringList& buttons, const std::function<void()>& command,
    const std::function<void(QWidget&)>& meanwhile = [](QWidget&) {})
{
    QStringList asked;
    QTimer timer;
    timer.callOnTimeout([&] {
        const QPointer<QWidget> open = QApplication::activeModalWidget();
        if (!open || !open->isVisible()) {
            return;
        }
        const auto* box = qobject_cast<QMessageBox*>(open);
        const QString text = box ? u": "_s + box->text() + u'|' + box->informativeText() : u""_s;
        const QString button = buttons.value(asked.size());
        asked << open->windowTitle() + text;
        meanwhile(*open);
        for (auto* pressed : open ? open->findChildren<QPushButton*>() : QList<QPushButton*>()) {
            if (open && pressed->text().remove(u'&') == button) {
                pressed->click();
            }
        }
        if (open && open->isVisible()) {
            open->close();
        }
    });
    timer.start(10);
    command();
    QCoreApplication::processEvents(); // commands run a turn later
    return asked;
}

/// Drives the real window over copies of the sample files, with mouse and keyboard. Each test gets
/// a window of its own: call `prepareProgram` once, then `openSample` before each test.
class WindowFixture : public QObject
{
protected:
    std::unique_ptr<MainWindow> m_window;
    QString m_folder;
    QString m_file;

    template <typename Widget>
    Widget* find(const char* name) const
    {
        return m_window->findChild<Widget*>(QLatin1String(name));
    }
    QTreeView* tree() const { return find<QWidget>("advancedPage")->findChild<QTreeView*>(); }
    SettingsModel* model() const { return m_window->findChild<SettingsModel*>(); }
    QAction* action(const char* name) const { return find<QAction>(name); }
    XsdtNode* node(const QString& path) const { return model()->document()->root.findByPath(path); }
    qsizetype pending() const
    {
        return model()->document() ? model()->document()->pendingCount() : 0;
    }
    void poll() const { QMetaObject::invokeMethod(m_window.get(), "pollEnvironment"); }

    /// Brings the page to the front.
    QWidget* page(const char* name) const
    {
        auto* page = find<QWidget>(name);
        find<QTabWidget>("tabs")->setCurrentWidget(page);
        return page;
    }

    void select(const QString& path, int column = SettingsModel::SettingColumn) const
    {
        auto* proxy = static_cast<QSortFilterProxyModel*>(tree()->model());
        tree()->setCurrentIndex(proxy->mapFromSource(model()->indexForNode(node(path), column)));
        tree()->setFocus();
    }

    /// Opens the editor of the value at `path` and types `text` over it, without Enter.
    QWidget* type(const QString& path, const QString& text) const
    {
        select(path, SettingsModel::ValueColumn);
        QTest::keyClick(tree(), Qt::Key_F2);
        QWidget* editor = m_window->focusWidget();
        if (editor != tree()) {
            QTest::keyClicks(editor, text);
        }
        return editor;
    }

    void edit(const QString& path, const QString& text) const
    {
        QTest::keyClick(type(path, text), Qt::Key_Return);
        QCoreApplication::processEvents(); // Enter takes effect a turn later
    }

    void pressDelete(const QString& path) const
    {
        select(path);
        m_window->activateWindow(); // which a box that closed here doesn't do
        QVERIFY(QTest::qWaitForWindowActive(m_window.get()));
        QTest::keyClick(tree(), Qt::Key_Delete);
    }

    void openWindow()
    {
        m_window = std::make_unique<MainWindow>();
        m_window->show();
        QVERIFY(QTest::qWaitForWindowActive(m_window.get()));
    }

    static void prepareProgram()
    {
        if (!PixInsightEnv::runningProcessIds().isEmpty()) {
            QSKIP("A process named as PixInsight's runs on this computer");
        }
        ThemeManager::instance().init(false);
    }

    /// Makes a folder with the samples, and nothing else, where settings files lie.
    void copySamples()
    {
        m_folder = PixInsightEnv::settingsFolders().constFirst();
        QDir(m_folder).removeRecursively();
        QVERIFY(QDir().mkpath(m_folder));
        for (const QString& name : {u"/core-002-pxi.settings"_s, u"/core-001-pxi.settings"_s}) {
            m_file = m_folder + name;
            QVERIFY(QFile::copy(QStringLiteral(KSE_SOURCE_DIR "/examples") + name, m_file));
        }
    }

    /// Opens the window on the first sample, with the second beside it.
    void openSample()
    {
        copySamples();
        openWindow();
    }
};

} // namespace kse
