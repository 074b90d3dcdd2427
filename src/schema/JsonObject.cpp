// SPDX-License-Identifier: MIT
#include "schema/JsonObject.h"

#include "document/Fail.h"

#include <QByteArray>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonParseError>
#include <QJsonValue>

using namespace Qt::StringLiterals;

namespace kse {

bool parseJsonObject(const QByteArray& json, const QString& name, QJsonObject& object,
                     QString* error)
{
    const QByteArray trimmed = json.trimmed();
    if (trimmed.isEmpty()) {
        object = {};
        return true;
    }
    QJsonParseError fault;
    const QJsonDocument document = QJsonDocument::fromJson(trimmed, &fault);
    if (!document.isObject()) {
        return fail(error, u"%1: %2"_s.arg(name, fault.errorString()));
    }
    object = document.object();
    return true;
}

QStringList toStringList(const QJsonValue& value)
{
    const QJsonArray array = value.toArray();
    QStringList list;
    list.reserve(array.size());
    for (const QJsonValue& element : array) {
        list.append(element.toString());
    }
    return list;
}

} // namespace kse
