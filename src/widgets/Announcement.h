// SPDX-License-Identifier: MIT
#pragma once

#include <QAccessible>

#include <functional>

class QCheckBox;
class QLineEdit;
class QTreeView;
class QWidget;

namespace kse {

/// Has a screen reader say `text`, which `widget` shows where the focus isn't.
void announce(QWidget* widget, const QString& text);

/// Has it say what `text` gives, such as the number of hits, when the user who types in `edit`
/// pauses, or when one of `filters` is toggled. `text` lives as long as `edit`, and is called only
/// then and for a screen reader.
void announceHits(QLineEdit* edit, const std::function<QString()>& text,
                  const QList<QCheckBox*>& filters = {});

/// Reports that the states set in `changed` have changed in `widget`, or in its current row.
void reportChange(QWidget* widget, QAccessible::State changed);

/// Reports that `widget`, or its current row, was expanded or collapsed.
void reportExpanded(QWidget* widget, bool expanded);

/// Has `tree` report when its current row is expanded or collapsed, which Qt 6.4 doesn't.
void reportExpansion(QTreeView* tree);

} // namespace kse
