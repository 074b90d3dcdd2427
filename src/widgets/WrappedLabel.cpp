// SPDX-License-Identifier: MIT
#include "widgets/WrappedLabel.h"

#include <QEvent>

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
    if (m_height < 0 || width != m_width || text() != m_text || font() != m_font) {
        m_height = QLabel::heightForWidth(width);
        m_width = width;
        m_text = text();
        m_font = font();
    }
    return m_height;
}

void WrappedLabel::changeEvent(QEvent* event)
{
    QLabel::changeEvent(event);
    m_height = -1; // another style has other margins
    if (event->type() == QEvent::FontChange) {
        setIndent(indent()); // else an empty label keeps the size that it had with the old font
    }
}

} // namespace kse
