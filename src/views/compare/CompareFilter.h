// SPDX-License-Identifier: MIT
#pragma once

#include "views/compare/CompareEngine.h"

#include <array>
#include <vector>

namespace kse {

/// Which entries of a comparison are listed.
struct CompareFilter
{
    std::array<bool, 3> showsState; ///< By `CompareState`.
    bool hidesNoise = false;
    QString text; ///< Part of the path or of a value, ignoring case; empty lists all.
};

/// What a filter leaves of a comparison.
struct CompareListing
{
    QList<int> shown;               ///< Indices of the entries, in their order.
    std::array<int, 3> counts = {}; ///< By `CompareState`, of all entries but the hidden noise.
    int hidden = 0;                 ///< How many entries are hidden as noise.
};

/// `isNoise` has one element for each of `entries`.
[[nodiscard]] CompareListing filtered(const QList<CompareEntry>& entries,
                                      const std::vector<bool>& isNoise,
                                      const CompareFilter& filter);

} // namespace kse
