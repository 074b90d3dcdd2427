// SPDX-License-Identifier: MIT
#pragma once

#include "app/MainWindow.h"
#include "document/TreeWalk.h"
#include "document/XsdtDocument.h"
#include "support/WindowText.h"
#include "views/model/SettingsModel.h"
#include "views/rows/SettingRow.h"

#include <optional>

namespace kse {

/// Content and time of a file; none is no file.
struct FileState
{
    std::optional<QByteArray> bytes;
    QDateTime time;

    static FileState of(const QString& path)
    {
        QFile file(path);
        if (!file.open(QIODevice::ReadOnly)) {
            return {};
        }
        return {file.readAll(), QFileInfo(path).lastModified()};
    }

    void put(const QString& path) const
    {
        QFile file(path);
        if (!bytes) {
            file.remove();
        } else if (!file.open(QIODevice::WriteOnly) || file.write(*bytes) != bytes->size() ||
                   !file.flush() || !file.setFileTime(time, QFileDevice::FileModificationTime)) {
            qFatal("cannot write %s", qPrintable(path));
        }
    }
};

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

/// Lets everything posted happen, and what is to die later die.
inline void settle()
{
    for (int i = 0; i < 3; ++i) {
        QCoreApplication::processEvents();
        QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    }
}

/// Has a second window show what a first one does, as a user would bring it there: whatever can be
/// chosen is found by its name, and by its place among those of the same name.
class WindowTwin
{
public:
    /// Makes the choices of `from` in `to`: unless `isLoaded` just now, also what is open, current,
    /// selected or ticked, which a new file doesn't keep.
    static void carryChoices(const QWidget& from, QWidget& to, bool isLoaded = false)
    {
        lookForFiles(from);
        lookForFiles(to);
        const QMap<QString, QWidget*> chosen = choosers(from);
        for (auto* set : {&setInput, &setToggle, &setView}) {
            const QMap<QString, QWidget*> wanting = choosers(to);
            for (auto it = wanting.begin(); it != wanting.end(); ++it) {
                QWidget* like = chosen.value(it.key());
                if (like && (set == &setInput || !isLoaded)) {
                    set(*like, *it.value());
                }
            }
            settle();
        }
    }

    /// A window on `path` that never was on the screen. It finds the file as it was `loaded`, and
    /// then as it is now; gets the pending changes of `document`; and nothing else.
    static std::unique_ptr<MainWindow> make(const QString& path, const FileState& loaded,
                                            XsdtDocument* document)
    {
        const FileState now = FileState::of(path);
        loaded.put(path);
        auto window = std::make_unique<MainWindow>(MainWindow::Messages::StandardError);
        for (QTimer* timer : window->findChildren<QTimer*>()) {
            timer->stop(); // the poll
        }
        window->openFile(path);
        now.put(path);
        QMetaObject::invokeMethod(window.get(), "pollEnvironment");
        window->setAttribute(Qt::WA_DontShowOnScreen);
        window->show();
        settle();
        carryChanges(document, *window->findChild<SettingsModel*>());
        return window;
    }

private:
    /// A list of files may be as it was when it last opened.
    static void lookForFiles(const QWidget& window)
    {
        if (auto* files = window.findChild<QComboBox*>(u"fileCombo"_s)) {
            files->showPopup();
            files->hidePopup();
        }
    }

    static void carryChanges(XsdtDocument* from, SettingsModel& to)
    {
        const QList<XsdtNode*> nodes = nodesOf(from);
        const QList<XsdtNode*> twins = nodesOf(to.document());
        if (nodes.size() != twins.size() || !from) {
            return; // which shows
        }
        to.document()->defaultLayout = from->defaultLayout; // which a save doesn't change
        emit to.edited();
        const bool wasReadOnly = to.isReadOnly();
        to.setReadOnly(false);
        {
            const SettingsModel::Batch batch(to);
            for (qsizetype i = nodes.size() - 1; i >= 0; --i) { // a mark within a mark comes first
                if (nodes[i]->isModified()) {
                    to.setValue(twins[i], nodes[i]->value);
                }
                if (nodes[i]->markedForDeletion) {
                    (void)to.markForDeletion(twins[i]);
                }
            }
        }
        to.setReadOnly(wasReadOnly);
    }

    /// Whatever can be chosen, but for the values of settings.
    static QMap<QString, QWidget*> choosers(const QWidget& window)
    {
        QMap<QString, QWidget*> found;
        QMap<QString, int> counts;
        const std::function<void(const QWidget&, const QString&)> collect =
            [&](const QWidget& widget, const QString& page) {
                const bool isStack = qobject_cast<const QStackedWidget*>(&widget);
                for (QWidget* part : partsOf(widget)) {
                    if (qobject_cast<SettingRow*>(part)) {
                        continue;
                    }
                    const QString key = page + u'/' + part->objectName();
                    found.insert(u"%1#%2"_s.arg(key).arg(++counts[key], 4, 10, QChar(u'0')), part);
                    if (!qobject_cast<QComboBox*>(part) &&
                        !qobject_cast<QAbstractItemView*>(part)) {
                        collect(*part, isStack && page.isEmpty() ? part->objectName() : page);
                    }
                }
            };
        collect(window, {});
        return found;
    }

    static void setInput(QWidget& like, QWidget& widget)
    {
        if (auto* edit = qobject_cast<QLineEdit*>(&widget)) {
            edit->setText(static_cast<QLineEdit&>(like).text());
        } else if (qobject_cast<QCheckBox*>(&widget)) {
            setToggle(like, widget);
        } else if (auto* tabs = qobject_cast<QTabBar*>(&widget)) {
            tabs->setCurrentIndex(static_cast<QTabBar&>(like).currentIndex());
        } else if (auto* combo = qobject_cast<QComboBox*>(&widget)) {
            const QComboBox& other = static_cast<QComboBox&>(like);
            const int item = combo->findText(other.currentText());
            if (item >= 0 && item != combo->currentIndex() && other.currentIndex() >= 0) {
                combo->setCurrentIndex(item);
                emit combo->activated(item);
            }
        }
    }

    static void setToggle(QWidget& like, QWidget& widget)
    {
        auto* button = qobject_cast<QAbstractButton*>(&widget);
        if (button && button->isCheckable()) {
            button->setChecked(static_cast<QAbstractButton&>(like).isChecked());
        }
    }

    static void setView(QWidget& like, QWidget& widget)
    {
        if (auto* view = qobject_cast<QAbstractItemView*>(&widget)) {
            setRows(static_cast<QAbstractItemView&>(like), {}, *view, {});
        }
    }

    static void setRows(const QAbstractItemView& like, const QModelIndex& likeParent,
                        QAbstractItemView& view, const QModelIndex& parent)
    {
        const int count = qMin(like.model()->rowCount(likeParent), view.model()->rowCount(parent));
        auto* tree = qobject_cast<QTreeView*>(&view);
        for (int row = 0; row < count; ++row) {
            const QModelIndex from = like.model()->index(row, 0, likeParent);
            const QModelIndex to = view.model()->index(row, 0, parent);
            setRows(like, from, view, to); // a parent's box follows those beneath it
            if (tree) {
                tree->setExpanded(to, static_cast<const QTreeView&>(like).isExpanded(from));
            }
            const QVariant ticked = from.data(Qt::CheckStateRole);
            const bool follows =
                view.model()->rowCount(to) > 0 && to.flags() & Qt::ItemIsAutoTristate;
            if (ticked.isValid() && !follows) {
                view.model()->setData(to, ticked, Qt::CheckStateRole);
            }
            if (like.selectionModel()->isSelected(from)) {
                view.selectionModel()->select(to, QItemSelectionModel::Select |
                                                      QItemSelectionModel::Rows);
            }
            if (like.currentIndex().siblingAtColumn(0) == from) {
                view.selectionModel()->setCurrentIndex(to, QItemSelectionModel::NoUpdate);
            }
        }
    }
};

} // namespace kse
