// SPDX-License-Identifier: MIT
#pragma once

#include <QWidget>

#include <functional>

class QLineEdit;

namespace kse {

struct VariableInfo;
struct XsdtNode;

/// The controls that edit one value. Shows the value of a node and signals what the user enters.
/// Keeps no node and writes nothing, so it may outlive the document.
class ValueEditor : public QWidget
{
    Q_OBJECT

public:
    /// The editor for a value of `info`'s kind, as a child of `parent`. `name` is the accessible
    /// name of its control.
    [[nodiscard]] static ValueEditor* create(const VariableInfo& info, const QString& name,
                                             QWidget* parent);

    /// Shows the value of `node` and drops what was typed. Emits nothing.
    void setValue(const XsdtNode& node);

    /// The control that holds the value and takes the focus.
    QWidget* control() const { return m_control; }

    /// Tells the stored text if the control can't show it and shows something else; otherwise
    /// empty.
    QString storedTextHint() const { return m_storedTextHint; }

    /// The part of the value that a screen reader doesn't read out with the control.
    virtual QString unspokenText() const { return {}; }

    /// Why `text` must not be written, apart from the rules of its type; empty if it may be.
    [[nodiscard]] virtual QString faultOf(const QString& /*text*/) const { return {}; }

    bool eventFilter(QObject* watched, QEvent* event) override;

signals:
    /// The user entered `text` as the new value.
    void entered(const QString& text);
    /// The user cancelled the input. The owner shows the value again.
    void cancelled();

protected:
    explicit ValueEditor(QWidget* parent);

    /// Every kind of editor calls this once, in its constructor.
    void setControl(QWidget* control, const QString& objectName, const QString& name);

    /// Makes Escape in the control emit `cancelled`, for controls that take text.
    void cancelOnEscape() { m_control->installEventFilter(this); }

    /// Calls `take` when a text was set in `edit`, of the control, while the focus was elsewhere,
    /// as voice control does. Qt ends the editing only when the focus leaves.
    void takeUnfocused(const QLineEdit& edit, const std::function<void()>& take);

    /// The sentence for a `number` outside `min` to `max`, with both ends; empty for one within.
    [[nodiscard]] static QString rangeFault(const QString& name, double number, double min,
                                            double max);

    /// Leaves the rest of the width empty, behind the control.
    void addStretch();

    /// Shows the value of `node` in the control, whose signals are blocked. False if the control
    /// can't show the text and shows something else.
    virtual bool showValue(const XsdtNode& node) = 0;

private:
    QWidget* m_control = nullptr;
    QString m_storedTextHint;
};

} // namespace kse
