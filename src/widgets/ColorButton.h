// SPDX-License-Identifier: MIT
#pragma once

#include <QPushButton>

namespace kse {

/// A button that shows a colour with its transparency and lets the user pick another.
class ColorButton : public QPushButton
{
    Q_OBJECT

public:
    explicit ColorButton(QWidget* parent = nullptr);

    void setArgb(quint32 argb);

protected:
    bool event(QEvent* event) override;

signals:
    /// The user chose a colour; the button still shows the old one.
    void colorPicked(quint32 argb);

private slots:
    void onClicked();

private:
    void drawSwatch();

    quint32 m_argb = 0;
};

} // namespace kse
