// SPDX-License-Identifier: MIT
#pragma once

#include <QString>

namespace kse {

/// Sets the name of `object`, by which tests, style sheets and accessibility tools find it, and
/// returns it.
template <typename Object>
Object* named(const QString& name, Object* object)
{
    object->setObjectName(name);
    return object;
}

} // namespace kse
