// SPDX-License-Identifier: MIT
#include "app/ThemeStyle.h"

#include "widgets/PlainText.h"

#include <QApplication>
#include <QComboBox>
#include <QFocusFrame>
#include <QLineEdit>
#include <QPainter>
#include <QScreen>
#include <QSizeGrip>
#include <QSplitterHandle>
#include <QStyleHintReturnMask>
#include <QStyleOption>
#include <QToolButton>

#include <algorithm>

using namespace Qt::StringLiterals;

namespace kse {

namespace {

// Added to Fusion's, so that right-aligned numbers don't touch the text of the next column.
constexpr int cellMargin = 3;
constexpr int paneMargin = 6;   // between a tab's frame and its page
constexpr int rowMargin = 2;    // above and below the text of a row in a list
constexpr int textMargin = 2;   // beside the text of a line edit
constexpr int accentHeight = 2; // of the line on the current tab
constexpr int ringWidth = 1;    // of the frame around the widget with the keyboard focus
constexpr int fusionArrowWidth = 8;

/// The outline of tabs and their pane. Fusion's is darker than the window, so it can't be seen on a
/// dark one.
QColor outlineOf(const QStyleOption& option)
{
    QColor colour = option.palette.color(QPalette::WindowText);
    colour.setAlpha(70);
    return colour;
}

/// The height of a line edit in this style.
int lineEditHeight(const QFontMetrics& metrics)
{
    return std::max(metrics.height(), 14) + 8;
}

/// Outlines a check box or radio button. Fusion's own outline can't be seen on a dark background.
void drawIndicatorOutline(bool isRound, const QStyleOption& option, QPainter* painter)
{
    QColor outline = option.palette.color(QPalette::Text);
    outline.setAlpha(128);
    painter->save();
    painter->setPen(outline);
    painter->setBrush(Qt::NoBrush);
    const QRect frame = option.rect.adjusted(0, 0, -1, -1);
    if (isRound) {
        painter->setRenderHint(QPainter::Antialiasing);
        painter->drawEllipse(QRectF(frame).adjusted(0.5, 0.5, -0.5, -0.5));
    } else {
        painter->drawRect(frame);
    }
    painter->restore();
}

/// The width of an arrow. It grows with the text; Fusion's doesn't.
int arrowWidth(const QStyleOption& option)
{
    return std::max(fusionArrowWidth, option.fontMetrics.ascent() / 2);
}

/// Draws an arrow in the middle of `rect`. It points down, turned clockwise by `degrees`.
void drawArrow(int degrees, const QRect& rect, int width, const QColor& colour, QPainter* painter)
{
    const double half = width / 2.0;
    painter->save();
    painter->setRenderHint(QPainter::Antialiasing);
    painter->setPen(Qt::NoPen);
    painter->setBrush(colour);
    painter->translate(QRectF(rect).center());
    painter->rotate(degrees);
    painter->drawPolygon(QPolygonF({{-half, -half / 2}, {half, -half / 2}, {0, half / 2}}));
    painter->restore();
}

/// Draws the arrow of a group in a tree or of a section.
void drawArrow(int degrees, const QStyleOption& option, QPainter* painter)
{
    QColor colour = option.palette.color(QPalette::WindowText);
    colour.setAlpha(180);
    drawArrow(degrees, option.rect, arrowWidth(option), colour, painter);
}

/// Draws the arrow of a spin or combo box: as pale as Fusion's, but opaque, to cover it.
void drawBoxArrow(int degrees, const QRect& rect, bool isEnabled, const QStyleOption& option,
                  QPainter* painter)
{
    const auto group = isEnabled ? option.palette.currentColorGroup() : QPalette::Disabled;
    const QColor text = option.palette.color(group, QPalette::ButtonText);
    const QColor ground = option.palette.color(group, QPalette::Button);
    const auto mixed = [](int two, int one) {
        return (2 * two + one) / 3;
    };
    drawArrow(degrees, rect, arrowWidth(option),
              QColor(mixed(text.red(), ground.red()), mixed(text.green(), ground.green()),
                     mixed(text.blue(), ground.blue())),
              painter);
}

/// Draws a tab above its pane. The current tab is open to the pane; others end at its outline.
void drawTab(const QStyleOptionTab& tab, int paneOverlap, QPainter* painter)
{
    const bool isInFront = tab.state & QStyle::State_Selected;
    const bool isHovered = tab.state & QStyle::State_MouseOver && tab.state & QStyle::State_Enabled;
    const auto leftmost =
        tab.direction == Qt::RightToLeft ? QStyleOptionTab::End : QStyleOptionTab::Beginning;
    const bool isLeftmost = tab.position == leftmost || tab.position == QStyleOptionTab::OnlyOneTab;
    // Neighbours share a line.
    const QRect rect = tab.rect.adjusted(isLeftmost ? 0 : -1, isInFront ? 0 : accentHeight, 0,
                                         isInFront ? 0 : -paneOverlap);
    const QColor window = tab.palette.color(QPalette::Window);
    painter->fillRect(rect, isInFront   ? window
                            : isHovered ? tab.palette.color(QPalette::Midlight)
                                        : window.darker(108));
    painter->save();
    painter->setPen(outlineOf(tab));
    painter->drawLine(rect.topLeft(), rect.bottomLeft());
    painter->drawLine(rect.topRight(), rect.bottomRight());
    painter->drawLine(rect.left() + 1, rect.top(), rect.right() - 1, rect.top());
    painter->restore();
    if (isInFront) {
        painter->fillRect(rect.left(), rect.top(), rect.width(), accentHeight,
                          tab.palette.color(QPalette::Highlight));
    }
}

} // namespace

ThemeStyle::ThemeStyle()
    : QProxyStyle(u"Fusion"_s)
{
}

void ThemeStyle::polish(QWidget* widget)
{
    QProxyStyle::polish(widget);
    if (qobject_cast<QComboBox*>(widget)) {
        widget->installEventFilter(this);
    }
    // What Qt 6.4 leaves without a name for screen readers.
    if (qobject_cast<QSizeGrip*>(widget)) {
        widget->setAccessibleName(tr("Size of the window"));
    } else if (qobject_cast<QSplitterHandle*>(widget)) {
        widget->setAccessibleName(tr("Width of the parts"));
    } else if (qobject_cast<QToolButton*>(widget) &&
               qobject_cast<QLineEdit*>(widget->parentWidget())) {
        widget->setAccessibleName(tr("Clear"));
    }
}

bool ThemeStyle::eventFilter(QObject* object, QEvent* event)
{
    if (event->type() == QEvent::FontChange) {
        QEvent styleChange(QEvent::StyleChange); // the only event that clears the cached size
        QCoreApplication::sendEvent(object, &styleChange);
    }
    return QProxyStyle::eventFilter(object, event);
}

void ThemeStyle::drawPrimitive(PrimitiveElement element, const QStyleOption* option,
                               QPainter* painter, const QWidget* widget) const
{
    switch (element) {
    case PE_FrameTabWidget: // on the window's background, like its page
        painter->save();
        painter->setPen(outlineOf(*option));
        painter->drawRect(option->rect.adjusted(0, 0, -1, -1));
        painter->restore();
        break;
    case PE_FrameFocusRect:
        QProxyStyle::drawPrimitive(element, option, painter, widget);
        if (option->state & State_Item && option->state & State_Selected) { // Fusion's is too faint
            painter->save();
            painter->setPen(option->palette.color(QPalette::HighlightedText));
            painter->drawRect(option->rect.adjusted(1, 1, -2, -2));
            painter->restore();
        }
        break;
    case PE_IndicatorBranch:
        if (option->state & State_Children) {
            const int closed = option->direction == Qt::RightToLeft ? 90 : -90;
            drawArrow(option->state & State_Open ? 0 : closed, *option, painter);
        }
        break;
    case PE_IndicatorArrowLeft:
        drawArrow(90, *option, painter);
        break;
    case PE_IndicatorArrowDown:
    case PE_IndicatorArrowRight: {
        const auto* button = qobject_cast<const QToolButton*>(widget);
        const bool isMirrored = button && option->direction == Qt::RightToLeft &&
                                button->toolButtonStyle() == Qt::ToolButtonTextBesideIcon;
        QStyleOption arrow = *option;
        if (isMirrored) { // Qt leaves it to the left of the text
            arrow.rect = visualRect(option->direction, button->rect(), option->rect);
        }
        drawArrow(element == PE_IndicatorArrowDown ? 0 : isMirrored ? 90 : -90, arrow, painter);
        break;
    }
    case PE_IndicatorCheckBox:
    case PE_IndicatorRadioButton:
        QProxyStyle::drawPrimitive(element, option, painter, widget);
        drawIndicatorOutline(element == PE_IndicatorRadioButton, *option, painter);
        break;
    default:
        QProxyStyle::drawPrimitive(element, option, painter, widget);
    }
}

void ThemeStyle::drawControl(ControlElement element, const QStyleOption* option, QPainter* painter,
                             const QWidget* widget) const
{
    const auto* tab = qstyleoption_cast<const QStyleOptionTab*>(option);
    const auto* box = qstyleoption_cast<const QStyleOptionComboBox*>(option);
    const auto* cell = qstyleoption_cast<const QStyleOptionViewItem*>(option);
    const auto* entry = qstyleoption_cast<const QStyleOptionMenuItem*>(option);
    if (element == CE_FocusFrame) { // masked to a ring
        painter->fillRect(option->rect, option->palette.color(QPalette::Highlight));
    } else if (element == CE_TabBarTabShape && tab && tab->shape == QTabBar::RoundedNorth) {
        drawTab(*tab, proxy()->pixelMetric(PM_TabBarBaseOverlap, option, widget), painter);
    } else if (element == CE_ComboBoxLabel && box && !box->editable) { // Fusion doesn't elide
        const QRect field = proxy()->subControlRect(CC_ComboBox, box, SC_ComboBoxEditField, widget);
        QStyleOptionComboBox elided = *box;
        elided.currentText =
            box->fontMetrics.elidedText(box->currentText, Qt::ElideMiddle, field.width());
        QProxyStyle::drawControl(element, &elided, painter, widget);
    } else if (element == CE_ItemViewItem && cell && cell->direction == Qt::RightToLeft) {
        QStyleOptionViewItem readable = *cell;
        readable.text = inOwnDirection(cell->text);
        QProxyStyle::drawControl(element, &readable, painter, widget);
    } else if (element == CE_MenuItem && entry && entry->direction == Qt::RightToLeft) {
        QStringList parts = entry->text.split(u'\t'); // Fusion draws the shortcut by itself
        for (QString& part : parts) {
            part = inOwnDirection(part);
        }
        QStyleOptionMenuItem readable = *entry;
        readable.text = parts.join(u'\t');
        QProxyStyle::drawControl(element, &readable, painter, widget);
    } else {
        QProxyStyle::drawControl(element, option, painter, widget);
    }
}

void ThemeStyle::drawComplexControl(ComplexControl control, const QStyleOptionComplex* option,
                                    QPainter* painter, const QWidget* widget) const
{
    QProxyStyle::drawComplexControl(control, option, painter, widget);
    const auto rectOf = [&](SubControl part) {
        return proxy()->subControlRect(control, option, part, widget);
    };
    const bool isEnabled = option->state & State_Enabled;
    const auto* spin = qstyleoption_cast<const QStyleOptionSpinBox*>(option);
    if (control == CC_SpinBox && spin && spin->buttonSymbols == QAbstractSpinBox::UpDownArrows) {
        const auto steps = spin->stepEnabled;
        drawBoxArrow(180, rectOf(SC_SpinBoxUp),
                     isEnabled && steps & QAbstractSpinBox::StepUpEnabled, *option, painter);
        drawBoxArrow(0, rectOf(SC_SpinBoxDown),
                     isEnabled && steps & QAbstractSpinBox::StepDownEnabled, *option, painter);
    } else if (control == CC_ComboBox) {
        drawBoxArrow(0, rectOf(SC_ComboBoxArrow), isEnabled, *option, painter);
    }
}

void ThemeStyle::drawItemText(QPainter* painter, const QRect& rect, int flags,
                              const QPalette& palette, bool enabled, const QString& text,
                              QPalette::ColorRole role) const
{
    const auto visual = visualAlignment(painter->layoutDirection(), Qt::Alignment(QFlag(flags)));
    const int order = text.isRightToLeft() ? Qt::TextForceRightToLeft : Qt::TextForceLeftToRight;
    const int place = int(visual.toInt()) | order;
    QProxyStyle::drawItemText(painter, rect, place, palette, enabled, text, role);
}

QRect ThemeStyle::subControlRect(ComplexControl control, const QStyleOptionComplex* option,
                                 SubControl part, const QWidget* widget) const
{
    const QRect rect = QProxyStyle::subControlRect(control, option, part, widget);
    if (control != CC_SpinBox && control != CC_ComboBox) {
        return rect;
    }
    const bool isSpin = control == CC_SpinBox;
    const bool isField = part == (isSpin ? SC_SpinBoxEditField : SC_ComboBoxEditField);
    const bool isArrow =
        isSpin ? part == SC_SpinBoxUp || part == SC_SpinBoxDown : part == SC_ComboBoxArrow;
    const int extra = arrowWidth(*option) - fusionArrowWidth; // taken from the field
    const int left = isArrow ? -extra : 0;
    const int right = isField ? -extra : 0;
    return option->direction == Qt::RightToLeft ? rect.adjusted(-right, 0, -left, 0)
                                                : rect.adjusted(left, 0, right, 0);
}

int ThemeStyle::pixelMetric(PixelMetric metric, const QStyleOption* option,
                            const QWidget* widget) const
{
    const int pixels = QProxyStyle::pixelMetric(metric, option, widget);
    const bool isFocusFrame = option && qobject_cast<QFocusFrame*>(option->styleObject);
    switch (metric) {
    case PM_IndicatorWidth:
    case PM_IndicatorHeight:
    case PM_ExclusiveIndicatorWidth:
    case PM_ExclusiveIndicatorHeight:
        return std::max(pixels, QFontMetrics(QApplication::font()).ascent());
    case PM_FocusFrameHMargin: // also beside the text of every cell
        return isFocusFrame ? 0 : pixels + cellMargin;
    case PM_FocusFrameVMargin:
        return isFocusFrame ? 0 : pixels;
    case PM_HeaderMargin: // aligned with cells, which have one more pixel
        return pixels + cellMargin + 1;
    default:
        return pixels;
    }
}

QSize ThemeStyle::sizeFromContents(ContentsType type, const QStyleOption* option,
                                   const QSize& contents, const QWidget* widget) const
{
    QSize size = QProxyStyle::sizeFromContents(type, option, contents, widget);
    switch (type) {
    case CT_TabWidget:
        return size + QSize(2 * paneMargin, 2 * paneMargin);
    case CT_ItemViewItem:
        return size + QSize(0, 2 * rowMargin);
    case CT_ComboBox: // elides long text so that no dialog gets wider than its screen
        if (widget) {
            size.setWidth(
                std::min(size.width(), widget->screen()->availableSize().width() * 9 / 10));
        }
        [[fallthrough]];
    case CT_SpinBox:
        return size + QSize(arrowWidth(*option) - fusionArrowWidth, 0);
    case CT_PushButton:
        size.setWidth(std::max(size.width(), contents.width() + option->fontMetrics.height() +
                                                 proxy()->pixelMetric(PM_ButtonMargin, option)));
        [[fallthrough]];
    case CT_CheckBox:
    case CT_ToolButton: // as high as a line edit beside them
        return size.expandedTo({0, lineEditHeight(option->fontMetrics)});
    default:
        return size;
    }
}

int ThemeStyle::styleHint(StyleHint hint, const QStyleOption* option, const QWidget* widget,
                          QStyleHintReturn* returnData) const
{
    const int value = QProxyStyle::styleHint(hint, option, widget, returnData);
    switch (hint) {
    case SH_DialogButtonBox_ButtonsHaveIcons: // only this desktop has a setting for it
        return qEnvironmentVariable("XDG_CURRENT_DESKTOP").contains("KDE"_L1) ? value : 0;
    case SH_EtchDisabledText: // a second text, one pixel beside the first
        return 0;
    case SH_FocusFrame_AboveWidget:
        return 1;
    case SH_FocusFrame_Mask:
        if (auto* mask = qstyleoption_cast<QStyleHintReturnMask*>(returnData)) {
            mask->region = option->rect;
            mask->region -= option->rect.adjusted(ringWidth, ringWidth, -ringWidth, -ringWidth);
        }
        return 1;
    default:
        return value;
    }
}

QRect ThemeStyle::subElementRect(SubElement element, const QStyleOption* option,
                                 const QWidget* widget) const
{
    const QRect rect = QProxyStyle::subElementRect(element, option, widget);
    const auto* frame = qstyleoption_cast<const QStyleOptionFrame*>(option);
    if (element == SE_TabWidgetTabContents) {
        return rect.adjusted(paneMargin, paneMargin, -paneMargin, -paneMargin);
    }
    if (element == SE_LineEditContents && frame && frame->lineWidth > 0) { // as in a spin box
        return rect.adjusted(textMargin, 0, -textMargin, 0);
    }
    return rect;
}

} // namespace kse
