// SPDX-License-Identifier: MIT
#pragma once

#include "widgets/FileBox.h"

#include <QStringList>

namespace kse {

/// Lists the settings files found on this computer, and the open one wherever it is. Each item has
/// the path as its data.
class OpenFileBox : public FileBox
{
    Q_OBJECT

public:
    using FileBox::FileBox;

    /// Whether the files found now differ from those listed.
    bool isOutdated() const;

    /// Lists the files as they are now and selects `openPath`, or nothing if that is empty.
    void rebuild(const QString& openPath);

    /// Updates the item of `openPath`, unless the user has just chosen another.
    void refreshItem(const QString& openPath);

private:
    QStringList m_knownFiles;
};

} // namespace kse
