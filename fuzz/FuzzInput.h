// SPDX-License-Identifier: MIT
#pragma once

#include <QByteArray>

#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <utility>

namespace kse {

/// Ends the process, which the fuzzer reports with the stack, unless what is claimed holds.
inline void require(bool holds, const char* claim)
{
    if (!holds) {
        std::fprintf(stderr, "Does not hold: %s\n", claim);
        std::abort();
    }
}

/// What stands before and behind the first byte FF of an input, which no text in UTF-8 holds. The
/// bytes are copied, so that a read past their end shows.
inline std::pair<QByteArray, QByteArray> parts(const std::uint8_t* data, std::size_t size)
{
    const QByteArray all(reinterpret_cast<const char*>(data), static_cast<qsizetype>(size));
    const qsizetype end = all.indexOf('\xFF');
    return {all.mid(0, end), end < 0 ? QByteArray() : all.mid(end + 1)};
}

} // namespace kse
