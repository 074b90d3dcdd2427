// SPDX-License-Identifier: MIT
#pragma once

#include "views/health/HealthChecker.h"

#include <QWidget>

class QLabel;
class QPushButton;
class QVBoxLayout;

namespace kse {

class GroupLine;
class SettingRowSet;
class SettingsModel;
class WidgetColumn;

/// The Health check page: a card for each finding, with its settings as rows to edit. The check
/// runs when the page is first shown for a document, and on request.
class HealthView : public QWidget
{
    Q_OBJECT

public:
    /// `model` and `schema` aren't owned.
    HealthView(SettingsModel* model, const SettingsSchema* schema, QWidget* parent = nullptr);

    /// Checks `document`, or nothing for null. The caller keeps it, and passes null before its tree
    /// is replaced.
    void setDocument(const XsdtDocument* document);

    /// While set, which is while PixInsight runs, nothing on the page changes the document.
    void setReadOnly(bool readOnly);

    /// Checks now.
    void run();

signals:
    void message(const QString& text); ///< For the status bar.
    void deleteRequested(kse::XsdtNode* node);
    void restoreRequested(kse::XsdtNode* node);
    void revealRequested(kse::XsdtNode* node);
    void openUnusedModules();
    void summaryChanged(int problems, int warnings); ///< Notes don't count.

protected:
    void showEvent(QShowEvent* event) override;

private slots:
    void onEdited();
    void onDeleteRequested(kse::XsdtNode* node);

private:
    void createWidgets();
    void connectWidgets();
    void removeCards();
    void addCards();
    void updateSummary();
    QWidget* buildCard(const Finding& finding);
    void addNodes(const Finding& finding, QVBoxLayout* layout, QWidget* card);
    QWidget* createGroupLine(const Finding& finding, qsizetype i, QWidget* card);
    void refreshGroupLines();

    SettingsModel* m_model = nullptr;
    const SettingsSchema* m_schema = nullptr;
    const XsdtDocument* m_document = nullptr;
    const HealthEnv m_env = HealthEnv::system();
    bool m_hasRun = false; ///< On the current document.
    bool m_stale = false;  ///< Settings were edited since, and the summary says so.
    QList<Finding> m_findings;
    SettingRowSet* m_rowSet = nullptr;
    QList<GroupLine*> m_groupLines; ///< On the cards.

    QLabel* m_summaryLabel = nullptr;
    QPushButton* m_rerunButton = nullptr;
    WidgetColumn* m_cards = nullptr;
};

} // namespace kse
