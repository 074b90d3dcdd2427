// SPDX-License-Identifier: MIT
#include "app/OpenFileBox.h"

#include "session/PixInsightEnv.h"

#include <QSignalBlocker>

namespace kse {

bool OpenFileBox::isOutdated() const
{
    return PixInsightEnv::findSettingsFiles() != m_knownFiles;
}

void OpenFileBox::rebuild(const QString& openPath)
{
    m_knownFiles = PixInsightEnv::findSettingsFiles();
    const QSignalBlocker blocker(this);
    clear();
    int selected = -1;
    for (const QString& path : std::as_const(m_knownFiles)) {
        addItem(PixInsightEnv::describeFile(path), path);
        if (PixInsightEnv::isSameFile(path, openPath)) {
            selected = count() - 1;
        }
    }
    if (!openPath.isEmpty() && selected < 0) {
        addItem(PixInsightEnv::describeFile(openPath), openPath);
        selected = count() - 1;
    }
    QString placeholder = tr("Choose a settings file");
    if (count() == 0) {
        placeholder = tr("No settings file found - use Browse...");
        addItem(placeholder, QString());
    }
    setPlaceholderText(placeholder); // shown while nothing is selected
    setCurrentIndex(selected);
}

void OpenFileBox::refreshItem(const QString& openPath)
{
    const QString path = currentData().toString();
    if (PixInsightEnv::isSameFile(path, openPath)) {
        setItemText(currentIndex(), PixInsightEnv::describeFile(path));
    }
}

} // namespace kse
