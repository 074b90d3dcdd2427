// SPDX-License-Identifier: MIT
#pragma once

#include <QJsonObject>
#include <QString>
#include <QStringList>

class QByteArray;
class QJsonValue;

namespace kse {

/// Parses the bytes of the built-in table `name` into `object`. Blank bytes are an empty object:
/// a table that can't be opened is only thin. On failure `object` is left as it was and `error`,
/// unless null, gets the name and the parser's message.
[[nodiscard]] bool parseJsonObject(const QByteArray& json, const QString& name, QJsonObject& object,
                                   QString* error = nullptr);

/// The elements of the array `value`; an element that is no string counts as an empty one.
[[nodiscard]] QStringList toStringList(const QJsonValue& value);

} // namespace kse
