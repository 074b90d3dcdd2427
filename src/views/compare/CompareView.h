// SPDX-License-Identifier: MIT
#pragma once

#include "document/XsdtDocument.h"
#include "views/compare/CompareEngine.h"
#include "views/compare/CompareTree.h"

#include <QList>
#include <QString>
#include <QTimer>
#include <QWidget>

#include <vector>

class QCheckBox;
class QLabel;
class QLineEdit;
class QPushButton;
class QTreeWidgetItem;

namespace kse {

class CompareFileBox;
class SettingsModel;

/// The Compare page: lists how the open file differs from another one, and copies chosen values
/// from that one as ordinary pending edits. No entry is added or removed, and the other file is
/// never written.
class CompareView : public QWidget
{
    Q_OBJECT

public:
    /// `model` isn't owned and must outlive the page.
    explicit CompareView(SettingsModel* model, QWidget* parent = nullptr);
    ~CompareView() override;

    /// Compares `document`, which was read from `path`, with the other file chosen before, unless
    /// that is the same file. Null forgets all nodes and keeps the choice. Pass null before the
    /// tree is replaced.
    void setDocument(XsdtDocument* document, const QString& path);

    /// While set, which is while PixInsight runs, nothing on the page changes the document.
    void setReadOnly(bool readOnly);

    /// Reads the file at `path` to compare with. On failure `error`, unless null, gets the reason,
    /// and the former file stays, unless the new one could be read but isn't a settings file.
    [[nodiscard]] bool compareWith(const QString& path, QString* error = nullptr);

    /// Which differences are listed.
    void setStateFilters(bool different, bool onlyThis, bool onlyOther);

signals:
    void revealRequested(kse::XsdtNode* node);
    /// The result of copying, or why a file can't be compared, for the status bar.
    void message(const QString& text);

protected:
    void changeEvent(QEvent* event) override;

private slots:
    void onFileActivated(int index);
    void onContextMenu(const QPoint& pos);
    void onDoubleClicked(QTreeWidgetItem* item);
    void onCopyAll();

private:
    void createInputs();
    void fitFilter();
    void createTree();
    void createLayout();
    void connectWidgets();
    void clearEntries();
    void forgetOther();
    void refresh(const CompareTreeState& state = {});
    void findNoise();
    void populate(const CompareTreeState& treeState = {});
    void addRows(const CompareTreeState& state);
    void updateButtons();
    void copyEntries(const QList<int>& indices);
    bool canCopy(const CompareEntry& entry) const;

    SettingsModel* m_model = nullptr;
    XsdtDocument* m_document = nullptr;
    QString m_thisPath;
    XsdtDocument m_other;
    QString m_otherPath; ///< Empty: nothing is compared.
    QList<CompareEntry> m_entries;
    std::vector<bool> m_isNoise; ///< For each entry. Too slow to find out for each key typed.
    QList<int> m_shown;          ///< Indices of the entries that are listed.
    int m_copyableRows = 0;      ///< How many of those can be copied.
    quint64 m_comparison = 0;    ///< Rises whenever the entries go, also after an edit.
    bool m_readOnly = false;
    QTimer m_refreshTimer; ///< Active while a new comparison is due.
    CompareFileBox* m_fileCombo = nullptr;
    QCheckBox* m_showDifferent = nullptr;
    QCheckBox* m_showOnlyThis = nullptr;
    QCheckBox* m_showOnlyOther = nullptr;
    QCheckBox* m_hideNoise = nullptr;
    QLineEdit* m_filterEdit = nullptr;
    QLabel* m_summaryLabel = nullptr;
    CompareTree* m_tree = nullptr;
    QPushButton* m_copySelectedButton = nullptr;
    QPushButton* m_copyAllButton = nullptr;
};

} // namespace kse
