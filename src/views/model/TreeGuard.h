// SPDX-License-Identifier: MIT
#pragma once

#include "views/model/SettingsModel.h"

namespace kse {

/// Tells whether the model has got another tree since the guard was made. The poll runs on under
/// menus and dialogs and may replace the document there, which destroys every node. So whoever
/// holds a node across an `exec` makes a guard before it, and asks the guard before touching the
/// node again.
class TreeGuard
{
public:
    /// `model` must outlive the guard.
    explicit TreeGuard(const SettingsModel* model)
        : m_model(model)
        , m_generation(model->generation())
    {
    }

    /// Whether the nodes of that time are still alive.
    [[nodiscard]] bool isSameTree() const { return m_model->generation() == m_generation; }

private:
    const SettingsModel* m_model = nullptr;
    quint64 m_generation = 0;
};

} // namespace kse
