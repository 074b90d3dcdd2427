// SPDX-License-Identifier: MIT
#pragma once

#include <QFont>
#include <QLabel>

namespace kse {

/// A label that wraps its text at words and never widens what holds it. It remembers its height:
/// layouts ask for it ten times and more before a row is shown, and each time Qt lays out the text.
class WrappedLabel : public QLabel
{
public:
    WrappedLabel(const QString& text, Qt::TextFormat format, const QString& objectName,
                 QWidget* parent = nullptr);

    int heightForWidth(int width) const override;

protected:
    void changeEvent(QEvent* event) override;

private:
    // The height, and what it is the height of.
    mutable int m_height = -1;
    mutable int m_width = -1;
    mutable QString m_text;
    mutable QFont m_font;
};

} // namespace kse
