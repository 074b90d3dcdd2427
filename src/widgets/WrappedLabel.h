// SPDX-License-Identifier: MIT
#pragma once

#include <QFont>
#include <QLabel>

namespace kse {

/// A label with word wrap that never widens its parent. It caches its height: layouts ask for it
/// ten times and more before a row is shown, and Qt lays out the text each time.
class WrappedLabel : public QLabel
{
public:
    WrappedLabel(const QString& text, Qt::TextFormat format, const QString& objectName,
                 QWidget* parent = nullptr);

    int heightForWidth(int width) const override;

protected:
    void changeEvent(QEvent* event) override;

private:
    // The cached height, and what it was computed for.
    mutable int m_height = -1;
    mutable int m_width = -1;
    mutable QString m_text;
    mutable QFont m_font;
};

} // namespace kse
