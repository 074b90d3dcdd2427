// SPDX-License-Identifier: MIT
#pragma once

#include <QVariant>

#include <functional>

class QAbstractItemView;
class QModelIndex;

namespace kse {

/// Has the keys for Copy, pressed in `view`, copy `wholeText` of the current cell, where a view of
/// Qt copies what the cell shows, which may be shortened. An invalid text copies nothing.
void copyWholeTexts(QAbstractItemView* view,
                    std::function<QVariant(const QModelIndex& index)> wholeText);

} // namespace kse
