// SPDX-License-Identifier: MIT
#pragma once

#include "schema/DeletePolicy.h"
#include "schema/SettingsSchema.h"
#include "support/DialogAnswerer.h"
#include "support/SettingsTree.h"
#include "support/TestMain.h"
#include "views/model/SettingsModel.h"
#include "widgets/WidgetColumn.h"

#include <QtWidgets>

namespace kse {

/// A document of `nodes` as `addNodes` makes them, with the built-in tables and a model.
struct ModelOf
{
    explicit ModelOf(const QString& nodes)
    {
        const QByteArray overlay = builtInTable("overlay.json");
        QVERIFY(schema.load(builtInTable("globals.json"), overlay) && policy.load(overlay));
        document.head = u"<xsdt>"_s;
        addNodes(document, nodes);
        model.setPolicy(&policy);
        model.setDocument(&document);
    }

    XsdtNode* node(const QString& path) const { return document.root.findByPath(path); }

    XsdtDocument document;
    SettingsSchema schema;
    DeletePolicy policy;
    SettingsModel model;
};

/// A page of class `View` in sight, over such a document.
template <typename View>
struct SettingsPage : ModelOf
{
    explicit SettingsPage(const QString& nodes)
        : ModelOf(nodes)
    {
        setDocument(&document);
        view.resize(900, 600);
        view.show();
    }

    void setDocument(XsdtDocument* shown)
    {
        model.setDocument(shown);
        if constexpr (std::is_invocable_v<decltype(&View::setDocument), View&, XsdtDocument*>) {
            view.setDocument(shown);
        } else {
            view.setDocument(shown, path);
        }
    }

    /// As after a reload of the file: the same nodes again, without changes.
    void reload()
    {
        document.revertAll();
        const QByteArray bytes = document.serialize();
        setDocument(nullptr);
        QVERIFY(document.parse(bytes));
        setDocument(&document);
    }

    /// Also those that the page would create later.
    template <typename Widget = QWidget>
    QList<Widget*> children(const char* name = nullptr) const
    {
        for (WidgetColumn* column : view.template findChildren<WidgetColumn*>()) {
            column->complete();
        }
        QCoreApplication::sendPostedEvents(); // which show them
        return view.template findChildren<Widget*>(QLatin1String(name));
    }
    template <typename Widget = QWidget>
    Widget* child(const char* name, int place = 0) const
    {
        return children<Widget>(name).value(place);
    }
    QString text(const char* label, int place = 0) const
    {
        return child(label, place)->property("text").toString();
    }

    /// Clicks the button of that name, calls `meanwhile` while the message box stands that comes,
    /// and answers it. Gives its text, its details and "Cancel" or the like for its default button.
    QString ask(
        const char* button, QMessageBox::StandardButton choice,
        const std::function<void()>& meanwhile = [] {})
    {
        QString text;
        const DialogAnswerer<QMessageBox> answer([&](QMessageBox& box) {
            text = box.text() + u'|' + box.detailedText() + u'|' + box.defaultButton()->text();
            meanwhile();
            box.button(choice)->click();
        });
        child<QPushButton>(button)->click();
        return text.remove(u'&');
    }

    QString path; ///< Of the document's file, for a page that asks for it.
    View view = [this] {
        if constexpr (std::is_constructible_v<View, SettingsModel*, const SettingsSchema*>) {
            return View(&model, &schema);
        } else {
            return View(&model);
        }
    }();
};

/// A page whose content is a tree widget.
template <typename View>
struct TreePage : SettingsPage<View>
{
    using SettingsPage<View>::SettingsPage;

    QTreeWidgetItem* item(const QString& text) const
    {
        return tree.findItems(text, Qt::MatchExactly | Qt::MatchRecursive).value(0);
    }

    /// The rows, between "; ": a dot for each level, "[ ]", "[-]" or "[x]" for a box, the texts
    /// between bars, and "!" for what is disabled or greyed.
    QString rows() const
    {
        QStringList lines;
        for (QTreeWidgetItemIterator it(&tree); *it; ++it) {
            QString line;
            for (const QTreeWidgetItem* above = (*it)->parent(); above; above = above->parent()) {
                line += u'.';
            }
            if (const QVariant box = (*it)->data(0, Qt::CheckStateRole); box.isValid()) {
                line += u"[%1]"_s.arg(u" -x"_s.at(box.toInt()));
            }
            for (int column = 0; column < tree.columnCount(); ++column) {
                line += (*it)->text(column) + u'|';
            }
            while (line.endsWith(u'|')) {
                line.chop(1);
            }
            const bool grey = (*it)->isDisabled() || (*it)->data(0, Qt::ForegroundRole).isValid();
            lines << line + (grey ? u"!"_s : u""_s);
        }
        return lines.join(u"; "_s);
    }

    /// Opens the menu of the row of that text by a right click, calls `meanwhile`, and chooses
    /// `choice`. Gives what the menu offers, with "!" for what is disabled.
    QString menu(
        const QString& row, const QString& choice = {},
        const std::function<void()>& meanwhile = [] {})
    {
        QStringList texts;
        const DialogAnswerer<QMenu> answer([&](QMenu& menu) {
            for (QAction* action : menu.actions()) {
                texts << action->text() + (action->isEnabled() ? u""_s : u"!"_s);
                if (action->text() == choice) {
                    menu.setActiveAction(action);
                }
            }
            meanwhile();
            QTest::keyClick(&menu, Qt::Key_Return);
        });
        const QPoint pos = tree.visualItemRect(item(row)).center();
        QContextMenuEvent event(QContextMenuEvent::Mouse, pos, tree.viewport()->mapToGlobal(pos));
        QApplication::sendEvent(tree.viewport(), &event);
        return texts.join(u", "_s);
    }

    QTreeWidget& tree = *this->template child<QTreeWidget>("tree");
};

} // namespace kse
