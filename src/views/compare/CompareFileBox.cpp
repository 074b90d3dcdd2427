// SPDX-License-Identifier: MIT
#include "views/compare/CompareFileBox.h"

#include "session/PixInsightEnv.h"

#include <QSignalBlocker>

using namespace Qt::StringLiterals;

namespace kse {

namespace {

constexpr qsizetype maximumBackups = 25;

} // namespace

CompareFileBox::CompareFileBox(QWidget* parent)
    : FileBox(parent)
{
    setSizeAdjustPolicy(QComboBox::AdjustToContents);
    setMinimumWidth(200); // a long name must not keep the window wide
    refill();
}

void CompareFileBox::setFiles(const QString& thisPath, const QString& otherPath)
{
    m_thisPath = thisPath;
    m_otherPath = otherPath;
    refill();
}

void CompareFileBox::showPopup()
{
    refill(); // there may be a new backup or a new instance
    QComboBox::showPopup();
}

void CompareFileBox::refill()
{
    const QSignalBlocker blocker(this);
    clear();
    addItem(tr("Choose a file to compare with..."), QString());
    int current = 0;
    const auto add = [&](const QString& path, const QString& label) {
        if (PixInsightEnv::isSameFile(path, m_thisPath)) {
            return;
        }
        if (PixInsightEnv::isSameFile(path, m_otherPath)) {
            current = count();
        }
        addItem(label.arg(PixInsightEnv::describeFile(path)), path);
    };
    const QStringList files = PixInsightEnv::findSettingsFiles();
    for (const QString& path : files) {
        add(path, u"%1"_s);
    }
    if (!m_thisPath.isEmpty()) {
        const QStringList backups = PixInsightEnv::backupsOf(m_thisPath).mid(0, maximumBackups);
        for (const QString& path : backups) {
            add(path, tr("Backup: %1"));
        }
    }
    if (!m_otherPath.isEmpty() && current == 0) {
        add(m_otherPath, u"%1"_s);
    }
    addItem(tr("Browse..."), u"?"_s);
    setCurrentIndex(current);
}

} // namespace kse
