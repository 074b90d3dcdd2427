// SPDX-License-Identifier: MIT
#pragma once

#include <QWidget>

class QLabel;
class QPushButton;
class QSpacerItem;

namespace kse {

class SettingsModel;
struct XsdtNode;

/// One of several groups of the same key on a card: its path and its number of values, a button
/// that shows it in the tree, and one that has it deleted or takes that back. Its number is painted
/// before it, and its tool tip tells the first values, so that copies can be told apart.
class GroupLine : public QWidget
{
    Q_OBJECT

public:
    /// `node` is the copy `number` of `count`, in the order of the file. It stays the caller's and
    /// is needed as long as the line is shown.
    GroupLine(XsdtNode* node, const SettingsModel& model, qsizetype number, qsizetype count,
              QWidget* parent);

    /// Brings the line up to date with its node and with whether PixInsight runs.
    void refresh(bool readOnly);

signals:
    void deleteRequested(kse::XsdtNode* node);
    void restoreRequested(kse::XsdtNode* node);
    void revealRequested(kse::XsdtNode* node);

protected:
    void changeEvent(QEvent* event) override;
    bool event(QEvent* event) override;
    void paintEvent(QPaintEvent* event) override;

private:
    class DeleteButton;

    void createWidgets();
    void reserveNumber();
    QString stateText() const;
    QString firstValues() const;

    XsdtNode* m_node = nullptr;
    qsizetype m_number = 0;
    qsizetype m_count = 0;
    QString m_name;             ///< The path and, as no other copy's, the number.
    bool m_isProtected = false; ///< Never to be deleted.
    QString m_reason;           ///< What its deletion would do, or why there is none.
    QSpacerItem* m_numberSpace = nullptr;
    QLabel* m_label = nullptr;
    QPushButton* m_revealButton = nullptr;
    DeleteButton* m_deleteButton = nullptr;
};

} // namespace kse
