// SPDX-License-Identifier: MIT
#pragma once

#include <QString>

namespace kse {

/// A size as text: "1023 B", then "1.0 KiB" with one decimal; there is no larger unit.
[[nodiscard]] QString formatBytes(qint64 bytes);

} // namespace kse
