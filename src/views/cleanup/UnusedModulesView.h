// SPDX-License-Identifier: MIT
#pragma once

#include "schema/ModuleCatalog.h"
#include "views/cleanup/ModuleContents.h"

#include <QList>
#include <QStringList>
#include <QWidget>

#include <vector>

class QLabel;
class QPushButton;

namespace kse {

class SettingRowSet;
class SettingsModel;
class SettingsSchema;
class UnusedModuleCard;
class WidgetColumn;
struct XsdtDocument;
struct XsdtNode;

/// The Unused modules page: the modules that left data in the file but aren't in PixInsight's list
/// of modules, each on a card. Ticked modules can be queued for deletion together.
class UnusedModulesView : public QWidget
{
    Q_OBJECT

public:
    /// `model` and `schema` aren't owned.
    UnusedModulesView(SettingsModel* model, const SettingsSchema* schema,
                      QWidget* parent = nullptr);

    /// Shows `document`, which the model holds, or nothing for null. Pass null before its tree is
    /// replaced.
    void setDocument(const XsdtDocument* document);

    /// Lists the modules again, all closed and none ticked.
    void refresh();

    /// While set, which is while PixInsight runs, nothing on the page changes the document.
    void setReadOnly(bool readOnly);

    QStringList moduleNames() const;

    /// Opens the card of the module `name`, if there is one.
    void expandCard(const QString& name);

signals:
    /// A sentence for the status bar: a value was refused, or what a command did.
    void message(const QString& text);
    void deleteRequested(kse::XsdtNode* node);
    void restoreRequested(kse::XsdtNode* node);
    void revealRequested(kse::XsdtNode* node);

private slots:
    void updateSummary();
    void onTickAll();
    void onQueue();
    void onUndo();

private:
    void createWidgets();
    QWidget* createButtonRow();
    void connectWidgets();
    UnusedModuleCard* createCard(qsizetype i);
    QList<ModuleInfo> tickedModules() const;
    void setTicks(bool ticked);
    QList<XsdtNode*> takeTicked();

    SettingsModel* m_model = nullptr;
    const XsdtDocument* m_document = nullptr;
    SettingRowSet* m_rowSet = nullptr;
    QList<ModuleInfo> m_modules;
    std::vector<bool> m_ticked;       ///< For each of `m_modules`.
    QList<UnusedModuleCard*> m_cards; ///< For the first of `m_modules`.
    ModuleContents m_contents;
    QLabel* m_summary = nullptr;
    WidgetColumn* m_column = nullptr;
    QPushButton* m_tickAllButton = nullptr;
    QPushButton* m_undoButton = nullptr;
    QPushButton* m_queueButton = nullptr;
};

} // namespace kse
