// SPDX-License-Identifier: MIT
#pragma once

class QString;
class QWidget;

namespace kse {

class SettingsSchema;
struct SettingsStore;

/// Saves the pages and dialogs of `window`, which shows the file of `store`, as PNG files in the
/// folder `dir`, which is made if necessary. The Preferences pages are filtered by `searchText`.
/// Drives the window from outside, and finds its widgets by type and object name. Changes settings
/// on the way and reverts them; never saves.
void saveScreenshots(QWidget& window, const SettingsStore& store, const SettingsSchema& schema,
                     const QString& dir, const QString& searchText);

} // namespace kse
