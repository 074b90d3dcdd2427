// SPDX-License-Identifier: MIT
#pragma once

#include "widgets/FileBox.h"

#include <QString>

namespace kse {

/// Offers the files to compare with: those of PixInsight's instances and the backups of the file
/// that is open. Its list is looked up again whenever it opens.
class CompareFileBox : public FileBox
{
    Q_OBJECT

public:
    explicit CompareFileBox(QWidget* parent = nullptr);

    /// Offers what there is to compare `thisPath` with, and shows `otherPath`, which may be any
    /// file; both may be empty. Emits nothing.
    void setFiles(const QString& thisPath, const QString& otherPath);

    /// Whether the item at `index` is the one to pick a file with, instead of a file.
    bool isBrowse(int index) const { return index == count() - 1; }

    void showPopup() override;

private:
    void refill();

    QString m_thisPath;
    QString m_otherPath;
};

} // namespace kse
