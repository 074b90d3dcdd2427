// SPDX-License-Identifier: MIT
#include "widgets/WrappedLabel.h"

#include <QEvent>

#include <algorithm>

namespace kse {

WrappedLabel::WrappedLabel(const QString& text, Qt::TextFormat format, const QString& objectName,
                           QWidget* parent)
    : QLabel(parent)
{
    setObjectName(objectName);
    setTextFormat(format);
    setText(text);
    setWordWrap(true);
    setMinimumWidth(1); // one long word must not widen the page
}

int WrappedLabel::heightForWidth(int width) const
{
    if (text() != m_text || font() != m_font) {
        m_heights = {};
        m_text = text();
        m_font = font();
    }
    const auto isKnown = [width](const Height& height) {
        return height.width == width;
    };
    Height* const first = m_heights.data();
    Height* const end = first + m_heights.size();
    Height* known = std::find_if(first, end, isKnown);
    if (known == end) {
        std::rotate(first, end - 1, end);
        known = first;
        *known = {width, QLabel::heightForWidth(width)};
    }
    return known->height;
}

void WrappedLabel::changeEvent(QEvent* event)
{
    QLabel::changeEvent(event);
    m_heights = {}; // another style has other margins
    if (event->type() == QEvent::FontChange) {
        setIndent(indent()); // else an empty label keeps the size that it had with the old font
    }
}

} // namespace kse
