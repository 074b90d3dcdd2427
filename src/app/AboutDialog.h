// SPDX-License-Identifier: MIT
#pragma once

#include <QDialog>

class QLabel;
class QPlainTextEdit;
class QPushButton;
class QScrollArea;

namespace kse {

struct XsdtDocument;

/// Says what the program is and how it protects the user's settings, and shows details to paste
/// into a bug report.
class AboutDialog : public QDialog
{
    Q_OBJECT

public:
    /// `path` is the open file and `pixinsightVersion` what it records; either may be empty.
    AboutDialog(const QString& path, const QString& pixinsightVersion, QWidget* parent = nullptr);

    /// The technical details, one a line.
    [[nodiscard]] static QString buildDetails(const QString& path,
                                              const QString& pixinsightVersion);

protected:
    bool event(QEvent* event) override;

private:
    QWidget* createHead();
    QLayout* createTexts();
    QLayout* createButtons();
    void updateLook();
    void updatePicture();

    QLabel* m_picture = nullptr;
    QScrollArea* m_head = nullptr; ///< Scrolls if the screen is too low for it.
    QLabel* m_name = nullptr;
    QPlainTextEdit* m_details = nullptr;
    QLabel* m_notice = nullptr;
    QPushButton* m_copy = nullptr;
};

/// The PixInsight versions that `document` records, in one line; empty if there are none.
[[nodiscard]] QString recordedVersion(const XsdtDocument& document);

} // namespace kse
