// SPDX-License-Identifier: MIT
#pragma once

#include <QtGlobal>

namespace kse {

/// A small random number generator (SplitMix64). The standard library's distributions differ from
/// one compiler to the next; this gives the same sequence everywhere.
/// Call it once in an expression: C++ doesn't define the order in which arguments are evaluated.
class Random
{
public:
    explicit Random(quint64 seed)
        : m_state(seed)
    {
    }

    /// A number from 0 to `bound` - 1. `bound` is at least 1.
    quint32 below(quint32 bound)
    {
        m_state += 0x9E3779B97F4A7C15U;
        quint64 z = m_state;
        z = (z ^ (z >> 30U)) * 0xBF58476D1CE4E5B9U;
        z = (z ^ (z >> 27U)) * 0x94D049BB133111EBU;
        return static_cast<quint32>((z ^ (z >> 31U)) >> 32U) % bound;
    }

private:
    quint64 m_state;
};

} // namespace kse
