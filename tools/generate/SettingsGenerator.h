// SPDX-License-Identifier: MIT
#pragma once

#include <QByteArray>

namespace kse {

/// The shape and size of a generated file.
struct GenerateOptions
{
    enum class Shape {
        Sample, ///< A user's file after some years; `count` is the instance, 1 or 2.
        Values, ///< `count` values in the mix of types and sizes of a real file.
        Wide,   ///< One group, "Wide", of `count` values.
        Deep,   ///< `count` groups, each in the one before it, and a value in the innermost.
    };

    Shape shape = Shape::Sample;
    qsizetype count = 1;
};

/// A settings file in PixInsight's layout and in UTF-8. All values are made up. Equal options give
/// equal bytes on every computer.
[[nodiscard]] QByteArray generateSettings(const GenerateOptions& options);

} // namespace kse
