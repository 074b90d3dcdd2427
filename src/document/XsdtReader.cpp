// SPDX-License-Identifier: MIT
#include "document/XsdtReader.h"

#include "document/Entities.h"
#include "document/Fail.h"
#include "document/StringPool.h"
#include "document/XsdtDocument.h"

#include <memory>

using namespace Qt::StringLiterals;

namespace kse {

namespace {

bool isNameCharacter(char16_t c)
{
    return QChar::isLetterOrNumber(c) || c == u'_' || c == u'-' || c == u':' || c == u'.';
}

const char16_t* nameEnd(const char16_t* at)
{
    while (isNameCharacter(*at)) {
        ++at;
    }
    return at;
}

const char16_t* spaceEnd(const char16_t* at)
{
    while (QChar::isSpace(*at)) {
        ++at;
    }
    return at;
}

/// The decoded text of an attribute. `text` lies in the file's text, or in `buffer` if references
/// had to be decoded.
struct Attribute
{
    bool present = false;
    QStringView text;
    QString buffer;
};

/// The tag that was read last. One object serves all tags: creating and destroying its strings
/// for each would take longer than reading it.
struct Tag
{
    QStringView name;
    bool closing = false;
    bool selfClosing = false;
    Attribute k;
    Attribute t;
    Attribute v;
    Attribute other;

    void clear()
    {
        closing = selfClosing = false;
        k.present = t.present = v.present = false;
    }
};

/// Reads the content of the root and fills the tree with it.
class Reader
{
public:
    Reader(const QString& text, qsizetype from, QString* error)
        : m_begin(reinterpret_cast<const char16_t*>(text.utf16()))
        , m_end(m_begin + text.size())
        , m_pos(m_begin + from)
        , m_error(error)
    {
    }

    /// Reads everything up to and including the root's end tag.
    bool readContent(XsdtNode& root);

    qsizetype position() const { return m_pos - m_begin; }

private:
    bool readTag();
    bool readAttribute(const char16_t*& at);
    bool readElement(XsdtNode*& group);
    bool readValue(XsdtNode& group);
    bool readText();
    bool decode(Attribute& attribute, const char16_t* position);
    bool failAt(const char16_t* position, const QString& message);

    const char16_t* m_begin;
    const char16_t* m_end; ///< Points to a NUL, which ends white space, names and tags.
    const char16_t* m_pos;
    QString* m_error;
    Tag m_tag;
    StringPool m_strings;
};

bool Reader::failAt(const char16_t* position, const QString& message)
{
    qsizetype line = 1;
    qsizetype column = 1;
    for (const char16_t* at = m_begin; at != position; ++at) {
        ++column;
        if (*at == u'\n') {
            ++line;
            column = 1;
        }
    }
    return fail(m_error, u"%1 (line %2, column %3)"_s.arg(message, QString::number(line),
                                                          QString::number(column)));
}

bool Reader::decode(Attribute& attribute, const char16_t* position)
{
    QString reason;
    if (!decodeEntities(attribute.text, attribute.buffer, reason)) {
        return failAt(position, reason);
    }
    attribute.text = attribute.buffer;
    return true;
}

bool Reader::readAttribute(const char16_t*& at)
{
    const QStringView name(at, nameEnd(at));
    if (name.isEmpty()) {
        return failAt(at, u"malformed attribute"_s);
    }
    at = spaceEnd(at + name.size());
    if (*at != u'=') {
        return failAt(at, u"expected '=' after attribute name"_s);
    }
    at = spaceEnd(at + 1);
    if (*at != u'"' && *at != u'\'') {
        return failAt(at, u"expected a quoted attribute value"_s);
    }
    const char16_t quote = *at++;
    const char16_t* twin = at;
    bool references = false;
    while (twin != m_end && *twin != quote) {
        references |= *twin++ == u'&';
    }
    if (twin == m_end) {
        return failAt(at, u"unterminated attribute value"_s);
    }
    const char16_t letter = name.size() == 1 ? name[0].unicode() : u'\0';
    Attribute& attribute = letter == u'k'   ? m_tag.k
                           : letter == u't' ? m_tag.t
                           : letter == u'v' ? m_tag.v
                                            : m_tag.other;
    attribute.present = true;
    attribute.text = QStringView(at, twin);
    at = twin + 1;
    if (references && !decode(attribute, at)) {
        return false;
    }
    return &attribute != &m_tag.other || failAt(at, u"unsupported attribute '%1'"_s.arg(name));
}

bool Reader::readTag()
{
    m_tag.clear();
    const char16_t* at = spaceEnd(m_pos); // the compiler keeps a local in a register
    if (*at != u'<') {
        return failAt(at, u"expected '<'"_s);
    }
    m_tag.closing = *++at == u'/';
    at += m_tag.closing ? 1 : 0;
    m_tag.name = QStringView(at, nameEnd(at));
    if (m_tag.name.isEmpty()) {
        return failAt(at, u"expected an element name"_s);
    }
    at += m_tag.name.size();
    while (true) {
        at = spaceEnd(at);
        if (at == m_end) {
            return failAt(at, u"unexpected end of file inside a tag"_s);
        }
        if (*at == u'>') {
            m_pos = at + 1;
            return true;
        }
        if (*at == u'/') {
            if (m_tag.closing || at[1] != u'>') {
                return failAt(at, u"malformed tag"_s);
            }
            m_tag.selfClosing = true;
            m_pos = at + 2;
            return true;
        }
        if (m_tag.closing) {
            return failAt(at, u"unexpected content in closing tag"_s);
        }
        if (!readAttribute(at)) {
            return false;
        }
    }
}

/// Reads the element text of a value into the tag's `v`, and its end tag.
bool Reader::readText()
{
    static constexpr QStringView endTag = u"</v>";
    const QStringView rest(m_pos, m_end);
    const qsizetype length = rest.indexOf(u'<');
    if (length < 0 || !rest.mid(length).startsWith(endTag)) {
        return failAt(m_pos, rest.contains(endTag) ? u"markup inside a <v> text value"_s
                                                   : u"unterminated <v> element"_s);
    }
    m_tag.v.text = rest.left(length);
    if (m_tag.v.text.contains(u'&') && !decode(m_tag.v, m_pos)) {
        return false;
    }
    m_pos += length + endTag.size();
    return true;
}

bool Reader::readValue(XsdtNode& group)
{
    if (!m_tag.k.present || !m_tag.t.present || m_tag.t.text.size() != 1) {
        return failAt(m_pos, u"malformed <v> element"_s);
    }
    if (m_tag.selfClosing && !m_tag.v.present) {
        return failAt(m_pos, u"<v> element without a value"_s);
    }
    if (!m_tag.selfClosing && m_tag.v.present) {
        return failAt(m_pos, u"<v> element with both an attribute and a text value"_s);
    }
    if (!m_tag.selfClosing && !readText()) {
        return false;
    }
    std::unique_ptr<XsdtNode> node(new XsdtNode); // make_unique would zero it all first
    node->kind = XsdtNode::Kind::Value;
    node->key = m_strings.key(m_tag.k.text);
    node->typeCode = m_tag.t.text.front();
    node->value = m_strings.value(m_tag.v.text);
    node->original = node->value;
    node->textForm = !m_tag.selfClosing;
    node->selfClosing = m_tag.selfClosing;
    group.append(std::move(node));
    return true;
}

/// Room that a group starts with, so that its vector seldom grows. The rest is freed at its end.
constexpr std::size_t usualGroupSize = 16;

/// Reads one value, or the start of a group, which then becomes `group`.
bool Reader::readElement(XsdtNode*& group)
{
    if (!readTag()) {
        return false;
    }
    const QChar kind = m_tag.name.size() == 1 ? m_tag.name.front() : QChar();
    if (kind == u'v') {
        return readValue(*group);
    }
    if (kind != u'i') {
        return failAt(m_pos, u"unexpected element <%1>"_s.arg(m_tag.name));
    }
    if (!m_tag.k.present || m_tag.t.present || m_tag.v.present) {
        return failAt(m_pos, u"malformed <i> element"_s);
    }
    std::unique_ptr<XsdtNode> node(new XsdtNode); // make_unique would zero it all first
    node->key = m_strings.key(m_tag.k.text);
    node->selfClosing = m_tag.selfClosing;
    XsdtNode* child = group->append(std::move(node));
    if (!m_tag.selfClosing) {
        group = child;
        group->children.reserve(usualGroupSize);
    }
    return true;
}

bool Reader::readContent(XsdtNode& root)
{
    XsdtNode* group = &root;
    while (true) {
        m_pos = spaceEnd(m_pos);
        if (m_pos == m_end) {
            return failAt(m_pos, u"unexpected end of file"_s);
        }
        if (m_pos[0] != u'<' || m_pos[1] != u'/') {
            if (!readElement(group)) {
                return false;
            }
            continue;
        }
        if (!readTag()) {
            return false;
        }
        const bool isRoot = group == &root;
        if (m_tag.name != (isRoot ? QStringView(u"xsdt") : QStringView(u"i"))) {
            return failAt(m_pos, isRoot ? u"expected </xsdt>"_s : u"expected </i>"_s);
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
    const qsizetype start = text.indexOf("<xsdt"_L1);
    if (start < 0) {
        return fail(error, u"Not a PixInsight settings file (no <xsdt> element)."_s);
    }
    const qsizetype end = text.indexOf(u'>', start);
    if (end < 0 || text[end - 1] == u'/') {
        return fail(error, u"The <xsdt> element is empty or malformed."_s);
    }
    document.head = text.left(end + 1);
    const auto reader = std::make_unique<Reader>(text, end + 1, error); // too large for the stack
    if (!reader->readContent(document.root)) {
        return false;
    }
    document.tail = text.mid(reader->position());
    if (!document.tail.trimmed().isEmpty()) {
        return fail(error, u"Unexpected content after </xsdt>."_s);
    }
    return true;
}

} // namespace kse
