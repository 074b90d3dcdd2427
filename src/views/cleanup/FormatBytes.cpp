// SPDX-License-Identifier: MIT
#include "views/cleanup/FormatBytes.h"

using namespace Qt::StringLiterals;

namespace kse {

QString formatBytes(qint64 bytes)
{
    if (bytes < 1024) {
        return u"%1 B"_s.arg(bytes);
    }
    return u"%1 KiB"_s.arg(static_cast<double>(bytes) / 1024, 0, 'f', 1);
}

} // namespace kse
