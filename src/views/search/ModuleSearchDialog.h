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

/// Asks for a module's name and where to look for it. Looks for nothing itself.
class ModuleSearchDialog : public QDialog
{
    Q_OBJECT

public:
    /// Offers `moduleNames` as one of them is typed; any other name is as good.
    explicit ModuleSearchDialog(const QStringList& moduleNames, QWidget* parent = nullptr);

    /// Without blanks around it.
    QString moduleName() const;
    ModuleSearchMode mode() const;

protected:
    void changeEvent(QEvent* event) override;

private:
    void createName(const QStringList& moduleNames);
    QRadioButton* createMode(const QString& text, const QString& explanation, const QString& name);
    void createButtons();
    void fit();

    QLineEdit* m_nameEdit = nullptr;
    QRadioButton* m_processRadio = nullptr;
    QRadioButton* m_fullRadio = nullptr;
    QPushButton* m_searchButton = nullptr;
};

} // namespace kse
