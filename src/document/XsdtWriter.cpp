// SPDX-License-Identifier: MIT
#include "document/XsdtWriter.h"

#include "document/TreeWalk.h"
#include "document/XsdtDocument.h"

#include <algorithm>
#include <cstring>

namespace kse {

namespace {

// A sink takes the bytes of the text in order: as the ASCII code units of a string, or as bytes.

/// Appends to a byte array, whose size is right only after the sink has been destroyed.
class AppendSink
{
public:
    explicit AppendSink(QByteArray& buffer)
        : m_buffer(buffer)
        , m_used(buffer.size())
    {
        m_buffer.resize(std::max(m_buffer.capacity(), m_used + startSize));
        m_data = m_buffer.data();
    }

    ~AppendSink() { m_buffer.resize(m_used); }

    AppendSink(const AppendSink&) = delete;
    AppendSink& operator=(const AppendSink&) = delete;

    void ascii(const char16_t* from, qsizetype size)
    {
        char* to = room(size);
        for (qsizetype i = 0; i < size; ++i) {
            to[i] = static_cast<char>(from[i]);
        }
    }

    void bytes(const char* from, qsizetype size)
    {
        std::memcpy(room(size), from, static_cast<std::size_t>(size));
    }

private:
    static constexpr qsizetype startSize = 262144;

    char* room(qsizetype size)
    {
        if (m_buffer.size() - m_used < size) {
            m_buffer.resize(std::max(m_buffer.size() * 2, m_used + size));
            m_data = m_buffer.data();
        }
        char* to = m_data + m_used;
        m_used += size;
        return to;
    }

    QByteArray& m_buffer;
    char* m_data = nullptr;
    qsizetype m_used = 0;
};

/// Counts the bytes.
struct CountSink
{
    qint64 count = 0;

    void ascii(const char16_t*, qsizetype size) { count += size; }
    void bytes(const char*, qsizetype size) { count += size; }
};

template <typename Sink, std::size_t Size>
void literal(Sink& sink, const char (&text)[Size])
{
    sink.bytes(text, static_cast<qsizetype>(Size - 1));
}

/// The reference that is written for `c`; null if `c` is written as it is.
constexpr const char* referenceFor(char16_t c)
{
    switch (c) {
    case u'"':
        return "&quot;";
    case u'&':
        return "&amp;";
    case u'\'':
        return "&apos;";
    case u'<':
        return "&lt;";
    case u'>':
        return "&gt;";
    default:
        return nullptr;
    }
}

/// Gives `text` to the sink in UTF-8, with references if `escape` is set.
template <typename Sink>
void encode(Sink& sink, QStringView text, bool escape)
{
    const char16_t* at = text.utf16();
    const char16_t* end = at + text.size();
    while (at != end) {
        const char16_t* run = at;
        while (at != end && *at < 0x80 && !(escape && referenceFor(*at))) {
            ++at;
        }
        sink.ascii(run, at - run);
        if (at != end && *at < 0x80) {
            const char* reference = referenceFor(*at++);
            sink.bytes(reference, static_cast<qsizetype>(std::strlen(reference)));
        }
        run = at;
        while (at != end && *at >= 0x80) {
            ++at;
        }
        if (at != run) {
            const QByteArray utf8 = QStringView(run, at).toUtf8();
            sink.bytes(utf8.constData(), utf8.size());
        }
    }
}

/// Writes the whole element of a value, or the start tag of a group.
template <typename Sink>
void writeStart(const XsdtNode& node, Sink& sink)
{
    if (node.kind == XsdtNode::Kind::Group) {
        literal(sink, "<i k=\"");
        encode(sink, node.key, true);
        if (node.children.empty() && node.selfClosing) {
            literal(sink, "\"/>");
        } else {
            literal(sink, "\">");
        }
        return;
    }
    literal(sink, "<v k=\"");
    encode(sink, node.key, true);
    literal(sink, "\" t=\"");
    encode(sink, QStringView(&node.typeCode, 1), true);
    if (!node.textForm) {
        literal(sink, "\" v=\"");
        encode(sink, node.value, true);
        literal(sink, "\"/>");
    } else if (node.value.isEmpty() && node.selfClosing) {
        literal(sink, "\"/>");
    } else {
        literal(sink, "\">");
        encode(sink, node.value, true);
        literal(sink, "</v>");
    }
}

template <typename Sink>
void writeEnd(const XsdtNode& node, Sink& sink)
{
    const bool isEmptyForm = node.children.empty() && node.selfClosing;
    if (node.kind == XsdtNode::Kind::Group && !isEmptyForm) {
        literal(sink, "</i>");
    }
}

template <typename Sink>
void writeContent(const XsdtNode& group, Sink& sink, bool skipMarked)
{
    const auto start = [&sink, skipMarked](const XsdtNode& node) {
        if (skipMarked && node.markedForDeletion) {
            return Walk::Over;
        }
        writeStart(node, sink);
        return Walk::Into;
    };
    walkTree(group, start, [&sink](const XsdtNode& node) { writeEnd(node, sink); });
}

template <typename Sink>
void writeElement(const XsdtNode& node, Sink& sink, bool skipMarked)
{
    if (skipMarked && node.markedForDeletion) {
        return;
    }
    writeStart(node, sink);
    writeContent(node, sink, skipMarked);
    writeEnd(node, sink);
}

} // namespace

void writeNode(const XsdtNode& node, QByteArray& buffer, bool skipMarked)
{
    AppendSink sink(buffer);
    writeElement(node, sink, skipMarked);
}

QString escapeText(const QString& text)
{
    QString escaped;
    escaped.reserve(text.size() + 16);
    for (const QChar c : text) {
        if (const char* reference = referenceFor(c.unicode())) {
            escaped += QLatin1String(reference);
        } else {
            escaped += c;
        }
    }
    return escaped;
}

QByteArray writeXsdt(const XsdtDocument& document)
{
    QByteArray bytes;
    {
        AppendSink sink(bytes);
        encode(sink, document.head, false);
        writeContent(document.root, sink, true);
        literal(sink, "</xsdt>");
        encode(sink, document.tail, false);
    }
    return bytes;
}

qint64 elementSize(const XsdtNode& node)
{
    CountSink sink;
    writeElement(node, sink, false);
    return sink.count;
}

} // namespace kse
