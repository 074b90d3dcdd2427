// SPDX-License-Identifier: MIT
#include "widgets/CopyKey.h"

#include <QAbstractItemView>
#include <QClipboard>
#include <QGuiApplication>
#include <QShortcut>

namespace kse {

void copyWholeTexts(QAbstractItemView* view,
                    std::function<QVariant(const QModelIndex& index)> wholeText)
{
    auto* key = new QShortcut(QKeySequence::Copy, view);
    key->setContext(Qt::WidgetShortcut); // not in the view's editors, which copy what is selected
    QObject::connect(key, &QShortcut::activated, view, [view, text = std::move(wholeText)] {
        const QModelIndex index = view->currentIndex();
        if (const QVariant whole = index.isValid() ? text(index) : QVariant(); whole.isValid()) {
            QGuiApplication::clipboard()->setText(whole.toString());
        }
    });
}

} // namespace kse
