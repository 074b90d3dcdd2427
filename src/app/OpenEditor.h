// SPDX-License-Identifier: MIT
#pragma once

#include <QObject>

class QWidget;

namespace kse {

/// The one editor of a window that may hold text which isn't in the document yet, and the moments
/// at which it has to be: while it lives it watches the application, and commits before the Save
/// shortcut is looked up (Save is still disabled if that text is the only change) and before a
/// mouse press outside the editor and its own pop-ups takes effect.
class OpenEditor : public QObject
{
    Q_OBJECT

public:
    /// Watches the editors of `window`, which owns this.
    explicit OpenEditor(QWidget* window);

    /// Hands the text of the open editor to the document, as Enter would, and closes an in-place
    /// editor. Nothing if none is open.
    void commit();

    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    QWidget* m_window = nullptr;
};

} // namespace kse
