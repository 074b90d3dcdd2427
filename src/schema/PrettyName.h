// SPDX-License-Identifier: MIT
#pragma once

#include <QString>

namespace kse {

/// A label made from a camel-case key: "MaxModuleThreadPriority" gives "Max module thread
/// priority". Acronyms stay as they are.
[[nodiscard]] QString prettyName(const QString& key);

} // namespace kse
