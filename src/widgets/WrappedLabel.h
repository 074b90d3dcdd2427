// SPDX-License-Identifier: MIT
#pragma once

#include <QFont>
#include <QLabel>

#include <array>

namespace kse {

/// A label with word wrap that never widens its parent. It caches its heights: layouts ask for
/// those at two or three widths ten times and more before a row is shown, and Qt lays out the text
/// each time.
class WrappedLabel : public QLabel
{
public:
    WrappedLabel(const QString& text, Qt::TextFormat format, const QString& objectName,
                 QWidget* parent = nullptr);

    int heightForWidth(int width) const override;

protected:
    void changeEvent(QEvent* event) override;

private:
    struct Height
    {
        int width = -1;
        int height = 0;
    };

    // The heights computed last, latest first, and what they were computed for.
    mutable std::array<Height, 4> m_heights;
    mutable QString m_text;
    mutable QFont m_font;
};

} // namespace kse
