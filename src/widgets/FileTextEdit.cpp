// SPDX-License-Identifier: MIT
#include "widgets/FileTextEdit.h"

#include "widgets/PlainText.h"

#include <QCoreApplication>
#include <QLineEdit>

#include <limits>

namespace kse {

void showFileText(QLineEdit& edit, const QString& text)
{
    constexpr int editableLength = 1'000'000;

    const bool isTooLong = text.size() > editableLength;
    const QString shown = isTooLong ? firstCharacters(text, lineLimit) : text;
    if (edit.text() != shown) {                             // each of these lays out the text again
        edit.setMaxLength(std::numeric_limits<int>::max()); // by default it cuts what it is given
        edit.setText(shown);
    }
    edit.setReadOnly(isTooLong);
    edit.setToolTip(
        isTooLong ? QCoreApplication::translate(
                        "FileTextEdit", "Too long to be edited here: these are the first %1 "
                                        "of %2 characters.")
                        .arg(QString::number(edit.text().size()), QString::number(text.size()))
                  : QString());
}

} // namespace kse
