// SPDX-License-Identifier: MIT
#pragma once

#include "app/MainWindow.h"
#include "app/ThemeManager.h"
#include "document/XsdtDocument.h"
#include "session/PixInsightEnv.h"
#include "views/model/SettingsModel.h"

#include <QAction>
#include <QDir>
#include <QFile>
#include <QSortFilterProxyModel>
#include <QStatusBar>
#include <QTest>
#include <QTreeView>

#include <memory>

namespace kse {

inline QByteArray contentOf(const QString& path)
{
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

inline void write(const QString& path, const QByteArray& bytes)
{
    QFile file(path);
    QVERIFY(file.open(QIODevice::WriteOnly) && file.write(bytes) == bytes.size());
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
    QTreeView* tree() const
    {
        return find<QWidget>("advancedPage")->findChild<QTreeView*>(QStringLiteral("tree"));
    }
    SettingsModel* model() const { return m_window->findChild<SettingsModel*>(); }
    QAction* action(const char* name) const { return find<QAction>(name); }
    XsdtNode* node(const QString& path) const { return model()->document()->root.findByPath(path); }
    qsizetype pending() const { return model()->document()->pendingCount(); }
    QString status() const { return m_window->statusBar()->currentMessage(); }
    void poll() const { QMetaObject::invokeMethod(m_window.get(), "pollEnvironment"); }

    QModelIndex select(const QString& path, int column = SettingsModel::SettingColumn) const
    {
        auto* proxy = static_cast<QSortFilterProxyModel*>(tree()->model());
        const QModelIndex index = proxy->mapFromSource(model()->indexForNode(node(path), column));
        tree()->setCurrentIndex(index);
        tree()->scrollTo(index);
        return index;
    }

    /// Opens the editor of the value at `path` and types `text` over it, without Enter.
    QWidget* type(const QString& path, const QString& text) const
    {
        select(path, SettingsModel::ValueColumn);
        tree()->setFocus();
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
        tree()->setFocus();
        m_window->activateWindow(); // which a box that closed here doesn't do
        QVERIFY(QTest::qWaitForWindowActive(m_window.get()));
        QTest::keyClick(tree(), Qt::Key_Delete);
    }

    /// Opens the window on the first sample, with the second beside it.
    void openWindow()
    {
        m_window = std::make_unique<MainWindow>();
        m_window->show();
        QVERIFY(QTest::qWaitForWindowActive(m_window.get()));
    }

    void prepareProgram()
    {
        if (!PixInsightEnv::runningProcessIds().isEmpty()) {
            QSKIP("A process named as PixInsight's runs on this computer");
        }
        ThemeManager::instance().init(false);
    }

    void openSample()
    {
        m_folder = PixInsightEnv::settingsFolders().constFirst();
        QDir(m_folder).removeRecursively();
        QVERIFY(QDir().mkpath(m_folder));
        for (const QString& name :
             {QStringLiteral("core-001-pxi.settings"), QStringLiteral("core-002-pxi.settings")}) {
            QVERIFY(QFile::copy(QStringLiteral(KSE_SOURCE_DIR "/examples/") + name,
                                m_folder + u'/' + name));
        }
        m_file = m_folder + QStringLiteral("/core-001-pxi.settings");
        openWindow();
    }
};

} // namespace kse
