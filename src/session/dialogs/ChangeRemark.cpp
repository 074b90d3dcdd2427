// SPDX-License-Identifier: MIT
#include "session/dialogs/ChangeRemark.h"

#include "document/XsdtNode.h"
#include "schema/SettingsSchema.h"
#include "session/dialogs/ReviewDialog.h"
#include "widgets/PlainText.h"

#include <QStringList>

namespace kse {

namespace {

/// What the editor of a choice or a colour shows for `value`; empty where that is the value itself.
QString editorText(const VariableInfo& info, const QString& value)
{
    if (info.kind == VariableKind::Color) {
        return u'#' + QString::number(value.toUInt(), 16).toUpper().rightJustified(8, u'0');
    }
    if (info.kind != VariableKind::Choice) {
        return {};
    }
    for (const VariableChoice& choice : info.choices) {
        if (choice.value == value.toLongLong()) {
            return choice.text;
        }
    }
    return ReviewDialog::tr("Other (%1)").arg(firstCharacters(value, reviewedValueLimit));
}

/// What ends `text` unseen, as "2 blank(s), 1 line end(s)"; empty if nothing does.
QString unseenEnd(const QString& text)
{
    int blanks = 0;
    int lineEnds = 0;
    for (qsizetype i = text.size() - 1; i >= 0 && text[i].isSpace(); --i) {
        ++(text[i] == u'\n' || text[i] == u'\r' ? lineEnds : blanks);
    }
    QStringList parts;
    if (blanks > 0) {
        parts << ReviewDialog::tr("%n blank(s)", nullptr, blanks);
    }
    if (lineEnds > 0) {
        parts << ReviewDialog::tr("%n line end(s)", nullptr, lineEnds);
    }
    return parts.join(u", ");
}

QString endRemark(const QString& sentence, const QString& text)
{
    const QString end = unseenEnd(text);
    return end.isEmpty() ? QString() : sentence.arg(end);
}

QString joined(QStringList sentences)
{
    sentences.removeAll(QString());
    return sentences.join(u' ');
}

} // namespace

QString editRemark(const XsdtNode& node, const VariableInfo& info)
{
    const QString after = editorText(info, node.value);
    return joined({after.isEmpty() ? QString()
                                   : ReviewDialog::tr("Shown as %1 before and %2 after.")
                                         .arg(editorText(info, node.original), after),
                   endRemark(ReviewDialog::tr("Before ends in %1."), node.original),
                   endRemark(ReviewDialog::tr("After ends in %1."), node.value)});
}

QString removalRemark(const XsdtNode& node, const VariableInfo& info)
{
    const QString shown = editorText(info, node.value);
    return joined({shown.isEmpty() ? QString() : ReviewDialog::tr("Shown as %1.").arg(shown),
                   endRemark(ReviewDialog::tr("The value ends in %1."), node.value)});
}

} // namespace kse
