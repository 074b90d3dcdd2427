// SPDX-License-Identifier: MIT
#include "PlainDocument.h"

using namespace Qt::StringLiterals;

namespace kse {

namespace {

QString escaped(QString text)
{
    text.replace(u'&', u"&amp;"_s);
    text.replace(u'"', u"&quot;"_s);
    text.replace(u'\'', u"&apos;"_s);
    text.replace(u'<', u"&lt;"_s);
    text.replace(u'>', u"&gt;"_s);
    return text;
}

/// The element of a value, or a group's start tag, or all of a group in the empty form.
QString startOf(const PlainRow& row)
{
    const QString key = escaped(row.key);
    if (!row.isValue) {
        return u"<i k=\""_s + key + (row.selfClosing ? u"\"/>"_s : u"\">"_s);
    }
    const QString start = u"<v k=\""_s + key + u"\" t=\""_s + escaped(row.type) + u'"';
    return start + (row.textForm ? u'>' + escaped(row.value) + u"</v>"_s
                                 : u" v=\""_s + escaped(row.value) + u"\"/>"_s);
}

} // namespace

std::vector<bool> PlainDocument::covered() const
{
    std::vector<bool> covered;
    for (const PlainRow& row : rows) {
        covered.push_back(row.marked ||
                          (row.parent >= 0 && covered[static_cast<std::size_t>(row.parent)]));
    }
    return covered;
}

QByteArray PlainDocument::bytes() const
{
    const std::vector<bool> isCovered = covered();
    QString text = head;
    std::vector<int> open{-1};
    const auto closeDownTo = [&](int group) {
        while (open.back() != group) {
            text += u"</i>"_s;
            open.pop_back();
        }
    };
    for (std::size_t i = 0; i < rows.size(); ++i) {
        const PlainRow& row = rows[i];
        if (isCovered[i]) {
            continue;
        }
        closeDownTo(row.parent);
        text += startOf(row);
        if (!row.isValue && !row.selfClosing) {
            open.push_back(static_cast<int>(i));
        }
    }
    closeDownTo(-1);
    return (text + u"</xsdt>"_s + tail).toUtf8();
}

std::vector<std::size_t> PlainDocument::editedValues() const
{
    const std::vector<bool> isCovered = covered();
    std::vector<std::size_t> places;
    for (std::size_t i = 0; i < rows.size(); ++i) {
        if (!isCovered[i] && rows[i].isValue && rows[i].value != rows[i].original) {
            places.push_back(i);
        }
    }
    return places;
}

std::vector<std::size_t> PlainDocument::deletions() const
{
    const std::vector<bool> isCovered = covered();
    std::vector<std::size_t> places;
    for (std::size_t i = 0; i < rows.size(); ++i) {
        const int parent = rows[i].parent;
        if (rows[i].marked && (parent < 0 || !isCovered[static_cast<std::size_t>(parent)])) {
            places.push_back(i);
        }
    }
    return places;
}

void PlainDocument::revertAll()
{
    for (PlainRow& row : rows) {
        row.marked = false;
        row.value = row.original;
    }
}

void PlainDocument::commitEdits()
{
    const std::vector<bool> isCovered = covered();
    std::vector<PlainRow> kept;
    std::vector<int> newPlace(rows.size(), -1);
    for (std::size_t i = 0; i < rows.size(); ++i) {
        if (isCovered[i]) {
            continue;
        }
        PlainRow row = rows[i];
        row.original = row.value;
        row.parent = row.parent < 0 ? -1 : newPlace[static_cast<std::size_t>(row.parent)];
        newPlace[i] = static_cast<int>(kept.size());
        kept.push_back(row);
    }
    rows = kept;
}

} // namespace kse
