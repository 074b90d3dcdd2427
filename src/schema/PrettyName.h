// SPDX-License-Identifier: MIT
#pragma once

#include <QString>

namespace kse {

/// Makes a label from a camel-case key: "MaxModuleThreadPriority" gives "Max module thread
/// priority". Acronyms keep their upper case.
[[nodiscard]] QString prettyName(const QString& key);

} // namespace kse
