// SPDX-License-Identifier: MIT
#pragma once

#include "widgets/FileBox.h"

#include <QStringList>

namespace kse {

/// Lists the settings files found on this computer, and the open one wherever it lies. The path of
/// each is its item's data.
class OpenFileBox : public FileBox
{
    Q_OBJECT

public:
    using FileBox::FileBox;

    /// Whether the files found now are others than those listed.
    bool isOutdated() const;

    /// Lists the files as they are now and selects `openPath`, or nothing if that is empty.
    void rebuild(const QString& openPath);

    /// Renews the item of `openPath`, unless the user has just chosen another.
    void refreshItem(const QString& openPath);

private:
    QStringList m_knownFiles;
};

} // namespace kse
