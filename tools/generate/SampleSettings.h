// SPDX-License-Identifier: MIT
#pragma once

#include <QByteArray>

namespace kse {

class Random;

/// The settings of a fictitious user after some years: about 3,000 values, some with problems that
/// the health check finds. `instance` is 1 or 2; the two differ in a few hundred values.
[[nodiscard]] QByteArray sampleSettings(int instance);

/// A time in `year`, in ISO 8601.
[[nodiscard]] QByteArray sampleTime(Random& random, int year);

/// Random bytes, base64 encoded. `size` is the number of bytes before encoding.
[[nodiscard]] QByteArray sampleBlock(Random& random, int size);

} // namespace kse
