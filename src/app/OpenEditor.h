// SPDX-License-Identifier: MIT
#pragma once

#include <QObject>

class QWidget;

namespace kse {

/// Commits the text of a window's focused editor before a command needs it in the document. It
/// watches the application, and commits before the Save shortcut is looked up (Save is disabled
/// while that text is the only change) and before a mouse press outside the editor and its pop-ups
/// takes effect. If the text is rejected, shortcut and press do nothing, so that the user sees it.
class OpenEditor : public QObject
{
    Q_OBJECT

public:
    /// Watches the editors of `window`, which owns this.
    explicit OpenEditor(QWidget* window);

    /// Hands the text of the open editor to the document, as Enter would, and closes an in-place
    /// editor. False if it was rejected; true also if none is open.
    bool commit();

    /// Records that the value of any editor was rejected.
    void noteRejection() { m_rejected = true; }

    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    QWidget* m_window = nullptr;
    bool m_rejected = false; ///< Since `commit` began.
};

} // namespace kse
