// SPDX-License-Identifier: MIT
#pragma once

namespace kse {

/// The part of the sample that is written by hand, in pieces. A line "[path]" starts a group. Each
/// line after it is a value of that group: name, type code and text, separated by one space. The
/// text ends with the line.
extern const char* const sampleTable[];
extern const int sampleTableSize;

/// The values that differ in the second instance, in the same form.
extern const char* const secondInstanceTable;

} // namespace kse
