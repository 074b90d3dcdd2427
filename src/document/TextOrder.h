// SPDX-License-Identifier: MIT
#pragma once

#include <QList>
#include <QStringView>

namespace kse {

/// The places of `texts` in the order of `QString::compare` without case; equal texts keep theirs.
/// Made for paths: what neighbours share at their start is compared only once.
[[nodiscard]] QList<qsizetype> orderIgnoringCase(const QList<QStringView>& texts);

} // namespace kse
