// SPDX-License-Identifier: MIT
#pragma once

#include <functional>

class QPoint;
class QWidget;

namespace kse {

class SettingsModel;
struct XsdtNode;

/// What the page does for the menu of a row. An entry without a function does nothing; without
/// `reveal` there is no such entry.
struct NodeMenuCallbacks
{
    std::function<void(XsdtNode*)> deleteNode; ///< Also asks the user, if needed.
    std::function<void(XsdtNode*)> undoDeletion;
    std::function<void(XsdtNode*)> reveal; ///< Shows the node in the tree of all settings.
};

/// Runs the context menu of a row that shows `node`, and does what the user chooses. Does nothing
/// if the model got another document meanwhile, since `node` is gone then.
void showNodeContextMenu(QWidget* parent, SettingsModel* model, XsdtNode* node,
                         const QPoint& globalPos, bool readOnly,
                         const NodeMenuCallbacks& callbacks);

} // namespace kse
