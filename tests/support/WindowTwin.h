// SPDX-License-Identifier: MIT
#pragma once

#include "app/MainWindow.h"
#include "document/TreeWalk.h"
#include "document/XsdtDocument.h"
#include "support/WindowText.h"
#include "views/model/SettingsModel.h"
#include "views/rows/SettingRow.h"

namespace kse {

/// Content and time of a file; null bytes are no file.
struct FileState
{
    QByteArray bytes;
    QDateTime time;

    static FileState of(const QString& path)
    {
        QFile file(path);
        return {file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray(),
                QFileInfo(path).lastModified()};
    }

    void put(const QString& path) const
    {
        QFile file(path);
        if (bytes.isNull()) {
            file.remove();
        } else if (!file.open(QIODevice::WriteOnly) || file.write(bytes) != bytes.size() ||
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

/// Has a second window show what a first one does, as a user would bring it there.
class WindowTwin
{
public:
    /// A window on `path` that never was on the screen. It finds the file as it was `loaded`, and
    /// then as it is now; gets the pending changes of `document`; and nothing else.
    static std::unique_ptr<MainWindow> make(const QString& path, const FileState& loaded,
                                            XsdtDocument* document)
    {
        const FileState now = FileState::of(path);
        loaded.put(path);
        auto window = std::make_unique<MainWindow>(MainWindow::Messages::StandardError);
        window->findChild<QTimer*>(u"pollTimer"_s)->stop();
        window->openFile(path);
        now.put(path);
        QMetaObject::invokeMethod(window.get(), "pollEnvironment");
        window->setAttribute(Qt::WA_DontShowOnScreen);
        window->show();
        settle();
        carryChanges(document, *window->findChild<SettingsModel*>());
        return window;
    }

    /// Makes the choices of `from` in `to`: unless `isLoaded` just now, also what is open, current,
    /// selected or ticked, which a new file doesn't keep.
    static void carryChoices(QWidget& from, QWidget& to, bool isLoaded = false)
    {
        for (QWidget* window : {&from, &to}) { // a list may be as it was when it last opened
            if (auto* files = window->findChild<QComboBox*>(u"fileCombo"_s)) {
                files->showPopup();
                files->hidePopup();
            }
        }
        carry(from, to, true);
        settle();
        if (!isLoaded) {
            carry(from, to, false);
            settle();
        }
    }

private:
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

    /// Goes through the parts of both, which belong together by class, name and order: inputs, or
    /// the rest. Leaves out the values of settings.
    static void carry(QWidget& from, QWidget& to, bool inputs)
    {
        if (qobject_cast<SettingRow*>(&to)) {
            return;
        }
        auto* view = qobject_cast<QAbstractItemView*>(&to);
        const bool isToggle = qobject_cast<QAbstractButton*>(&to) && !qobject_cast<QCheckBox*>(&to);
        if (inputs == (!view && !isToggle)) {
            view ? carryRows(static_cast<QAbstractItemView&>(from), {}, *view, {})
                 : carryInput(from, to);
        }
        if (view || qobject_cast<QComboBox*>(&to)) {
            return;
        }
        const auto nameOf = [](const QWidget* part) {
            return QLatin1String(part->metaObject()->className()) + part->objectName();
        };
        QHash<QString, QList<QWidget*>> parts;
        for (QWidget* part : partsOf(from)) {
            parts[nameOf(part)].append(part);
        }
        for (QWidget* part : partsOf(to)) {
            if (QList<QWidget*>& like = parts[nameOf(part)]; !like.isEmpty()) {
                carry(*like.takeFirst(), *part, inputs);
            }
        }
    }

    static void carryInput(QWidget& from, QWidget& to)
    {
        const QMetaProperty input = to.metaObject()->userProperty();
        if (auto* tabs = qobject_cast<QTabBar*>(&to)) {
            tabs->setCurrentIndex(static_cast<QTabBar&>(from).currentIndex());
        } else if (const QVariant value = input.read(&from); value != input.read(&to)) {
            input.write(&to, value);
            auto* combo = qobject_cast<QComboBox*>(&to);
            if (combo && input.read(&to) == value) {
                emit combo->activated(combo->currentIndex());
            }
        }
    }

    static void carryRows(const QAbstractItemView& from, const QModelIndex& fromParent,
                          QAbstractItemView& to, const QModelIndex& toParent)
    {
        auto* tree = qobject_cast<QTreeView*>(&to);
        for (int row = 0; row < to.model()->rowCount(toParent); ++row) {
            const QModelIndex like = from.model()->index(row, 0, fromParent);
            const QModelIndex index = to.model()->index(row, 0, toParent);
            if (!like.isValid()) {
                return;
            }
            carryRows(from, like, to, index); // a parent's box follows those below it
            if (tree) {
                tree->setExpanded(index, static_cast<const QTreeView&>(from).isExpanded(like));
            }
            const QVariant ticked = like.data(Qt::CheckStateRole);
            if (ticked.isValid() &&
                !(to.model()->hasChildren(index) && index.flags() & Qt::ItemIsAutoTristate)) {
                to.model()->setData(index, ticked, Qt::CheckStateRole);
            }
            if (from.selectionModel()->isSelected(like)) {
                to.selectionModel()->select(index, QItemSelectionModel::Select |
                                                       QItemSelectionModel::Rows);
            }
            if (from.currentIndex().siblingAtColumn(0) == like) {
                to.selectionModel()->setCurrentIndex(index, QItemSelectionModel::NoUpdate);
            }
        }
    }
};

} // namespace kse
