// SPDX-License-Identifier: MIT
#pragma once

namespace kse {

/// The part of the sample that is written by hand, in pieces. A line "[path]" names a group;
/// each line after it is a value of that group: name, type code and text, parted by one blank.
/// The text runs to the end of the line.
extern const char* const sampleTable[];
extern const int sampleTableSize;

/// What the second instance has otherwise, in the same form.
extern const char* const secondInstanceTable;

} // namespace kse
