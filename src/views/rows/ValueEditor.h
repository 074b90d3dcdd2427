// SPDX-License-Identifier: MIT
#pragma once

#include <QWidget>

namespace kse {

struct VariableInfo;
struct XsdtNode;

/// The controls that edit one value. Shows what a node holds and tells what the user makes of it.
/// Keeps no node and writes nothing, so it may outlive the document.
class ValueEditor : public QWidget
{
    Q_OBJECT

public:
    /// The editor for a value of `info`'s kind, a child of `parent`. A screen reader calls its
    /// control `name`.
    [[nodiscard]] static ValueEditor* create(const VariableInfo& info, const QString& name,
                                             QWidget* parent);

    /// Shows what `node` holds, instead of anything typed. Emits nothing.
    void setValue(const XsdtNode& node);

    /// The control that holds the value and takes the focus.
    QWidget* control() const { return m_control; }

    /// Names the stored text where the control can't show it and shows something else; otherwise
    /// empty.
    QString storedTextHint() const { return m_storedTextHint; }

    /// What is seen of the value but not read out with the control.
    virtual QString unspokenText() const { return {}; }

    /// Why `text` must not be written, beyond what its type forbids; empty if it may be.
    [[nodiscard]] virtual QString faultOf(const QString& /*text*/) const { return {}; }

    bool eventFilter(QObject* watched, QEvent* event) override;

signals:
    /// The user changed the value to `text`.
    void entered(const QString& text);
    /// The user gave up what was typed; the owner shows the value again.
    void cancelled();

protected:
    explicit ValueEditor(QWidget* parent);

    /// Each kind of editor calls this once, when it is made.
    void setControl(QWidget* control, const QString& objectName, const QString& name);

    /// For a control that is typed into: Escape emits `cancelled`.
    void cancelOnEscape() { m_control->installEventFilter(this); }

    /// Leaves the rest of the width empty.
    void addStretch();

    /// Brings the control up to date, with its signals blocked. False if it can't show the text
    /// of `node` and shows something else.
    virtual bool showValue(const XsdtNode& node) = 0;

private:
    QWidget* m_control = nullptr;
    QString m_storedTextHint;
};

} // namespace kse
