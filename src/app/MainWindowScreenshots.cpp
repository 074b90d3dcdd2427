// SPDX-License-Identifier: MIT
#include "app/MainWindow.h"

#include "session/BackupsDialog.h"
#include "session/ReviewDialog.h"
#include "views/SettingsModel.h"

#include <QCheckBox>
#include <QCoreApplication>
#include <QDir>
#include <QTabWidget>
#include <QTreeView>
#include <QTreeWidget>

using namespace Qt::StringLiterals;

namespace kse {

void MainWindow::renderScreenshots(const QString& dir)
{
    QDir().mkpath(dir);
    resize(1200, 820);
    show();
    QCoreApplication::processEvents();

    m_model->setReadOnly(false);
    const XsdtNode& root = m_store.document.root;
    if (const XsdtNode* node = root.findByPath(u"Global/Preferences/MainWindow/AnimateCombo")) {
        const QString flipped = node->value == "true"_L1 ? u"false"_s : u"true"_s;
        m_model->setData(m_model->indexForNode(node, SettingsModel::ValueColumn), flipped);
    }
    if (XsdtNode* node = root.findByPath(u"Global/Statistics")) {
        (void)m_model->markForDeletion(node); // a picture without a deletion is still a picture
    }
    {
        ReviewDialog review(m_model, &m_store.document, this);
        review.show();
        if (QTreeWidgetItem* first = review.findChild<QTreeWidget*>()->topLevelItem(0)) {
            first->setExpanded(true); // a deletion lists its values then
        }
        grabTo(review, dir, u"review.png"_s);
    }
    m_model->revertAll();
    {
        BackupsDialog backups(m_store.path, this);
        backups.show();
        grabTo(backups, dir, u"backups.png"_s);
    }
    m_tabs->setCurrentWidget(m_advancedPage);
    m_changedOnly->setChecked(true);
    grabTo(*this, dir, u"advanced-changed.png"_s);
    m_changedOnly->setChecked(false);
    m_model->revertAll();
    resetExpansion();
    grabTo(*this, dir, u"advanced.png"_s);
}

void MainWindow::grabTo(QWidget& widget, const QString& dir, const QString& name)
{
    QCoreApplication::processEvents();
    widget.grab().save(dir + u'/' + name);
}

} // namespace kse
