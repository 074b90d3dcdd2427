// SPDX-License-Identifier: MIT
#pragma once

#include <cstdint>
#include <string>
#include <vector>

namespace kse {

/// One process of this computer under one of its names. Free of Qt, so that every platform's
/// source file compiles on its own.
struct ProcessEntry
{
    std::uint64_t id = 0;
    std::string executableName; ///< File name without folder, UTF-8.
};

/// Every process that runs now; one that has ended but is not reaped yet is left out. A process
/// that the system knows under two names stands there twice. Empty if the system can't tell.
[[nodiscard]] std::vector<ProcessEntry> listProcesses();

} // namespace kse
