// SPDX-License-Identifier: MIT
#pragma once

class QComboBox;
class QString;
class QWidget;

namespace kse {

// Names and descriptions that screen readers speak.

/// Sets the name of `widget`, unless it is so already: Qt 6.4 reports every call as a change.
void setSpokenName(QWidget* widget, const QString& name);

/// The same for its description.
void setSpokenDescription(QWidget* widget, const QString& description);

/// Names `box`, which has a parent. On Linux, Qt 6.4 gives the current item as the name otherwise.
void setSpokenLabel(QComboBox* box, const QString& name);

} // namespace kse
