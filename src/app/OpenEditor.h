// SPDX-License-Identifier: MIT
#pragma once

#include <QObject>

class QWidget;

namespace kse {

/// The one editor of a window that may hold text which isn't in the document yet, and the moments
/// at which it has to be: while it lives it watches the application, and commits before the Save
/// shortcut is looked up (Save is still disabled if that text is the only change) and before a
/// mouse press outside the editor and its own pop-ups takes effect. Where the text is turned down,
/// shortcut and press do nothing, so that the user sees what became of it.
class OpenEditor : public QObject
{
    Q_OBJECT

public:
    /// Watches the editors of `window`, which owns this.
    explicit OpenEditor(QWidget* window);

    /// Hands the text of the open editor to the document, as Enter would, and closes an in-place
    /// editor. False if it was turned down; true also if none is open.
    bool commit();

    /// Tells that a value was turned down, whoever wrote it.
    void noteRejection() { m_rejected = true; }

    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    QWidget* m_window = nullptr;
    bool m_rejected = false; ///< Since `commit` began.
};

} // namespace kse
