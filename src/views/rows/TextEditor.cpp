// SPDX-License-Identifier: MIT
#include "views/rows/TextEditor.h"

#include "document/XsdtNode.h"
#include "schema/SettingsSchema.h"
#include "views/model/NodeLooks.h"
#include "views/rows/ValueEditor.h"
#include "widgets/FileTextEdit.h"
#include "widgets/Named.h"
#include "widgets/PlainText.h"

#include <QFileDialog>
#include <QLayout>
#include <QLineEdit>
#include <QPointer>
#include <QToolButton>

using namespace Qt::StringLiterals;

namespace kse {

namespace {

class TextEditor : public ValueEditor
{
public:
    TextEditor(const VariableInfo& info, const QString& name, QWidget* parent)
        : ValueEditor(parent)
        , m_info(info)
    {
        setControl(m_edit, u"lineEdit"_s, name);
        cancelOnEscape();
        const auto take = [this] {
            if (!m_edit->isReadOnly() && m_edit->text() != m_stored) {
                emit entered(m_edit->text());
            }
        };
        connect(m_edit, &QLineEdit::editingFinished, this, take);
        takeUnfocused(*m_edit, take);
    }

protected:
    bool showValue(const XsdtNode& node) override
    {
        m_stored = node.value;
        if (node.isEditableType()) {
            showFileText(*m_edit, m_stored);
        } else {
            showFileText(*m_edit, displayValue(node, m_stored, m_stored.size()));
            m_edit->setReadOnly(true);
        }
        m_edit->setCursorPosition(0);
        return true;
    }

    const QString& stored() const { return m_stored; }

    const VariableInfo m_info;

private:
    QLineEdit* m_edit = new QLineEdit(this);
    QString m_stored;
};

class RealEditor : public TextEditor
{
public:
    using TextEditor::TextEditor;

    QString faultOf(const QString& text) const override
    {
        bool isNumber = false;
        const double number = text.trimmed().toDouble(&isNumber);
        return m_info.hasRange && isNumber ? rangeFault(abbreviated(m_info.label, shortLimit),
                                                        number, m_info.min, m_info.max)
                                           : QString();
    }
};

class PathEditor : public TextEditor
{
public:
    PathEditor(const VariableInfo& info, const QString& name, QWidget* parent)
        : TextEditor(info, name, parent)
    {
        auto* button = named(u"browseButton"_s, new QToolButton(this));
        button->setText(u"\u2026"_s);
        button->setToolTip(isFolder() ? tr("Choose a folder") : tr("Choose a file"));
        button->setAccessibleName(tr("Browse for %1").arg(name));
        layout()->addWidget(button);
        connect(button, &QToolButton::clicked, this, [this] { browse(); });
    }

private:
    bool isFolder() const { return m_info.kind == VariableKind::Directory; }

    void browse()
    {
        const QPointer<ValueEditor> self(this); // the row may die while the dialog is open
        // In a window title "[*]" is a placeholder.
        const QString caption =
            abbreviated(m_info.label, shortLimit).replace("[*]"_L1, "[*][*]"_L1);
        const QString path = isFolder()
                                 ? QFileDialog::getExistingDirectory(window(), caption, stored(),
                                                                     QFileDialog::ShowDirsOnly)
                                 : QFileDialog::getOpenFileName(window(), caption, stored());
        if (self && !path.isEmpty()) {
            emit entered(path);
        }
    }
};

} // namespace

ValueEditor* createTextEditor(const VariableInfo& info, const QString& name, QWidget* parent)
{
    switch (info.kind) {
    case VariableKind::Real:
        return new RealEditor(info, name, parent);
    case VariableKind::FilePath:
    case VariableKind::Directory:
        return new PathEditor(info, name, parent);
    default:
        return new TextEditor(info, name, parent);
    }
}

} // namespace kse
