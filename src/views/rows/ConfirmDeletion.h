// SPDX-License-Identifier: MIT
#pragma once

#include <QStringList>

class QString;
class QWidget;

namespace kse {

class SettingsModel;

/// Warns in a box of `parent`'s window before entries are queued for deletion; `names`, unless
/// empty, are listed as its details. True if the user says yes and `model` still shows the same
/// document. On false, nodes held across this call may be gone.
[[nodiscard]] bool confirmDeletion(QWidget* parent, const SettingsModel& model,
                                   const QString& title, const QString& text,
                                   const QStringList& names = {});

} // namespace kse
