// SPDX-License-Identifier: MIT
#pragma once

#include <QHBoxLayout>

class QLabel;
class QPushButton;

namespace kse {

/// The row that warns when PixInsight runs or the file has changed on disk. It is a layout, because
/// a widget around hidden parts would leave a gap.
class BannerRow : public QHBoxLayout
{
    Q_OBJECT

public:
    BannerRow();

    /// Shows `text` on `colour`, and "Reload" if `offersReload`. An empty text hides the row.
    void showText(const QString& text, const QColor& colour, bool offersReload);

    /// Makes the height of the text, as it wraps at the present width, the least.
    void keepHeight();

signals:
    void reloadRequested();

private:
    QLabel* m_bannerLabel = nullptr;
    QPushButton* m_bannerReload = nullptr;
    QSpacerItem* m_height = nullptr; ///< Owned by the layout.
};

} // namespace kse
