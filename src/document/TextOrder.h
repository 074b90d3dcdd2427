// SPDX-License-Identifier: MIT
#pragma once

#include <QList>
#include <QStringView>

namespace kse {

/// The indices of `texts`, sorted as `QString::compare` without case would sort them. The sort is
/// stable. It is made for paths: the start that neighbours share is compared only once.
[[nodiscard]] QList<qsizetype> orderIgnoringCase(const QList<QStringView>& texts);

} // namespace kse
