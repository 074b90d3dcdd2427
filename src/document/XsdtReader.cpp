// SPDX-License-Identifier: MIT
#include "document/XsdtReader.h"

#include "document/XsdtDocument.h"

#include <array>
#include <cstring>

using namespace Qt::StringLiterals;

namespace kse {

namespace {

/// Gives equal short texts one shared string: a file repeats few keys and values many times.
/// A cache rather than a set, so that it stays small whatever the file holds.
class StringPool
{
public:
    QString string(QStringView text)
    {
        if (text.isEmpty()) {
            return QString(u""_s);
        }
        if (text.size() > longest) {
            return text.toString();
        }
        QString& entry = m_entries[slot(text)];
        if (entry != text) {
            entry = text.toString();
        }
        return entry;
    }

private:
    static constexpr qsizetype longest = 24;
    static constexpr int slotBits = 12;

    static std::size_t slot(QStringView text)
    {
        constexpr quint64 multiplier = 0x9E3779B97F4A7C15;
        auto hash = static_cast<quint64>(text.size());
        const char16_t* at = text.utf16();
        qsizetype left = text.size();
        for (; left >= 4; left -= 4, at += 4) {
            quint64 four;
            std::memcpy(&four, at, sizeof four);
            hash = (hash ^ four) * multiplier;
            hash ^= hash >> 32;
        }
        for (; left > 0; --left, ++at) {
            hash = (hash ^ *at) * multiplier;
        }
        return static_cast<std::size_t>((hash * multiplier) >> (64 - slotBits));
    }

    std::array<QString, std::size_t(1) << slotBits> m_entries;
};

bool isNameCharacter(char16_t c)
{
    if ((c >= u'a' && c <= u'z') || (c >= u'A' && c <= u'Z') || (c >= u'0' && c <= u'9')) {
        return true;
    }
    return c == u'_' || c == u'-' || c == u':' || c == u'.' ||
           (c >= 0x80 && QChar::isLetterOrNumber(c));
}

/// The code point of a numeric reference's digits; 0, which no reference may name, if they aren't
/// all digits or the number is too large.
char32_t codePoint(QStringView digits, int base)
{
    char32_t number = 0;
    for (const QChar digit : digits) {
        const char16_t c = digit.unicode();
        char32_t worth = 16;
        if (c >= u'0' && c <= u'9') {
            worth = c - u'0';
        } else if (c >= u'a' && c <= u'f') {
            worth = c - u'a' + 10;
        } else if (c >= u'A' && c <= u'F') {
            worth = c - u'A' + 10;
        }
        number = number * char32_t(base) + worth;
        if (worth >= char32_t(base) || number > QChar::LastValidCodePoint) {
            return 0;
        }
    }
    return number;
}

/// Appends what the reference `name`, without & and ;, stands for. False with the reason in
/// `error` if it stands for nothing.
bool appendReference(QStringView name, QString& output, QString& error)
{
    static constexpr struct
    {
        QLatin1String name;
        char16_t character;
    } named[] = {{QLatin1String("amp"), u'&'},
                 {QLatin1String("lt"), u'<'},
                 {QLatin1String("gt"), u'>'},
                 {QLatin1String("quot"), u'"'},
                 {QLatin1String("apos"), u'\''}};
    for (const auto& entity : named) {
        if (name == entity.name) {
            output += entity.character;
            return true;
        }
    }
    if (!name.startsWith(u'#')) {
        error = u"unknown entity &%1;"_s.arg(name);
        return false;
    }
    const bool hexadecimal = name.startsWith(u"#x");
    const char32_t code = codePoint(name.mid(hexadecimal ? 2 : 1), hexadecimal ? 16 : 10);
    if (code == 0) {
        error = u"invalid character reference"_s;
        return false;
    }
    output += QChar::fromUcs4(code); // QString::fromUcs4 would take U+FEFF for a byte order mark
    return true;
}

bool decodeEntities(QStringView input, QString& output, QString& error)
{
    constexpr qsizetype longestReference = 12; // from & to ;
    output.clear();
    output.reserve(input.size());
    qsizetype from = 0;
    while (true) {
        const qsizetype ampersand = input.indexOf(u'&', from);
        if (ampersand < 0) {
            output += input.mid(from);
            return true;
        }
        output += input.mid(from, ampersand - from);
        const qsizetype length = input.mid(ampersand, longestReference + 1).indexOf(u';');
        if (length < 0) {
            error = u"malformed entity reference"_s;
            return false;
        }
        if (!appendReference(input.mid(ampersand + 1, length - 1), output, error)) {
            return false;
        }
        from = ampersand + length + 1;
    }
}

/// The decoded text of an attribute: a part of the file's text where nothing had to be decoded.
struct Attribute
{
    bool present = false;
    QStringView text;
    QString decoded;
};

struct Tag
{
    QStringView name;
    Attribute k;
    Attribute t;
    Attribute v;
    bool closing = false;
    bool selfClosing = false;
};

class Reader
{
public:
    Reader(QStringView text, qsizetype from, QString* error)
        : m_begin(text.utf16())
        , m_end(m_begin + text.size())
        , m_pos(m_begin + from)
        , m_error(error)
    {
    }

    /// Reads everything up to and including the root's end tag.
    bool readContent(XsdtNode& root);

    qsizetype position() const { return m_pos - m_begin; }

private:
    bool readTag(Tag& tag);
    bool readAttribute(Tag& tag);
    QStringView readName();
    bool readElement(XsdtNode*& group);
    bool readValue(Tag& tag, XsdtNode& group);
    bool readText(XsdtNode& value);
    bool decode(QStringView raw, Attribute& attribute);

    QString take(Attribute& attribute);
    void skipSpace();
    bool atEnd() const { return m_pos == m_end; }
    bool atEndTag() const { return m_end - m_pos >= 2 && m_pos[0] == u'<' && m_pos[1] == u'/'; }
    bool failAt(const QString& message);

    const char16_t* m_begin;
    const char16_t* m_end;
    const char16_t* m_pos;
    QString* m_error;
    StringPool m_pool;
};

bool Reader::failAt(const QString& message)
{
    if (!m_error) {
        return false;
    }
    qsizetype line = 1;
    qsizetype column = 1;
    for (const char16_t* at = m_begin; at != m_pos; ++at) {
        ++column;
        if (*at == u'\n') {
            ++line;
            column = 1;
        }
    }
    *m_error =
        u"%1 (line %2, column %3)"_s.arg(message, QString::number(line), QString::number(column));
    return false;
}

void Reader::skipSpace()
{
    while (m_pos != m_end && QChar::isSpace(*m_pos)) {
        ++m_pos;
    }
}

QStringView Reader::readName()
{
    const char16_t* start = m_pos;
    while (m_pos != m_end && isNameCharacter(*m_pos)) {
        ++m_pos;
    }
    return {start, m_pos};
}

QString Reader::take(Attribute& attribute)
{
    return attribute.decoded.isEmpty() ? m_pool.string(attribute.text)
                                       : std::move(attribute.decoded);
}

bool Reader::decode(QStringView raw, Attribute& attribute)
{
    QString reason;
    if (!decodeEntities(raw, attribute.decoded, reason)) {
        return failAt(reason);
    }
    attribute.text = attribute.decoded;
    return true;
}

bool Reader::readAttribute(Tag& tag)
{
    const QStringView name = readName();
    if (name.isEmpty()) {
        return failAt(u"malformed attribute"_s);
    }
    skipSpace();
    if (atEnd() || *m_pos != u'=') {
        return failAt(u"expected '=' after attribute name"_s);
    }
    ++m_pos;
    skipSpace();
    if (atEnd() || (*m_pos != u'"' && *m_pos != u'\'')) {
        return failAt(u"expected a quoted attribute value"_s);
    }
    const char16_t quote = *m_pos++;
    const char16_t* twin = m_pos;
    bool references = false;
    while (twin != m_end && *twin != quote) {
        references |= *twin++ == u'&';
    }
    if (twin == m_end) {
        return failAt(u"unterminated attribute value"_s);
    }
    const QStringView raw(m_pos, twin);
    m_pos = twin + 1;

    Attribute unknown;
    const char16_t letter = name.size() == 1 ? name[0].unicode() : u'\0';
    Attribute& attribute = letter == u'k'   ? tag.k
                           : letter == u't' ? tag.t
                           : letter == u'v' ? tag.v
                                            : unknown;
    attribute.present = true;
    attribute.text = raw;
    attribute.decoded.clear();
    if (references && !decode(raw, attribute)) {
        return false;
    }
    return &attribute != &unknown || failAt(u"unsupported attribute '%1'"_s.arg(name));
}

bool Reader::readTag(Tag& tag)
{
    skipSpace();
    if (atEnd() || *m_pos != u'<') {
        return failAt(u"expected '<'"_s);
    }
    ++m_pos;
    if (!atEnd() && *m_pos == u'/') {
        tag.closing = true;
        ++m_pos;
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
        if (*m_pos == u'>') {
            ++m_pos;
            return true;
        }
        if (*m_pos == u'/') {
            if (tag.closing || m_end - m_pos < 2 || m_pos[1] != u'>') {
                return failAt(u"malformed tag"_s);
            }
            tag.selfClosing = true;
            m_pos += 2;
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

bool Reader::readText(XsdtNode& value)
{
    static constexpr QStringView endTag = u"</v>";
    const QStringView rest(m_pos, m_end);
    const qsizetype length = rest.indexOf(u'<');
    if (length < 0 || !rest.mid(length).startsWith(endTag)) {
        return failAt(rest.contains(endTag) ? u"markup inside a <v> text value"_s
                                            : u"unterminated <v> element"_s);
    }
    Attribute text;
    text.text = rest.left(length);
    if (text.text.contains(u'&') && !decode(text.text, text)) {
        return false;
    }
    value.value = take(text);
    m_pos += length + endTag.size();
    return true;
}

bool Reader::readValue(Tag& tag, XsdtNode& group)
{
    if (!tag.k.present || !tag.t.present || tag.t.text.size() != 1) {
        return failAt(u"malformed <v> element"_s);
    }
    if (tag.selfClosing && !tag.v.present) {
        return failAt(u"<v> element without a value"_s);
    }
    if (!tag.selfClosing && tag.v.present) {
        return failAt(u"<v> element with both an attribute and a text value"_s);
    }
    auto node = std::make_unique<XsdtNode>();
    node->kind = XsdtNode::Kind::Value;
    node->key = take(tag.k);
    node->typeCode = tag.t.text.front();
    node->textForm = !tag.selfClosing;
    node->selfClosing = tag.selfClosing;
    if (tag.selfClosing) {
        node->value = take(tag.v);
    } else if (!readText(*node)) {
        return false;
    }
    node->original = node->value;
    group.append(std::move(node));
    return true;
}

/// Reads one value, or the start of a group, which then becomes `group`.
bool Reader::readElement(XsdtNode*& group)
{
    Tag tag;
    if (!readTag(tag)) {
        return false;
    }
    if (tag.name == u"v") {
        return readValue(tag, *group);
    }
    if (tag.name != u"i") {
        return failAt(u"unexpected element <%1>"_s.arg(tag.name));
    }
    if (!tag.k.present || tag.t.present || tag.v.present) {
        return failAt(u"malformed <i> element"_s);
    }
    auto node = std::make_unique<XsdtNode>();
    node->key = take(tag.k);
    node->selfClosing = tag.selfClosing;
    XsdtNode* child = group->append(std::move(node));
    if (!tag.selfClosing) {
        group = child;
    }
    return true;
}

bool Reader::readContent(XsdtNode& root)
{
    XsdtNode* group = &root;
    while (true) {
        skipSpace();
        if (atEnd()) {
            return failAt(u"unexpected end of file"_s);
        }
        if (!atEndTag()) {
            if (!readElement(group)) {
                return false;
            }
            continue;
        }
        Tag tag;
        if (!readTag(tag)) {
            return false;
        }
        const bool isRoot = group == &root;
        if (tag.name != (isRoot ? QStringView(u"xsdt") : QStringView(u"i"))) {
            return failAt(isRoot ? u"expected </xsdt>"_s : u"expected </i>"_s);
        }
        group->children.shrink_to_fit();
        if (isRoot) {
            return true;
        }
        group = group->parent;
    }
}

} // namespace

bool readXsdt(const QString& text, XsdtDocument& document, QString* error)
{
    const auto fail = [error](const QString& message) {
        if (error) {
            *error = message;
        }
        return false;
    };
    const qsizetype start = text.indexOf("<xsdt"_L1);
    if (start < 0) {
        return fail(u"Not a PixInsight settings file (no <xsdt> element)."_s);
    }
    const qsizetype end = text.indexOf(u'>', start);
    if (end < 0 || text[end - 1] == u'/') {
        return fail(u"The <xsdt> element is empty or malformed."_s);
    }
    document.head = text.left(end + 1);
    const auto reader = std::make_unique<Reader>(text, end + 1, error); // large, for the stack
    if (!reader->readContent(document.root)) {
        return false;
    }
    document.tail = text.mid(reader->position());
    if (!document.tail.trimmed().isEmpty()) {
        return fail(u"Unexpected content after </xsdt>."_s);
    }
    return true;
}

} // namespace kse
