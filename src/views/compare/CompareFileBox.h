// SPDX-License-Identifier: MIT
#pragma once

#include "widgets/FileBox.h"

#include <QString>

namespace kse {

/// Lists the files to compare with: those of PixInsight's instances and the backups of the open
/// file. They are looked up again whenever the list opens.
class CompareFileBox : public FileBox
{
    Q_OBJECT

public:
    explicit CompareFileBox(QWidget* parent = nullptr);

    /// Lists the files to compare `thisPath` with and selects `otherPath`, which may be any file.
    /// Both may be empty. Emits nothing.
    void setFiles(const QString& thisPath, const QString& otherPath);

    /// Whether the item at `index` is "Browse..." and not a file.
    bool isBrowse(int index) const { return index == count() - 1; }

    void showPopup() override;

private:
    void refill();

    QString m_thisPath;
    QString m_otherPath;
};

} // namespace kse
