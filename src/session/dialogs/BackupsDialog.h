// SPDX-License-Identifier: MIT
#pragma once

#include <QDialog>

class QLabel;
class QListWidget;
class QPushButton;
class QSpinBox;

namespace kse {

/// Lists the backups of a settings file and removes those that the user selects. Nothing else in
/// the program removes one.
class BackupsDialog : public QDialog
{
    Q_OBJECT

public:
    explicit BackupsDialog(const QString& settingsPath, QWidget* parent = nullptr);

signals:
    /// The result of a removal, worded for the status bar.
    void message(const QString& text);

protected:
    void changeEvent(QEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;

private slots:
    void refresh();
    void updateSelectionButton();
    void onOpenFolder();
    void onKeepChanged(int keep);
    void onDeleteSelected();
    void onDeleteOlder();
    void onDeleteAll();

private:
    void createWidgets();
    void createLayout();
    void connectWidgets();
    void fit();
    void updateOlderButton();
    void confirmAndRemove(const QStringList& paths, qint64 totalBytes, const QString& prompt);

    QString m_settingsPath;

    QLabel* m_header = nullptr;
    QListWidget* m_list = nullptr; ///< The path of each backup is in its item's `Qt::UserRole`.
    QLabel* m_folder = nullptr;
    QPushButton* m_openFolder = nullptr;
    QSpinBox* m_keep = nullptr;
    QPushButton* m_deleteOlder = nullptr;
    QPushButton* m_deleteSelected = nullptr;
    QPushButton* m_deleteAll = nullptr;
    QPushButton* m_close = nullptr;
};

} // namespace kse
