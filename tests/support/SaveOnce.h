// SPDX-License-Identifier: MIT
#pragma once

#include "session/SettingsStore.h"

namespace kse {

/// The edit that `save-once` saves. False if the file isn't one of those made for it.
inline bool changeOnce(SettingsStore& store)
{
    XsdtNode* const node = store.document.root.findByPath(QStringLiteral("A/x"));
    if (node) {
        node->value = QStringLiteral("2");
    }
    return node;
}

} // namespace kse
