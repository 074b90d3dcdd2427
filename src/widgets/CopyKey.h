// SPDX-License-Identifier: MIT
#pragma once

#include <QVariant>

#include <functional>

class QAbstractItemView;
class QModelIndex;

namespace kse {

/// Makes the Copy shortcut in `view` copy `wholeText` of the current cell. Qt's views copy the text
/// that the cell shows, which may be shortened. An invalid text copies nothing.
void copyWholeTexts(QAbstractItemView* view,
                    std::function<QVariant(const QModelIndex& index)> wholeText);

} // namespace kse
