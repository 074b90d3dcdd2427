// SPDX-License-Identifier: MIT
#pragma once

#include <QByteArray>

namespace kse {

/// What `generateSettings` makes.
struct GenerateOptions
{
    enum class Shape {
        Sample, ///< What a user's file of some years holds; `count` is the instance, 1 or 2.
        Values, ///< `count` values in the mix of types and sizes of a real file.
        Wide,   ///< One group, "Wide", of `count` values.
        Deep,   ///< `count` groups, each in the one before it, and a value in the innermost.
    };

    Shape shape = Shape::Sample;
    qsizetype count = 1;
};

/// A settings file as PixInsight lays it out, in UTF-8. Made up from the first to the last value.
/// Equal options give equal bytes, on every computer.
[[nodiscard]] QByteArray generateSettings(const GenerateOptions& options);

} // namespace kse
