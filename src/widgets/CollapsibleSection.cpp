// SPDX-License-Identifier: MIT
#include "widgets/CollapsibleSection.h"

#include "widgets/Announcement.h"
#include "widgets/Named.h"
#include "widgets/PlainText.h"
#include "widgets/Spoken.h"

#include <QAccessibleWidget>
#include <QHelpEvent>
#include <QPainter>
#include <QToolButton>
#include <QToolTip>

#include <utility>

using namespace Qt::StringLiterals;

namespace kse {

/// The title, in red like a row that is queued for deletion if `isRed`.
class CollapsibleSection::TitleButton : public QToolButton
{
public:
    using QToolButton::QToolButton;

    bool isRed = false;

protected:
    void paintEvent(QPaintEvent* event) override
    {
        QToolButton::paintEvent(event);
        if (isRed) {
            QPainter(this).fillRect(rect(), QColor(230, 60, 60, 60));
        }
    }
};

/// The title as screen readers meet it: Qt 6.4 takes any button that stays pressed for a check box.
class CollapsibleSection::TitleInterface : public QAccessibleWidget
{
public:
    explicit TitleInterface(TitleButton* button)
        : QAccessibleWidget(button, QAccessible::Button)
        , m_button(button)
    {
    }

    QAccessible::State state() const override
    {
        QAccessible::State state = QAccessibleWidget::state();
        state.expandable = true;
        state.expanded = m_button->isChecked();
        state.collapsed = !m_button->isChecked();
        return state;
    }

    QStringList actionNames() const override { return {pressAction(), setFocusAction()}; }

    void doAction(const QString& name) override
    {
        name == pressAction() ? m_button->click() : QAccessibleWidget::doAction(name);
    }

    static QAccessibleInterface* create(const QString& /*className*/, QObject* object)
    {
        auto* button = dynamic_cast<TitleButton*>(object);
        return button ? new TitleInterface(button) : nullptr;
    }

private:
    TitleButton* m_button = nullptr;
};

CollapsibleSection::CollapsibleSection(const QString& title, bool expanded, QWidget* parent)
    : QWidget(parent)
    , m_toggleButton(named(u"toggleButton"_s, new TitleButton(this)))
    , m_body(named(u"body"_s, new QWidget(this)))
    , m_bodyLayout(new GradualLayout(m_toggleButton, m_body))
    , m_startExpanded(expanded)
{
    QAccessible::installFactory(TitleInterface::create);
    m_toggleButton->setCheckable(true);
    m_toggleButton->setAutoRaise(true);
    m_toggleButton->setToolButtonStyle(Qt::ToolButtonTextBesideIcon);
    m_toggleButton->setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Fixed);
    m_toggleButton->setMinimumWidth(1); // a long title must not widen the page
    QFont font;                         // sets only the weight; the size follows the application's
    font.setWeight(QFont::Bold);
    m_toggleButton->setFont(font);
    m_toggleButton->installEventFilter(this);
    setTitle(title);

    m_bodyLayout->setContentsMargins(18, 0, 0, 0);
    m_bodyLayout->setSpacing(0);
    auto* layout = new QVBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->setSpacing(0);
    layout->addWidget(m_toggleButton);
    layout->addWidget(m_body);

    connect(m_toggleButton, &QToolButton::toggled, this, &CollapsibleSection::setExpanded);
    setExpanded(expanded);
}

void CollapsibleSection::setTitle(const QString& title)
{
    m_title = title;
    updateCaption();
}

void CollapsibleSection::setChangeCount(qsizetype count)
{
    if (count != m_changeCount) {
        m_changeCount = count;
        updateCaption();
    }
}

void CollapsibleSection::updateCaption()
{
    const QString title = asCaption(abbreviated(m_title, shortLimit));
    m_toggleButton->setText(
        m_changeCount > 0 ? tr("%1   ● %2").arg(title, QString::number(m_changeCount)) : title);
    setSpokenName(m_toggleButton, m_toggleButton->text().replace("&&"_L1, "&"_L1));
}

void CollapsibleSection::setDeletion(Deletion deletion)
{
    if (deletion == m_deletion) {
        return;
    }
    m_deletion = deletion;
    QFont font;
    font.setWeight(QFont::Bold);
    font.setStrikeOut(deletion == Deletion::Whole);
    m_toggleButton->setFont(font);
    m_toggleButton->setAccessibleDescription(deletionText());
    m_toggleButton->isRed = deletion != Deletion::None;
    m_toggleButton->update();
}

int CollapsibleSection::titleHeight() const
{
    return m_toggleButton->sizeHint().height();
}

QString CollapsibleSection::deletionText() const
{
    if (m_deletion == Deletion::None) {
        return {};
    }
    return m_deletion == Deletion::Whole ? tr("All of it is queued for deletion.")
                                         : tr("Something in it is queued for deletion.");
}

void CollapsibleSection::setExpanded(bool expanded)
{
    m_toggleButton->setChecked(expanded);
    m_toggleButton->setArrowType(expanded ? Qt::DownArrow : Qt::RightArrow);
    if (expanded) {
        if (const auto build = std::exchange(m_lazyBuilder, nullptr)) {
            build();
        }
    }
    m_body->setVisible(expanded);
    reportExpanded(m_toggleButton, expanded);
}

void CollapsibleSection::setLazyBuilder(std::function<void()> builder)
{
    m_lazyBuilder = std::move(builder);
    if (m_toggleButton->isChecked()) {
        setExpanded(true);
    }
}

void CollapsibleSection::setContextMenuHandler(std::function<void(const QPoint&)> handler)
{
    m_toggleButton->setContextMenuPolicy(Qt::CustomContextMenu);
    connect(m_toggleButton, &QWidget::customContextMenuRequested, this,
            [this, handler = std::move(handler)](const QPoint& pos) {
                handler(m_toggleButton->mapToGlobal(pos));
            });
}

bool CollapsibleSection::eventFilter(QObject* watched, QEvent* event)
{
    if (event->type() != QEvent::ToolTip) {
        return QWidget::eventFilter(watched, event);
    }
    QStringList lines;
    if (m_toggleButton->sizeHint().width() > m_toggleButton->width()) { // the title is cut off
        lines.append(m_title);
    }
    if (m_deletion != Deletion::None) {
        lines.append(deletionText());
    }
    QToolTip::showText(static_cast<QHelpEvent*>(event)->globalPos(), asToolTip(lines.join(u'\n')),
                       m_toggleButton);
    return true;
}

} // namespace kse
