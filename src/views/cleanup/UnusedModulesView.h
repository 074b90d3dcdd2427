// SPDX-License-Identifier: MIT
#pragma once

#include "schema/ModuleCatalog.h"

#include <QHash>
#include <QList>
#include <QStringList>
#include <QWidget>

class QCheckBox;
class QLabel;
class QModelIndex;
class QPushButton;

namespace kse {

class CollapsibleSection;
class SettingRowSet;
class SettingsModel;
class SettingsSchema;
class WidgetColumn;
struct XsdtDocument;
struct XsdtNode;

/// The modules that left data in the file but aren't in PixInsight's list of modules. Each is a
/// card that opens to show its values and can be ticked for deletion with others.
class UnusedModulesView : public QWidget
{
    Q_OBJECT

public:
    /// Model and schema stay the caller's.
    UnusedModulesView(SettingsModel* model, const SettingsSchema* schema,
                      QWidget* parent = nullptr);

    /// Shows the document that the model holds, or nothing for null. Pass null before its tree is
    /// replaced.
    void setDocument(const XsdtDocument* document);

    /// Lists the modules anew, all closed and none ticked.
    void refresh();

    /// While PixInsight runs.
    void setReadOnly(bool readOnly);

    QStringList moduleNames() const;

    /// Opens the card of the module `name`; nothing if there is none.
    void expandCard(const QString& name);

signals:
    /// A sentence for the status line: a value turned down, or what a command did.
    void message(const QString& text);
    void deleteRequested(kse::XsdtNode* node);
    void restoreRequested(kse::XsdtNode* node);
    void revealRequested(kse::XsdtNode* node);

private:
    struct Card
    {
        ModuleInfo module;
        QCheckBox* tick = nullptr;
        CollapsibleSection* section = nullptr;
    };
    struct Content
    {
        qsizetype values = 0;
        qint64 bytes = 0;
        bool holdsQueued = false; ///< Something in it is marked for deletion.
        bool isDeep = false;      ///< It reaches deeper than the model shows.
    };

    void createUi();
    QWidget* createButtonRow();
    void connectModel();
    QWidget* addCard(const ModuleInfo& module);
    void buildCard(const Card& card);
    void addNote(const Card& card, const QString& text, XsdtNode* node);

    void updateSummary();
    void updateCard(const Card& card, const Content& content, qsizetype marked);
    Content contentOf(const ModuleInfo& module);
    static Content contentOf(const XsdtNode& group);
    void forgetContents(const QModelIndex& topLeft);

    QList<Card> tickedCards() const;
    void tickAll();
    void queueTicked();
    void undoTicked();
    bool confirmQueueing(const QList<Card>& cards);

    SettingsModel* m_model = nullptr;
    const XsdtDocument* m_document = nullptr;
    SettingRowSet* m_rows = nullptr;
    QList<Card> m_cards;
    QHash<const XsdtNode*, Content> m_contents; ///< Of groups in cards; modules may share one.
    QLabel* m_summary = nullptr;
    WidgetColumn* m_column = nullptr;
    QPushButton* m_queueButton = nullptr;
    QPushButton* m_undoButton = nullptr;
    QPushButton* m_tickAllButton = nullptr;
};

} // namespace kse
