// SPDX-License-Identifier: MIT
#include "views/search/ModuleSearchDialog.h"

#include "widgets/Named.h"

#include <QAbstractItemView>
#include <QCompleter>
#include <QDialogButtonBox>
#include <QEvent>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QRadioButton>
#include <QVBoxLayout>

using namespace Qt::StringLiterals;

namespace kse {

ModuleSearchDialog::ModuleSearchDialog(const QStringList& moduleNames, QWidget* parent)
    : QDialog(parent)
{
    setWindowTitle(tr("Find module data"));
    setLayout(new QVBoxLayout);
    createNameEdit(moduleNames);
    m_processRadio = createMode(
        tr("Process search - look where module names usually go"),
        tr("The module's registry entry, its saved module data, its own settings, shared-settings "
           "records and the entries of its processes. If no module has exactly this name, modules "
           "whose name contains it are shown."),
        u"processRadio"_s);
    m_processRadio->setChecked(true);
    m_fullRadio =
        createMode(tr("Full search - search everything, like the Search page"),
                   tr("Every name, path, description and value in the file."), u"fullRadio"_s);
    createButtons();
    fitToTexts();
    m_nameEdit->setFocus();
}

/// Resizes the dialog to its texts: none is cut off, and no room is left from a larger font.
void ModuleSearchDialog::fitToTexts()
{
    layout()->activate(); // else the former minimum stays
    const int width = qMax(520, minimumSizeHint().width());
    resize(width, layout()->totalHeightForWidth(width));
}

void ModuleSearchDialog::changeEvent(QEvent* event)
{
    QDialog::changeEvent(event);
    if (event->type() == QEvent::FontChange) {
        fitToTexts();
    }
}

void ModuleSearchDialog::createNameEdit(const QStringList& moduleNames)
{
    auto* label = new QLabel(tr("Module name:"), this);
    m_nameEdit = named(u"nameEdit"_s, new QLineEdit(this));
    m_nameEdit->setPlaceholderText(tr("for example Ostrand"));
    label->setBuddy(m_nameEdit);
    auto* completer = new QCompleter(moduleNames, m_nameEdit);
    completer->setCaseSensitivity(Qt::CaseInsensitive);
    completer->setFilterMode(Qt::MatchContains);
    m_nameEdit->setCompleter(completer);
    // The open list takes Return to close itself, even if nothing in it is selected.
    connect(m_nameEdit, &QLineEdit::returnPressed, completer, [this, list = completer->popup()] {
        if (list->isVisible() && !list->currentIndex().isValid()) {
            m_searchButton->click();
        }
    });
    layout()->addWidget(label);
    layout()->addWidget(m_nameEdit);
}

QRadioButton* ModuleSearchDialog::createMode(const QString& text, const QString& explanation,
                                             const QString& name)
{
    auto* radio = named(name, new QRadioButton(text, this));
    radio->setAccessibleDescription(explanation);
    auto* label = new QLabel(explanation, this);
    label->setWordWrap(true);
    label->setContentsMargins(22, 0, 0, 6);
    layout()->addWidget(radio);
    layout()->addWidget(label);
    return radio;
}

void ModuleSearchDialog::createButtons()
{
    auto* buttons = new QDialogButtonBox(QDialogButtonBox::Ok | QDialogButtonBox::Cancel, this);
    m_searchButton = buttons->button(QDialogButtonBox::Ok);
    m_searchButton->setObjectName(u"searchButton"_s);
    m_searchButton->setText(tr("Search"));
    m_searchButton->setEnabled(false);
    layout()->addWidget(buttons);
    connect(m_nameEdit, &QLineEdit::textChanged, this,
            [this] { m_searchButton->setEnabled(!moduleName().isEmpty()); });
    connect(buttons, &QDialogButtonBox::accepted, this, &ModuleSearchDialog::accept);
    connect(buttons, &QDialogButtonBox::rejected, this, &ModuleSearchDialog::reject);
}

QString ModuleSearchDialog::moduleName() const
{
    return m_nameEdit->text().trimmed();
}

ModuleSearchMode ModuleSearchDialog::mode() const
{
    return m_fullRadio->isChecked() ? ModuleSearchMode::Full : ModuleSearchMode::Process;
}

} // namespace kse
