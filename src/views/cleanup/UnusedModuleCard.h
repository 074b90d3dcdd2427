// SPDX-License-Identifier: MIT
#pragma once

#include "schema/ModuleCatalog.h"

#include <QWidget>

class QLabel;

namespace kse {

class CollapsibleSection;
class SettingRowSet;
struct ModuleContent;

/// The card of an unused module: a check box, and a section that opens to show the module's values
/// as rows.
class UnusedModuleCard : public QWidget
{
    Q_OBJECT

public:
    /// `rowSet` makes the rows. It isn't owned.
    UnusedModuleCard(const ModuleInfo& module, SettingRowSet* rowSet, QWidget* parent);

    bool isTicked() const;

    /// Emits nothing, so that whoever ticks many cards brings a summary up to date once.
    void setTicked(bool ticked);

    void expand();

    /// Shows `content` in the title. The check box is disabled while the rows are read-only.
    void refresh(const ModuleContent& content);

signals:
    void toggled();

private:
    class Tick;

    void createRows();
    QWidget* createGroupTitle(XsdtNode* group);
    QLabel* createLabel(const QString& text, const QString& objectName, const QMargins& margins);

    const ModuleInfo m_module;
    SettingRowSet* m_rowSet = nullptr;
    Tick* m_tick = nullptr;
    CollapsibleSection* m_section = nullptr;
};

} // namespace kse
