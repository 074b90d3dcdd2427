// SPDX-License-Identifier: MIT
#pragma once

#include <QDialog>

class QLineEdit;
class QPushButton;
class QRadioButton;

namespace kse {

enum class ModuleSearchMode {
    Process = 0, ///< Where module names usually go.
    Full = 1     ///< Everywhere, like the Search page.
};

/// Asks for the name of a module and where to search. Doesn't search itself.
class ModuleSearchDialog : public QDialog
{
    Q_OBJECT

public:
    /// `moduleNames` are offered for completion. Other names are accepted too.
    explicit ModuleSearchDialog(const QStringList& moduleNames, QWidget* parent = nullptr);

    /// Trimmed.
    QString moduleName() const;
    ModuleSearchMode mode() const;

protected:
    void changeEvent(QEvent* event) override;

private:
    void createNameEdit(const QStringList& moduleNames);
    QRadioButton* createMode(const QString& text, const QString& explanation, const QString& name);
    void createButtons();
    void fitToTexts();

    QLineEdit* m_nameEdit = nullptr;
    QRadioButton* m_processRadio = nullptr;
    QRadioButton* m_fullRadio = nullptr;
    QPushButton* m_searchButton = nullptr;
};

} // namespace kse
