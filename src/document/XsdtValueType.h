// SPDX-License-Identifier: MIT
#pragma once

#include <QChar>
#include <QString>

namespace kse {

/// The codes of the `t` attribute of a value: one case-sensitive character each. A file may hold
/// others. Those are kept as found and can't be edited, and neither can `Time` and `Block`.
namespace XsdtValueType {
inline constexpr QChar Boolean(u'b');
inline constexpr QChar Integer(u'i');  ///< signed 32-bit decimal
inline constexpr QChar Unsigned(u'u'); ///< unsigned 32-bit decimal
inline constexpr QChar Real(u'F');     ///< double precision
inline constexpr QChar RealSingle(u'f');
inline constexpr QChar String(u's');
inline constexpr QChar Time(u't');
inline constexpr QChar Block(u'B'); ///< encoded data
} // namespace XsdtValueType

/// Whether values of type `code` can be edited: the six types from `Boolean` to `String`.
[[nodiscard]] bool isEditableCode(QChar code);

/// The type's name for the user; "Unknown (%1)" for a code of no known type.
[[nodiscard]] QString typeName(QChar code);

/// Checks text that a user entered for a value of type `code`. On success `normalised` gets the
/// text to store. On failure it is left as it was, and `error`, unless null, gets the reason.
/// Numbers are read as in C, whatever the user's locale, and without group separators.
[[nodiscard]] bool validateValue(QChar code, const QString& input, QString& normalised,
                                 QString* error = nullptr);

} // namespace kse
