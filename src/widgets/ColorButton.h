// SPDX-License-Identifier: MIT
#pragma once

#include <QPushButton>

namespace kse {

/// Shows a colour, with its transparency, and has the user pick another.
class ColorButton : public QPushButton
{
    Q_OBJECT

public:
    explicit ColorButton(QWidget* parent = nullptr);

    void setArgb(quint32 argb);
    quint32 argb() const { return m_argb; }

signals:
    /// The user chose a colour; the button still shows the old one.
    void colorPicked(quint32 argb);

private:
    void pickColor();

    quint32 m_argb = 0;
};

} // namespace kse
