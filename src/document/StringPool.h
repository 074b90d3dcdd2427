// SPDX-License-Identifier: MIT
#pragma once

#include <QString>
#include <QStringView>

#include <array>
#include <cstddef>
#include <cstring>

namespace kse {

/// Shares one string among equal keys, and among equal short values: a file repeats few of them
/// many times. It is a cache, not a set, so that it stays small whatever the file holds.
class StringPool
{
public:
    QString key(QStringView key) { return key.size() > longestKey ? key.toString() : string(key); }

    /// Shares values up to the length of "false". Longer ones seldom come twice.
    QString value(QStringView value)
    {
        return value.size() > longestValue ? value.toString() : string(value);
    }

private:
    static constexpr qsizetype longestKey = 32;
    static constexpr qsizetype longestValue = 5;
    static constexpr int slotBits = 11; ///< With more, the text would leave the processor's cache.

    QString string(QStringView text)
    {
        const quint64 hash = hashOf(text);
        const auto slot = static_cast<std::size_t>(hash >> (64 - slotBits));
        const auto mark = static_cast<quint16>(hash >> 16);
        if (m_marks[slot] != mark) {
            // A text is kept from the second time on, so that one that comes once displaces none.
            m_marks[slot] = mark;
            return text.toString();
        }
        QString& kept = m_kept[slot];
        if (kept != text) {
            kept = text.toString();
        }
        return kept;
    }

    static quint64 fourAt(QStringView text, qsizetype index)
    {
        quint64 four = 0;
        std::memcpy(&four, text.data() + index, sizeof four);
        return four;
    }

    /// Uses the first, middle and last characters, which are enough to tell most texts apart.
    static quint64 hashOf(QStringView text)
    {
        constexpr quint64 multiplier = 0x9E3779B97F4A7C15;
        const qsizetype size = text.size();
        auto hash = static_cast<quint64>(size);
        if (size < 4) {
            for (const QChar c : text) {
                hash = (hash << 16) | c.unicode();
            }
        } else {
            hash = (hash ^ fourAt(text, 0)) * multiplier;
            hash = (hash ^ (hash >> 32) ^ fourAt(text, size - 4)) * multiplier;
            hash ^= (hash >> 32) ^ fourAt(text, size / 2 - 2);
        }
        return hash * multiplier;
    }

    std::array<quint16, std::size_t(1) << slotBits> m_marks{}; ///< Of the last text in each slot.
    std::array<QString, std::size_t(1) << slotBits> m_kept;
};

} // namespace kse
