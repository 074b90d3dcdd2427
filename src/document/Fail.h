// SPDX-License-Identifier: MIT
#pragma once

#include <QString>

namespace kse {

/// How a step ends that could not be done: `error`, unless null, gets `message`. Always false.
inline bool fail(QString* error, const QString& message)
{
    if (error) {
        *error = message;
    }
    return false;
}

} // namespace kse
