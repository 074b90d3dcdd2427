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

/// The page that compares the open file with another one, which is never written, and takes
/// chosen values from it as ordinary pending edits. Nothing is added or removed.
class CompareView : public QWidget
{
    Q_OBJECT

public:
    /// `model` isn't owned and must outlive the page.
    explicit CompareView(SettingsModel* model, QWidget* parent = nullptr);
    ~CompareView() override;

    /// Compares `document`, which was read from `path`, with the other file chosen so far, unless
    /// that is the same; null forgets all nodes and keeps the choice. Pass null before the tree is
    /// replaced.
    void setDocument(XsdtDocument* document, const QString& path);

    void setReadOnly(bool readOnly);

    /// Reads the file at `path` to compare with. On failure `error`, unless null, gets the reason;
    /// the former file stays, unless the new one could be read and is no settings file.
    [[nodiscard]] bool compareWith(const QString& path, QString* error = nullptr);

    /// Which differences are listed.
    void setStateFilters(bool different, bool onlyThis, bool onlyOther);

signals:
    /// The node is to be shown in the tree of all settings.
    void revealRequested(kse::XsdtNode* node);
    /// What came of copying, or why a file can't be compared with, for the status line.
    void message(const QString& text);

protected:
    void changeEvent(QEvent* event) override;

private:
    void createInputs();
    void fitFilter();
    void createTree();
    void createLayout();
    void connectWidgets();
    void clearEntries();
    void forgetOther();
    void refresh(const CompareTreeState& state = {});
    void populate(const CompareTreeState& treeState = {});
    void addRows(const std::vector<int>& shown, const CompareTreeState& state);
    void updateButtons();
    void chooseFile(const QString& path);
    void onFileActivated(int index);
    void onContextMenu(const QPoint& pos);
    void onDoubleClicked(QTreeWidgetItem* item);
    void onCopyAll();
    void copyEntries(const QList<int>& indices);
    bool isCopyable(const CompareEntry& entry) const;
    QList<int> shownEntries() const;

    SettingsModel* m_model = nullptr;
    XsdtDocument* m_document = nullptr;
    QString m_thisPath;
    XsdtDocument m_other;
    QString m_otherPath; ///< Empty: nothing is compared.
    QList<CompareEntry> m_entries;
    std::vector<bool> m_isNoise; ///< Of each entry; slow to find out at every key of the filter.
    int m_copyableRows = 0;      ///< How many of the rows can be copied.
    quint64 m_comparison = 0;    ///< Rises whenever the entries go.
    bool m_readOnly = false;
    QTimer m_refreshTimer; ///< Active while a change waits for the comparison that it needs.
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
