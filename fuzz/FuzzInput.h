// SPDX-License-Identifier: MIT
#pragma once

#include <QByteArrayList>

#include <cstdint>
#include <cstdio>
#include <cstdlib>

namespace kse {

/// Ends the process, which the fuzzer reports with the stack, unless what is claimed holds.
inline void require(bool holds, const char* claim)
{
    if (!holds) {
        std::fprintf(stderr, "Does not hold: %s\n", claim);
        std::abort();
    }
}

/// The first `count` parts of an input between bytes FF, which no text in UTF-8 holds. Parts that
/// are missing are empty, and the last one takes the rest. The bytes are copied, so that a read
/// past their end shows.
inline QByteArrayList parts(const std::uint8_t* data, std::size_t size, int count)
{
    QByteArray rest(reinterpret_cast<const char*>(data), static_cast<qsizetype>(size));
    QByteArrayList parts;
    while (parts.size() + 1 < count) {
        const qsizetype end = rest.indexOf('\xFF');
        parts.append(end < 0 ? rest : rest.left(end));
        rest = end < 0 ? QByteArray() : rest.mid(end + 1);
    }
    parts.append(rest);
    return parts;
}

} // namespace kse
