// SPDX-License-Identifier: MIT
#pragma once

#include <QComboBox>

namespace kse {

/// A combo box of files to open. The user chooses in the open list only: keys that would step
/// through the closed box, and open each file on the way, open the list.
class FileBox : public QComboBox
{
    Q_OBJECT

public:
    explicit FileBox(QWidget* parent = nullptr);

protected:
    void keyPressEvent(QKeyEvent* event) override;
};

} // namespace kse
