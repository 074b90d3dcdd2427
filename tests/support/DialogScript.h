// SPDX-License-Identifier: MIT
#pragma once

#include <QApplication>
#include <QMenu>
#include <QMessageBox>
#include <QPointer>
#include <QPushButton>
#include <QStringList>
#include <QTest>
#include <QTimer>

#include <deque>
#include <functional>

namespace kse {

/// Answers the modal dialogs and menus of a step in the order in which they were announced. One
/// that comes unannounced is closed, one that doesn't come is missed: both are faults.
class DialogScript
{
public:
    DialogScript()
    {
        m_timer.callOnTimeout([this] { look(); });
        m_timer.start(3);
    }

    template <typename Dialog>
    void announce(std::function<void(Dialog&)> answer)
    {
        m_answers.push_back([this, answer = std::move(answer)](QWidget& widget) {
            if (auto* dialog = qobject_cast<Dialog*>(&widget)) {
                answer(*dialog);
            } else {
                m_faults.append(QStringLiteral("unexpected: ") + describe(widget));
            }
        });
    }

    /// A message box with this title, whose text starts with `text`, answered by `button`.
    void announceBox(const QString& title, const QString& text, QMessageBox::StandardButton button)
    {
        announce<QMessageBox>([this, title, text, button](QMessageBox& box) {
            if (box.windowTitle() != title || !box.text().startsWith(text)) {
                m_faults.append(
                    QStringLiteral("box: %1\n wanted: %2 %3").arg(describe(box), title, text));
            }
            box.button(button)->click();
        });
    }

    /// A menu of which `choice` is chosen, or nothing if it is disabled or isn't there; `texts`,
    /// unless null, gets what it offers, with "!" behind what is disabled.
    void announceMenu(const QString& choice, QStringList* texts = nullptr)
    {
        announce<QMenu>([choice, texts](QMenu& menu) {
            QAction* chosen = nullptr;
            const QList<QAction*> actions = menu.actions();
            for (QAction* action : actions) {
                const bool enabled = action->isEnabled();
                if (texts && !action->isSeparator()) {
                    texts->append(action->text() + (enabled ? QString() : QStringLiteral("!")));
                }
                if (enabled && action->text() == choice) {
                    chosen = action;
                }
            }
            if (!chosen) {
                menu.close();
                return;
            }
            menu.setActiveAction(chosen);
            QTest::keyClick(&menu, Qt::Key_Return);
        });
    }

    /// Runs `happens` beneath the next dialog or menu, before it is answered.
    void beneathNext(std::function<void()> happens) { m_happens = std::move(happens); }

    void fault(const QString& text) { m_faults.append(text); }

    /// What went wrong since the last call.
    QStringList takeFaults()
    {
        if (!m_answers.empty()) {
            m_faults.append(QStringLiteral("%1 dialog(s) didn't come").arg(m_answers.size()));
            m_answers.clear();
        }
        return std::exchange(m_faults, {});
    }

private:
    static QString describe(const QWidget& widget)
    {
        const auto* box = qobject_cast<const QMessageBox*>(&widget);
        return QStringLiteral("%1 \"%2\" %3")
            .arg(QString::fromLatin1(widget.metaObject()->className()), widget.windowTitle(),
                 box ? box->text() : QString());
    }

    void look()
    {
        QWidget* popup = QApplication::activePopupWidget();
        QWidget* widget = popup ? popup : QApplication::activeModalWidget();
        if (!widget || !widget->isVisible() || m_isAnswering) {
            return;
        }
        const QPointer<QWidget> open = widget;
        if (open == m_answered) {
            m_faults.append(QStringLiteral("stays open: ") + describe(*widget));
            widget->close();
            return;
        }
        m_answered = open;
        if (m_answers.empty()) {
            m_faults.append(QStringLiteral("unannounced: ") + describe(*widget));
        } else {
            const auto answer = std::move(m_answers.front());
            m_answers.pop_front();
            m_isAnswering = true;
            if (const auto happens = std::exchange(m_happens, nullptr)) {
                happens();
            }
            if (open && open->isVisible()) {
                answer(*widget);
            }
            m_isAnswering = false;
        }
        if (open && open->isVisible()) {
            open->close();
        }
    }

    std::deque<std::function<void(QWidget&)>> m_answers;
    std::function<void()> m_happens;
    QStringList m_faults;
    QPointer<QWidget> m_answered;
    bool m_isAnswering = false;
    QTimer m_timer;
};

} // namespace kse
