// SPDX-License-Identifier: MIT
#pragma once

#include <QWidget>

class QLabel;
class QPushButton;
class QSpacerItem;

namespace kse {

class SettingsModel;
struct XsdtNode;

/// The line on a card for one of several groups with the same key: its path and number of values, a
/// button to show it in the tree, and one to delete it or undo that. The copy's number is painted
/// in front, and the tool tip lists the first values, so that copies can be told apart.
class GroupLine : public QWidget
{
    Q_OBJECT

public:
    /// `node` is copy `number` (from 1) of `count` in file order. It isn't owned and must live as
    /// long as the line is shown. `remark` is what a screen reader says of the buttons, apart from
    /// their names.
    GroupLine(XsdtNode* node, const SettingsModel& model, qsizetype number, qsizetype count,
              const QString& remark, QWidget* parent);

    /// Updates the line from its node. `readOnly` is set while PixInsight runs.
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
    void createWidgets(const QString& remark);
    void reserveNumber();
    QString stateText() const;
    QString firstValues() const;

    XsdtNode* m_node = nullptr;
    qsizetype m_number = 0;
    qsizetype m_count = 0;
    QString m_name;             ///< Path and number, for accessible names.
    bool m_isProtected = false; ///< It can never be deleted.
    QString m_reason;           ///< What its deletion would do, or why it is protected.
    QSpacerItem* m_numberSpace = nullptr;
    QLabel* m_label = nullptr;
    QPushButton* m_revealButton = nullptr;
    QPushButton* m_deleteButton = nullptr;
};

} // namespace kse
