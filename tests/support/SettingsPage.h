// SPDX-License-Identifier: MIT
#pragma once

#include "schema/DeletePolicy.h"
#include "schema/SettingsSchema.h"
#include "support/DocumentText.h"
#include "support/TextRows.h"
#include "views/model/SettingsModel.h"

#include <QLabel>
#include <QLayout>

#include <type_traits>
#include <utility>

namespace kse {

/// A page of class `View` over a document, with the built-in tables and not shown yet.
template <typename View>
struct SettingsPage
{
    explicit SettingsPage(const QByteArray& content)
        : SettingsPage(documentFrom(content))
    {
    }
    explicit SettingsPage(std::unique_ptr<XsdtDocument> shown)
        : document(std::move(shown))
    {
        const QByteArray overlay = builtInTable("overlay.json");
        if (!schema.load(builtInTable("globals.json"), overlay) || !policy.load(overlay)) {
            qFatal("the tables don't load");
        }
        model.setPolicy(&policy);
        model.setDocument(document.get());
        view.setDocument(document.get());
        view.resize(900, 600);
    }

    XsdtNode* node(const QString& path) const { return document->root.findByPath(path); }

    template <typename Widget>
    Widget* child(const char* name) const
    {
        return view.template findChild<Widget*>(QLatin1String(name));
    }

    QString summary() const { return child<QLabel>("summaryLabel")->text(); }

    /// What stands in the column in the container called `name`.
    template <typename Widget>
    QList<Widget*> column(const char* name) const
    {
        QList<Widget*> widgets;
        const QLayout* layout = child<QWidget>(name)->layout();
        for (int i = 0; i < layout->count() - 2; ++i) { // a button and a stretch come last
            widgets.append(qobject_cast<Widget*>(layout->itemAt(i)->widget()));
        }
        return widgets;
    }

    std::unique_ptr<XsdtDocument> document;
    SettingsSchema schema;
    DeletePolicy policy;
    SettingsModel model;
    View view = create(model, schema);

private:
    static View create(SettingsModel& model, [[maybe_unused]] const SettingsSchema& schema)
    {
        if constexpr (std::is_constructible_v<View, SettingsModel*, const SettingsSchema*>) {
            return View(&model, &schema);
        } else {
            return View(&model);
        }
    }
};

/// `count` strings, "Key0" and up, each `copies` times.
inline QByteArray manyValues(int count, int copies = 1)
{
    QByteArray content;
    for (int i = 0; i < count; ++i) {
        const QByteArray value = "<v k=\"Key" + QByteArray::number(i) + "\" t=\"s\" v=\"\"/>";
        content += value.repeated(copies);
    }
    return content;
}

} // namespace kse
