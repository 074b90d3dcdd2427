// SPDX-License-Identifier: MIT
#pragma once

#include <QString>

namespace kse {

/// Ends a step that failed: puts `message` into `error`, unless that is null, and returns false.
inline bool fail(QString* error, const QString& message)
{
    if (error) {
        *error = message;
    }
    return false;
}

} // namespace kse
