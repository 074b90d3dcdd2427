// SPDX-License-Identifier: MIT
#include "app/BannerRow.h"

#include "widgets/Announcement.h"
#include "widgets/Named.h"

#include <QLabel>
#include <QPushButton>
#include <QTextDocumentFragment>

using namespace Qt::StringLiterals;

namespace kse {

BannerRow::BannerRow()
{
    m_bannerLabel = named(u"bannerLabel"_s, new QLabel);
    m_bannerLabel->setWordWrap(true);
    m_bannerLabel->setMargin(8);
    m_bannerLabel->setAutoFillBackground(true);
    m_bannerReload = named(u"bannerReload"_s, new QPushButton(tr("Reload")));
    connect(m_bannerReload, &QPushButton::clicked, this, &BannerRow::reloadRequested);
    addWidget(m_bannerLabel, 1);
    addWidget(m_bannerReload);
    m_height = new QSpacerItem(0, 0);
    addItem(m_height);
}

void BannerRow::showText(const QString& text, const QColor& colour, bool offersReload)
{
    m_bannerReload->setVisible(offersReload);
    QPalette palette = m_bannerLabel->palette();
    // A number that changes within the text isn't announced.
    const bool isNews = m_bannerLabel->isHidden() || palette.color(QPalette::Window) != colour;
    m_bannerLabel->setVisible(!text.isEmpty());
    if (text.isEmpty()) {
        return;
    }
    if (isNews) {
        announce(m_bannerLabel, QTextDocumentFragment::fromHtml(text).toPlainText());
    }
    m_bannerLabel->setText(text);
    palette.setBrush(QPalette::Window, colour);
    m_bannerLabel->setPalette(palette);
}

void BannerRow::keepHeight()
{
    const bool isHidden = m_bannerLabel->isHidden();
    const int height = isHidden ? 0 : m_bannerLabel->heightForWidth(m_bannerLabel->width());
    if (height != m_height->minimumSize().height()) {
        m_height->changeSize(0, height);
        invalidate();
    }
}

} // namespace kse
