// SPDX-License-Identifier: MIT
#include "views/PlainText.h"

#include <QCoreApplication>
#include <QTextDocument>
#include <QTextEdit>

using namespace Qt::StringLiterals;

namespace kse {

namespace {

// More than this in a tool tip or a box is wider and taller than any screen.
constexpr qsizetype popupLimit = 2000;

} // namespace

QString firstCharacters(const QString& text, qsizetype length)
{
    if (length >= text.size()) {
        return text;
    }
    const bool splitsPair =
        length > 0 && text.at(length - 1).isHighSurrogate() && text.at(length).isLowSurrogate();
    return text.left(splitsPair ? length - 1 : length);
}

QString abbreviated(const QString& text, qsizetype limit)
{
    if (text.size() <= limit) {
        return text;
    }
    const QString start = firstCharacters(text, limit);
    const QString count = QString::number(text.size() - start.size());
    return start + QCoreApplication::translate("PlainText", "… (%1 more characters)").arg(count);
}

QString withoutMiddle(const QString& text, qsizetype limit)
{
    if (text.size() <= limit) {
        return text;
    }
    qsizetype end = text.size() - limit / 2;
    if (text.at(end).isLowSurrogate()) {
        ++end;
    }
    return firstCharacters(text, limit / 2) + QChar(0x2026) + text.mid(end);
}

QString asMarkup(const QString& text)
{
    return u"<span style=\"white-space:pre-wrap\">"_s + text.toHtmlEscaped() + u"</span>"_s;
}

QString asToolTip(const QString& text)
{
    const QString shown = abbreviated(text, popupLimit);
    return Qt::mightBeRichText(shown) ? asMarkup(shown) : shown;
}

QString asCaption(const QString& text)
{
    return QString(text).replace(u'&', u"&&"_s);
}

QString shownName(const QString& name, const QString& key)
{
    for (const QString& text : {name, key}) {
        if (!text.trimmed().isEmpty()) {
            return text;
        }
    }
    return QCoreApplication::translate("PlainText", "(no name)");
}

PlainMessageBox::PlainMessageBox(Icon icon, const QString& title, const QString& text,
                                 StandardButtons buttons, QWidget* parent)
    : QMessageBox(icon, title, withoutMiddle(text, popupLimit), buttons,
                  parent ? parent->window() : nullptr)
{
    setTextFormat(Qt::PlainText);
}

void PlainMessageBox::setPlainInformativeText(const QString& text)
{
    // Unlike the text, the informative text is taken for markup whatever the format says.
    setInformativeText(asToolTip(text));
}

void PlainMessageBox::setReachableDetails(const QString& text)
{
    setDetailedText(text);
    if (auto* details = findChild<QTextEdit*>()) {
        details->setFocusPolicy(Qt::StrongFocus);
        details->setTabChangesFocus(true);
        details->setAccessibleName(QCoreApplication::translate("PlainText", "Details"));
    }
}

void showMessage(QWidget* parent, QMessageBox::Icon icon, const QString& title, const QString& text,
                 const QString& informativeText)
{
    PlainMessageBox box(icon, title, text, QMessageBox::Ok, parent);
    box.setPlainInformativeText(informativeText);
    box.exec();
}

QMessageBox::StandardButton askQuestion(QWidget* parent, const QString& title, const QString& text,
                                        QMessageBox::StandardButtons buttons,
                                        QMessageBox::StandardButton defaultButton)
{
    PlainMessageBox box(QMessageBox::Question, title, text, buttons, parent);
    box.setDefaultButton(defaultButton);
    return static_cast<QMessageBox::StandardButton>(box.exec());
}

} // namespace kse
