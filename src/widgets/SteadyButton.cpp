// SPDX-License-Identifier: MIT
#include "widgets/SteadyButton.h"

#include <QStyle>
#include <QStyleOptionButton>

namespace kse {

SteadyButton::SteadyButton(const QStringList& texts, QWidget* parent)
    : QPushButton(parent)
    , m_texts(texts)
{
}

QSize SteadyButton::sizeHint() const
{
    QSize size = QPushButton::sizeHint();
    QStyleOptionButton option;
    initStyleOption(&option);
    for (const QString& text : m_texts) {
        option.text = text;
        const QSize contents = fontMetrics().size(Qt::TextShowMnemonic, text);
        size = size.expandedTo(
            style()->sizeFromContents(QStyle::CT_PushButton, &option, contents, this));
    }
    return size;
}

} // namespace kse
