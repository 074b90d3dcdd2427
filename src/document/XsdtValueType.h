// SPDX-License-Identifier: MIT
#pragma once

#include <QChar>
#include <QString>

namespace kse {

/// The `t` attribute of a value: one case-sensitive character. A file may hold others; they are
/// kept as found and can't be edited, like `Time` and `Block`.
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

/// What users call the type; "Unknown (%1)" for a code of none.
[[nodiscard]] QString typeName(QChar code);

/// Checks text that a user entered for a value of type `code`. True with the text to store in
/// `normalised`; false with the reason in `error`, unless null, and `normalised` left as it was.
/// Numbers are read as in C, whatever the user's locale, and without group separators.
[[nodiscard]] bool validateValue(QChar code, const QString& input, QString& normalised,
                                 QString* error = nullptr);

} // namespace kse
