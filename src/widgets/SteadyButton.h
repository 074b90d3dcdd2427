// SPDX-License-Identifier: MIT
#pragma once

#include <QPushButton>
#include <QStringList>

namespace kse {

/// A button that is always at least as wide as the widest of the texts that it may show, so that
/// its neighbours don't move under the mouse.
class SteadyButton : public QPushButton
{
public:
    explicit SteadyButton(const QStringList& texts, QWidget* parent = nullptr);

    QSize sizeHint() const override;

private:
    const QStringList m_texts;
};

} // namespace kse
