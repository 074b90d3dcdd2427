// SPDX-License-Identifier: MIT
#pragma once

#include <QComboBox>

namespace kse {

/// A list of files to open. Only a choice in its open list counts: keys that would step through the
/// closed one, and open each file on the way, open the list.
class FileBox : public QComboBox
{
    Q_OBJECT

public:
    explicit FileBox(QWidget* parent = nullptr);

protected:
    void keyPressEvent(QKeyEvent* event) override;
};

} // namespace kse
