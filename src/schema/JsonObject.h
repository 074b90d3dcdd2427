// SPDX-License-Identifier: MIT
#pragma once

#include <QJsonObject>
#include <QString>
#include <QStringList>

class QByteArray;
class QJsonValue;

namespace kse {

/// Parses the bytes of the built-in table `name` into `object`. Blank bytes give an empty object,
/// so that a table that can't be opened only lacks entries. On failure `object` is left as it was
/// and `error`, unless null, gets the name and the parser's message.
[[nodiscard]] bool parseJsonObject(const QByteArray& json, const QString& name, QJsonObject& object,
                                   QString* error = nullptr);

/// The elements of the array `value`. An element that isn't a string gives an empty string.
[[nodiscard]] QStringList toStringList(const QJsonValue& value);

} // namespace kse
