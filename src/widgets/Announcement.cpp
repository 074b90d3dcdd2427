// SPDX-License-Identifier: MIT
#include "widgets/Announcement.h"

#include "widgets/Named.h"

#include <QAccessibleWidget>
#include <QCheckBox>
#include <QLineEdit>
#include <QTimer>
#include <QTreeView>

using namespace Qt::StringLiterals;

namespace kse {

namespace {

constexpr int pause = 500; // milliseconds

#if QT_VERSION < QT_VERSION_CHECK(6, 8, 0)
/// Holds what is said. Screen readers speak an object of this role when it is shown.
class Notice : public QWidget
{
public:
    using QWidget::QWidget;
};

QAccessibleInterface* createNoticeInterface(const QString& /*className*/, QObject* object)
{
    auto* notice = dynamic_cast<Notice*>(object);
    return notice ? new QAccessibleWidget(notice, QAccessible::Notification) : nullptr;
}
#endif

} // namespace

void announce(QWidget* widget, const QString& text)
{
    if (!QAccessible::isActive()) {
        return;
    }
    QWidget* window = widget->window();
#if QT_VERSION >= QT_VERSION_CHECK(6, 8, 0)
    QAccessibleAnnouncementEvent event(window, text);
#else
    auto* notice = window->findChild<QWidget*>(u"notice"_s);
    if (!notice) {
        QAccessible::installFactory(createNoticeInterface); // ignored from the second time on
        notice = named(u"notice"_s, new Notice(window));
    }
    notice->setAccessibleName(text);
    QAccessibleEvent event(notice, QAccessible::ObjectShow);
#endif
    QAccessible::updateAccessibility(&event);
}

void announceHits(QLineEdit* edit, const std::function<QString()>& text,
                  const QList<QCheckBox*>& filters)
{
    auto* timer = new QTimer(edit);
    timer->setSingleShot(true);
    timer->setInterval(pause);
    timer->callOnTimeout([edit, text] {
        if (QAccessible::isActive()) {
            announce(edit, text());
        }
    });
    QObject::connect(edit, &QLineEdit::textChanged, timer, [timer](const QString& wanted) {
        wanted.trimmed().isEmpty() ? timer->stop() : timer->start();
    });
    for (const QCheckBox* filter : filters) {
        QObject::connect(filter, &QCheckBox::toggled, timer, qOverload<>(&QTimer::start));
    }
}

void reportChange(QWidget* widget, QAccessible::State changed)
{
    if (!QAccessible::isActive()) {
        return;
    }
    if (auto* object = QAccessible::queryAccessibleInterface(widget)->focusChild()) {
        QAccessibleStateChangeEvent event(object, changed);
        QAccessible::updateAccessibility(&event);
    }
}

void reportExpanded(QWidget* widget, bool expanded)
{
    if (!widget->hasFocus()) {
        return; // as when a filter opens many at once
    }
    QAccessible::State changed;
    changed.expanded = true;
    reportChange(widget, changed);
#if QT_VERSION < QT_VERSION_CHECK(6, 8, 0)
    // With Qt 6.4 that doesn't reach screen readers on Linux.
    announce(widget, expanded ? QWidget::tr("expanded") : QWidget::tr("collapsed"));
#else
    Q_UNUSED(expanded)
#endif
}

void reportExpansion(QTreeView* tree)
{
    const auto report = [tree](const QModelIndex& index, bool expanded) {
        if (index == tree->currentIndex().siblingAtColumn(0)) {
            reportExpanded(tree, expanded);
        }
    };
    QObject::connect(tree, &QTreeView::expanded, tree, [=](auto& index) { report(index, true); });
    QObject::connect(tree, &QTreeView::collapsed, tree, [=](auto& index) { report(index, false); });
}

} // namespace kse
