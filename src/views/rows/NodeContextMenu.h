// SPDX-License-Identifier: MIT
#pragma once

#include <functional>

class QPoint;
class QWidget;

namespace kse {

class SettingsModel;
struct XsdtNode;

/// What the menu of a row asks of the page that shows it. An entry without a function does
/// nothing; without `reveal` the menu lacks that entry.
struct NodeMenuCallbacks
{
    std::function<void(XsdtNode*)> deleteNode; ///< Asks the user where that is called for.
    std::function<void(XsdtNode*)> undoDeletion;
    std::function<void(XsdtNode*)> reveal; ///< Shows the node in the tree of all settings.
};

/// Runs the context menu that all rows of settings share, for `node`, and does what is chosen.
/// Does nothing if the model got another document meanwhile, since `node` is gone then.
void showNodeContextMenu(QWidget* parent, SettingsModel* model, XsdtNode* node,
                         const QPoint& globalPos, bool readOnly,
                         const NodeMenuCallbacks& callbacks);

} // namespace kse
