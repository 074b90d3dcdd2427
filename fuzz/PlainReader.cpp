// SPDX-License-Identifier: MIT
#include "PlainDocument.h"

using namespace Qt::StringLiterals;

namespace kse {

namespace {

struct Tag
{
    QString name;
    QString k;
    QString t;
    QString v;
    bool hasK = false;
    bool hasT = false;
    bool hasV = false;
    bool closing = false;
    bool selfClosing = false;
};

bool isDigits(const QString& text, bool hexadecimal)
{
    for (const QChar c : text) {
        const bool decimal = c >= u'0' && c <= u'9';
        const bool letter = (c >= u'a' && c <= u'f') || (c >= u'A' && c <= u'F');
        if (!decimal && !(hexadecimal && letter)) {
            return false;
        }
    }
    return !text.isEmpty();
}

/// The characters of the reference `name`; none, with the reason in `error`, if it is wrong.
QString referred(const QString& name, QString& error)
{
    const QStringList names{u"amp"_s, u"lt"_s, u"gt"_s, u"quot"_s, u"apos"_s};
    if (const qsizetype place = names.indexOf(name); place >= 0) {
        return u"&<>\"'"_s.mid(place, 1);
    }
    if (!name.startsWith(u'#')) {
        error = u"unknown entity &%1;"_s.arg(name);
        return {};
    }
    const bool hexadecimal = name.startsWith("#x"_L1);
    const QString digits = name.mid(hexadecimal ? 2 : 1);
    bool ok = false;
    const uint number = digits.toUInt(&ok, hexadecimal ? 16 : 10);
    if (!ok || !isDigits(digits, hexadecimal) || number < 1 || number > 1114111) {
        error = u"invalid character reference"_s;
        return {};
    }
    if (number < 0x10000) {
        return QChar(static_cast<ushort>(number));
    }
    return QString(QChar(QChar::highSurrogate(number))) + QChar(QChar::lowSurrogate(number));
}

bool decode(const QString& input, QString& output, QString& error)
{
    output.clear();
    for (qsizetype i = 0; i < input.size(); ++i) {
        if (input[i] != u'&') {
            output += input[i];
            continue;
        }
        const QString reach = input.mid(i + 1, 12);
        const qsizetype length = reach.indexOf(u';');
        if (length < 0) {
            error = u"malformed entity reference"_s;
            return false;
        }
        const QString characters = referred(reach.left(length), error);
        if (characters.isEmpty()) {
            return false;
        }
        output += characters;
        i += length + 1;
    }
    return true;
}

class Reader
{
public:
    Reader(PlainDocument& document, const QString& text, qsizetype from)
        : pos(from)
        , m_document(document)
        , m_text(text)
    {
    }

    bool readContent();

    QString error;
    qsizetype pos;

private:
    QChar at(qsizetype place) const { return place < m_text.size() ? m_text[place] : QChar(); }
    bool atEnd() const { return pos >= m_text.size(); }
    bool isAt(QChar c) const { return !atEnd() && m_text[pos] == c; }
    void skipSpace();
    QString readName();
    bool readTag(Tag& tag);
    bool readAttribute(Tag& tag);
    bool readElement();
    bool readValue(const Tag& tag);
    bool failAt(const QString& message);

    PlainDocument& m_document;
    const QString& m_text;
    int m_group = -1;
};

bool Reader::failAt(const QString& message)
{
    const QString before = m_text.left(pos);
    const qsizetype line = before.count(u'\n') + 1;
    const qsizetype column = pos - (before.lastIndexOf(u'\n') + 1) + 1;
    error = message + u" (line "_s + QString::number(line) + u", column "_s +
            QString::number(column) + u')';
    return false;
}

void Reader::skipSpace()
{
    while (!atEnd() && m_text[pos].isSpace()) {
        ++pos;
    }
}

QString Reader::readName()
{
    const qsizetype start = pos;
    while (!atEnd() && (m_text[pos].isLetterOrNumber() || u"_-:."_s.contains(m_text[pos]))) {
        ++pos;
    }
    return m_text.mid(start, pos - start);
}

bool Reader::readAttribute(Tag& tag)
{
    const QString name = readName();
    if (name.isEmpty()) {
        return failAt(u"malformed attribute"_s);
    }
    skipSpace();
    if (!isAt(u'=')) {
        return failAt(u"expected '=' after attribute name"_s);
    }
    ++pos;
    skipSpace();
    if (!isAt(u'"') && !isAt(u'\'')) {
        return failAt(u"expected a quoted attribute value"_s);
    }
    const QChar quote = m_text[pos++];
    const qsizetype twin = m_text.indexOf(quote, pos);
    if (twin < 0) {
        return failAt(u"unterminated attribute value"_s);
    }
    const QString raw = m_text.mid(pos, twin - pos);
    pos = twin + 1;
    QString value;
    QString reason;
    if (!decode(raw, value, reason)) {
        return failAt(reason);
    }
    if (name == u'k') {
        tag.k = value;
        tag.hasK = true;
    } else if (name == u't') {
        tag.t = value;
        tag.hasT = true;
    } else if (name == u'v') {
        tag.v = value;
        tag.hasV = true;
    } else {
        return failAt(u"unsupported attribute '"_s + name + u'\'');
    }
    return true;
}

bool Reader::readTag(Tag& tag)
{
    skipSpace();
    if (!isAt(u'<')) {
        return failAt(u"expected '<'"_s);
    }
    ++pos;
    if (isAt(u'/')) {
        tag.closing = true;
        ++pos;
    }
    tag.name = readName();
    if (tag.name.isEmpty()) {
        return failAt(u"expected an element name"_s);
    }
    while (true) {
        skipSpace();
        if (atEnd()) {
            return failAt(u"unexpected end of file inside a tag"_s);
        }
        if (isAt(u'>')) {
            ++pos;
            return true;
        }
        if (isAt(u'/')) {
            if (tag.closing || at(pos + 1) != u'>') {
                return failAt(u"malformed tag"_s);
            }
            tag.selfClosing = true;
            pos += 2;
            return true;
        }
        if (tag.closing) {
            return failAt(u"unexpected content in closing tag"_s);
        }
        if (!readAttribute(tag)) {
            return false;
        }
    }
}

bool Reader::readValue(const Tag& tag)
{
    if (!tag.hasK || !tag.hasT || tag.t.size() != 1) {
        return failAt(u"malformed <v> element"_s);
    }
    PlainRow row;
    row.parent = m_group;
    row.isValue = true;
    row.key = tag.k;
    row.type = tag.t[0];
    row.value = tag.v;
    row.selfClosing = tag.selfClosing;
    row.textForm = !tag.selfClosing;
    if (tag.selfClosing && !tag.hasV) {
        return failAt(u"<v> element without a value"_s);
    }
    if (!tag.selfClosing && tag.hasV) {
        return failAt(u"<v> element with both an attribute and a text value"_s);
    }
    if (!tag.selfClosing) {
        const qsizetype end = m_text.indexOf("</v>"_L1, pos);
        if (end < 0) {
            return failAt(u"unterminated <v> element"_s);
        }
        const QString raw = m_text.mid(pos, end - pos);
        if (raw.contains(u'<')) {
            return failAt(u"markup inside a <v> text value"_s);
        }
        QString reason;
        if (!decode(raw, row.value, reason)) {
            return failAt(reason);
        }
        pos = end + 4;
    }
    row.original = row.value;
    m_document.rows.push_back(row);
    return true;
}

bool Reader::readElement()
{
    Tag tag;
    if (!readTag(tag)) {
        return false;
    }
    if (tag.name == u'v') {
        return readValue(tag);
    }
    if (tag.name != u'i') {
        return failAt(u"unexpected element <"_s + tag.name + u'>');
    }
    if (!tag.hasK || tag.hasT || tag.hasV) {
        return failAt(u"malformed <i> element"_s);
    }
    PlainRow row;
    row.parent = m_group;
    row.key = tag.k;
    row.selfClosing = tag.selfClosing;
    m_document.rows.push_back(row);
    if (!tag.selfClosing) {
        m_group = static_cast<int>(m_document.rows.size()) - 1;
    }
    return true;
}

bool Reader::readContent()
{
    while (true) {
        skipSpace();
        if (atEnd()) {
            return failAt(u"unexpected end of file"_s);
        }
        if (!isAt(u'<') || at(pos + 1) != u'/') {
            if (!readElement()) {
                return false;
            }
            continue;
        }
        Tag tag;
        if (!readTag(tag)) {
            return false;
        }
        const QString expected = m_group < 0 ? u"xsdt"_s : u"i"_s;
        if (tag.name != expected) {
            return failAt(u"expected </"_s + expected + u'>');
        }
        if (m_group < 0) {
            return true;
        }
        m_group = m_document.rows[static_cast<std::size_t>(m_group)].parent;
    }
}

} // namespace

bool PlainDocument::read(const QByteArray& bytes, QString& error)
{
    *this = {};
    const QString text = QString::fromUtf8(bytes);
    const qsizetype start = text.indexOf("<xsdt"_L1);
    if (start < 0) {
        error = u"Not a PixInsight settings file (no <xsdt> element)."_s;
        return false;
    }
    const qsizetype end = text.indexOf(u'>', start);
    if (end < 0 || text[end - 1] == u'/') {
        error = u"The <xsdt> element is empty or malformed."_s;
        return false;
    }
    head = text.left(end + 1);
    Reader reader(*this, text, end + 1);
    if (!reader.readContent()) {
        error = reader.error;
        return false;
    }
    tail = text.mid(reader.pos);
    if (!tail.trimmed().isEmpty()) {
        error = u"Unexpected content after </xsdt>."_s;
        return false;
    }
    return true;
}

} // namespace kse
